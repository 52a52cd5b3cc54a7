#include "module/command/category_value.h"

#include <gtest/gtest.h>

#include "module/command/valid_specs.h"

namespace command_parser_test {

namespace {

using tavo::ReadCategoryValue;
using tavo::TavoValidSpecs;

double NumberOf(const char* text, const host::VORN_Format& format) {
  host::VORN_Variable variable("v", 0);
  variable.SetFormat(format);
  const auto value = ReadCategoryValue(variable, text);
  EXPECT_TRUE(value.has_value()) << text;
  return value ? value->cells.at(0).number : host::kSystemMissing;
}

TEST(CategoryValue, NumbersReadTheSameWithAndWithoutDecimalsInTheFormat) {
  for (const host::VORN_Format& format : {host::VORN_Format{5, 8, 2}, host::VORN_Format{5, 3, 0}}) {
    EXPECT_EQ(NumberOf("3", format), 3);
    EXPECT_EQ(NumberOf("-12345678901", format), -12345678901.0);
    EXPECT_EQ(NumberOf("0.1", format), 0.1);
    EXPECT_EQ(NumberOf("1e3", format), 1000);
    EXPECT_EQ(NumberOf("25E-1", format), 2.5);
    EXPECT_EQ(NumberOf(" 7 ", format), 7);
  }
}

TEST(CategoryValue, TextIsNoNumber) {
  const host::VORN_Variable variable("v", 0);
  for (const char* text : {"x", "1x", "1.2.3", "1e", "inf", "--1"}) {
    EXPECT_FALSE(ReadCategoryValue(variable, text)) << text;
  }
}

TEST(CategoryValue, ANumberLongerThanTheReadingWidthIsRefused) {
  const host::VORN_Variable variable("v", 0);
  EXPECT_TRUE(ReadCategoryValue(variable, std::string(39, '1')));
  EXPECT_FALSE(ReadCategoryValue(variable, std::string(41, '1')));
}

TEST(CategoryValue, AStringMayBeAsLongAsItsVariable) {
  const host::VORN_Variable variable("v", 9);
  const auto value = ReadCategoryValue(variable, "123456789");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->cells.size(), 2U);
  EXPECT_EQ(TavoValidSpecs::ValueText(*value, false), "123456789");
  EXPECT_FALSE(ReadCategoryValue(variable, "1234567890"));
}

TEST(CategoryValue, AHexadecimalFormatReadsTwoDigitsPerByte) {
  host::VORN_Variable variable("v", 3);
  variable.SetFormat({2, 6, 0});
  const auto value = ReadCategoryValue(variable, "4142");
  ASSERT_TRUE(value);
  EXPECT_EQ(std::string(value->cells.at(0).text, 8), "AB      ");
  EXPECT_FALSE(ReadCategoryValue(variable, "4142434445"));
  EXPECT_FALSE(ReadCategoryValue(variable, "4g"));
}

TEST(CategoryValue, AFormatThatDisagreesWithTheVariableDoesNotChangeItsCells) {
  host::VORN_Variable text("v", 4);
  text.SetFormat({1, 200, 0});
  EXPECT_FALSE(ReadCategoryValue(text, "12345"));
  EXPECT_EQ(ReadCategoryValue(text, "1234")->cells.size(), 1U);
  host::VORN_Variable number("n", 0);
  number.SetFormat({1, 20, 0});
  EXPECT_EQ(ReadCategoryValue(number, "12")->cells.at(0).number, 12);
}

}  // namespace

}  // namespace command_parser_test
