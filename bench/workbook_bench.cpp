// What moving a large report into a workbook costs, beside another library writing the same cells to a new file.
#include <xlsxwriter.h>

#include "bench/measure.h"
#include "platform/files/path.h"
#include "spreadsheet/text/comma_text.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::bench {
namespace {

using spreadsheet::Cell;
using spreadsheet::CellKind;
using spreadsheet::Sheet;

constexpr int kRuns = 3;
constexpr int kYear = 2004;

constexpr struct Size {
  const char* format;
  spreadsheet::WorkbookFormat workbook;
  int rows;
} kSizes[] = {{"xls", spreadsheet::WorkbookFormat::kBiff8, 60'000},
              {"xlsx", spreadsheet::WorkbookFormat::kOoxml, 500'000}};

// Rows as the field report has them: thirteen cells, most of them texts that many rows share.
std::string report_text(int rows) {
  std::string text = "Detailed report\r\n,6/1/2004 2:11:05 PM\r\n\r\r\n";
  for (int row = 0; row < rows - 4; ++row) {
    const std::string number = std::to_string(row);
    text += ",T" + std::to_string(row / 550) + ",F" + number + ",0,CODE" + std::to_string(row % 1000) + ",COLUMN_" +
            number + ",Description of field " + number + ",8," + std::to_string(row % 255) + ",VARCHAR,True,Y Cur ," +
            std::to_string(row % 40) + "\r\n";
  }
  return text;
}

// A workbook that somebody made: one sheet with a few cells.
void make_workbook(const std::filesystem::path& path, spreadsheet::WorkbookFormat format) {
  Sheet sheet = spreadsheet::read_comma_text("a,1\r\nb,2\r\n", kYear);
  sheet.name = "Theirs";
  std::ofstream(path, std::ios::binary)
      << spreadsheet::open_workbook(spreadsheet::empty_workbook(format))->with_sheet(sheet);
}

Cost moving_cost(const std::filesystem::path& workbook, const std::filesystem::path& report) {
  return in_child([&] {
    Host host;
    TarvelVtrOut_InOut utility(host.services());
    const std::u16string target = platform::class_path(workbook.string()), text = platform::class_path(report.string());
    return cost_of([&] {
      if (!utility.XL_Output_Statistics(target, text, u"Fields")) throw std::runtime_error(utility.LastFailure());
      return 0;
    });
  });
}

void write_cell(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const Cell& cell) {
  switch (cell.kind()) {
    case CellKind::kBlank:
      break;
    case CellKind::kNumber:
    case CellKind::kDate:
      worksheet_write_number(sheet, row, column, cell.number(), nullptr);
      break;
    case CellKind::kText:
      worksheet_write_string(sheet, row, column, std::string(cell.text()).c_str(), nullptr);
      break;
    case CellKind::kBoolean:
      worksheet_write_boolean(sheet, row, column, cell.number() != 0, nullptr);
      break;
  }
}

// `constant_memory`: each row goes out before the next one comes.
Cost library_cost(const std::filesystem::path& workbook, const std::string& text, bool constant_memory) {
  return in_child([&] {
    const Sheet sheet = spreadsheet::read_comma_text(text, kYear);
    return cost_of([&] {
      lxw_workbook_options options{};
      options.constant_memory = constant_memory ? LXW_TRUE : LXW_FALSE;
      lxw_workbook* const book = workbook_new_opt(workbook.c_str(), &options);
      lxw_worksheet* const target = workbook_add_worksheet(book, "Fields");
      for (std::size_t row = 0; row < sheet.rows(); ++row) {
        const auto cells = sheet.row(row);
        for (std::size_t column = 0; column < cells.size(); ++column) {
          write_cell(target, static_cast<lxw_row_t>(row), static_cast<lxw_col_t>(column), cells[column]);
        }
      }
      if (workbook_close(book) != LXW_NO_ERROR) throw std::runtime_error("the library can't write its file");
      return 0;
    });
  });
}

struct Results {
  Measured moving, library, library_by_rows;

  void print() const {
    print_table("a sheet into a workbook, medians", {moving, library, library_by_rows});
    if (moving.runs.empty()) return;
    std::cout << "\ntime of the move / the library's new file: " << moving.seconds() / library.seconds()
              << ", written row by row: " << moving.seconds() / library_by_rows.seconds()
              << "\npeak memory, the same: " << moving.peak() / library.peak() << ", "
              << moving.peak() / library_by_rows.peak() << '\n';
  }
};

void measure_moving(const std::filesystem::path& folder, const Size& size, Results& results, benchmark::State& state) {
  const std::string text = report_text(size.rows);
  const std::filesystem::path report = folder / "report.csv", made = folder / "made", workbook = folder / "workbook";
  std::ofstream(report, std::ios::binary) << text;
  make_workbook(made, size.workbook);
  results.moving.bytes = results.library.bytes = results.library_by_rows.bytes = static_cast<double>(text.size());
  for (auto _ : state) {
    std::filesystem::copy_file(made, workbook, std::filesystem::copy_options::overwrite_existing);
    results.library.runs.push_back(library_cost(folder / "library.xlsx", text, false));
    results.library_by_rows.runs.push_back(library_cost(folder / "library.xlsx", text, true));
    results.moving.add(state, moving_cost(workbook, report));
  }
  results.moving.tell(state);
}

}  // namespace

Print add_workbooks(const std::filesystem::path& folder) {
  const auto results = std::make_shared<std::vector<Results>>();
  for (const Size& size : kSizes) {
    const std::string rows = std::to_string(size.rows) + " rows";
    results->push_back({{rows + " into an ." + size.format}, {"libxlsxwriter, new .xlsx"}, {"the same, row by row"}});
  }
  for (std::size_t index = 0; index < results->size(); ++index) {
    add_benchmark(std::string("workbook/") + kSizes[index].format, kRuns,
                  [=](benchmark::State& state) { measure_moving(folder, kSizes[index], (*results)[index], state); });
  }
  return [=] {
    for (const Results& one : *results) one.print();
  };
}

}  // namespace trvtrout::bench
