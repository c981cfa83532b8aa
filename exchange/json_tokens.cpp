#include "exchange/json_tokens.h"

#include <algorithm>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#include <vector>

namespace trvtrout::exchange {
namespace {

constexpr std::size_t kPiece = 262144;
// The library counts the bytes of a text in 32 bits.
constexpr std::uint64_t kLongestToken = std::uint64_t{1} << 30;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string shown(std::string_view text) {
  constexpr std::size_t kMost = 40;
  std::string line;
  for (const char c : text.substr(0, kMost)) line += c >= 0 && c < ' ' ? '?' : c;
  return '"' + line + (text.size() > kMost ? "...\"" : "\"");
}

std::string told(const Token& token) {
  switch (token.kind) {
    case Token::Kind::kNull:
      return "null";
    case Token::Kind::kBoolean:
      return token.flag ? "true" : "false";
    case Token::Kind::kNumber:
      return std::string(token.text.substr(0, 40));
    case Token::Kind::kString:
      return "the text " + shown(token.text);
    case Token::Kind::kKey:
      return "the member " + shown(token.text);
    case Token::Kind::kBeginObject:
      return "an object";
    case Token::Kind::kBeginArray:
      return "an array";
    case Token::Kind::kEndObject:
    case Token::Kind::kEndArray:
      return "its end";
  }
  return {};
}

}  // namespace

void refuse(const std::string& wanted, const Token& found) {
  throw Refusal("here must stand " + wanted + "; what stands here is " + told(found));
}

// The stream that the library reads from. Behind the last byte it gives zeros, as the library wants it.
class TokenReader::Input {
 public:
  using Ch = char;

  explicit Input(JsonSource source) : source_(std::move(source)), piece_(kPiece) {
    fill();
    while (static_cast<std::size_t>(end_ - at_) < kByteOrderMark.size() && fill_more()) continue;
    if (std::string_view(at_, end_).starts_with(kByteOrderMark)) at_ += kByteOrderMark.size();
    if (at_ == end_) fill();
  }

  Ch Peek() const { return at_ != end_ ? *at_ : '\0'; }
  Ch Take() {
    if (at_ == end_) return '\0';
    const Ch taken = *at_++;
    if (at_ == end_) fill();
    return taken;
  }
  std::size_t Tell() const { return static_cast<std::size_t>(before_ + static_cast<std::uint64_t>(at_ - begin())); }
  // The library asks for these of every stream, and calls them only when it parses in place.
  Ch* PutBegin() { return nullptr; }
  void Put(Ch) {}
  void Flush() {}
  std::size_t PutEnd(Ch*) { return 0; }

  bool at_end() const { return at_ == end_; }
  std::uint64_t line() {
    lines_ += static_cast<std::uint64_t>(std::count(counted_, at_, '\n'));
    counted_ = at_;
    return lines_ + 1;
  }
  void token_begins() { token_ = Tell(); }

 private:
  const char* begin() const { return piece_.data(); }

  void fill() {
    if (at_ != nullptr) {
      line();
      before_ += static_cast<std::uint64_t>(at_ - begin());
    }
    if (before_ - token_ > kLongestToken) throw Refusal("a single value of more than 1 GiB stands here");
    at_ = counted_ = end_ = begin();
    fill_more();
  }
  bool fill_more() {
    const auto filled = static_cast<std::size_t>(end_ - begin());
    const std::size_t count = source_(std::span(piece_).subspan(filled));
    end_ += count;
    return count > 0;
  }

  JsonSource source_;
  std::vector<char> piece_;
  const char* at_ = nullptr;
  const char* end_ = nullptr;
  const char* counted_ = nullptr;  // up to here the lines of the piece have been counted
  std::uint64_t before_ = 0;       // bytes in front of the piece
  std::uint64_t lines_ = 0;
  std::uint64_t token_ = 0;
};

namespace {

// What the library calls; it reads on as long as the answer is true.
template <class Input>
class Events {
 public:
  Events(Input& input, const TokenReader::Take& take) : input_(input), take_(take) {}

  bool Null() { return give({Token::Kind::kNull, false, {}}); }
  bool Bool(bool flag) { return give({Token::Kind::kBoolean, flag, {}}); }
  bool RawNumber(const char* at, rapidjson::SizeType length, bool) { return give(Token::Kind::kNumber, at, length); }
  bool String(const char* at, rapidjson::SizeType length, bool) { return give(Token::Kind::kString, at, length); }
  bool Key(const char* at, rapidjson::SizeType length, bool) { return give(Token::Kind::kKey, at, length); }
  bool StartObject() { return give({Token::Kind::kBeginObject, false, {}}); }
  bool EndObject(rapidjson::SizeType) { return give({Token::Kind::kEndObject, false, {}}); }
  bool StartArray() { return give({Token::Kind::kBeginArray, false, {}}); }
  bool EndArray(rapidjson::SizeType) { return give({Token::Kind::kEndArray, false, {}}); }
  // Numbers come as they are spelled.
  bool Int(int) { return false; }
  bool Uint(unsigned) { return false; }
  bool Int64(std::int64_t) { return false; }
  bool Uint64(std::uint64_t) { return false; }
  bool Double(double) { return false; }

 private:
  bool give(Token::Kind kind, const char* at, rapidjson::SizeType length) { return give({kind, false, {at, length}}); }
  bool give(const Token& token) {
    input_.token_begins();
    take_(token);
    return true;
  }

  Input& input_;
  const TokenReader::Take& take_;
};

}  // namespace

TokenReader::TokenReader(JsonSource source) : input_(std::make_unique<Input>(std::move(source))) {}
TokenReader::~TokenReader() = default;

void TokenReader::read(const Take& take) {
  // A taker refuses what nests deeper than it can use, so the library's own recursion ends there.
  constexpr unsigned kFlags = rapidjson::kParseNumbersAsStringsFlag;
  Events<Input> events(*input_, take);
  rapidjson::Reader reader;
  const rapidjson::ParseResult result = reader.Parse<kFlags>(*input_, events);
  if (result.IsError()) throw Refusal(std::string("no JSON: ") + rapidjson::GetParseError_En(result.Code()));
  if (!input_->at_end()) throw Refusal("no JSON: something stands behind its end");
}

std::uint64_t TokenReader::line() { return input_->line(); }

}  // namespace trvtrout::exchange
