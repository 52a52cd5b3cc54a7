#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "host/data.h"
#include "standalone/data/cell_number.h"
#include "standalone/data/cells.h"

namespace {

using host::OBS;
using host::VORN_Format;

constexpr VORN_Format kNumber{5, 40, 0};

TEST(Fuzz, TakesNumbersWithinTenDigitsOfAWholeOneForWhole) {
  for (const double value : {0.0, 1.0, -7.0, 100.0000000001, 99.9999999999, 1e15, 1e300}) {
    EXPECT_TRUE(host::FUZZYINTEGER(&value)) << value;
  }
  for (const double value :
       {0.5, 100.0001, 1e-11, -3.1, std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_FALSE(host::FUZZYINTEGER(&value)) << value;
  }
}

TEST(Fuzz, RoundsToTheNearestWholeNumber) {
  const std::vector<std::pair<double, double>> cases = {
      {100.0000000001, 100}, {99.9999999999, 100}, {2.4, 2}, {-2.6, -3}, {0, 0}};
  for (const auto& [value, expected] : cases)
    EXPECT_EQ(host::FUZZYROUND(&value), expected);
}

TEST(FromString, ReadsNumbersThatFillTheText) {
  const std::vector<std::pair<std::string, double>> cases = {
      {"3", 3},       {"3.", 3},
      {"+3", 3},      {"-.5", -0.5},
      {"1e5", 1e5},   {"  42  ", 42},
      {"1E-3", 1e-3}, {"-0", 0},
      {"0.1", 0.1},   {"123456789012345678901", 123456789012345678901.0}};
  for (const auto& [text, expected] : cases) {
    OBS value;
    value.number = -99;
    EXPECT_EQ(host::FromString(text, kNumber, &value), 0) << text;
    EXPECT_EQ(value.number, expected) << text;
    EXPECT_FALSE(std::signbit(value.number) && value.number == 0) << text;
  }
}

TEST(FromString, ABlankTextOrALonePeriodIsSystemMissing) {
  for (const std::string text : {"", "   ", ".", " . "}) {
    OBS value;
    value.number = 1;
    EXPECT_EQ(host::FromString(text, kNumber, &value), 0);
    EXPECT_EQ(value.number, host::kSystemMissing);
  }
}

TEST(FromString, RefusesTextsThatAreNoNumbersAndLeavesTheValue) {
  for (const std::string text : {"x", "3x", "1 2", "inf", "nan", "-inf", "0x10", "1e", "1e400", "+-3", "--3",
                                 "-", "+", "..", "1,5", "1e5.0", "3\n"}) {
    OBS value;
    value.number = 7;
    EXPECT_NE(host::FromString(text, kNumber, &value), 0) << text;
    EXPECT_EQ(value.number, 7) << text;
  }
}

TEST(FromString, PadsStringsThroughTheirCells) {
  OBS cells[2];
  EXPECT_EQ(host::FromString("abc", {1, 10, 0}, cells), 0);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(cells), 16), "abc             ");
  EXPECT_EQ(host::FromString("", {1, 3, 0}, cells), 0);
  EXPECT_EQ(std::string(cells[0].text, 8), "        ");
}

TEST(FromString, RefusesATextLongerThanTheWidth) {
  OBS cell;
  EXPECT_NE(host::FromString("abcd", {1, 3, 0}, &cell), 0);
  EXPECT_NE(host::FromString("414243", {2, 4, 0}, &cell), 0);
}

TEST(FromString, ReadsHexadecimalStringsTwoDigitsToAByte) {
  OBS cells[2];
  EXPECT_EQ(host::FromString("41C3a4", {2, 18, 0}, cells), 0);  // 9 bytes: two cells
  EXPECT_EQ(std::string(reinterpret_cast<char*>(cells), 16), "A\xC3\xA4             ");
  EXPECT_EQ(host::FromString("4142  ", {2, 6, 0}, cells), 0);  // blanks stand for blank bytes
  EXPECT_EQ(std::string(cells[0].text, 8), "AB      ");
  EXPECT_NE(host::FromString("414", {2, 6, 0}, cells), 0);
  EXPECT_NE(host::FromString("4G", {2, 6, 0}, cells), 0);
}

TEST(ToString, PrintsNumbersWithTheFormatsDecimals) {
  const std::vector<std::tuple<double, int, std::string>> cases = {
      {3, 0, "3"},          {3, 2, "3.00"},
      {0.5, 1, "0.5"},      {-0.001, 2, "0.00"},
      {-1.005, 1, "-1.0"},  {1e15, 0, "1000000000000000"},
      {1e300, 2, "1e+300"}, {host::kSystemMissing, 2, "."}};
  for (const auto& [number, decimals, expected] : cases) {
    OBS value;
    value.number = number;
    std::string text = "old";
    EXPECT_EQ(host::ToString(&value, {5, 8, decimals}, text), 0);
    EXPECT_EQ(text, expected);
  }
}

TEST(ToString, RefusesNumbersThatAreNotFinite) {
  OBS value;
  std::string text;
  for (const double number : {std::nan(""), std::numeric_limits<double>::infinity()}) {
    value.number = number;
    EXPECT_NE(host::ToString(&value, {5, 8, 2}, text), 0);
  }
}

TEST(ToString, KeepsTheBlanksOfStrings) {
  std::string text;
  EXPECT_EQ(host::ToString(standalone::TextValue("abc", 10).data(), {1, 10, 0}, text), 0);
  EXPECT_EQ(text, "abc       ");
  EXPECT_EQ(host::ToString(standalone::TextValue("AB", 3).data(), {2, 6, 0}, text), 0);
  EXPECT_EQ(text, "414220");
}

TEST(ToString, IsReadBackByFromString) {
  for (const VORN_Format& format : {VORN_Format{1, 12, 0}, VORN_Format{2, 24, 0}}) {
    const std::vector<OBS> original = standalone::TextValue(
        "gr\xC3\xB6\xC3\x9F"
        "e 12",
        12);
    std::string text;
    ASSERT_EQ(host::ToString(original.data(), format, text), 0);
    std::vector<OBS> copy(2);
    ASSERT_EQ(host::FromString(text, format, copy.data()), 0);
    EXPECT_EQ(std::memcmp(copy.data(), original.data(), 16), 0);
  }
  for (const double number : {0.0, 1.0, -12.25, 1234567.875, 1e300}) {
    OBS value;
    value.number = number;
    std::string text;
    ASSERT_EQ(host::ToString(&value, {5, 20, 3}, text), 0);
    OBS copy;
    ASSERT_EQ(host::FromString(text, kNumber, &copy), 0);
    EXPECT_EQ(copy.number, number);
  }
}

TEST(DecimalSymbol, IsAPoint) {
  EXPECT_EQ(host::DecimalSymbol(), '.');
}

TEST(ReadNumber, TellsTheDecimalsThatTheTextNeeds) {
  const std::vector<std::pair<std::string, int>> cases = {{"3", 0},
                                                          {"3.0", 1},
                                                          {"3.25", 2},
                                                          {"1e5", 0},
                                                          {"1.5e-3", 4},
                                                          {"1.25e1", 1},
                                                          {"1e-30", 16},
                                                          {"12.", 0},
                                                          {"0.12345678901234567890", 16},
                                                          {"1e99999999999999", -1}};
  for (const auto& [text, decimals] : cases) {
    standalone::CellNumber number;
    EXPECT_EQ(standalone::ReadNumber(text, number), decimals >= 0) << text;
    if (decimals >= 0) {
      EXPECT_EQ(number.decimals, decimals) << text;
    }
  }
}

TEST(ReadPlainNumber, GivesTheSameDoubleAsTheFullReader) {
  // The full reader rounds correctly for any text; the plain one may only answer when it does so too.
  std::uint64_t state = 88172645463325252u;
  const auto random = [&state] {  // xorshift64 (Marsaglia 2003)
    state ^= state << 13;
    state ^= state >> 7;
    return state ^= state << 17;
  };
  int answered = 0;
  for (int i = 0; i < 200000; ++i) {
    std::string text = random() % 2 == 0 ? "-" : "";
    const std::size_t whole = random() % 12;
    const std::size_t fraction = random() % 10;
    for (std::size_t d = 0; d < whole; ++d)
      text += static_cast<char>('0' + random() % 10);
    if (fraction > 0 || whole == 0) text += '.';
    for (std::size_t d = 0; d < fraction; ++d)
      text += static_cast<char>('0' + random() % 10);
    const std::string closed = text + '\n';
    standalone::CellNumber plain;
    standalone::CellNumber full;
    const char* end = standalone::ReadPlainNumber(closed.c_str(), plain);
    if (end == nullptr) continue;
    ASSERT_EQ(end, closed.c_str() + text.size());
    ASSERT_TRUE(standalone::ReadNumber(text, full)) << text;
    ASSERT_EQ(plain.value, full.value) << text;
    ASSERT_EQ(plain.decimals, full.decimals) << text;
    ++answered;
  }
  EXPECT_GT(answered, 150000);
}

TEST(ReadPlainNumber, LeavesWhatItCannotReadExactly) {
  standalone::CellNumber number;
  for (const char* text :
       {"\n", "-\n", ".\n", "-.\n", "+1\n", "9007199254740993\n", "1234567890123456\n", "01\n", "-00.5\n",
        "1234567890123456789\n", "123456789012345678901234567890\n", "0.00000000000000000001\n", "x\n"}) {
    EXPECT_EQ(standalone::ReadPlainNumber(text, number), nullptr) << text;
  }
}

}  // namespace
