#include "standalone/data/cell_number.h"

#include <fast_float/fast_float.h>

#include <algorithm>
#include <cmath>

#include "standalone/text/ascii.h"

namespace standalone {

namespace {

/// Places behind the point that show every digit written: those of the mantissa less the exponent.
int DecimalsOf(std::string_view text) {
  constexpr int kFar = 100000;  // beyond any exponent of a double
  int decimals = 0;
  std::size_t i = text.find('.');
  if (i != std::string_view::npos) {
    for (++i; i < text.size() && IsDigit(text[i]); ++i)
      decimals = std::min(decimals + 1, kFar);
  }
  const std::size_t mark = text.find_first_of("eE");
  if (mark == std::string_view::npos) return std::min(decimals, kMostDecimals);
  int exponent = 0;
  for (i = mark + 1; i < text.size(); ++i) {
    if (IsDigit(text[i])) exponent = std::min(exponent * 10 + (text[i] - '0'), kFar);
  }
  const bool isNegative = text.substr(mark).find('-') != std::string_view::npos;
  return std::clamp(isNegative ? decimals + exponent : decimals - exponent, 0, kMostDecimals);
}

}  // namespace

bool ReadNumber(std::string_view text, CellNumber& number) {
  text = Trimmed(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return false;
  }
  const std::string_view size = text.starts_with('-') ? text.substr(1) : text;
  if (size.empty() || (!IsDigit(size.front()) && size.front() != '.')) return false;  // "inf", "nan"

  double value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = fast_float::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || !std::isfinite(value)) return false;
  number.value = value + 0.0;  // -0 becomes 0
  number.decimals = DecimalsOf(text);
  return true;
}

bool LooksLikeIdentifier(std::string_view number) {
  number = Trimmed(number);
  if (number.starts_with('-') || number.starts_with('+')) number.remove_prefix(1);
  const std::size_t digits = std::min(number.find_first_not_of("0123456789"), number.size());
  if (digits > 1 && number.front() == '0') return true;
  return digits > kSureDigits && number.find_first_of("eE") == std::string_view::npos;
}

}  // namespace standalone
