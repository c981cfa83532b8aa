#include "platform/program/open_books.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

#include "platform/files/path.h"
#include "platform/program/sheet_names.h"
#include "platform/program/spreadsheet_error.h"
#include "spreadsheet/text/comma_text.h"
#include "text/calendar.h"
#include "text/utf8.h"

namespace trvtrout::platform {

using namespace spreadsheet;

namespace {

// What the larger format takes, and one more: the workbook tells what is too much for it.
constexpr SheetLimits kTextLimits{1048577, 16385};

std::string read_all(Files& files, const std::u16string& path) {
  // Opening creates what isn't there.
  if (!files.CreateFileSystemObject()->FileExists(path))
    refuse("can't open \"" + text::to_utf8(path) + "\": there is no such file");
  const auto file = files.OpenBinary(path);
  std::string bytes(file->Size(), '\0');
  const std::span whole(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size());
  std::size_t filled = 0;
  while (const std::size_t count = file->Read(whole.subspan(filled))) filled += count;
  bytes.resize(filled);
  file->Close();
  return bytes;
}

int year_of(Date date) {
  using namespace std::chrono;
  const auto day = text::kDayZero + days(static_cast<int>(date));
  return static_cast<int>(year_month_day(day).year());
}

std::string free_sheet_name(const std::vector<std::string>& taken) {
  std::set<std::u16string> folded;
  for (const std::string& name : taken) folded.insert(without_case(name));
  for (std::size_t number = 1;; ++number) {
    std::string name = "Sheet" + std::to_string(number);
    if (!folded.contains(without_case(name))) return name;
  }
}

}  // namespace

bool is_comma_text(std::u16string_view path) {
  constexpr std::u16string_view kExtension = u".csv";
  return path.size() >= kExtension.size() &&
         std::ranges::equal(path.substr(path.size() - kExtension.size()), kExtension,
                            [](char16_t one, char16_t other) { return (one < 128 ? one | 32 : one) == other; });
}

OpenBook::OpenBook(const std::u16string& path, Files& files, Locale& locale, const std::string& told_as,
                   const WorkbookRules& rules)
    : path_(path), told_as_(told_as.empty() ? machine_path(path) : told_as) {
  if (is_comma_text(path)) {
    std::string text = text::to_utf8(locale.Decode(read_all(files, path)));
    sheet_ = std::make_unique<EditedSheet>(read_comma_text(std::move(text), year_of(locale.Now())), kTextLimits);
  } else {
    workbook_ = std::make_unique<WorkbookOnDisk>(machine_path(path), told_as, rules);
  }
}

EditedSheet& OpenBook::sheet() {
  if (!sheet_) refuse("a sheet that was in the workbook before can't be read or changed");
  return *sheet_;
}

void OpenBook::require_added() const {
  if (!workbook_ || !sheet_) refuse("only a sheet that was added to a workbook can be changed");
}

void OpenBook::add_sheet() {
  if (!workbook_) refuse("a comma-separated text has one sheet only");
  if (sheet_) refuse("one sheet is added at a time; save the workbook and open it again");
  sheet_ = std::make_unique<EditedSheet>(Sheet(), workbook_->file().limits());
  sheet_name_ = free_sheet_name(workbook_->file().sheet_names());
}

void OpenBook::paste(Sheet cells, Locale& locale) {
  require_added();
  const WorkbookFile& file = workbook_->file();
  if (file.counts_from_1904()) count_dates_from_1904(cells, locale);
  naming_file(told_as_, [&] { require_fitting(cells, file.limits()); });
  sheet_ = std::make_unique<EditedSheet>(std::move(cells), file.limits());
}

void OpenBook::restyle(const std::vector<Area>& areas, const std::function<void(CellStyle&)>& change) {
  require_added();
  naming_file(told_as_, [&] { sheet_->restyle(areas, change); });
}

void OpenBook::rename(const std::u16string& name) {
  require_added();
  workbook_->require_room_for(name);
  sheet_name_ = text::to_utf8(name);
}

void OpenBook::save_as(const std::u16string& path) {
  require_added();
  if (path != path_) refuse("a workbook is saved under its own name");
  workbook_->save_with(sheet_->finish(sheet_name_));
}

}  // namespace trvtrout::platform
