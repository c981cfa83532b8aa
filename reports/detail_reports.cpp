#include "reports/detail_reports.h"

#include "reports/naming.h"

namespace trvtrout {
namespace {

using vtrfile::DocumentSlots;

void write_head(ReportWriter& out, const std::u16string& fname) {
  out.line("Detailed Statistic for file: " + out.locale().Encode(fname));
  out.line("Date and time created:," + out.locale().Encode(out.locale().GeneralDate(out.locale().Now())));
  out.gap();
}

}  // namespace

bool write_detail_report(const HostServices& services, const DocumentSlots& document, const DetailReport& report,
                         const std::u16string& fname, bool is_temp, std::u16string& report_path) {
  const OutputName name = GetReportFileName(services, fname, std::u16string(report.desc_name), is_temp);
  report_path = name.path;
  // The save dialog's answer isn't tested by anybody else, and the document itself must never be written over.
  if (name.abandoned || name.path == fname) return false;

  const auto file_system = services.files.CreateFileSystemObject();
  const auto stream = file_system->CreateTextFile(report_path, true, false);
  ReportWriter out(*stream, services.locale);
  write_head(out, fname);
  report.write(out, document);
  stream->Close();
  return true;
}

}  // namespace trvtrout
