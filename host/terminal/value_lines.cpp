#include "host/terminal/value_lines.h"

#include "host/terminal/sequence.h"
#include "host/terminal/value_text.h"
#include "vtrfile/item_keys.h"

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

  void text(const std::string& path, std::string_view bytes) const {
    const auto lines = lines_of(bytes);
    if (lines.size() < 2) {
      if (!bytes.empty()) tell_(path + ": \"" + shown(locale_, bytes) + '"');
      return;
    }
    tell_(path + ':');
    for (const std::string_view line : lines) tell_("  | " + shown(locale_, line));
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
