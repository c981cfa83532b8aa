#include "component/document_kind.h"
#include "embed/arguments.h"
#include "embed/call.h"
#include "platform/files/path.h"
#include "vtrfile/damage_text.h"

// The calls that read a file, and tell what its reading met.
using namespace trvtrout;
using namespace trvtrout::embed;

namespace {

Boolean is_secondary(std::int32_t role) {
  if (role == TRVTROUT_PRIMARY) return False;
  if (role == TRVTROUT_SECONDARY) return True;
  throw Refusal(TRVTROUT_INVALID_ARGUMENT, "role " + std::to_string(role) + " is none; give 0 or 1");
}

trvtrout_result read(Document& at, std::u16string path, Boolean secondary) {
  const std::string name = platform::machine_path(path);
  at.watch.require_going();
  if (!begins_as_document(at.services().files, path)) {
    throw Refusal(TRVTROUT_NOT_A_DOCUMENT, name + ": " + trvtrout_result_text(TRVTROUT_NOT_A_DOCUMENT));
  }
  std::u16string list;
  const Boolean whole = at.utility.ReadVTR(path, list, secondary);
  if (at.watch.stopped()) throw Stopped();
  const auto& damage = at.utility.LastDamage();
  const auto& gaps = at.utility.LastRead().gaps;
  if (!whole && !damage && !list.empty()) return failure_of(at);
  at.source = name;
  at.structure_list = valid_text(list);
  at.damaged = !whole || !gaps.empty();
  if (!whole && !damage) throw Refusal(TRVTROUT_UNSUPPORTED, name + ": " + at.utility.LastFailure());
  if (!at.damaged) return TRVTROUT_OK;
  at.message = name + ": " + (damage ? vtrfile::damage_text(*damage) : vtrfile::gap_text(gaps.front()));
  return TRVTROUT_DAMAGED;
}

trvtrout_result salvage(Document& at, std::u16string path, Boolean secondary) {
  const std::string name = platform::machine_path(path);
  if (!at.utility.SalvageVTR(path, secondary)) {
    const trvtrout_result result = failure_of(at);
    at.message = name + ": " + at.message;
    return result == TRVTROUT_FAILED ? TRVTROUT_NOT_A_DOCUMENT : result;
  }
  at.source = name;
  at.structure_list.clear();
  at.damaged = false;
  const vtrfile::Salvaged& salvaged = *at.utility.LastSalvage();
  at.message = name + ": " + std::to_string(salvaged.explained()) + " of " + std::to_string(salvaged.bytes) +
               " bytes are explained";
  return TRVTROUT_OK;
}

trvtrout_damage damage_of(const TarvelVtrOut_InOut& utility) {
  trvtrout_damage told{};
  const auto& gaps = utility.LastRead().gaps;
  told.gaps = gaps.size();
  if (const auto& damage = utility.LastDamage()) {
    told.broken_off = 1;
    told.offset = damage->offset();
    told.may_begin_at = damage->may_begin_at();
  } else if (!gaps.empty()) {
    told.offset = told.may_begin_at = gaps.front().begin;
  }
  return told;
}

trvtrout_salvaged salvaged_of(const TarvelVtrOut_InOut& utility) {
  trvtrout_salvaged told{};
  const auto& salvaged = utility.LastSalvage();
  if (!salvaged) return told;
  told.version_guessed = salvaged->version_guessed;
  told.header_whole = salvaged->header_whole;
  told.end_found = salvaged->end_found;
  told.bytes = salvaged->bytes;
  told.bytes_explained = salvaged->explained();
  for (const vtrfile::SalvagedSection& section : salvaged->sections) {
    if (!section.chosen) continue;
    ++told.sections;
    if (section.whole && section.losses.empty()) ++told.sections_whole;
  }
  return told;
}

}  // namespace

extern "C" {

trvtrout_result trvtrout_read(trvtrout_document* document, const char* path, int32_t role) {
  return call(document, [=](Document& at) { return read(at, path_of(path, "path"), is_secondary(role)); });
}

trvtrout_result trvtrout_salvage(trvtrout_document* document, const char* path, int32_t role) {
  return call(document, [=](Document& at) { return salvage(at, path_of(path, "path"), is_secondary(role)); });
}

trvtrout_result trvtrout_get_damage(trvtrout_document* document, trvtrout_damage* damage) {
  return call(document, [=](Document& at) {
    give(damage, damage_of(at.utility), "damage");
    return TRVTROUT_OK;
  });
}

trvtrout_result trvtrout_get_salvaged(trvtrout_document* document, trvtrout_salvaged* salvaged) {
  return call(document, [=](Document& at) {
    give(salvaged, salvaged_of(at.utility), "salvaged");
    return TRVTROUT_OK;
  });
}

}  // extern "C"
