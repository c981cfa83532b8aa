#include "vtrfile/damage_text.h"

namespace trvtrout::vtrfile {

std::string damage_text(const ReadError& damage) {
  std::string text = "damaged: reading stopped at byte " + std::to_string(damage.offset()) + ", " + damage.path() +
                     ": " + damage.found();
  if (damage.may_begin_at() != damage.offset()) {
    text += "; the damage may begin earlier, from byte " + std::to_string(damage.may_begin_at()) + " on";
  }
  return text;
}

std::string gap_text(const Gap& gap) {
  return "damaged: " + std::to_string(gap.end - gap.begin) + " bytes from byte " + std::to_string(gap.begin) +
         " on were skipped: " + gap.found + "; the damage may begin earlier, and a section may be missing";
}

}  // namespace trvtrout::vtrfile
