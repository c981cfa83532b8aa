#include "platform/program/sheet_names.h"

#include <algorithm>

#include "spreadsheet/workbook_file.h"
#include "text/utf8.h"

namespace trvtrout::platform {

using namespace spreadsheet;

namespace {

constexpr std::size_t kMaxLength = 31;  // 16-bit units
constexpr std::u16string_view kForbidden = u":\\/?*[]";
constexpr std::string_view kReserved = "History";  // the program's own sheet of changes

bool is_control(char16_t unit) { return unit < u' '; }

}  // namespace

std::optional<std::size_t> sheet_named(std::string_view name, const std::vector<std::string>& names) {
  const auto is_same = [folded = without_case(name)](const std::string& other) {
    return folded == without_case(other);
  };
  const auto same = std::ranges::find_if(names, is_same);
  if (same == names.end()) return std::nullopt;
  return static_cast<std::size_t>(same - names.begin());
}

void require_sheet_name(const std::u16string& name, const std::vector<std::string>& others) {
  const std::string shown = text::to_utf8(name);
  const auto refuse = [&](const std::string& reason) {
    throw WorkbookError("no sheet can be named \"" + shown + "\": " + reason);
  };
  if (name.empty()) refuse("a name needs at least one character");
  if (name.size() > kMaxLength) refuse("a name has at most " + std::to_string(kMaxLength) + " characters");
  if (name.find_first_of(kForbidden) != name.npos || std::ranges::any_of(name, is_control)) {
    refuse("it can't contain any of : \\ / ? * [ ] or a control character");
  }
  if (name.front() == u'\'' || name.back() == u'\'') refuse("it can't begin or end with an apostrophe");
  if (without_case(shown) == without_case(kReserved)) refuse("the name is reserved");
  if (const auto same = sheet_named(shown, others))
    refuse("the workbook already has a sheet \"" + others[*same] + "\"; rename or remove it first");
}

}  // namespace trvtrout::platform
