#include "component/parts.h"
#include "embed/arguments.h"
#include "embed/call.h"
#include "platform/files/path.h"

// The calls that write reports and move them into workbooks.
using namespace trvtrout;
using namespace trvtrout::embed;

namespace {

std::string utf8_path(const std::u16string& path) { return text::valid_utf8(platform::machine_path(path)); }

// Null for a number that is none.
const Part* part_at(std::int32_t part) {
  const auto parts = document_parts();
  return part < 0 || static_cast<std::size_t>(part) >= parts.size() ? nullptr : &parts[static_cast<std::size_t>(part)];
}

const Part& require_part(std::int32_t part) {
  if (const Part* const found = part_at(part)) return *found;
  throw Refusal(TRVTROUT_INVALID_ARGUMENT, "part " + std::to_string(part) + " is none");
}

// Writes a report with write(path of the report) and puts it in its place once it's whole.
template <class Write>
trvtrout_result report(Document& at, char** path, Write write) {
  place(path, "path") = nullptr;
  at.watch.require_going();
  std::u16string made;
  if (!write(made)) return failure_of(at);
  at.reports.place(true);
  *path = handed_out(utf8_path(made));
  return TRVTROUT_OK;
}

trvtrout_result outcome(Document& at, Boolean done) { return done ? trvtrout_result{TRVTROUT_OK} : failure_of(at); }

}  // namespace

extern "C" {

const char* trvtrout_part_name(int32_t part) {
  const Part* const found = part_at(part);
  return found ? found->name : nullptr;
}

trvtrout_result trvtrout_report(trvtrout_document* document, int32_t part, const char* source, int32_t temporary,
                                char** path) {
  return call(document, [=](Document& at) {
    return report(at, path, [&](std::u16string& made) {
      std::u16string name = path_of(source, "source");
      Boolean is_temp = temporary == 0 ? False : True;
      return (at.utility.*require_part(part).report)(name, made, is_temp);
    });
  });
}

trvtrout_result trvtrout_compare(trvtrout_document* document, int32_t part, const char* primary, const char* secondary,
                                 char** path) {
  return call(document, [=](Document& at) {
    return report(at, path, [&](std::u16string& made) {
      std::u16string first = path_of(primary, "primary"), second = path_of(secondary, "secondary");
      return (at.utility.*require_part(part).compare)(first, second, made);
    });
  });
}

trvtrout_result trvtrout_get_comparison_counts(trvtrout_document* document, trvtrout_comparison_counts* counts) {
  return call(document, [=](Document& at) {
    const ComparisonCounts& found = at.utility.LastCounts();
    give(counts, {0, 0, found.unchanged, found.changed, found.deleted, found.added}, "counts");
    return TRVTROUT_OK;
  });
}

trvtrout_result trvtrout_output_name(trvtrout_document* document, const char* source, const char* kind, char** path,
                                     char** base_name) {
  return call(document, [=](Document& at) {
    place(path, "path") = nullptr;
    if (base_name) *base_name = nullptr;
    std::u16string base;
    const std::u16string made = at.utility.GetOutputFileName(path_of(source, "source"), text_of(kind, "kind"), base);
    if (at.declined) throw Refusal(TRVTROUT_DECLINED, "the existing file was left as it is");
    if (made.empty()) {
      throw Refusal(TRVTROUT_FAILED, "no name can be made: the kind is none, or the source's name has no full stop");
    }
    *path = handed_out(utf8_path(made));
    if (base_name) *base_name = handed_out(valid_text(base));
    return TRVTROUT_OK;
  });
}

trvtrout_result trvtrout_delete_report(trvtrout_document* document, const char* path) {
  return call(document, [=](Document& at) -> trvtrout_result {
    const trvtrout_result result = outcome(at, at.utility.Delete_ASCII(path_of(path, "path")));
    // The class itself looks whether there is one, and raises nothing for it.
    return result == TRVTROUT_FAILED ? TRVTROUT_NO_FILE : result;
  });
}

trvtrout_result trvtrout_workbook_report(trvtrout_document* document, const char* workbook, const char* report,
                                         const char* sheet) {
  return call(document, [=](Document& at) {
    return outcome(at, at.utility.XL_Output_Statistics(path_of(workbook, "workbook"), path_of(report, "report"),
                                                       text_of(sheet, "sheet")));
  });
}

trvtrout_result trvtrout_workbook_comparison(trvtrout_document* document, const char* workbook, const char* report,
                                             const char* sheet, trvtrout_document* primary,
                                             trvtrout_document* secondary, int32_t color) {
  return call(document, [=](Document& at) {
    const auto move = [&](TarvelVtrOut_InOut* first, TarvelVtrOut_InOut* second) {
      return outcome(at,
                     at.utility.XL_Output_Compared(path_of(workbook, "workbook"), path_of(report, "report"),
                                                   text_of(sheet, "sheet"), first, second, color == 0 ? False : True));
    };
    if (color == 0) return move(nullptr, nullptr);
    SecondDocument first(primary, at);
    if (secondary == primary) return move(&first->utility, &first->utility);
    SecondDocument second(secondary, at);
    return move(&first->utility, &second->utility);
  });
}

}  // extern "C"
