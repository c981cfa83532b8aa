#include <gtest/gtest.h>
#include <random>
#include <string>

#include "text/calendar.h"
#include "text/scanner.h"
#include "text/surrogates.h"
#include "text/utf8.h"

namespace trvtrout::text {
namespace {

TEST(Utf8, CharactersOfEachLengthComeThrough) {
  const std::u16string text = u"a\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF";
  const std::string bytes =
      "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
  EXPECT_EQ(to_utf8(text), bytes);
  EXPECT_EQ(from_utf8(bytes), text);
  // Halves without their other one, that stand for no byte.
  EXPECT_EQ(to_utf8(u"\xD83D"), "\xED\xA0\xBD");
  EXPECT_EQ(to_utf8(u"\xDC7F\xDD00"), "\xED\xB1\xBF\xED\xB4\x80");
}

TEST(Utf8, EveryByteStringComesBack) {
  // Overlong forms, surrogates, beyond the last code point, stray continuation, cut off.
  const std::string invalid = "\xC0\xAF\xE0\x80\xAF\xED\xA0\x80\xF4\x90\x80\x80\xF8\x88\x80\x80\x80\xFF\x80\xE2\x82";
  for (const char16_t unit : from_utf8(invalid)) EXPECT_EQ(unit & 0xFF80, 0xDC80);
  std::mt19937 random(1);
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes(random() % 12, ' ');
    for (char& byte : bytes) byte = static_cast<char>(random() % 3 == 0 ? random() % 0x80 : 0x80 + random() % 0x80);
    ASSERT_EQ(to_utf8(from_utf8(bytes)), bytes);
  }
}

TEST(Surrogates, APairIsAHighHalfInFrontOfALowOne) {
  const std::u16string text = u"\xD83D\xDE00\xDE00\xD83D";
  EXPECT_TRUE(is_pair_at(text, 0));
  for (const std::size_t at : {1U, 2U, 3U}) EXPECT_FALSE(is_pair_at(text, at)) << at;
  for (const char16_t unit : {u'\xD7FF', u'\xE000'}) EXPECT_FALSE(is_high_half(unit) || is_low_half(unit));
  EXPECT_TRUE(is_high_half(u'\xDBFF') && is_low_half(u'\xDFFF'));
}

TEST(Scanner, WhatCannotBeTakenStays) {
  Scanner scanner("jun \t12345678901,x");
  int number = 0;
  EXPECT_FALSE(scanner.take('U') || scanner.take_word("JUL") || scanner.take_blanks());
  EXPECT_EQ(scanner.take_number(1, 9, number), 0U);
  EXPECT_TRUE(scanner.take_word("JUN") && scanner.take_blanks());
  EXPECT_EQ(scanner.take_number(1, 9, number), 0U);
  EXPECT_EQ(scanner.take_digits(), "12345678901");
  EXPECT_EQ(scanner.take_digits(), "");
  EXPECT_FALSE(scanner.at_end());
  EXPECT_TRUE(scanner.take(',') && scanner.take('X') && scanner.at_end());
  EXPECT_FALSE(scanner.take('X') || scanner.take_word("X"));

  Scanner numbers("007/12");
  EXPECT_EQ(numbers.take_number(4, 9, number), 0U);
  EXPECT_EQ(numbers.take_number(1, 3, number), 3U);
  EXPECT_EQ(number, 7);
  EXPECT_TRUE(numbers.take('/'));
  EXPECT_EQ(numbers.take_number(2, 2, number), 2U);
  EXPECT_EQ(number, 12);
}

TEST(Calendar, YearsOfTwoDigits) {
  EXPECT_EQ(year_of_two_digits(0), 2000);
  EXPECT_EQ(year_of_two_digits(29), 2029);
  EXPECT_EQ(year_of_two_digits(30), 1930);
  EXPECT_EQ(year_of_two_digits(99), 1999);
}

}  // namespace
}  // namespace trvtrout::text
