#include "standalone/text/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

#include "host/data.h"
#include "standalone/text/ascii.h"

namespace standalone {

namespace {

/// Removes the digits at the front of the text and returns how many there were.
std::size_t TakeDigits(std::string_view& text) {
  std::size_t count = 0;
  while (count < text.size() && IsDigit(text[count]))
    ++count;
  text.remove_prefix(count);
  return count;
}

bool TakeOneOf(std::string_view& text, std::string_view characters) {
  if (text.empty() || characters.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

bool IsNumberText(std::string_view text) {
  TakeOneOf(text, "+-");
  std::size_t digits = TakeDigits(text);
  if (TakeOneOf(text, ".")) digits += TakeDigits(text);
  if (digits == 0) return false;
  if (TakeOneOf(text, "eE")) {
    TakeOneOf(text, "+-");
    if (TakeDigits(text) == 0) return false;
  }
  return text.empty();
}

std::optional<double> NumberFromText(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);  // std::from_chars knows the minus sign only
  const std::optional<double> number = DoubleFromText(text);
  return number == host::kSystemMissing ? std::nullopt : number;
}

std::optional<double> DoubleFromText(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string ShortestText(double value) {
  std::string text;
  AppendShortest(text, value);
  return text;
}

void AppendShortest(std::string& text, double value) {
  if (IsMissingNumber(value)) return;
  std::array<char, 32> digits;  // sign, 17 digits, point, exponent: 24 at most
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), result.ptr);
}

bool IsMissingNumber(double value) {
  return value == host::kSystemMissing || !std::isfinite(value);
}

}  // namespace standalone
