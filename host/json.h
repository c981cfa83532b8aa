#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/console.h"
#include "vtrfile/part_read.h"
#include "vtrfile/read_error.h"

namespace trvtrout::host {

using Json = nlohmann::ordered_json;

inline Json damage_json(const vtrfile::ReadError& damage) {
  return {{"offset", damage.offset()},
          {"path", damage.path()},
          {"found", damage.found()},
          {"mayBeginAt", damage.may_begin_at()}};
}

inline Json gaps_json(const std::vector<vtrfile::Gap>& gaps) {
  Json all = Json::array();
  for (const vtrfile::Gap& gap : gaps) all.push_back({{"begin", gap.begin}, {"end", gap.end}, {"found", gap.found}});
  return all;
}

// To stdout, with the head of each form in front: which subcommand's it is, and its version. That of one file of many
// stands on one line. A file's name can hold bytes that are no UTF-8.
inline void show_json(const std::string& subcommand, const Json& content) {
  Json whole = {{"form", "vtrout-" + subcommand}, {"version", 1}};
  whole.update(content);
  out() << whole.dump(CaughtOutput::is_catching() ? -1 : 2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace trvtrout::host
