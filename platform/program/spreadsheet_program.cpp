#include "platform/program/spreadsheet_program.h"

#include <utility>
#include <vector>

#include "platform/files/path.h"
#include "platform/program/open_books.h"
#include "platform/program/spreadsheet_error.h"
#include "text/utf8.h"

namespace trvtrout::platform {

using namespace spreadsheet;

namespace {

constexpr int kMaxColorIndex = 56;

// What the objects of one application share.
struct State {
  Files& files;
  Locale& locale;
  ToldName told;
  WorkbookRules rules;
  std::vector<std::shared_ptr<OpenBook>> books = {};
  std::shared_ptr<OpenBook> active = nullptr;
  std::shared_ptr<OpenBook> copied = nullptr;  // whose cells the clipboard has

  void open(const std::u16string& path) {
    const std::string told_as = machine_path(path) == told.path ? told.told_as : "";
    active = books.emplace_back(std::make_shared<OpenBook>(path, files, locale, told_as, rules));
  }
  OpenBook& active_book() const {
    if (!active) refuse("no workbook is open");
    return *active;
  }
  void close_all() {
    books.clear();
    active = copied = nullptr;
  }
};

using Book = std::shared_ptr<OpenBook>;
using Areas = std::vector<Area>;

class ProgramFont : public automation::Font {
 public:
  ProgramFont(Book book, Areas areas) : book_(std::move(book)), areas_(std::move(areas)) {}
  void SetColorIndex(std::int16_t index) override {
    if (index < 1 || index > kMaxColorIndex) refuse("the palette has no such colour");
    book_->restyle(areas_, [index](CellStyle& style) { style.color_index = static_cast<std::uint8_t>(index); });
  }
  void SetBold(bool bold) override {
    book_->restyle(areas_, [bold](CellStyle& style) { style.bold = bold; });
  }

 private:
  Book book_;
  Areas areas_;
};

class ProgramRange : public automation::Range {
 public:
  ProgramRange(std::shared_ptr<State> state, Book book, Areas areas)
      : state_(std::move(state)), book_(std::move(book)), areas_(std::move(areas)) {}

  std::unique_ptr<Range> Item(const std::u16string& columns) override {
    Areas areas = parse_addresses(columns);
    if (!is_all() || !areas.front().is_columns()) refuse("columns can only be picked from all columns");
    return std::make_unique<ProgramRange>(state_, book_, std::move(areas));
  }
  std::unique_ptr<Range> Cells() override { return std::make_unique<ProgramRange>(state_, book_, areas_); }
  void Copy() override {
    if (!is_all()) refuse("only a whole sheet can be copied");
    state_->copied = book_;
  }
  void SetNumberFormat(const std::u16string& format) override {
    book_->restyle(areas_, [&](CellStyle& style) { style.number_format = text::to_utf8(format); });
  }
  void SetHorizontalAlignment(std::int32_t alignment) override {
    if (alignment != automation::kAlignLeft) refuse("cells can only be aligned to the left");
    book_->restyle(areas_, [](CellStyle& style) { style.left = true; });
  }
  void Select() override {
    if (first_cell() != std::pair(0U, 0U)) refuse("only A1 can be selected");  // as it is in a new sheet
  }
  std::optional<std::u16string> Value() override {
    const auto [row, column] = first_cell();
    const auto text = book_->sheet().text_at(row, column);
    if (!text) return std::nullopt;
    return text::from_utf8(*text);
  }
  std::unique_ptr<automation::Font> GetFont() override { return std::make_unique<ProgramFont>(book_, areas_); }
  void AutoFilter() override {
    if (!areas_.front().is_columns() || areas_.front().last_column != 0) refuse("only column A can have a filter");
    book_->sheet().add_filter();
  }

 private:
  bool is_all() const {
    return areas_.front().is_columns() && areas_.front().last_column == book_->sheet().columns().last_column;
  }
  std::pair<std::uint32_t, std::uint32_t> first_cell() const {
    return {areas_.front().first_row, areas_.front().first_column};
  }

  std::shared_ptr<State> state_;
  Book book_;
  Areas areas_;
};

class ProgramWorksheet : public automation::Worksheet {
 public:
  ProgramWorksheet(std::shared_ptr<State> state, Book book) : state_(std::move(state)), book_(std::move(book)) {}

  void SetName(const std::u16string& name) override { book_->rename(name); }
  std::unique_ptr<automation::Range> Cells() override { return range({book_->sheet().columns()}); }
  std::unique_ptr<automation::Range> Columns() override { return Cells(); }
  std::unique_ptr<automation::Range> GetRange(const std::u16string& addresses) override {
    return range(parse_addresses(addresses));
  }
  // The cells leave the sheet that they were copied from: it's a text, of which nothing else is wanted.
  void Paste() override {
    if (!state_->copied || state_->copied == book_) refuse("the clipboard holds no cells of another sheet");
    book_->paste(std::exchange(state_->copied, nullptr)->sheet().take(), state_->locale);
  }

 private:
  std::unique_ptr<automation::Range> range(Areas areas) {
    return std::make_unique<ProgramRange>(state_, book_, std::move(areas));
  }

  std::shared_ptr<State> state_;
  Book book_;
};

class ProgramSheets : public automation::Sheets {
 public:
  explicit ProgramSheets(Book book) : book_(std::move(book)) {}
  void Add() override { book_->add_sheet(); }

 private:
  Book book_;
};

class ProgramWorkbook : public automation::Workbook {
 public:
  explicit ProgramWorkbook(std::shared_ptr<State> state) : state_(std::move(state)), book_(state_->active) {
    state_->active_book();
  }

  std::unique_ptr<automation::Worksheet> ActiveSheet() override {
    return std::make_unique<ProgramWorksheet>(state_, book_);
  }
  std::unique_ptr<automation::Sheets> GetSheets() override { return std::make_unique<ProgramSheets>(book_); }
  void SaveAs(const std::u16string& filename, std::int32_t) override { book_->save_as(filename); }
  void Close() override {
    std::erase(state_->books, book_);
    state_->active = state_->books.empty() ? nullptr : state_->books.back();
  }

 private:
  std::shared_ptr<State> state_;
  Book book_;
};

class ProgramWorkbooks : public automation::Workbooks {
 public:
  explicit ProgramWorkbooks(std::shared_ptr<State> state) : state_(std::move(state)) {}
  void Open(const std::u16string& filename) override { state_->open(filename); }
  void Close() override { state_->close_all(); }

 private:
  std::shared_ptr<State> state_;
};

class ProgramApplication : public automation::Application {
 public:
  explicit ProgramApplication(State state) : state_(std::make_shared<State>(std::move(state))) {}
  void SetDisplayAlerts(bool) override {}  // it has no window to ask in
  std::unique_ptr<automation::Workbooks> GetWorkbooks() override { return std::make_unique<ProgramWorkbooks>(state_); }
  std::unique_ptr<automation::Workbook> ActiveWorkbook() override { return std::make_unique<ProgramWorkbook>(state_); }
  void Quit() override { state_->close_all(); }

 private:
  std::shared_ptr<State> state_;
};

}  // namespace

std::unique_ptr<automation::Application> SpreadsheetProgram::CreateObject(const std::u16string& name) {
  if (name != u"Excel.Application") refuse("there is no application \"" + text::to_utf8(name) + "\" here");
  return std::make_unique<ProgramApplication>(State{files_, locale_, told_, rules_});
}

}  // namespace trvtrout::platform
