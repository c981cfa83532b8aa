#include "host/terminal/value_lines.h"

#include <algorithm>

#include "host/terminal/sequence.h"
#include "host/terminal/value_text.h"
#include "vtrfile/item_keys.h"
#include "vtrfile/variant.h"

namespace trvtrout::host {
namespace {

using vtrfile::Kind;
using vtrfile::Value;

class Lines {
 public:
  Lines(Locale& locale, const std::function<void(const std::string&)>& tell) : locale_(locale), tell_(tell) {}

  void value(const std::string& path, Value value) const {
    switch (value.kind()) {
      case Kind::kRecord:
        for (const vtrfile::MemberType& member : value.type().members) {
          this->value(below(path, member.name == kItems ? "" : member.name), value.member(member));
        }
        break;
      case Kind::kArray:
        list(path, value);
        break;
      case Kind::kRun:
        for (std::uint32_t place = 0; place < value.elements(); ++place) {
          this->value(path + '[' + std::to_string(place + 1) + ']', value.element(place));
        }
        break;
      case Kind::kText:
        text(path, value.text().bytes());
        break;
      case Kind::kBytes:
        bytes(path, value);
        break;
      case Kind::kVariant:
        if (!value.variant().empty()) variant(path, value_of(value.variant()));
        break;
      case Kind::kVariantRun:
        slots(path, value);
        break;
      default:
        if (!is_empty(value)) tell_(path + ": " + value_text(locale_, value));
    }
  }

 private:
  static constexpr std::string_view kItems = "Items";

  static std::string below(const std::string& path, const std::string& name) {
    return path.empty() || name.empty() ? path + name : path + '/' + name;
  }

  void list(const std::string& path, Value list) const {
    if (!list.array().allocated()) return;
    tell_(path + ": " + value_text(locale_, list));
    for (std::uint32_t place = 0; place < list.elements(); ++place) {
      const Value item = list.element(place);
      if (is_empty(item)) continue;
      const std::string key = vtrfile::key_text(item);
      const std::string at = below(path, key.empty() ? "-" : shown(locale_, key));
      if (key.empty()) tell_(at);
      value(at, item);
    }
  }

  // An end of a line that isn't CR LF is shown; so texts that differ have other lines.
  void text(const std::string& path, std::string_view bytes) const {
    const auto lines = lines_of(bytes);
    if (lines.size() < 2) {
      if (!bytes.empty()) tell_(path + ": \"" + shown(locale_, bytes) + '"');
      return;
    }
    tell_(path + ':');
    for (const std::string_view line : lines) {
      const char* const behind = line.data() + line.size();
      const std::string_view rest(behind, static_cast<std::size_t>(bytes.data() + bytes.size() - behind));
      const bool is_usual = rest.empty() || rest.starts_with("\r\n");
      tell_("  | " + shown(locale_, line) + (is_usual ? "" : shown(locale_, rest.substr(0, 1))));
    }
    if (bytes.ends_with('\r') || bytes.ends_with('\n')) tell_("  | ");
  }

  void bytes(const std::string& path, Value value) const {
    constexpr std::size_t kOfLine = 32;
    if (!value.array().allocated()) return;
    tell_(path + ": " + value_text(locale_, value));
    const auto all = value.bytes();
    for (std::size_t at = 0; at < all.size(); at += kOfLine) {
      tell_("  | " + hex(all.subspan(at, std::min(kOfLine, all.size() - at))));
    }
  }

  void slots(const std::string& path, Value run) const {
    std::size_t number = 0;
    for (const vtrfile::Var slot : slots_of(run)) {
      ++number;
      if (!slot.empty()) variant(path + '[' + std::to_string(number) + ']', value_of(slot));
    }
  }

  // With its type where the value alone doesn't tell it.
  void variant(const std::string& path, const vtrfile::VariantValue& value) const {
    const std::string type = " (type " + std::to_string(value.tag) + ')';
    if (value.tag == vtrfile::kVariantText)
      return tell_(path + ": \"" + shown(locale_, vtrfile::Text(value.body).bytes()) + '"');
    if (value.tag < vtrfile::kVariantArray) return tell_(path + ": " + value_text(locale_, value) + type);
    if (vtrfile::load<std::uint16_t>(value.body) == 0) return tell_(path + ": none" + type);
    const auto lower = vtrfile::load<std::int32_t>(value.body + 6);
    tell_(path + ": " + std::to_string(element_count(value)) + " values from " + std::to_string(lower) + " on" + type);
    std::size_t number = 0;
    for_each_element(value, [&](const vtrfile::VariantValue& element) {
      ++number;
      if (element.tag != vtrfile::kVariantEmpty) variant(path + '[' + std::to_string(number) + ']', element);
    });
  }

  Locale& locale_;
  const std::function<void(const std::string&)>& tell_;
};

}  // namespace

void for_each_line(Locale& locale, Value value, const std::function<void(const std::string&)>& tell,
                   const std::string& path) {
  Lines(locale, tell).value(path, value);
}

}  // namespace trvtrout::host
