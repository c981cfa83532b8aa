#include "platform/program/workbook_on_disk.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

#include "platform/files/path.h"
#include "platform/program/sheet_names.h"
#include "platform/program/spreadsheet_error.h"
#include "text/utf8.h"

// Workbooks on the disk of this platform, for the program of the tests: what another one holds is refused by the
// system.
namespace trvtrout::platform {

using namespace spreadsheet;

namespace {

std::filesystem::path native(const std::string& path) { return text::from_utf8(path); }

}  // namespace

std::string machine_path(const std::u16string& path) { return text::to_utf8(path); }

std::u16string without_case(std::string_view name) {
  std::wstring text = native(std::string(name)).wstring();
  CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
  return {text.begin(), text.end()};
}

void refuse_file(ErrorNumber number, const char* verb, const std::string& path, const std::string& reason) {
  throw ServiceError(number, std::string("can't ") + verb + " \"" + path + "\": " + reason);
}

FileHandle::FileHandle(const std::string& path, const char* verb, Access, Creation, const std::string& told_as)
    : path_(told_as.empty() ? path : told_as), verb_(verb) {
  if (_wsopen_s(&descriptor_, native(path).c_str(), _O_RDWR | _O_BINARY, _SH_DENYRW, 0) != 0)
    refuse_file(ErrorNumber::kFileHeld, verb_, path_, "it can't be opened");
}

std::string FileHandle::read_rest() const {
  std::string bytes(static_cast<std::size_t>(_filelengthi64(descriptor_)), '\0');
  if (_read(descriptor_, bytes.data(), static_cast<unsigned>(bytes.size())) != static_cast<int>(bytes.size()))
    refuse_file(ErrorNumber::kDeviceError, verb_, path_, "it can't be read");
  return bytes;
}

int FileHandle::close() noexcept {
  if (descriptor_ >= 0) _close(descriptor_);
  descriptor_ = -1;
  return 0;
}

WorkbookOnDisk::WorkbookOnDisk(const std::string& path, const std::string& told_as, WorkbookRules rules)
    : path_(path),
      told_as_(told_as),
      rules_(std::move(rules)),
      handle_(path, kChange, Access::kUpdate, Creation::kNever, told_as),
      opened_() {
  file_ = naming_file(path_, [&] { return open_workbook(handle_.read_rest()); });
}

void WorkbookOnDisk::require_room_for(const std::u16string& sheet_name) const {
  naming_file(path_, [&] { require_sheet_name(sheet_name, file_->sheet_names()); });
}

void WorkbookOnDisk::save_with(const Sheet& sheet) {
  const std::string bytes = naming_file(path_, [&] { return file_->with_sheet(sheet); });
  handle_.close();
  std::ofstream file(native(path_), std::ios::binary);
  if (!(file << bytes)) refuse_file(ErrorNumber::kDeviceError, kChange, path_, "it can't be written");
}

}  // namespace trvtrout::platform
