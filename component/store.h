#pragma once

#include <optional>
#include <string>

#include "compare/comparisons.h"
#include "component/TarvelVtrOut_InOut.h"
#include "reports/detail_reports.h"
#include "services/guard.h"
#include "vtrfile/document.h"

namespace trvtrout {

// What an object holds between its operations, and what these share.
struct TarvelVtrOut_InOut::Store {
  explicit Store(const HostServices& host_services) : services(host_services) {}

  // The result of an operation that failed, or that may have.
  Boolean fail(const Failure& failure);
  Boolean outcome(const std::optional<Failure>& failure) { return failure ? fail(*failure) : True; }
  void warn(const std::u16string& prompt, const std::u16string& title = u"VTR Output Warning");
  void warn_of_file_in_use(const std::u16string& path);

  Boolean write_report(const DetailReport& report, const std::u16string& fname, std::u16string& report_path,
                       Boolean is_temp, bool tells_user = false);
  Boolean compare(const Comparison& comparison, const std::u16string& primary_fname,
                  const std::u16string& secondary_fname, std::u16string& report_path);

  HostServices services;
  vtrfile::DocumentSlots current;
  vtrfile::GroupSlots primary;
  vtrfile::GroupSlots secondary;
  std::optional<vtrfile::ReadError> damage;
  vtrfile::FileRead last_read;
  std::string last_failure;
  const Comparison* last_comparison = nullptr;
  ComparisonCounts counts;
};

}  // namespace trvtrout
