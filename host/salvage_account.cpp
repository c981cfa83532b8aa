#include "host/salvage_account.h"

#include <algorithm>
#include <array>
#include <iostream>

#include "platform/console/printable.h"
#include "platform/files/file_handle.h"
#include "services/guard.h"
#include "text/utf8.h"
#include "vtrfile/lists.h"
#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

using vtrfile::FileRange;
using vtrfile::kSection;
using vtrfile::Salvaged;
using vtrfile::SalvagedSection;
using vtrfile::SalvageLoss;

// "Schema/Tables/Items[3]/Fields/Items" without its numbers.
std::string without_numbers(const std::string& path) {
  std::string plain;
  bool number = false;
  for (const char c : path) {
    number = number || c == '[';
    if (!number) plain += c;
    if (c == ']') number = false;
  }
  return plain;
}

// The list of an account that has this path; empty when none has.
std::string_view key_of(const std::string& section, const std::string& path) {
  struct Known {
    const char* path;
    const char* key;
  };
  static constexpr std::array kKnown = {Known{"Schema/Tables/Items", "tables"},
                                        Known{"Schema/Tables/Items/Fields/Items", "fields"},
                                        Known{"Schema/Lookups/Items", "lookups"},
                                        Known{"Relation/Relations/Items", "relations"},
                                        Known{"Hidden/Tables/Items", "hiddenTables"},
                                        Known{"Hidden/Tables/Items/Fields/Items", "hiddenFields"},
                                        Known{"Hidden/Lookups/Items", "hiddenLookups"},
                                        Known{"TarvelDefinitionHeader/Items", "definitions"},
                                        Known{"TarvelDefinitionHeader/Items/Nodes", "nodes"}};
  const std::string plain = without_numbers(path);
  const auto known = std::ranges::find(kKnown, std::string_view(plain), &Known::path);
  if (known != kKnown.end()) return known->key;
  const auto lists = vtrfile::document_lists();
  const auto list = std::ranges::find(lists, std::string_view(section), &vtrfile::DocumentList::section);
  return list != lists.end() && plain == section + "/Items" ? list->key : std::string_view();
}

std::string shown(const std::string& key, Locale& locale) {
  return key.empty() ? std::string("?") : '"' + platform::printable_line(locale.Decode(key)) + '"';
}

std::string range_text(const FileRange& range) {
  return "bytes " + std::to_string(range.begin) + " to " + std::to_string(range.end);
}

std::string outcome(const SalvagedSection& section) {
  const bool whole = section.whole && section.losses.empty();
  std::string text = whole ? "whole" : section.lists.empty() ? "partly read" : "items are missing";
  if (section.behind_damage) text += ", found behind damage at byte " + std::to_string(section.bytes.begin);
  if (section.tag_struck) text += ", its tag is damaged";
  if (!section.chosen) text += "; not in the new file, another one of the name is better or stands behind it";
  return text;
}

void print(std::ostream& out, const SalvagedSection& section, Locale& locale) {
  if (section.whole && section.losses.empty() && !section.behind_damage && section.chosen && !section.tag_struck)
    return;
  out << section.tag << ": " << outcome(section) << '\n';
  for (const vtrfile::SalvagedList& list : section.lists) {
    out << "  " << list.path << ": " << list.kept << " of " << (list.announced ? std::to_string(*list.announced) : "?")
        << " items\n";
  }
  for (const SalvageLoss& loss : section.losses) {
    if (loss.bytes.size() == 0) continue;
    out << "  missing in " << loss.list << ": " << range_text(loss.bytes);
    if (!loss.before.empty() || !loss.behind.empty()) {
      out << ", between " << shown(loss.before, locale) << " and " << shown(loss.behind, locale);
    }
    out << '\n';
  }
}

Json ranges_json(const std::vector<FileRange>& ranges) {
  Json all = Json::array();
  for (const FileRange& range : ranges) all.push_back({{"begin", range.begin}, {"end", range.end}});
  return all;
}

Json section_json(const SalvagedSection& section, Locale& locale) {
  const auto text = [&](const std::string& key) { return text::to_utf8(locale.Decode(key)); };
  Json lists = Json::array(), missing = Json::array();
  for (const vtrfile::SalvagedList& list : section.lists) {
    lists.push_back(
        {{"path", list.path}, {"kept", list.kept}, {"announced", list.announced ? Json(*list.announced) : Json()}});
  }
  for (const SalvageLoss& loss : section.losses) {
    missing.push_back({{"path", loss.list},
                       {"begin", loss.bytes.begin},
                       {"end", loss.bytes.end},
                       {"before", text(loss.before)},
                       {"behind", text(loss.behind)}});
  }
  return {{"tag", section.tag},
          {"begin", section.bytes.begin},
          {"end", section.bytes.end},
          {"whole", section.whole && section.losses.empty()},
          {"behindDamage", section.behind_damage},
          {"tagDamaged", section.tag_struck},
          {"inNewFile", section.chosen},
          {"lists", lists},
          {"missing", missing}};
}

}  // namespace

std::vector<std::string> write_unexplained(const std::string& file, const std::string& folder,
                                           const Salvaged& salvaged) {
  constexpr std::size_t kBlock = 65536;
  const platform::FileHandle source(file, "read", platform::Access::kRead, platform::Creation::kNever);
  const std::string name = folder + '/' + file.substr(file.find_last_of('/') + 1);
  std::vector<std::string> paths;
  std::string block;
  for (const FileRange& range : salvaged.unexplained) {
    paths.push_back(name + '.' + std::to_string(range.begin) + '-' + std::to_string(range.end));
    platform::FileHandle piece(paths.back(), "write", platform::Access::kWrite, platform::Creation::kOnlyNew);
    for (std::uint64_t at = range.begin; at < range.end; at += block.size()) {
      block.assign(static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, range.end - at)), '\0');
      guarded(
          [&] {
            return source.seek(at), source.read({reinterpret_cast<unsigned char*>(block.data()), block.size()});
          },
          [](const Failure&) { return std::size_t{0}; });
      if (const int error = piece.write(block); error != 0) piece.raise(error);
    }
    if (const int error = piece.close(); error != 0) piece.raise(error);
  }
  return paths;
}

std::string percent(std::uint64_t part, std::uint64_t whole) {
  const double tenths = whole == 0 ? 0 : static_cast<double>(part) * 1000.0 / static_cast<double>(whole);
  const auto full = static_cast<std::uint64_t>(tenths);
  return std::to_string(full / 10) + '.' + std::to_string(full % 10) + '%';
}

std::string share_text(const Salvaged& salvaged) {
  return std::to_string(salvaged.explained()) + " of " + std::to_string(salvaged.bytes) + " bytes are explained (" +
         percent(salvaged.explained(), salvaged.bytes) + ")";
}

void enter_losses(RecoveryAccount& account, const Salvaged& salvaged) {
  for (const SalvagedSection& section : salvaged.sections) {
    const auto part = std::ranges::find(account.parts, std::string_view(section.tag), &KeptPart::name);
    if (!section.chosen || part == account.parts.end()) continue;
    for (const vtrfile::SalvagedList& lost : section.lists) {
      const std::string_view key = key_of(section.tag, lost.path);
      for (KeptList& list : part->lists) {
        if (key != list.key || !lost.announced || *lost.announced <= lost.kept) continue;
        list.announced = list.announced.value_or(0) + (*lost.announced - lost.kept);
      }
    }
  }
}

void print_salvage(std::ostream& out, const Salvaged& salvaged, Locale& locale) {
  if (salvaged.version_guessed) {
    out << "the header doesn't tell the format version; the sections fit that of " << salvaged.version << '\n';
  }
  for (const SalvagedSection& section : salvaged.sections) print(out, section, locale);
  if (!salvaged.end_found) out << "the tag at the end of the file is missing\n";
  for (const FileRange& range : salvaged.unreadable) out << "can't be read: " << range_text(range) << '\n';
  out << share_text(salvaged) << '\n';
  for (const FileRange& range : salvaged.unexplained) out << "unexplained: " << range_text(range) << '\n';
}

Json salvage_json(const Salvaged& salvaged, Locale& locale) {
  Json sections = Json::array();
  for (const SalvagedSection& section : salvaged.sections) sections.push_back(section_json(section, locale));
  return {{"version", salvaged.version},
          {"versionGuessed", salvaged.version_guessed},
          {"headerWhole", salvaged.header_whole},
          {"endFound", salvaged.end_found},
          {"bytes", salvaged.bytes},
          {"bytesExplained", salvaged.explained()},
          {"unexplained", ranges_json(salvaged.unexplained)},
          {"unreadable", ranges_json(salvaged.unreadable)},
          {"sections", sections}};
}

}  // namespace trvtrout::host
