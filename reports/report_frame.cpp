#include "reports/report_frame.h"

namespace trvtrout {

void ReportWriter::label(std::string_view label, std::string_view value) {
  stream_.Write("," + std::string(label) + ",");
  stream_.WriteLine(value);
}

void ReportWriter::counted(const vtrfile::ListInfo& info, std::string_view prefix, std::string_view failed) {
  stream_.Write(std::string(prefix) + "Counted in VTR:,");
  stream_.WriteLine(info.ok ? std::to_string(info.size) : std::string(failed));
}

}  // namespace trvtrout
