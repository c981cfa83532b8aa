#include "tests/windows/program/objects.h"

namespace trvtrout::tests {
namespace {

using namespace automation;

constexpr WORD kGet = DISPATCH_PROPERTYGET, kPut = DISPATCH_PROPERTYPUT, kMethod = DISPATCH_METHOD;

// Calls a member of both: on the one that writes it down first.
template <class Interface, class Result, class... Parameters, class... Arguments>
auto both(const Twin<Interface>& object, Result (Interface::*member)(Parameters...), const Arguments&... arguments) {
  if constexpr (std::is_void_v<Result>) {
    (object.noted.get()->*member)(arguments...);
    (object.done.get()->*member)(arguments...);
  } else {
    auto noted = (object.noted.get()->*member)(arguments...);
    return Twin<typename Result::element_type>{std::move(noted), (object.done.get()->*member)(arguments...)};
  }
}

IDispatch* font_object(ProgramLife& life, const Twin<Font>& font) {
  return make_object(
      life, {{L"ColorIndex",
              97,
              kPut,
              {L""},
              [=](const Call& call) { both(font, &Font::SetColorIndex, static_cast<std::int16_t>(call.number(0))); }},
             {L"Bold", 96, kPut, {L""}, [=](const Call& call) { both(font, &Font::SetBold, call.flag(0)); }}});
}

IDispatch* range_object(ProgramLife& life, const Twin<Range>& range) {
  return make_object(life,
                     {{L"_Default",
                       0,
                       kGet,
                       {L"RowIndex", L"ColumnIndex"},
                       [=](const Call& call) {
                         call.require_missing(1);
                         call.give(range_object(call.life, both(range, &Range::Item, call.text(0))));
                       }},
                      {L"Cells",
                       238,
                       kGet,
                       {},
                       [=](const Call& call) { call.give(range_object(call.life, both(range, &Range::Cells))); }},
                      {L"Copy",
                       551,
                       kMethod,
                       {L"Destination"},
                       [=](const Call& call) {
                         call.require_missing(0);
                         both(range, &Range::Copy);
                       }},
                      {L"NumberFormat",
                       193,
                       kPut,
                       {L""},
                       [=](const Call& call) { both(range, &Range::SetNumberFormat, call.text(0)); }},
                      {L"HorizontalAlignment",
                       136,
                       kPut,
                       {L""},
                       [=](const Call& call) {
                         both(range, &Range::SetHorizontalAlignment, static_cast<std::int32_t>(call.number(0)));
                       }},
                      {L"Select", 235, kMethod, {}, [=](const Call&) { both(range, &Range::Select); }},
                      {L"Value",
                       6,
                       kGet,
                       {L"RangeValueDataType"},
                       [=](const Call& call) {
                         call.require_missing(0);
                         range.noted->Value();
                         call.give(range.done->Value());
                       }},
                      {L"Font",
                       146,
                       kGet,
                       {},
                       [=](const Call& call) { call.give(font_object(call.life, both(range, &Range::GetFont))); }},
                      {L"AutoFilter",
                       793,
                       kMethod,
                       {L"Field", L"Criteria1", L"Operator", L"Criteria2", L"VisibleDropDown"},
                       [=](const Call& call) {
                         call.require_missing(0);
                         both(range, &Range::AutoFilter);
                       }}});
}

IDispatch* sheet_object(ProgramLife& life, const Twin<Worksheet>& sheet) {
  return make_object(
      life, {{L"Name", 110, kPut, {L""}, [=](const Call& call) { both(sheet, &Worksheet::SetName, call.text(0)); }},
             {L"Cells",
              238,
              kGet,
              {},
              [=](const Call& call) { call.give(range_object(call.life, both(sheet, &Worksheet::Cells))); }},
             {L"Columns",
              241,
              kGet,
              {},
              [=](const Call& call) { call.give(range_object(call.life, both(sheet, &Worksheet::Columns))); }},
             {L"Range",
              197,
              kGet,
              {L"Cell1", L"Cell2"},
              [=](const Call& call) {
                call.require_missing(1);
                call.give(range_object(call.life, both(sheet, &Worksheet::GetRange, call.text(0))));
              }},
             {L"Paste", 211, kMethod, {L"Destination", L"Link"}, [=](const Call& call) {
                call.require_missing(0);
                both(sheet, &Worksheet::Paste);
              }}});
}

IDispatch* sheets_object(ProgramLife& life, const Twin<Sheets>& sheets) {
  return make_object(life, {{L"Add", 181, kMethod, {L"Before", L"After", L"Count", L"Type"}, [=](const Call& call) {
                               call.require_missing(0);
                               both(sheets, &Sheets::Add);
                             }}});
}

IDispatch* workbook_object(ProgramLife& life, const Twin<Workbook>& workbook) {
  return make_object(
      life, {{L"ActiveSheet",
              307,
              kGet,
              {},
              [=](const Call& call) { call.give(sheet_object(call.life, both(workbook, &Workbook::ActiveSheet))); }},
             {L"Sheets",
              485,
              kGet,
              {},
              [=](const Call& call) { call.give(sheets_object(call.life, both(workbook, &Workbook::GetSheets))); }},
             {L"SaveAs",
              284,
              kMethod,
              {L"Filename", L"FileFormat", L"Password", L"WriteResPassword", L"ReadOnlyRecommended", L"CreateBackup",
               L"AccessMode", L"ConflictResolution", L"AddToMru", L"TextCodepage", L"TextVisualLayout"},
              [=](const Call& call) {
                call.require_missing(1, 6);
                call.require_missing(7);
                both(workbook, &Workbook::SaveAs, call.text(0), static_cast<std::int32_t>(call.number(6)));
              }},
             {L"Close", 277, kMethod, {L"SaveChanges", L"Filename", L"RouteWorkbook"}, [=](const Call& call) {
                call.require_missing(0);
                both(workbook, &Workbook::Close);
              }}});
}

IDispatch* workbooks_object(ProgramLife& life, const Twin<Workbooks>& workbooks) {
  return make_object(life, {{L"Open",
                             682,
                             kMethod,
                             {L"Filename", L"UpdateLinks", L"ReadOnly", L"Format", L"Password", L"WriteResPassword",
                              L"IgnoreReadOnlyRecommended", L"Origin", L"Delimiter", L"Editable", L"Notify",
                              L"Converter", L"AddToMru"},
                             [=](const Call& call) {
                               call.require_missing(1);
                               both(workbooks, &Workbooks::Open, call.text(0));
                             }},
                            {L"Close", 277, kMethod, {}, [=](const Call&) { both(workbooks, &Workbooks::Close); }}});
}

}  // namespace

IDispatch* application_object(ProgramLife& life, Twin<Application> application) {
  return make_object(life,
                     {{L"DisplayAlerts",
                       343,
                       kPut,
                       {L""},
                       [=](const Call& call) { both(application, &Application::SetDisplayAlerts, call.flag(0)); }},
                      {L"Workbooks",
                       572,
                       kGet,
                       {},
                       [=](const Call& call) {
                         call.give(workbooks_object(call.life, both(application, &Application::GetWorkbooks)));
                       }},
                      {L"ActiveWorkbook",
                       308,
                       kGet,
                       {},
                       [=](const Call& call) {
                         call.give(workbook_object(call.life, both(application, &Application::ActiveWorkbook)));
                       }},
                      {L"Quit", 302, kMethod, {}, [=](const Call& call) {
                         both(application, &Application::Quit);
                         call.life.quit();
                       }}});
}

}  // namespace trvtrout::tests
