#pragma once

#include <algorithm>
#include <memory_resource>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>

#include "bench/generate_document.h"
#include "vtrfile/document.h"

namespace trvtrout::bench {

using namespace vtrfile;

inline constexpr std::string_view kScript = "Set order = Document.Current\r\nIf order.Status = 2 Then order.Close";

// "T00042".
std::string numbered(std::string_view prefix, int number);
// As codes are written: "WORK_ORDER".
std::string capitals(std::string text);
// A text as it stands in a file.
std::string stored_text(std::string_view text);

// Makes the records of one document; what they point into lives as long as the maker.
class DocumentMaker {
 public:
  explicit DocumentMaker(const DocumentSize& size) : size_(size), random_(size.seed) {}

  HEADER_STRUCT header();
  SECTION_TAG_STRUCT tag(std::string_view name);
  SCHEMA_STRUCT schema();
  RELATION_STRUCT relation();
  HIDETABLES_STRUCT hidden();
  TREE_HIERARCHY_STRUCT tree();
  LANGUAGE_STRUCT language();
  MODULE_STRUCT modules();
  DATASEND_STRUCT data_send();
  FIELD_MATCHES_STRUCT field_matches();
  EXTENDED_STORAGE_STRUCT extended();
  INCLUDEFILE_STRUCT include_files();
  CONTROLTAG_STRUCT control_tags();
  DSNMAIN_STRUCT data_sources();
  IMPORT_FILES import_files();
  RESIDUAL_TABLES_STRUCT residual_tables();

 private:
  PRODUCT_STRUCT product();
  TABLES_STRUCT tables(int count, int fields_each);
  FIELDS_ITEM_STRUCT field(int number, const std::string& table);
  LOOKUPS_STRUCT lookups(int count);
  RELATION_SIDE_STRUCT relation_side();
  DATASEND_ITEM_STRUCT definition(int number);
  DATASEND_NODE_STRUCT node(int number);
  Var scripts();

  int below(unsigned limit) { return static_cast<int>(random_() % limit); }
  bool one_in(unsigned odds) { return below(odds) == 0; }
  std::string words(int count);
  std::string name(int most_words) { return words(1 + below(static_cast<unsigned>(most_words))); }

  const unsigned char* keep(std::string_view bytes);
  Text text(std::string_view bytes) { return bytes.empty() ? Text() : Text(keep(stored_text(bytes))); }
  Text description(const std::string& text);

  template <class Make, class Element = std::invoke_result_t<Make, int>>
  Array<Element> array(int count, Make make);
  // Makes the items of a list, and its numbers to match.
  template <class List, class Make>
  void fill(List& list, int count, Make make);

  const DocumentSize size_;
  std::mt19937 random_;
  std::pmr::monotonic_buffer_resource buffer_;
  std::pmr::polymorphic_allocator<> memory_{&buffer_};
  int descriptions_ = 0;
};

template <class Make, class Element>
Array<Element> DocumentMaker::array(int count, Make make) {
  using Block = typename Array<Element>::Block;
  const auto size = static_cast<std::uint32_t>(count);
  auto* const elements = memory_.allocate_object<Element>(size);
  for (int place = 0; place < count; ++place)
    new (elements + place) Element(make(size_.first_number + (size_.one_key ? 0 : place)));
  if (size_.order == Order::kReversed) std::reverse(elements, elements + count);
  if (size_.order == Order::kShuffled) std::shuffle(elements, elements + count, std::mt19937(size_.seed));
  return Array<Element>(memory_.new_object<Block>(Block{size, 1, size, elements}));
}

template <class List, class Make>
void DocumentMaker::fill(List& list, int count, Make make) {
  list.Items = array(count, make);
  list.Count = static_cast<decltype(list.Count)>(count);
  if constexpr (requires { list.Max; }) list.Current = list.Max = list.Count;
}

}  // namespace trvtrout::bench
