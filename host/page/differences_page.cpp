#include "host/page/differences_page.h"

#include <span>

#include "host/json.h"
#include "host/page/escaping_buffer.h"
#include "host/page/page_parts.h"
#include "platform/files/file_handle.h"
#include "platform/files/sha256.h"
#include "reports/columns.h"
#include "vtrfile/item_keys.h"
#include "vtrfile/sections.h"
#include "vtrfile/value_types.h"

namespace trvtrout::host {
namespace {

// A text for each, in the last columns of the report.
constexpr std::size_t kLanguages = decltype(vtrfile::LANGUAGE_ITEM_STRUCT::Texts){}.size();

// Texts of the command and the names of files, for HTML outside the scripts.
std::string as_html(std::string_view text) {
  std::string all;
  for (const char character : text) {
    switch (character) {
      case '<':
        all += "&lt;";
        break;
      case '>':
        all += "&gt;";
        break;
      case '&':
        all += "&amp;";
        break;
      case '"':
        all += "&quot;";
        break;
      default:
        all += character;
    }
  }
  return all;
}

// "2026-11-23T14:29:36Z".
std::string moment(std::chrono::sys_seconds time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  std::array<char, 32> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

Json sections() {
  Json all = Json::array();
  vtrfile::for_each_section([&](const auto& section) {
    all.push_back({{"tag", section.tag}, {"title", section.title}});
  });
  return all;
}

// Of each list within a value whether its items have keys, by its path without the places of items.
void add_lists(const std::string& path, const vtrfile::ValueType& type, Json& lists) {
  for (const vtrfile::MemberType& member : type.members) add_lists(path + '/' + member.name, *member.type, lists);
  if (!type.element || type.kind == vtrfile::Kind::kVariantRun) return;
  if (type.kind == vtrfile::Kind::kArray) lists[path] = vtrfile::key_member(*type.element) != nullptr;
  add_lists(path, *type.element, lists);
}

Json lists() {
  Json all = Json::object();
  for (const auto& [tag, record] : vtrfile::sections_of({})) add_lists(std::string(tag), record.type(), all);
  return all;
}

// The names that the values of fixed runs have for users, by the path of the run without the places of items.
Json names_of_runs() {
  Json languages = Json::array();
  for (const auto& column : std::span(kLanguageColumns).last<kLanguages>()) {
    languages.push_back(column.head);
  }
  return {{std::string(vtrfile::kSection<&vtrfile::DocumentSlots::Language>.tag) + "/Items/Texts", languages}};
}

Json file_json(const PageFile& file) {
  return {
      {"name", file.name}, {"size", file.size}, {"sha256", file.sha256}, {"lastChanged", moment(file.last_changed)}};
}

// Calls write_json with a stream whose bytes can stand in a script element of the page.
void embed(std::ostream& page, const std::function<void(std::ostream&)>& write_json) {
  EscapingBuffer buffer(page);
  std::ostream json(&buffer);
  write_json(json);
  buffer.finish();
  if (!json) page.setstate(std::ios::badbit);
}

std::string title_of_page(const PageInfo& info) { return info.old_file.name + " → " + info.new_file.name; }

std::string info_json(const PageInfo& info) {
  Json all = {{"version", VTROUT_VERSION},
              {"compared", moment(info.compared)},
              {"old", file_json(info.old_file)},
              {"new", file_json(info.new_file)},
              {"only", info.only},
              {"ignored", info.ignored},
              {"sections", sections()},
              {"lists", lists()},
              {"runs", names_of_runs()}};
  // A file's name can hold bytes that are no UTF-8.
  return all.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string counts(const PageInfo& info) {
  std::string text;
  for (std::size_t kind = 0; kind < info.of_kind.size(); ++kind) {
    text += (kind == 0 ? "" : ", ") + std::to_string(info.of_kind[kind]) + ' ' + differences::kKindNames[kind];
  }
  return text;
}

// Nothing may be fetched; of scripts and styles those with these digests alone are used.
std::string policy() {
  const auto source = [](std::string_view text) { return "'sha256-" + platform::base64(platform::sha256(text)) + "'"; };
  return "default-src 'none'; script-src " + source(kPageScript) + "; style-src " + source(kPageStyle) +
         "; base-uri 'none'; form-action 'none'";
}

}  // namespace

PageFile page_file(const std::string& path) {
  const platform::FileHandle file(path, "read", platform::Access::kRead, platform::Creation::kNever);
  const struct stat status = file.status();
  const platform::Sha256 digest = platform::sha256([&](std::span<unsigned char> piece) { return file.read(piece); });
  return {path, static_cast<std::uint64_t>(status.st_size), platform::hex(digest),
          std::chrono::sys_seconds{std::chrono::seconds{status.st_mtim.tv_sec}}};
}

void write_differences_page(std::ostream& page, const PageInfo& info,
                            const std::function<void(std::ostream&)>& write_json) {
  const std::map<std::string_view, std::function<void()>> stand_ins{
      {"policy", [&] { page << policy(); }},
      {"title", [&] { page << as_html(title_of_page(info)); }},
      {"counts", [&] { page << counts(info); }},
      {"style", [&] { page << kPageStyle; }},
      {"info", [&] { embed(page, [&](std::ostream& json) { json << info_json(info); }); }},
      {"differences", [&] { embed(page, write_json); }},
      {"script", [&] { page << kPageScript; }},
  };
  std::string_view rest = kPageHtml;
  for (std::size_t begin; (begin = rest.find("{{")) != std::string_view::npos;) {
    const std::size_t end = rest.find("}}", begin);
    page << rest.substr(0, begin);
    stand_ins.at(rest.substr(begin + 2, end - begin - 2))();
    rest.remove_prefix(end + 2);
  }
  page << rest;
}

}  // namespace trvtrout::host
