#include <array>

#include "embed/arguments.h"
#include "embed/call.h"
#include "vtrfile/document.h"
#include "vtrfile/lists.h"

// The calls that tell what the document last read holds.
using namespace trvtrout;
using namespace trvtrout::embed;

namespace {

using Utility = TarvelVtrOut_InOut;

std::string product_text(Document& at, std::size_t which) {
  std::array<std::u16string, 5> texts;
  at.utility.GetProdInfo(texts[0], texts[1], texts[2], texts[3], texts[4]);
  return valid_text(texts.at(which));
}

std::string data_send_text(Document& at, bool version) {
  std::int32_t count = 0, size = 0;
  std::u16string file, file_version;
  at.utility.GetDsmInfo(count, file, file_version, size);
  return valid_text(version ? file_version : file);
}

std::string text_at(Document& at, std::int32_t which) {
  const auto& damage = at.utility.LastDamage();
  switch (which) {
    case TRVTROUT_TEXT_CODE:
    case TRVTROUT_TEXT_DESCRIPTION:
    case TRVTROUT_TEXT_SERIAL:
    case TRVTROUT_TEXT_VERSION:
    case TRVTROUT_TEXT_DATABASE:
      return product_text(at, static_cast<std::size_t>(which - TRVTROUT_TEXT_CODE));
    case TRVTROUT_TEXT_DATA_SEND_FILE:
    case TRVTROUT_TEXT_DATA_SEND_VERSION:
      return data_send_text(at, which == TRVTROUT_TEXT_DATA_SEND_VERSION);
    case TRVTROUT_TEXT_FORMAT_VERSION:
      return valid_text(at.locale.Decode(at.utility.CurrentSlots().Header->Version.bytes()));
    case TRVTROUT_TEXT_STRUCTURE_LIST:
      return at.structure_list;
    case TRVTROUT_TEXT_DAMAGE_PATH:
      return damage ? damage->path() : std::string();
    case TRVTROUT_TEXT_DAMAGE_FOUND:
      return damage ? text::valid_utf8(damage->found()) : std::string();
    default:
      throw Refusal(TRVTROUT_INVALID_ARGUMENT, "text " + std::to_string(which) + " is none");
  }
}

trvtrout_list_info info_of(Document& at, std::int32_t number) {
  const auto lists = vtrfile::document_lists();
  if (number < 0 || static_cast<std::size_t>(number) >= lists.size()) {
    throw Refusal(TRVTROUT_INVALID_ARGUMENT, "list " + std::to_string(number) + " is none");
  }
  const vtrfile::DocumentList& list = vtrfile::list_of(static_cast<vtrfile::ListId>(number));
  const vtrfile::ListInfo info = list.recount(at.utility.CurrentSlots());
  return {.struct_size = 0,
          .holds = info.ok,
          .count = info.count.value_or(0),
          .current = info.current.value_or(0),
          .max = info.max.value_or(0),
          .size = info.size,
          .name = list.key};
}

}  // namespace

extern "C" {

trvtrout_result trvtrout_get_text(trvtrout_document* document, int32_t which, char** text, size_t* length) {
  return call(document, [=](Document& at) {
    place(text, "text") = nullptr;
    const std::string found = text_at(at, which);
    *text = handed_out(found);
    if (length) *length = found.size();
    return TRVTROUT_OK;
  });
}

trvtrout_result trvtrout_get_list(trvtrout_document* document, int32_t list, trvtrout_list_info* info) {
  return call(document, [=](Document& at) {
    give(info, info_of(at, list), "info");
    return TRVTROUT_OK;
  });
}

trvtrout_result trvtrout_get_modified(trvtrout_document* document, double* modified) {
  return call(document, [=](Document& at) {
    std::int32_t size = 0;
    const bool is_date = at.utility.GetHedInfo(place(modified, "modified"), size) == u"OK";
    if (!is_date) throw Refusal(TRVTROUT_FAILED, "the header doesn't say when the document was modified");
    return TRVTROUT_OK;
  });
}

}  // extern "C"
