// Numbers in the text of a data file.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace standalone {

constexpr int kMostDecimals = 16;  // that a format shows
constexpr int kSureDigits = 15;    // each whole number of so many digits is a double of its own

/// A number and how it was written.
struct CellNumber {
  double value = 0;
  int decimals = 0;  // places behind the point that it needs, at most kMostDecimals
};

/// Reads a text as a finite number: sign, digits with a point among or beside them, exponent, blanks around
/// it. False for anything else, such as hexadecimal digits, "inf", "nan", an empty text or a number beyond
/// the largest double.
bool ReadNumber(std::string_view text, CellNumber& number);

/// True for the text of a number that looks like an identifier: a zero before other digits, as in 01 or 00.5,
/// or more digits before the point, without an exponent, than a double surely holds. As numbers, 01 and 1
/// would become one value, and so would 9007199254740993 and its neighbour.
bool LooksLikeIdentifier(std::string_view number);

/// Reads a plain decimal at `text`, the form that nearly all cells have, and returns the place behind it;
/// null when there is none or it needs `ReadNumber`. The text must go on to a byte that is neither a digit
/// nor a point. The digits make a whole number below 2^53 and the power of ten is at most 10^16; both are
/// exact doubles, so their quotient is the nearest double (Clinger 1990). What looks like an identifier is
/// none.
inline const char* ReadPlainNumber(const char* text, CellNumber& number) {
  static constexpr std::array<double, kMostDecimals + 1> kPowers = {
      1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
  constexpr std::uint64_t kExactBound = std::uint64_t{1} << 53;
  const bool isNegative = *text == '-';
  const char* const start = text + isNegative;
  const char* place = start;
  std::uint64_t digits = 0;
  unsigned digit;
  while ((digit = static_cast<unsigned char>(*place) - unsigned{'0'}) < 10) {
    digits = digits * 10 + digit;
    ++place;
  }
  auto count = place - start;
  if (count > kSureDigits || (count > 1 && *start == '0')) return nullptr;
  number.decimals = 0;
  if (*place == '.') {
    const char* const fraction = ++place;
    while ((digit = static_cast<unsigned char>(*place) - unsigned{'0'}) < 10) {
      digits = digits * 10 + digit;
      ++place;
    }
    number.decimals = static_cast<int>(place - fraction < 20 ? place - fraction : 20);
    count += place - fraction;
  }
  if (count == 0 || count > 18 || digits >= kExactBound || number.decimals > kMostDecimals) return nullptr;
  const auto whole = static_cast<double>(static_cast<std::int64_t>(digits));
  const double size =
      number.decimals == 0 ? whole : whole / kPowers[static_cast<std::size_t>(number.decimals)];
  number.value = isNegative ? 0.0 - size : size;  // never -0
  return place;
}

}  // namespace standalone
