#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "reports/naming.h"
#include "reports/report_frame.h"
#include "services/host_services.h"
#include "vtrfile/document.h"

namespace trvtrout {

// What a detail report's text begins with.
inline constexpr std::string_view kReportTitle = "Detailed Statistic for file: ";

// One of the eight detail reports: what its file is named after, and what it writes behind the head rows.
struct DetailReport {
  std::u16string_view desc_name;
  void (*write)(ReportWriter& out, const vtrfile::DocumentSlots& document);
};

extern const DetailReport kProductReport;
extern const DetailReport kTableReport;
extern const DetailReport kTreeReport;
extern const DetailReport kFieldReport;
extern const DetailReport kLookupReport;
extern const DetailReport kControlTagReport;
extern const DetailReport kLanguageReport;
extern const DetailReport kDataSendReport;

// Writes `report` on `document`, which was read from `fname`, to a file named after both; `file` gets its path as soon
// as it is settled. False when the user abandoned it: nothing was touched then. Raises whatever keeps the
// report from being written to its end; the rows before it stay in the file.
bool write_detail_report(const HostServices& services, const vtrfile::DocumentSlots& document,
                         const DetailReport& report, const std::u16string& fname, bool is_temp, ReportFile& file);

}  // namespace trvtrout
