#include "tests/exchange/random_file.h"

#include "vtrfile/value_types.h"
#include "vtrfile/variant.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;

class FileMaker {
 public:
  explicit FileMaker(std::mt19937& random) : random_(random) {}

  std::string file() {
    const DocumentSlots none;
    for (const MemberType& member : header_of(none).type().members) {
      std::string_view(member.name) == "Version" ? text("01.02.00") : value(*member.type);
    }
    for (const SectionValue& section : sections_of(none)) {
      tag(section.tag);
      value(section.record.type());
    }
    tag("EOF");
    return std::move(bytes_);
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  template <class Number>
  void plain(Number number) {
    bytes_.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  void noise(std::size_t size) {
    for (; size > 0; --size) bytes_ += static_cast<char>(below(3) == 0 ? random_() : below(2) == 0 ? 0 : 0x7F);
  }
  void text(std::string_view text) {
    plain(static_cast<std::uint16_t>(text.size()));
    bytes_ += text;
  }
  void any_text() {
    const unsigned size = below(2) == 0 ? 0 : below(2000) == 0 ? below(65536) : below(12);
    plain(static_cast<std::uint16_t>(size));
    for (unsigned at = 0; at < size; ++at) {
      bytes_ += static_cast<char>(below(3) == 0 ? random_() : 'a' + below(26));
    }
  }
  void tag(std::string_view name) {
    text(name);
    plain(std::int16_t{1});
    plain(std::uint32_t{0});  // two empty texts
  }
  std::uint32_t descriptor(unsigned most) {
    const std::uint32_t count = below(most + 1);
    plain(std::uint16_t{1});
    plain(count);
    plain(below(2) == 0 ? std::int32_t{1} : static_cast<std::int32_t>(random_()));
    return count;
  }

  void variant(unsigned depth, unsigned odds = 4) {
    static constexpr std::uint16_t kTags[] = {1, 2, 3, 4, 5, 6, 7, 8, 11, 17};
    if (below(odds) != 0) return plain(std::uint16_t{kVariantEmpty});
    std::uint16_t tag = kTags[below(std::size(kTags))];
    if (below(3) == 0 && depth < VariantWalk::kMaxDepth) {
      tag = below(3) == 0 ? std::uint16_t{kVariantVariant} : tag == kVariantNull ? std::uint16_t{kVariantText} : tag;
      plain(static_cast<std::uint16_t>(kVariantArray + tag));
      if (below(4) == 0) return plain(std::uint16_t{0});
      for (std::uint32_t left = descriptor(3); left > 0; --left) body(tag, depth + 1);
    } else {
      plain(tag);
      body(tag, depth);
    }
  }
  void body(std::uint16_t tag, unsigned depth) {
    static constexpr std::size_t kWidths[] = {0, 0, 2, 4, 4, 8, 8, 8};
    if (tag == kVariantVariant) return variant(depth, 1 + below(2));
    if (tag == kVariantText) return any_text();
    if (tag == kVariantFlag) return plain(static_cast<std::int16_t>(below(2) == 0 ? 0 : -1));
    noise(tag == kVariantByte ? 1 : kWidths[tag]);
  }

  void value(const ValueType& type) {
    switch (type.kind) {
      case Kind::kFlag:
        return plain(static_cast<std::int16_t>(below(2) == 0 ? 0 : -1));
      case Kind::kText:
        return any_text();
      case Kind::kRaw:
        return noise(type.count);
      case Kind::kVariant:
        return variant(0);
      case Kind::kVariantRun: {
        const bool filled = below(8) == 0;
        for (std::size_t slot = 0; slot < type.count; ++slot) filled ? variant(0) : plain(std::uint16_t{0});
        return;
      }
      case Kind::kBytes:
        return below(4) == 0 ? plain(std::uint16_t{0}) : noise(descriptor(40));
      case Kind::kArray:
        if (below(5) == 0) return plain(std::uint16_t{0});
        for (std::uint32_t left = descriptor(3); left > 0; --left) value(*type.element);
        return;
      case Kind::kRun:
        for (std::size_t place = 0; place < type.count; ++place) value(*type.element);
        return;
      case Kind::kRecord:
        for (const MemberType& member : type.members) value(*member.type);
        return;
      default:
        return noise(type.size);
    }
  }

  std::mt19937& random_;
  std::string bytes_;
};

}  // namespace

std::string random_file(std::mt19937& random) { return FileMaker(random).file(); }

}  // namespace trvtrout::tests
