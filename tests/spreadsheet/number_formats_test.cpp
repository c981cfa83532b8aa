#include "spreadsheet/number_formats.h"

#include <gtest/gtest.h>

namespace trvtrout::spreadsheet {
namespace {

TEST(NumberFormats, OnlyFormatsThatAreReservedHaveANumber) {
  EXPECT_EQ(reserved_number_format("General"), 0);
  EXPECT_EQ(reserved_number_format("m/d/yyyy h:mm"), 22);
  EXPECT_EQ(reserved_number_format("m/d/yy h:mm AM/PM"), std::nullopt);
}

}  // namespace
}  // namespace trvtrout::spreadsheet
