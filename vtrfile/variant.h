#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vtrfile/elements.h"

namespace trvtrout::vtrfile {

// The type tags of variants that the format knows.
enum VariantTag : std::uint16_t {
  kVariantEmpty = 0,
  kVariantNull = 1,
  kVariantInteger = 2,
  kVariantLong = 3,
  kVariantSingle = 4,
  kVariantDouble = 5,
  kVariantCurrency = 6,
  kVariantDate = 7,
  kVariantText = 8,
  kVariantFlag = 11,
  kVariantVariant = 12,  // as the element of an array only
  kVariantByte = 17,
  kVariantArray = 0x2000,  // plus the tag of the elements
};

// Elements that the format lets a file announce behind its own end, as bytes that they would take there.
using Allowance = std::uint64_t;

// Walks variants.
class VariantWalk {
 public:
  // Over variants that were checked when they were read, wherever they stand. `odd_flags`, if given, collects where
  // flags stand that are neither 0 nor -1.
  explicit VariantWalk(std::vector<const unsigned char*>* odd_flags = nullptr) noexcept : odd_flags_(odd_flags) {}
  // Over the bytes from `begin` to `end`, which nothing has checked yet.
  VariantWalk(const unsigned char* begin, const unsigned char* end, Allowance allowance) noexcept
      : begin_(begin), end_(end), allowance_(allowance) {}

  // Where the variant at `at` ends; null when the end of the bytes cuts it. Raises ReadError for a tag that the format
  // doesn't know, an array that can't be honoured, and nesting beyond kMaxDepth.
  const unsigned char* skip(const unsigned char* at) { return variant(at, 0); }

  // Elements of arrays gone through so far.
  std::uint64_t work() const noexcept { return work_; }

  static constexpr int kMaxDepth = 32;

 private:
  const unsigned char* variant(const unsigned char* at, int depth);
  const unsigned char* body(std::uint16_t tag, const unsigned char* tag_at, const unsigned char* at, int depth);
  const unsigned char* array(std::uint16_t element_tag, const unsigned char* at, int depth);
  std::size_t left(const unsigned char* at) const noexcept {
    return end_ ? static_cast<std::size_t>(end_ - at) : SIZE_MAX;
  }
  std::uint64_t offset(const unsigned char* at) const noexcept { return static_cast<std::uint64_t>(at - begin_); }

  const unsigned char* begin_ = nullptr;
  const unsigned char* end_ = nullptr;
  Allowance allowance_ = 0;
  std::uint64_t work_ = 0;
  std::vector<const unsigned char*>* odd_flags_ = nullptr;
};

// Appends the `count` variants that stand from `at` on, as they are written: a True is -1, whatever value stood for it.
void append_variants(std::string& out, const unsigned char* at, std::size_t count);

// Whether a variant can have this type tag.
bool is_variant_tag(std::uint16_t tag) noexcept;

// A variant's type and where its body stands.
struct VariantValue {
  std::uint16_t tag;
  const unsigned char* body;
};

VariantValue value_of(Var variant) noexcept;

// How many elements the array has that the value holds; 0 when it holds none.
std::uint32_t element_count(const VariantValue& value) noexcept;
// The one at this place, counted from 0 and below element_count().
VariantValue element_at(const VariantValue& value, std::size_t place);
// Calls visit(element) for each of them in order, in time linear in the array.
void for_each_element(const VariantValue& value, const std::function<void(const VariantValue& element)>& visit);

// The element with this index (by the array's own lower bound) of a variant that holds an array. Raises
// SubscriptOutOfRange when the variant holds none or the index lies outside it.
VariantValue element_of(Var variant, std::int64_t index);

}  // namespace trvtrout::vtrfile
