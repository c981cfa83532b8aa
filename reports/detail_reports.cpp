#include "reports/detail_reports.h"

#include "reports/naming.h"

namespace trvtrout {
namespace {

using vtrfile::DocumentSlots;

void write_head(ReportWriter& out, const std::u16string& fname) {
  out.line("Detailed Statistic for file: " + out.locale().Encode(fname));
  out.line("Date and time created:," + out.present_moment());
  out.gap();
}

}  // namespace

bool write_detail_report(const HostServices& services, const DocumentSlots& document, const DetailReport& report,
                         const std::u16string& fname, bool is_temp, std::u16string& report_path) {
  const OutputName name = GetReportFileName(services, fname, std::u16string(report.desc_name), is_temp);
  report_path = name.path;
  if (name.abandoned) return false;

  const auto stream = create_report(services, name, {&fname});
  ReportWriter out(*stream, services.locale);
  write_head(out, fname);
  report.write(out, document);
  stream->Close();
  return true;
}

}  // namespace trvtrout
