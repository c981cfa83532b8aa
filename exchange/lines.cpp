#include "exchange/lines.h"

#include "exchange/json_values.h"
#include "exchange/tables.h"

namespace trvtrout::exchange {
namespace {

using vtrfile::Kind;
using vtrfile::Value;

bool has_lines(const vtrfile::ValueType& type) {
  return type.kind == Kind::kArray || (type.kind == Kind::kRun && type.element->kind == Kind::kRecord);
}

// All values of an item but those that have lines of their own.
void write_members(JsonWriter& json, Texts& texts, Value record) {
  json.begin_object();
  for (const vtrfile::MemberType& member : record.type().members) {
    if (has_lines(*member.type)) continue;
    json.key(member.name);
    const Value value = record.member(member);
    value.kind() == Kind::kRecord ? write_members(json, texts, value) : write_value(json, texts, value);
  }
  json.end_object();
}

}  // namespace

void write_lines(JsonWriter& json, Texts& texts, std::string_view name, const vtrfile::DocumentSlots& document) {
  for_each_row(document, [&](const Row& row) {
    if (!row.list) return std::int64_t{0};
    json.begin_object();
    const std::pair<std::string_view, std::string_view> kTexts[] = {{"document", name},
                                                                    {"section", row.table.section},
                                                                    {"list", row.table.name},
                                                                    {"path", row.path},
                                                                    {"parent", row.parent_path}};
    for (const auto& [key, text] : kTexts) {
      json.key(key);
      json.string(text);
    }
    json.key("place");
    json.number(std::int64_t{row.place});
    json.key("values");
    if (row.value.kind() == Kind::kRecord) {
      write_members(json, texts, row.value);
    } else {
      json.begin_object();
      json.key(row.table.columns.front().name);
      write_value(json, texts, row.value);
      json.end_object();
    }
    json.end_object();
    json.end_line();
    return std::int64_t{0};
  });
}

}  // namespace trvtrout::exchange
