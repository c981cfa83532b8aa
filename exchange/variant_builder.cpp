#include "exchange/variant_builder.h"

#include <algorithm>
#include <array>
#include <optional>

#include "exchange/token_bytes.h"
#include "vtrfile/variant.h"

namespace trvtrout::exchange {
namespace {

using Kind = Token::Kind;

bool opens(Kind kind) { return kind == Kind::kBeginObject || kind == Kind::kBeginArray; }
bool closes(Kind kind) { return kind == Kind::kEndObject || kind == Kind::kEndArray; }

// Each nested variant is an object in an array.
constexpr int kMaxDepth = 2 * (vtrfile::VariantWalk::kMaxDepth + 1) + 2;

}  // namespace

bool VariantBuilder::take(const Token& token, std::uint64_t line) {
  if (texts_.size() + token.text.size() > INT32_MAX) throw Refusal("a variant of more than 2 GiB");
  tokens_.push_back({static_cast<std::uint32_t>(texts_.size()), static_cast<std::uint32_t>(token.text.size()),
                     static_cast<std::uint32_t>(line), token.kind, token.flag});
  texts_ += token.text;
  if (opens(token.kind) && ++depth_ > kMaxDepth) throw Refusal("variants nested more than 32 deep");
  if (closes(token.kind)) --depth_;
  return depth_ > 0;
}

// Goes through the tokens that were taken.
class VariantWalker {
 public:
  VariantWalker(const VariantBuilder& built, Texts& texts, std::string& out)
      : tokens_(built.tokens_), said_(built.texts_), texts_(texts), out_(out) {}

  // A whole variant, null for Empty.
  void variant(int depth);
  Refusal placed(const Refusal& refusal) const { return {refusal.what(), place_, tokens_[at_].line}; }

 private:
  // Where the values of an object's members stand; 0 for one that it doesn't have.
  struct Members {
    std::size_t type = 0, value = 0, lower = 0, items = 0, hex = 0;
  };
  static constexpr std::pair<const char*, std::size_t Members::*> kMembers[] = {{"type", &Members::type},
                                                                                {"value", &Members::value},
                                                                                {"lower", &Members::lower},
                                                                                {"items", &Members::items},
                                                                                {"hex", &Members::hex}};

  Token token() const {
    const auto& held = tokens_[at_];
    return {held.kind, held.flag, std::string_view(said_).substr(held.at, held.length)};
  }
  Members members();
  void skip();
  void enter(std::size_t at, const char* name) {
    at_ = at;
    place_ += name;
  }
  // Raises Refusal unless the object has the members wanted and no other.
  void require_only(const Members& members, std::initializer_list<std::size_t Members::*> wanted);
  void body(std::uint16_t tag, int depth);
  void array(std::uint16_t element_tag, const Members& members, int depth);
  // The object with digits at this place; append() is called at the digits.
  template <class Append>
  void hex_object(Append append) {
    const Members found = members();
    require_only(found, {&Members::hex});
    const std::size_t behind = at_;
    at_ = found.hex;
    append();
    at_ = behind;
  }
  void text();
  template <class Real>
  void real();
  void currency();

  const std::vector<VariantBuilder::Held>& tokens_;
  const std::string& said_;
  Texts& texts_;
  std::string& out_;
  std::size_t at_ = 0;
  std::string place_;
};

void VariantWalker::skip() {
  int depth = 0;
  do {
    if (opens(tokens_[at_].kind)) ++depth;
    if (closes(tokens_[at_].kind)) --depth;
    ++at_;
  } while (depth > 0);
}

// Leaves the walk behind the object.
VariantWalker::Members VariantWalker::members() {
  Members members;
  ++at_;
  while (tokens_[at_].kind == Kind::kKey) {
    const auto known = std::ranges::find_if(kMembers, [&](const auto& member) { return token().text == member.first; });
    if (known == std::end(kMembers)) refuse("a member of a variant: type, value, lower or items", token());
    if (members.*known->second != 0)
      throw Refusal("the member \"" + std::string(token().text) + "\" stands here twice");
    members.*known->second = ++at_;
    skip();
  }
  ++at_;
  return members;
}

void VariantWalker::require_only(const Members& members, std::initializer_list<std::size_t Members::*> wanted) {
  for (const auto& [name, member] : kMembers) {
    const bool is_wanted = std::ranges::find(wanted, member) != wanted.end();
    if (is_wanted && members.*member == 0) throw Refusal("the member \"" + std::string(name) + "\" is missing");
    if (!is_wanted && members.*member != 0) {
      throw Refusal("a member \"" + std::string(name) + "\", which a value of this type doesn't have");
    }
  }
}

void VariantWalker::variant(int depth) {
  if (tokens_[at_].kind == Kind::kNull) {
    ++at_;
    return append_plain(out_, std::uint16_t{vtrfile::kVariantEmpty});
  }
  if (depth > vtrfile::VariantWalk::kMaxDepth) throw Refusal("variants nested more than 32 deep");
  if (tokens_[at_].kind != Kind::kBeginObject) refuse("null, or an object with the type of a variant", token());
  const std::size_t begin = at_, place = place_.size();
  const Members found = members();
  const std::size_t behind = at_;
  at_ = begin;
  if (found.type == 0) throw Refusal("the member \"type\" is missing");
  enter(found.type, ".type");
  const auto tag = integer_of<std::uint16_t>(token());
  place_.resize(place);
  if (tag >= vtrfile::kVariantArray) {
    append_plain(out_, tag);
    array(static_cast<std::uint16_t>(tag - vtrfile::kVariantArray), found, depth);
  } else if (tag == vtrfile::kVariantNull) {
    require_only(found, {&Members::type});
    append_plain(out_, tag);
  } else {
    at_ = found.type;
    if (tag == vtrfile::kVariantVariant) refuse("the type of a value", token());
    at_ = begin;
    require_only(found, {&Members::type, &Members::value});
    append_plain(out_, tag);
    enter(found.value, ".value");
    body(tag, depth);
  }
  place_.resize(place);
  at_ = behind;
}

void VariantWalker::array(std::uint16_t element_tag, const Members& members, int depth) {
  const std::size_t place = place_.size();
  const bool unallocated = members.items != 0 && tokens_[members.items].kind == Kind::kNull;
  if (unallocated) {
    require_only(members, {&Members::type, &Members::items});
    return append_plain(out_, std::uint16_t{0});
  }
  require_only(members, {&Members::type, &Members::lower, &Members::items});
  enter(members.lower, ".lower");
  const auto lower = integer_of<std::int32_t>(token());
  place_.resize(place);
  enter(members.items, ".items");
  if (token().kind != Kind::kBeginArray) refuse("an array or null", token());
  append_plain(out_, std::uint16_t{1});
  const std::size_t count_at = out_.size();
  append_plain(out_, std::uint32_t{0});
  append_plain(out_, lower);
  const std::size_t items = place_.size();
  std::uint32_t count = 0;
  for (++at_; tokens_[at_].kind != Kind::kEndArray; ++count) {
    place_ += '[' + std::to_string(count) + ']';
    body(element_tag, depth + 1);
    place_.resize(items);
  }
  out_.replace(count_at, sizeof count, reinterpret_cast<const char*>(&count), sizeof count);
}

// Leaves the walk behind the value.
void VariantWalker::body(std::uint16_t tag, int depth) {
  if (tag == vtrfile::kVariantText) return text();
  if (tag == vtrfile::kVariantVariant) return variant(depth);
  switch (tag) {
    case vtrfile::kVariantByte:
      append_plain(out_, integer_of<std::uint8_t>(token()));
      break;
    case vtrfile::kVariantInteger:
      append_plain(out_, integer_of<std::int16_t>(token()));
      break;
    case vtrfile::kVariantLong:
      append_plain(out_, integer_of<std::int32_t>(token()));
      break;
    case vtrfile::kVariantFlag:
      append_flag(out_, token());
      break;
    case vtrfile::kVariantSingle:
      return real<float>();
    case vtrfile::kVariantDouble:
    case vtrfile::kVariantDate:
      return real<double>();
    case vtrfile::kVariantCurrency:
      currency();
      break;
    default:
      throw Refusal("the variant type " + std::to_string(tag) + " isn't one that a file can hold here");
  }
  ++at_;
}

void VariantWalker::text() {
  if (token().kind != Kind::kBeginObject) {
    append_text(out_, token(), texts_);
    ++at_;
    return;
  }
  hex_object([this] { append_hex_text(out_, token()); });
}

template <class Real>
void VariantWalker::real() {
  if (token().kind != Kind::kBeginObject) {
    append_plain(out_, real_of<Real>(token()));
    ++at_;
    return;
  }
  hex_object([this] { append_hex(out_, token(), sizeof(Real)); });
}

void VariantWalker::currency() {
  const Token given = token();
  if (given.kind != Kind::kString) refuse("a text of the decimal digits of a 64-bit integer", given);
  append_plain(out_, integer_of<std::int64_t>({Kind::kNumber, false, given.text}));
}

void VariantBuilder::append(std::string& out, Texts& texts) const {
  VariantWalker walker(*this, texts, out);
  try {
    walker.variant(0);
  } catch (const Refusal& refusal) {
    throw walker.placed(refusal);
  }
}

}  // namespace trvtrout::exchange
