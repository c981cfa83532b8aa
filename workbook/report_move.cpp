#include "workbook/report_move.h"

#include <memory>

namespace trvtrout {
namespace {

using namespace automation;

constexpr std::int32_t kAccessMode = 1;

// The application of one call and the two sheets that it holds.
struct Session {
  std::unique_ptr<Application> application;
  std::unique_ptr<Worksheet> source, target;

  void add_sheet(const ReportMove& move) {
    application->GetWorkbooks()->Open(move.report);
    source = application->ActiveWorkbook()->ActiveSheet();
    source->Cells()->Copy();
    application->GetWorkbooks()->Open(move.workbook);
    application->ActiveWorkbook()->GetSheets()->Add();
    target = application->ActiveWorkbook()->ActiveSheet();
    target->Paste();
    target->SetName(move.sheet_name);
  }
  void save(const ReportMove& move) {
    application->ActiveWorkbook()->SaveAs(move.workbook, kAccessMode);
    application->ActiveWorkbook()->Close();
    application->GetWorkbooks()->Close();
  }
  void quit() {
    source.reset();
    target.reset();
    application->Quit();
  }
};

}  // namespace

void format_digits(Worksheet& sheet, std::u16string_view columns) {
  if (!columns.empty()) sheet.Columns()->Item(std::u16string(columns))->SetNumberFormat(u"0");
}

void format_moment(Worksheet& sheet, std::u16string_view cell) {
  if (!cell.empty()) sheet.GetRange(std::u16string(cell))->SetNumberFormat(u"m/d/yy h:mm AM/PM");
}

void align_left(Worksheet& sheet) { sheet.Columns()->SetHorizontalAlignment(kAlignLeft); }

std::optional<Failure> move_report(Spreadsheet& spreadsheet, const ReportMove& move,
                                   const std::function<void(Worksheet&)>& format) {
  using Outcome = std::optional<Failure>;
  Session session;
  return guarded(
      [&]() -> Outcome {
        session.application = spreadsheet.CreateObject(u"Excel.Application");
        session.application->SetDisplayAlerts(false);
        session.add_sheet(move);
        format(*session.target);
        session.save(move);
        session.quit();
        return std::nullopt;
      },
      [&](const Failure& failure) -> Outcome {
        // A second failure while quitting would hide the first one.
        const auto quit = [&]() -> Outcome { return session.quit(), std::nullopt; };
        if (session.application) guarded(quit, [](const Failure& second) -> Outcome { return second; });
        return failure;
      });
}

}  // namespace trvtrout
