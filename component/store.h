#pragma once

#include <optional>
#include <string>

#include "compare/comparisons.h"
#include "component/TarvelVtrOut_InOut.h"
#include "reports/detail_reports.h"
#include "services/guard.h"
#include "vtrfile/document.h"
#include "vtrfile/reader.h"

namespace trvtrout {

// What an object holds between its operations, and what these share.
struct TarvelVtrOut_InOut::Store {
  explicit Store(const HostServices& host_services) : services(host_services) {}

  // The result of an operation that failed, or that may have.
  Boolean fail(const Failure& failure);
  Boolean outcome(const std::optional<Failure>& failure) { return failure ? fail(*failure) : True; }
  void warn(const std::u16string& prompt, const std::u16string& title = u"VTR Output Warning");
  void warn_of_file_in_use(const std::u16string& path);
  void warn_of_version();

  // False when the version isn't supported. Raises ReadError, which is kept as the damage.
  bool read(vtrfile::DocumentReader& reader, std::shared_ptr<const vtrfile::Image> image);

  Boolean write_report(const DetailReport& report, const std::u16string& fname, std::u16string& report_path,
                       Boolean is_temp, bool tells_user = false);
  Boolean compare(const Comparison& comparison, const std::u16string& primary_fname,
                  const std::u16string& secondary_fname, std::u16string& report_path);
  // The frame of both: write(file) is False when the user left the file that stands at `report_path` as it is. A
  // warning that is due comes before the file is closed.
  template <class Write>
  Boolean write_file(std::u16string& report_path, bool tells_user, Write&& write);

  HostServices services;
  vtrfile::DocumentSlots current;
  vtrfile::GroupSlots primary;
  vtrfile::GroupSlots secondary;
  std::optional<vtrfile::ReadError> damage;
  vtrfile::FileRead last_read;
  std::optional<vtrfile::Salvaged> last_salvage;
  Failure last_failure;
  std::u16string report_folder;
  const Comparison* last_comparison = nullptr;
  ComparisonCounts counts;
};

template <class Write>
Boolean TarvelVtrOut_InOut::Store::write_file(std::u16string& report_path, bool tells_user, Write&& write) {
  ReportFile file{report_path, report_folder};
  return guarded([&] { return write(file) ? True : fail({.what = "the existing file was left as it is"}); },
                 [&](const Failure& failure) {
                   if (tells_user && failure.number == ErrorNumber::kFileHeld) warn_of_file_in_use(report_path);
                   close_failed(file.stream);
                   return fail(failure);
                 });
}

}  // namespace trvtrout
