#include "reports/detail_reports.h"

#include "services/guard.h"

namespace trvtrout {
namespace {

using vtrfile::DocumentSlots;

void write_head(ReportWriter& out, const std::u16string& fname) {
  out.line(std::string(kReportTitle) + out.locale().Encode(fname));
  out.line("Date and time created:," + out.present_moment());
  out.gap();
}

}  // namespace

bool write_detail_report(const HostServices& services, const DocumentSlots& document, const DetailReport& report,
                         const std::u16string& fname, bool is_temp, ReportFile& file) {
  const OutputName name = GetReportFileName(services, fname, report.desc_name, is_temp, file.folder);
  file.path = name.path;
  if (name.abandoned) return false;

  file.create(services, name, {&fname});
  ReportWriter out(*file.stream, services.locale);
  write_head(out, fname);
  report.write(out, document);
  close_done(file.stream);
  return true;
}

}  // namespace trvtrout
