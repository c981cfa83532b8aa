#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "bench/measure.h"
#include "component/parts.h"
#include "platform/files/path.h"

namespace trvtrout::bench {

using CompareCall = decltype(Part::compare);

// The files of two documents to compare.
struct ComparedFiles {
  std::filesystem::path primary;
  std::filesystem::path secondary;

  double bytes() const { return file_bytes(primary) + file_bytes(secondary); }
  void read_into(TarvelVtrOut_InOut& documents) const {
    bench::read_into(documents, primary);
    bench::read_into(documents, secondary, True);
  }
  // Returns the rows that came.
  ComparisonCounts compare(TarvelVtrOut_InOut& documents, CompareCall call) const {
    std::u16string primary_name = platform::class_path(primary.string());
    std::u16string secondary_name = platform::class_path(secondary.string());
    std::u16string report_path;
    if (!(documents.*call)(primary_name, secondary_name, report_path)) {
      throw std::runtime_error(documents.LastFailure());
    }
    return documents.LastCounts();
  }
};

}  // namespace trvtrout::bench
