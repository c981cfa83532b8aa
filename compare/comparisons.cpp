#include "compare/comparisons.h"

#include <map>

#include "compare/row_labels.h"
#include "services/guard.h"

namespace trvtrout {
namespace {

void write_head(ReportWriter& out, const ComparedDocuments& documents) {
  Locale& locale = out.locale();
  out.line(',' + std::string(kComparisonTitle) + ',' + locale.Encode(documents.primary_fname));
  out.line(",," + locale.Encode(documents.secondary_fname));
  out.line(",Date and time created:," + out.present_moment());
  out.gap();
}

}  // namespace

bool write_comparison(const HostServices& services, const Comparison& comparison, const ComparedDocuments& documents,
                      ReportFile& file, ComparisonCounts& counts) {
  counts = {};
  const auto name_after = [&](const std::u16string& fname) {
    return GetReportFileName(services, fname, comparison.desc_name, true, file.folder);
  };
  const OutputName secondary = name_after(documents.secondary_fname);
  // The report bears the primary file's name. Of the secondary one only the base name is used: its path is dropped, and
  // so is what was answered about a file that stands there.
  const OutputName primary = name_after(documents.primary_fname);
  file.path = primary.path;
  if (primary.abandoned) return false;

  file.create(services, primary, {&documents.primary_fname, &documents.secondary_fname});
  ReportWriter out(*file.stream, services.locale);
  write_head(out, documents);
  const std::string primary_name = services.locale.Encode(primary.base_name.value_or(u""));
  const std::string secondary_name = services.locale.Encode(secondary.base_name.value_or(u""));
  ComparisonWriter writer(out, primary_name, secondary_name, counts);
  comparison.write(writer, documents.primary, documents.secondary);
  close_done(file.stream);
  return true;
}

std::vector<std::string> repeated_keys(const Comparison& comparison, const vtrfile::GroupSlots& document) {
  std::map<std::string, int> times;
  std::vector<std::string> repeated;
  comparison.keys(document, [&](std::string key) {
    if (++times[key] == 2) repeated.push_back(std::move(key));
  });
  return repeated;
}

}  // namespace trvtrout
