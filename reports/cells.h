#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "services/host_services.h"
#include "vtrfile/elements.h"
#include "vtrfile/variant.h"

// How a value becomes the text of a cell. Each function appends to a row; nothing is quoted and nothing is escaped.
namespace trvtrout {

// How a text goes into its cell.
enum class Form {
  kAsStored,
  kCleaned,           // each carriage return, line feed and comma becomes a blank
  kCleanedThenBlank,  // the same, and one blank behind it
  kWithoutCommas,     // commas go, with nothing in their place; line ends stay
};

void append_text(std::string& row, std::string_view text, Form form = Form::kAsStored);
void append_number(std::string& row, std::int32_t number);
// General form with seven digits: 10, 12.5, 1E+07.
void append_single(std::string& row, float number);
// "True" or "False".
void append_flag(std::string& row, bool flag);
// A variant's value by plain conversion; Empty and Null are no text. Raises SubscriptOutOfRange for an array.
void append_variant(std::string& row, vtrfile::VariantValue value, Locale& locale);

inline void append_cell(std::string& row, vtrfile::Text text, Form form) { append_text(row, text.bytes(), form); }
inline void append_cell(std::string& row, std::int16_t number, Form) { append_number(row, number); }
inline void append_cell(std::string& row, std::int32_t number, Form) { append_number(row, number); }
inline void append_cell(std::string& row, float number, Form) { append_single(row, number); }
inline void append_cell(std::string& row, vtrfile::Flag flag, Form) { append_flag(row, bool(flag)); }

}  // namespace trvtrout
