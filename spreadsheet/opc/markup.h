#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "spreadsheet/opc/package.h"

namespace trvtrout::spreadsheet::ooxml {

enum class MarkupKind { kText, kStartTag, kEmptyTag, kEndTag, kOther };

// A run of text, or one tag, comment, instruction or section of plain text.
struct Markup {
  MarkupKind kind;
  std::string_view source;

  // Of a tag, without its prefix.
  std::string_view name() const;
};

// Goes through the text (UTF-8) of a part that may be too large for memory. Whether the elements pair isn't looked at.
class MarkupReader {
 public:
  // `content` must outlive the reader.
  explicit MarkupReader(PartStream& content) : content_(content) {}
  // The next piece, valid until the next call; a text may come in several. Its source is empty at the end. Raises
  // WorkbookError, also for a tag that is longer than makes sense.
  Markup next();

 private:
  bool fill();

  PartStream& content_;
  std::string buffer_;
  std::size_t at_ = 0;
};

}  // namespace trvtrout::spreadsheet::ooxml
