#include "spreadsheet/opc/markup.h"

#include <algorithm>
#include <utility>

#include "spreadsheet/bytes.h"
#include "spreadsheet/opc/xml_part.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr std::size_t kLongestMarkup = std::size_t{1} << 20;

// How what is no tag begins and ends.
constexpr std::pair<std::string_view, std::string_view> kSections[] = {
    {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

// Behind the end of the markup that `text` begins with; npos if it isn't there yet.
std::size_t markup_end(std::string_view text) {
  const bool is_tag = text.size() > 1 && text[1] != '!' && text[1] != '?';
  for (const auto& [begin, end] : kSections) {
    if (is_tag || !text.starts_with(begin)) continue;
    const std::size_t at = text.find(end, begin.size());
    return at == text.npos ? at : at + end.size();
  }
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '>') return at + 1;
    if (text[at] != '"' && text[at] != '\'') continue;
    at = text.find(text[at], at + 1);
    if (at == text.npos) return at;
  }
  return text.npos;
}

MarkupKind kind_of(std::string_view markup) {
  if (!markup.starts_with('<')) return MarkupKind::kText;
  if (markup.starts_with("<!") || markup.starts_with("<?")) return MarkupKind::kOther;
  if (markup.starts_with("</")) return MarkupKind::kEndTag;
  return markup.ends_with("/>") ? MarkupKind::kEmptyTag : MarkupKind::kStartTag;
}

}  // namespace

std::string_view Markup::name() const {
  const std::string_view inner = source.substr(kind == MarkupKind::kEndTag ? 2 : 1);
  const auto ends = [](char letter) {
    return letter == ' ' || letter == '>' || letter == '/' || letter == '\t' || letter == '\r' || letter == '\n';
  };
  const auto length = std::ranges::find_if(inner, ends) - inner.begin();
  return local_name(inner.substr(0, static_cast<std::size_t>(length)));
}

bool MarkupReader::fill() {
  buffer_.erase(0, std::exchange(at_, 0));
  if (buffer_.size() > kLongestMarkup) raise_damaged("a tag in it is too long");
  const std::string_view piece = content_.next();
  buffer_ += piece;
  return !piece.empty();
}

Markup MarkupReader::next() {
  if (at_ == buffer_.size()) fill();
  std::string_view rest = std::string_view(buffer_).substr(at_);
  std::size_t end = 0;
  if (!rest.starts_with('<')) {
    end = std::min(rest.find('<'), rest.size());
  } else {
    while ((end = markup_end(rest)) == rest.npos) {
      if (!fill()) raise_damaged("a tag in it doesn't end");
      rest = buffer_;
    }
  }
  at_ += end;
  return {kind_of(rest.substr(0, end)), rest.substr(0, end)};
}

}  // namespace trvtrout::spreadsheet::ooxml
