#include "exchange/document_builder.h"

#include <algorithm>
#include <array>
#include <memory_resource>
#include <stdexcept>

#include "exchange/document_form.h"
#include "exchange/token_bytes.h"
#include "vtrfile/image.h"
#include "vtrfile/record_reader.h"

namespace trvtrout::exchange {
namespace {

using vtrfile::Kind;
using vtrfile::ValueType;
using TokenKind = Token::Kind;

constexpr std::size_t kAbsent = SIZE_MAX;
// Of an object, when what's wrong is the object itself.
constexpr std::uint32_t kNoMember = UINT32_MAX;
constexpr std::array<std::string_view, 3> kBoundMembers{"lower", "items", "hex"};
enum BoundMember : std::uint32_t { kLower, kItems, kHexDigits };
constexpr std::size_t kLowerAt = 6;

std::string quoted(std::string_view name) { return '"' + std::string(name) + '"'; }

template <class Number>
void put(std::string& bytes, std::size_t at, Number number) {
  bytes.replace(at, sizeof number, reinterpret_cast<const char*>(&number), sizeof number);
}

// The descriptor of an array with no element yet.
void append_descriptor(std::string& out, std::int32_t lower) {
  append_plain(out, std::uint16_t{1});
  append_plain(out, std::uint32_t{0});
  append_plain(out, lower);
}

bool is_reopened_hex(Kind kind) { return kind == Kind::kText || kind == Kind::kFloat; }

}  // namespace

DocumentBuilder::DocumentBuilder(TextsOf texts_of)
    : texts_of_(std::move(texts_of)), known_sections_(sections_of(none_)), sections_(known_sections_.size()) {}

void DocumentBuilder::take(const Token& token, const std::function<std::uint64_t()>& line) {
  if (in_variant_) {
    in_variant_ = variant_.take(token, line());
    if (!in_variant_) variant_.append(*out_, *texts_);
    return;
  }
  switch (token.kind) {
    case TokenKind::kKey:
      return key(token.text);
    case TokenKind::kEndObject:
    case TokenKind::kEndArray:
      return end(token);
    default:
      value(token);
      if (in_variant_) variant_.take(token, line());
  }
}

std::size_t DocumentBuilder::members_of(const Frame& frame) const {
  switch (frame.form) {
    case Form::kDocument:
      return kDocumentMembers.size();
    case Form::kSections:
      return known_sections_.size();
    case Form::kBoundArray:
      return kBoundMembers.size();
    case Form::kRecord:
      return frame.type->members.size();
    default:
      return 1;
  }
}

std::string_view DocumentBuilder::name_of(const Frame& frame, std::size_t member) const {
  switch (frame.form) {
    case Form::kDocument:
      return kDocumentMembers[member];
    case Form::kSections:
      return known_sections_[member].tag;
    case Form::kBoundArray:
      return kBoundMembers[member];
    case Form::kRecord:
      return frame.type->members[member].name;
    default:
      return kBoundMembers[kHexDigits];
  }
}

void DocumentBuilder::push(Form form, const ValueType* type, std::size_t members) {
  frames_.push_back({form, type, out_->size(), marks_.size(), kNoMember});
  marks_.resize(marks_.size() + members, kAbsent);
}

void DocumentBuilder::key(std::string_view name) {
  Frame& frame = frames_.back();
  const std::size_t members = members_of(frame);
  std::size_t member = frame.at == kNoMember ? 0 : frame.at + 1;
  // Nearly always they come in their order.
  if (member >= members || name_of(frame, member) != name) {
    member = 0;
    while (member < members && name_of(frame, member) != name) ++member;
    frame.in_order = false;
  }
  frame.at = kNoMember;
  if (member == members) throw Refusal("there is no member " + quoted(name) + " here");
  if (marks_[frame.marks + member] != kAbsent) throw Refusal("the member " + quoted(name) + " stands here twice");
  frame.at = static_cast<std::uint32_t>(member);
  marks_[frame.marks + member] = out_->size();
}

void DocumentBuilder::value(const Token& token) {
  if (frames_.empty()) {
    if (token.kind != TokenKind::kBeginObject) refuse("an object, the document", token);
    return push(Form::kDocument, nullptr, kDocumentMembers.size());
  }
  Frame& frame = frames_.back();
  switch (frame.form) {
    case Form::kDocument:
      return document_value(token);
    case Form::kSections:
      return section_value(token);
    case Form::kRecord:
      return value(token, *frame.type->members[frame.at].type);
    case Form::kElements:
    case Form::kRun:
      return element_value(frame, token);
    case Form::kBoundArray:
      return bound_array_value(frame, token);
    case Form::kHex:
      return hex_value(frame, token);
  }
}

void DocumentBuilder::value(const Token& token, const ValueType& type) {
  if (token.kind == TokenKind::kBeginObject && is_reopened_hex(type.kind)) return push(Form::kHex, &type, 1);
  switch (type.kind) {
    case Kind::kInt16:
      return append_plain(*out_, integer_of<std::int16_t>(token));
    case Kind::kInt32:
      return append_plain(*out_, integer_of<std::int32_t>(token));
    case Kind::kFloat:
      return append_plain(*out_, real_of<float>(token));
    case Kind::kFlag:
      return append_flag(*out_, token);
    case Kind::kText:
      return append_text(*out_, token, *texts_);
    case Kind::kRaw:
      return append_hex(*out_, token, type.count);
    case Kind::kVariant:
      return variant_value(token);
    case Kind::kVariantRun:
      return variant_run(token, type);
    case Kind::kBytes:
      return bytes_value(token, type);
    case Kind::kArray:
      return array_value(token, type);
    case Kind::kRun:
      if (token.kind != TokenKind::kBeginArray) refuse("an array of " + std::to_string(type.count) + " values", token);
      frames_.push_back({Form::kRun, &type, out_->size(), marks_.size()});
      return;
    case Kind::kRecord:
      if (token.kind != TokenKind::kBeginObject) refuse("an object", token);
      return push(Form::kRecord, &type, type.members.size());
  }
}

void DocumentBuilder::variant_value(const Token& token) {
  if (token.kind == TokenKind::kNull) return append_plain(*out_, std::uint16_t{0});
  if (token.kind != TokenKind::kBeginObject) refuse("null, or an object with the type of a variant", token);
  variant_.begin();
  in_variant_ = true;
}

void DocumentBuilder::variant_run(const Token& token, const ValueType& type) {
  if (token.kind == TokenKind::kNull) {
    out_->append(2 * type.count, '\0');
  } else if (token.kind == TokenKind::kBeginArray) {
    frames_.push_back({Form::kRun, &type, out_->size(), marks_.size()});
  } else {
    refuse("null, or an array of " + std::to_string(type.count) + " variants", token);
  }
}

void DocumentBuilder::element_value(Frame& frame, const Token& token) {
  if (frame.form == Form::kRun && frame.at == frame.type->count) {
    throw Refusal("more than the " + std::to_string(frame.type->count) + " values that stand here");
  }
  ++frame.at;
  frame.type->kind == Kind::kVariantRun ? variant_value(token) : value(token, *frame.type->element);
}

void DocumentBuilder::array_value(const Token& token, const ValueType& type) {
  if (token.kind == TokenKind::kNull) return append_plain(*out_, std::uint16_t{0});
  const std::size_t descriptor = out_->size();
  if (token.kind == TokenKind::kBeginArray) {
    append_descriptor(*out_, 1);
    return push_elements(type, descriptor);
  }
  if (token.kind != TokenKind::kBeginObject) refuse("an array, null, or an object with lower and items", token);
  push(Form::kBoundArray, &type, kBoundMembers.size());
  append_descriptor(*out_, 0);
}

void DocumentBuilder::push_elements(const ValueType& type, std::size_t descriptor) {
  frames_.push_back({Form::kElements, &type, descriptor, marks_.size()});
}

void DocumentBuilder::bytes_value(const Token& token, const ValueType& type) {
  if (token.kind == TokenKind::kNull) return append_plain(*out_, std::uint16_t{0});
  if (token.kind == TokenKind::kBeginObject) {
    push(Form::kBoundArray, &type, kBoundMembers.size());
    return append_descriptor(*out_, 0);
  }
  const std::size_t descriptor = out_->size();
  append_descriptor(*out_, 1);
  put(*out_, descriptor + 2, static_cast<std::uint32_t>(append_hex(*out_, token)));
}

// The descriptor stands already: the members come in any order.
void DocumentBuilder::bound_array_value(Frame& frame, const Token& token) {
  const bool holds_bytes = frame.type->kind == Kind::kBytes;
  if (frame.at == kLower) return put(*out_, frame.begin + kLowerAt, integer_of<std::int32_t>(token));
  if ((frame.at == kHexDigits) != holds_bytes) throw Refusal("there is no such member here");
  if (holds_bytes) return put(*out_, frame.begin + 2, static_cast<std::uint32_t>(append_hex(*out_, token)));
  if (token.kind != TokenKind::kBeginArray) refuse("an array", token);
  push_elements(*frame.type, frame.begin);
}

void DocumentBuilder::hex_value(const Frame& frame, const Token& token) {
  if (frame.type->kind == Kind::kText) return append_hex_text(*out_, token);
  append_hex(*out_, token, frame.type->size);
}

void DocumentBuilder::end(const Token& token) {
  Frame& frame = frames_.back();
  if (token.kind == TokenKind::kEndObject) {
    frame.at = kNoMember;
    end_object(frame);
  } else {
    end_elements(frame);
  }
  marks_.resize(frame.marks);
  frames_.pop_back();
  if (frames_.size() == 1 && out_ == &header_) check_version();
}

void DocumentBuilder::end_object(Frame& frame) {
  const std::size_t members = members_of(frame);
  for (std::size_t member = 0; member < members; ++member) {
    if (marks_[frame.marks + member] != kAbsent) continue;
    const bool is_other = frame.form == Form::kBoundArray &&
                          member == (frame.type->kind == Kind::kBytes ? std::size_t{kItems} : std::size_t{kHexDigits});
    if (!is_other) throw Refusal("the member " + quoted(name_of(frame, member)) + " is missing");
  }
  if (frame.form == Form::kRecord && !frame.in_order) put_in_order(frame);
}

// The members' bytes stand as they came; each reaches to the one that came next.
void DocumentBuilder::put_in_order(const Frame& frame) {
  std::vector<std::size_t> marks(marks_.begin() + static_cast<std::ptrdiff_t>(frame.marks), marks_.end());
  std::vector<std::size_t> ends = marks;
  ends.push_back(out_->size());
  std::ranges::sort(ends);
  std::string ordered;
  ordered.reserve(out_->size() - frame.begin);
  for (const std::size_t mark : marks) {
    ordered.append(*out_, mark, *std::ranges::upper_bound(ends, mark) - mark);
  }
  out_->replace(frame.begin, std::string::npos, ordered);
}

void DocumentBuilder::end_elements(const Frame& frame) {
  if (frame.form == Form::kElements) return put(*out_, frame.begin + 2, frame.at);
  if (frame.at == frame.type->count) return;
  throw Refusal("this ends after " + std::to_string(frame.at) + " of " + std::to_string(frame.type->count) + " values");
}

void DocumentBuilder::document_value(const Token& token) {
  switch (frames_.back().at) {
    case kFormMember:
      if (token.kind != TokenKind::kString || token.text != kDocumentForm) refuse(quoted(kDocumentForm), token);
      return;
    case kVersionMember:
      if (token.kind != TokenKind::kNumber || integer_of<int>(token) != kDocumentFormVersion) {
        refuse("the version " + std::to_string(kDocumentFormVersion) + " of the form, the one that is known", token);
      }
      return;
    case kCodePageMember:
      return choose_code_page(token);
    default:
      break;
  }
  if (!texts_) throw Refusal("\"codePage\" must stand in front of this");
  if (frames_.back().at == kHeaderMember) {
    out_ = &header_;
    return value(token, header_of(none_).type());
  }
  if (token.kind != TokenKind::kBeginObject) refuse("an object, the sections under their tags", token);
  push(Form::kSections, nullptr, known_sections_.size());
}

void DocumentBuilder::choose_code_page(const Token& token) {
  const int number = integer_of<int>(token);
  try {
    texts_.emplace(texts_of_(number));
  } catch (const std::invalid_argument& error) {
    throw Refusal(error.what());
  }
}

void DocumentBuilder::section_value(const Token& token) {
  const std::size_t section = frames_.back().at;
  out_ = &sections_[section];
  value(token, known_sections_[section].record.type());
}

void DocumentBuilder::check_version() const {
  if (header_.empty()) return;
  const auto image = vtrfile::image_of({reinterpret_cast<const unsigned char*>(header_.data()), header_.size()});
  std::pmr::monotonic_buffer_resource memory;
  vtrfile::HEADER_STRUCT header{};
  vtrfile::RecordReader(*image).read(header, memory);
  if (vtrfile::classify(header.Version.bytes()) == vtrfile::FormatClass::kCurrent) return;
  throw Refusal("a file of version \"" + std::string(header.Version.bytes()) +
                "\" can't be written: its header must say " + "one behind " +
                std::string(vtrfile::kOldFormatVersion.text()) + " and up to " +
                std::string(vtrfile::kCurrentFormatVersion.text()));
}

std::string DocumentBuilder::step(const Frame& frame) const {
  const bool is_array = frame.form == Form::kElements || frame.form == Form::kRun;
  if (is_array) return frame.at == 0 ? "" : '[' + std::to_string(frame.at - 1) + ']';
  return frame.at == kNoMember ? "" : '.' + std::string(name_of(frame, frame.at));
}

std::string DocumentBuilder::place() const {
  std::string place = "$";
  for (const Frame& frame : frames_) place += step(frame);
  return place;
}

}  // namespace trvtrout::exchange
