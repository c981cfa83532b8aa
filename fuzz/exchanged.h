#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "exchange/json_document.h"
#include "platform/locale/code_page.h"

// Documents as JSON and back, for the targets that put them through it.
namespace trvtrout::fuzz {

inline exchange::Texts texts_of(int code_page) { return {code_page, platform::shared_code_page(code_page)}; }

inline std::string json_of(const vtrfile::DocumentSlots& document) {
  std::string json;
  exchange::JsonWriter writer([&](std::string_view piece) { json += piece; });
  exchange::Texts texts = texts_of(1252);
  write_document(writer, texts, document);
  writer.flush();
  return json;
}

// The bytes of the file that the JSON describes; nothing when it's refused.
inline std::optional<std::string> imported(std::string_view json) {
  const auto source = [&](std::span<char> into) {
    const std::size_t count = json.copy(into.data(), into.size());
    json.remove_prefix(count);
    return count;
  };
  try {
    std::string bytes;
    for (const std::string& piece : exchange::read_document(source, texts_of)) bytes += piece;
    return bytes;
  } catch (const exchange::ImportError&) {
    return {};
  }
}

}  // namespace trvtrout::fuzz
