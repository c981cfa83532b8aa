#include "vtrfile/variant.h"

#include <array>
#include <string>

#include "vtrfile/read_error.h"

namespace trvtrout::vtrfile {
namespace {

constexpr std::size_t kTagBytes = 2;
constexpr std::size_t kDescriptorBytes = 10;
constexpr int kNoPlainBody = -1;

// Bytes of the body of a plain value; kNoPlainBody for texts, variants and unknown tags.
int plain_width(std::uint16_t tag) {
  switch (tag) {
    case kVariantEmpty:
    case kVariantNull:
      return 0;
    case kVariantByte:
      return 1;
    case kVariantInteger:
    case kVariantFlag:
      return 2;
    case kVariantLong:
    case kVariantSingle:
      return 4;
    case kVariantDouble:
    case kVariantCurrency:
    case kVariantDate:
      return 8;
    default:
      return kNoPlainBody;
  }
}

bool can_be_element(std::uint16_t tag) { return plain_width(tag) > 0 || tag == kVariantText || tag == kVariantVariant; }

bool is_array_of(std::uint16_t tag) {
  return tag >= kVariantArray && can_be_element(static_cast<std::uint16_t>(tag - kVariantArray));
}

}  // namespace

const unsigned char* VariantWalk::variant(const unsigned char* at, int depth) {
  if (depth > kMaxDepth) {
    throw ReadError(offset(at), "variants nested more than " + std::to_string(kMaxDepth) + " deep");
  }
  if (left(at) < kTagBytes) return nullptr;
  return body(load<std::uint16_t>(at), at, at + kTagBytes, depth);
}

const unsigned char* VariantWalk::body(std::uint16_t tag, const unsigned char* tag_at, const unsigned char* at,
                                       int depth) {
  if (const int width = plain_width(tag); width != kNoPlainBody) {
    if (left(at) < static_cast<std::size_t>(width)) return nullptr;
    if (odd_flags_ && tag == kVariantFlag) {
      const auto flag = load<std::int16_t>(at);
      if (flag != 0 && flag != -1) odd_flags_->push_back(at);
    }
    return at + width;
  }
  if (tag == kVariantText) {
    if (left(at) < 2) return nullptr;
    const std::size_t whole = 2 + std::size_t{load<std::uint16_t>(at)};
    return whole <= left(at) ? at + whole : nullptr;
  }
  if (is_array_of(tag)) {
    return array(static_cast<std::uint16_t>(tag - kVariantArray), at, depth);
  }
  throw ReadError(offset(tag_at), "variant type " + std::to_string(tag) + ", which the format doesn't have");
}

const unsigned char* VariantWalk::array(std::uint16_t element_tag, const unsigned char* at, int depth) {
  if (left(at) < 2) return nullptr;
  const auto dimensions = load<std::uint16_t>(at);
  if (dimensions == 0) return at + 2;
  if (dimensions != 1) throw ReadError(offset(at), "an array of " + std::to_string(dimensions) + " dimensions");
  if (left(at) < kDescriptorBytes) return nullptr;
  const std::uint64_t count = load<std::uint32_t>(at + 2);
  const unsigned char* const descriptor = at;
  at += kDescriptorBytes;

  const int width = plain_width(element_tag);
  const std::uint64_t least = width > 0 ? static_cast<std::uint64_t>(width) : 2;
  if (count * least > left(at) && count * least - left(at) > allowance_) {
    throw ReadError(offset(descriptor), "an array of " + std::to_string(count) + " elements, more than the file holds",
                    ReadError::Cause::kOutOfStep);
  }
  for (std::uint64_t element = 0; element < count; ++element) {
    ++work_;
    at = element_tag == kVariantVariant ? variant(at, depth + 1) : body(element_tag, at, at, depth);
    if (!at) return nullptr;
  }
  return at;
}

void append_variants(std::string& out, const unsigned char* at, std::size_t count) {
  std::vector<const unsigned char*> odd_flags;
  VariantWalk walk(&odd_flags);
  const unsigned char* behind = at;
  for (std::size_t slot = 0; slot < count; ++slot) behind = walk.skip(behind);
  const std::size_t start = out.size();
  out.append(reinterpret_cast<const char*>(at), static_cast<std::size_t>(behind - at));
  for (const unsigned char* flag : odd_flags) out.replace(start + static_cast<std::size_t>(flag - at), 2, "\xFF\xFF");
}

bool is_variant_tag(std::uint16_t tag) noexcept {
  return plain_width(tag) != kNoPlainBody || tag == kVariantText || is_array_of(tag);
}

VariantValue value_of(Var variant) noexcept {
  if (variant.empty()) return {kVariantEmpty, nullptr};
  return {load<std::uint16_t>(variant.at()), variant.at() + kTagBytes};
}

std::uint32_t element_count(const VariantValue& value) noexcept {
  const bool has_elements = value.tag >= kVariantArray && load<std::uint16_t>(value.body) != 0;
  return has_elements ? load<std::uint32_t>(value.body + 2) : 0;
}

VariantValue element_at(const VariantValue& value, std::size_t place) {
  const auto element_tag = static_cast<std::uint16_t>(value.tag - kVariantArray);
  const unsigned char* at = value.body + kDescriptorBytes;
  if (const int width = plain_width(element_tag); width > 0) {
    return {element_tag, at + place * static_cast<std::size_t>(width)};
  }
  VariantWalk walk;
  for (std::size_t skipped = 0; skipped < place; ++skipped) {
    at = element_tag == kVariantVariant ? walk.skip(at) : at + 2 + load<std::uint16_t>(at);
  }
  if (element_tag == kVariantText) return {kVariantText, at};
  return {load<std::uint16_t>(at), at + kTagBytes};
}

void for_each_element(const VariantValue& value, const std::function<void(const VariantValue& element)>& visit) {
  const std::uint32_t count = element_count(value);
  if (count == 0) return;
  const auto element_tag = static_cast<std::uint16_t>(value.tag - kVariantArray);
  const auto width = static_cast<std::size_t>(std::max(plain_width(element_tag), 0));
  VariantWalk walk;
  const unsigned char* at = value.body + kDescriptorBytes;
  for (std::uint32_t nth = 0; nth < count; ++nth) {
    if (element_tag == kVariantVariant) {
      visit({load<std::uint16_t>(at), at + kTagBytes});
      at = walk.skip(at);
    } else {
      visit({element_tag, at});
      at += width > 0 ? width : 2 + load<std::uint16_t>(at);
    }
  }
}

VariantValue element_of(Var variant, std::int64_t index) {
  const VariantValue value = value_of(variant);
  if (element_count(value) == 0) throw SubscriptOutOfRange();
  const std::int64_t place = index - load<std::int32_t>(value.body + 6);
  if (place < 0 || place >= element_count(value)) throw SubscriptOutOfRange();
  return element_at(value, static_cast<std::size_t>(place));
}

}  // namespace trvtrout::vtrfile
