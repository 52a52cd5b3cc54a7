#include "standalone/output/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "standalone/text/numbers.h"

namespace standalone {

namespace {

using Kind = host::BpFormatSpec::Kind;

constexpr int kMaxDecimals = 16;
constexpr double kLarge = 1e15;  // from here on numbers are written with an exponent
// The longest finite double has 309 digits before the point.
using Buffer = std::array<char, 400>;

std::string Raw(double value, std::chars_format format, int precision) {
  Buffer buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision);
  return {buffer.data(), result.ptr};
}

bool IsZeroText(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c == '0' || c == '.' || c == '-'; });
}

/// Drops the zero before the point and the sign of a zero.
std::string InTableStyle(std::string text) {
  if (text.starts_with('-') && IsZeroText(text)) text.erase(0, 1);
  const std::size_t start = text.starts_with('-') ? 1 : 0;
  if (text.compare(start, 2, "0.") == 0) text.erase(start, 1);
  return text;
}

std::string Fixed(double value, int decimals) {
  return InTableStyle(Raw(value, std::chars_format::fixed, std::clamp(decimals, 0, kMaxDecimals)));
}

std::string ThreeDecimals(double value) {
  const double size = std::fabs(value);
  if (size >= kLarge) return Raw(value, std::chars_format::scientific, 3);
  if (size == 0 || size >= 0.01) return Fixed(value, 3);
  if (size < 1e-5) return Raw(value, std::chars_format::scientific, 2);
  const int leadingZeros = static_cast<int>(-std::floor(std::log10(size)));  // 3 for .00123
  return Fixed(value, leadingZeros + 2);
}

std::string AtMostThreeDecimals(double value) {
  if (std::fabs(value) >= kLarge) return ThreeDecimals(value);
  std::string text = Raw(value, std::chars_format::fixed, 3);
  while (text.back() == '0')
    text.pop_back();
  if (text.back() == '.') text.pop_back();
  if (value != 0 && IsZeroText(text)) return ThreeDecimals(value);
  return InTableStyle(text);
}

}  // namespace

std::string NumberText(double value, const host::BpFormatSpec& format) {
  if (IsMissingNumber(value)) return {};
  switch (format.kind) {
    case Kind::kCoefficient:
    case Kind::kGeneralStat:
      return ThreeDecimals(value);
    case Kind::kSignificance:
      return value < 0.0005 ? "<.001" : Fixed(value, 3);
    case Kind::kCount:
      return Fixed(value, 0);
    case Kind::kPercent:
      return Fixed(value, 1) + "%";
    case Kind::kCorrelation:
      return Fixed(value, 3);
    case Kind::kSigDigit:
      return AtMostThreeDecimals(value);
    case Kind::kMean:
      return std::fabs(value) >= kLarge ? Raw(value, std::chars_format::scientific, 3)
                                        : Fixed(value, format.decimals < 0 ? 3 : format.decimals);
  }
  return ShortestText(value);
}

std::string NumberLabel(double value, const host::BpFormatSpec& format) {
  std::string text = NumberText(value, format);
  if (text.empty() || std::strtod(text.c_str(), nullptr) == value) return text;
  return InTableStyle(ShortestText(value));
}

}  // namespace standalone
