#include "exchange/differences_json.h"

#include "exchange/json_values.h"
#include "text/utf8.h"

namespace trvtrout::exchange {
namespace {

using differences::Difference;
using differences::Kind;

class DifferencesWriter {
 public:
  DifferencesWriter(JsonWriter& json, Texts& texts) : json_(json), texts_(texts) {}

  void whole(const DifferencesHead& head, const DifferenceSource& of_header, const DifferenceSource& of_document) {
    json_.begin_object();
    member("form", "vtr-differences");
    number("version", 1);
    number("codePage", static_cast<std::size_t>(texts_.code_page()));
    file("old", head.old_file);
    file("new", head.new_file);
    json_.key("different");
    json_.boolean(head.counts.all() > 0);
    json_.key("counts");
    json_.begin_object();
    for (std::size_t kind = 0; kind < differences::kKinds; ++kind) {
      number(differences::kKindNames[kind], head.counts.of_kind[kind]);
    }
    json_.end_object();
    changes("header", of_header);
    changes("changes", of_document);
    json_.end_object();
    json_.end_line();
    json_.flush();
  }

 private:
  void member(const char* name, std::string_view text) {
    json_.key(name);
    json_.string(text);
  }
  void number(const char* name, std::size_t number) {
    json_.key(name);
    json_.number(static_cast<std::int64_t>(number));
  }
  // A file's name can hold bytes that are no UTF-8.
  void file(const char* name, const std::string& path) {
    json_.key(name);
    json_.begin_object();
    member("file", text::valid_utf8(path));
    json_.end_object();
  }
  void changes(const char* name, const DifferenceSource& source) {
    json_.key(name);
    json_.begin_array();
    source([this](const Difference& difference) { change(difference); });
    json_.end_array();
  }
  void value(const char* name, vtrfile::Value value) {
    json_.key(name);
    write_value(json_, texts_, value);
  }
  // A key is told for people to find the item; one that the code page can't say isn't told.
  void key(const differences::Place& place) {
    const std::string key = key_of(place);
    if (const auto text = texts_.to_utf8(key)) member("key", *text);
  }

  void change(const Difference& difference) {
    const differences::Place& place = difference.place;
    const bool in_old = difference.kind != Kind::kAdded, in_new = difference.kind != Kind::kRemoved;
    const bool has_values = difference.kind != Kind::kMoved;
    json_.begin_object();
    member("kind", differences::kKindNames[static_cast<std::size_t>(difference.kind)]);
    if (in_old) member("path", old_path(place));
    if (in_new) member("newPath", new_path(place));
    key(place);
    if (in_old && has_values) value("old", place.old_value);
    if (in_new && has_values) value("new", place.new_value);
    if (difference.unused()) {
      json_.key("unused");
      json_.boolean(true);
    }
    json_.end_object();
  }

  JsonWriter& json_;
  Texts& texts_;
};

}  // namespace

void write_differences(JsonWriter& json, Texts& texts, const DifferencesHead& head, const DifferenceSource& of_header,
                       const DifferenceSource& of_document) {
  DifferencesWriter(json, texts).whole(head, of_header, of_document);
}

}  // namespace trvtrout::exchange
