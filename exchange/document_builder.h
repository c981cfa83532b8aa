#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/json_tokens.h"
#include "exchange/texts.h"
#include "exchange/variant_builder.h"
#include "vtrfile/value_types.h"

namespace trvtrout::exchange {

// The texts by the code page with this number. Raises std::invalid_argument for one that isn't known.
using TextsOf = std::function<Texts(int code_page)>;

// Takes the tokens of a document's JSON and makes the bytes of its records, each member by its type. Members may come
// in any order; but the code page stands in front of all that it says something about.
class DocumentBuilder {
 public:
  explicit DocumentBuilder(TextsOf texts_of);

  // Raises Refusal for whatever isn't as it must be. `line` tells that of the token, when it's needed.
  void take(const Token& token, const std::function<std::uint64_t()>& line);
  // Where the token last taken stands: "$.sections.Schema.Tables.Items[2].Lenght".
  std::string place() const;
  // The bytes of the header's record, and of the sections' in the order of writing. May be called once, at the end.
  std::string take_header() { return std::move(header_); }
  std::vector<std::string> take_sections() { return std::move(sections_); }

 private:
  enum class Form : std::uint8_t {
    kDocument,    // the whole
    kSections,    // the sections under their tags
    kRecord,      // an object with the members of a record
    kElements,    // an array with all elements of an Array
    kRun,         // an array with all elements of a fixed run, or variants
    kBoundArray,  // an object with the lower bound and the elements of an Array, or the digits of its bytes
    kHex,         // an object with the digits of a text or number
  };
  // What was begun and isn't at its end.
  struct Frame {
    Form form;
    const vtrfile::ValueType* type;  // of the value that it is; null for a document and its sections
    std::size_t begin;               // where its bytes begin in *out_
    std::size_t marks;               // of an object: where its marks begin
    std::uint32_t at = 0;            // the member that stands here, or how many elements have begun
    bool in_order = true;            // of a record: so far each member came behind the one in front of it
  };

  void key(std::string_view name);
  void end(const Token& token);
  void value(const Token& token);
  void value(const Token& token, const vtrfile::ValueType& type);
  void document_value(const Token& token);
  void section_value(const Token& token);
  void element_value(Frame& frame, const Token& token);
  void bound_array_value(Frame& frame, const Token& token);
  void hex_value(const Frame& frame, const Token& token);
  void variant_value(const Token& token);
  void variant_run(const Token& token, const vtrfile::ValueType& type);
  void bytes_value(const Token& token, const vtrfile::ValueType& type);
  void array_value(const Token& token, const vtrfile::ValueType& type);

  void push(Form form, const vtrfile::ValueType* type, std::size_t members);
  void push_elements(const vtrfile::ValueType& type, std::size_t descriptor);
  void end_object(Frame& frame);
  void end_elements(const Frame& frame);
  void put_in_order(const Frame& frame);
  void choose_code_page(const Token& token);
  void check_version() const;
  std::size_t members_of(const Frame& frame) const;
  std::string_view name_of(const Frame& frame, std::size_t member) const;
  std::string step(const Frame& frame) const;

  TextsOf texts_of_;
  std::optional<Texts> texts_;
  vtrfile::DocumentSlots none_;
  std::vector<vtrfile::SectionValue> known_sections_;  // of an empty document: tags and types
  std::string header_;
  std::vector<std::string> sections_;
  std::string* out_ = &header_;
  std::vector<Frame> frames_;
  // For each member of each object begun where its bytes stand, kAbsent for one that didn't come.
  std::vector<std::size_t> marks_;
  VariantBuilder variant_;
  bool in_variant_ = false;
};

}  // namespace trvtrout::exchange
