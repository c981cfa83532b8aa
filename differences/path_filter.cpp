#include "differences/path_filter.h"

#include <algorithm>
#include <map>
#include <span>
#include <stdexcept>

#include "vtrfile/value_types.h"

namespace trvtrout::differences {
namespace {

using Steps = std::vector<std::string>;

constexpr std::string_view kAnySteps = "**";

Steps steps_of(std::string_view path) {
  Steps steps;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string_view step = path.substr(0, end);
    if (!step.empty() && (step != kAnySteps || steps.empty() || steps.back() != kAnySteps)) steps.emplace_back(step);
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return steps;
}

// Takes time in proportion to the product of both lengths at most.
bool matches(std::string_view pattern, std::string_view step) {
  std::size_t at = 0, in = 0, star = std::string_view::npos, star_in = 0;
  while (in < step.size()) {
    if (at < pattern.size() && pattern[at] == '*') {
      star = at++;
      star_in = in;
    } else if (at < pattern.size() && (pattern[at] == '?' || pattern[at] == step[in])) {
      ++at;
      ++in;
    } else if (star != std::string_view::npos) {
      at = star + 1;
      in = ++star_in;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

// A list's name stands for all of its items.
bool step_matches(std::string_view pattern, std::string_view step) {
  return matches(pattern, step) ||
         (pattern.find('[') == std::string_view::npos && matches(pattern, step.substr(0, step.find('['))));
}

enum class Match {
  kNone,
  kContains,  // the pattern is about something below the path
  kFull,      // about the path, or something above it
};

Match match(std::span<const std::string> pattern, std::span<const std::string> path) {
  if (pattern.empty()) return Match::kFull;
  if (path.empty()) {
    return std::ranges::all_of(pattern, [](const auto& step) { return step == kAnySteps; }) ? Match::kFull
                                                                                            : Match::kContains;
  }
  if (pattern.front() == kAnySteps) {
    return std::max(match(pattern.subspan(1), path), match(pattern, path.subspan(1)));
  }
  return step_matches(pattern.front(), path.front()) ? match(pattern.subspan(1), path.subspan(1)) : Match::kNone;
}

// Numbers in brackets are left out: "Items[3]" and "Items[*]" become "Items[]".
std::string without_numbers(const std::string& step) {
  const std::size_t open = step.find('[');
  return open == std::string::npos ? step : step.substr(0, open) + "[]";
}

// Whether one of the paths that values within `type` can have is one that the pattern is about.
bool is_possible(const Steps& pattern, const vtrfile::ValueType& type, Steps& path) {
  const vtrfile::ValueType& inner = type.element ? *type.element : type;
  if (type.element) path.back() += "[]";
  if (inner.kind != vtrfile::Kind::kRecord) return match(pattern, path) == Match::kFull;
  return std::ranges::any_of(inner.members, [&](const vtrfile::MemberType& member) {
    path.emplace_back(member.name);
    const bool possible = is_possible(pattern, *member.type, path);
    path.pop_back();
    return possible;
  });
}

Steps without_numbers(const Steps& steps) {
  Steps numberless;
  std::ranges::transform(steps, std::back_inserter(numberless),
                         [](const std::string& step) { return without_numbers(step); });
  return numberless;
}

std::vector<Steps> checked(const std::vector<std::string>& patterns) {
  const vtrfile::DocumentSlots empty;
  std::vector<Steps> all;
  for (const std::string& pattern : patterns) {
    Steps steps = steps_of(pattern);
    const Steps numberless = without_numbers(steps);
    const bool known = !steps.empty() && std::ranges::any_of(vtrfile::sections_of(empty), [&](const auto& section) {
      Steps path{std::string(section.tag)};
      return is_possible(numberless, section.record.type(), path);
    });
    if (!known) {
      throw UnknownPath("no document has a path \"" + pattern +
                        "\"; paths look like Schema/Tables/Items[3]/Fields/Items[4]/Lenght, and Schema/Tables/**/Name "
                        "stands for many of them");
    }
    all.push_back(std::move(steps));
  }
  return all;
}

}  // namespace

PathFilter::PathFilter(const std::vector<std::string>& only, const std::vector<std::string>& ignore)
    : only_(checked(only)), ignore_(checked(ignore)) {}

bool PathFilter::chooses(const Difference& difference) const {
  if (only_.empty() && ignore_.empty()) return true;
  const bool in_old = difference.kind != Kind::kAdded;
  const Place& place = difference.place;
  const Steps path = steps_of(in_old ? old_path(place) : new_path(place));
  const vtrfile::ValueType& type = (in_old ? place.old_value : place.new_value).type();
  const auto contains = [&](const Pattern& pattern) {
    Steps above = without_numbers(path);
    if (type.element) above.back() = above.back().substr(0, above.back().find('['));
    return is_possible(without_numbers(pattern), type, above);
  };
  const auto is_full = [&](const Pattern& pattern) { return match(pattern, path) == Match::kFull; };
  const auto wanted = [&](const Pattern& pattern) {
    const Match found = match(pattern, path);
    return found == Match::kFull || (found == Match::kContains && contains(pattern));
  };
  return (only_.empty() || std::ranges::any_of(only_, wanted)) && std::ranges::none_of(ignore_, is_full);
}

std::vector<std::string> patterns_of_part(const std::string& part) {
  static const std::map<std::string, std::vector<std::string>> kPatterns = {
      {"product", {"Schema/Product", "IncludeFile", "Module"}},
      {"table", {"Schema/Tables"}},
      {"field", {"Schema/Tables/Items[*]/Fields"}},
      {"lookup", {"Schema/Lookups"}},
      {"tree", {"TreeHierarchy"}},
      {"ctrltag", {"ControlTag"}},
      {"lang", {"Language"}},
      {"dsend", {"TarvelDefinitionHeader"}},
  };
  return kPatterns.at(part);
}

}  // namespace trvtrout::differences
