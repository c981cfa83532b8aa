#include "host/workbook_target.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <sys/stat.h>
#include <unistd.h>

#include "host/machine.h"
#include "platform/files/file_handle.h"
#include "platform/files/path.h"
#include "platform/files/replacement.h"
#include "platform/spreadsheet/program/sheet_names.h"
#include "platform/spreadsheet/program/workbook_on_disk.h"

namespace trvtrout::host {
namespace {

using spreadsheet::WorkbookFormat;

constexpr const char* kVerb = "make";
constexpr int kBadFileName = 52;

bool exists(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

WorkbookFormat format_by_name(const std::string& path) {
  std::string extension = path.substr(std::min(path.rfind('.'), path.size()));
  std::ranges::transform(extension, extension.begin(), [](unsigned char letter) { return std::tolower(letter); });
  if (extension == ".xls") return WorkbookFormat::kBiff8;
  if (extension == ".xlsx") return WorkbookFormat::kOoxml;
  throw ServiceError(kBadFileName, "can't make \"" + path + "\": name a new workbook .xlsx or .xls");
}

}  // namespace

WorkbookTarget::WorkbookTarget(const std::string& path, const std::vector<Part>& parts) : path_(path) {
  if (exists(path)) {
    look_at(path, parts);
  } else {
    make_new();
  }
  class_path_ = platform::class_path(new_path_.empty() ? path_ : new_path_);
}

WorkbookTarget::~WorkbookTarget() {
  if (!new_path_.empty()) unlink(new_path_.c_str());
}

void WorkbookTarget::look_at(const std::string& path, const std::vector<Part>& parts) const {
  const spreadsheet::WorkbookOnDisk workbook(path);
  for (const Part& part : parts) workbook.require_free(part.sheet_name);
}

void WorkbookTarget::make_new() {
  const std::string bytes = spreadsheet::empty_workbook(format_by_name(path_));
  new_path_ = platform::temporary_path_beside(path_);
  try {
    platform::FileHandle file(new_path_, kVerb, platform::Access::kWrite, platform::Creation::kOnlyNew);
    if (const int error = file.write(bytes); error != 0) platform::raise_file_error(error, path_, kVerb);
  } catch (...) {
    unlink(new_path_.c_str());
    throw;
  }
}

void WorkbookTarget::complain_of_sheet(const char* part, std::string why) const {
  // The user knows the name that the workbook will have.
  if (const std::size_t at = new_path_.empty() ? why.npos : why.find(new_path_); at != why.npos) {
    why.replace(at, new_path_.size(), path_);
  }
  complain_of_part("sheet for", part, platform::class_path(path_), why);
}

void WorkbookTarget::finish(bool prints) {
  if (!has_sheet_) return;
  if (!new_path_.empty()) {
    if (const int error = platform::rename_to_new(new_path_, path_); error != 0)
      platform::raise_file_error(error, path_, kVerb);
    new_path_.clear();
  }
  if (prints) std::cout << path_ << std::endl;
}

}  // namespace trvtrout::host
