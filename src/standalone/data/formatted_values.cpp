// Values and texts by print formats, and the host's fuzz.
#include <fmt/format.h>

#include <cmath>
#include <cstring>

#include "host/data.h"
#include "standalone/data/cell_number.h"
#include "standalone/data/cells.h"
#include "standalone/text/ascii.h"

namespace host {

namespace {

constexpr double kFuzz = 1e-10;         // relative
constexpr std::size_t kLongFixed = 40;  // a longer fixed text gives way to the shortest one with an exponent
constexpr std::uint8_t kHexString = 2;

constexpr long kConverted = 0;
constexpr long kBadText = 1;
constexpr long kTooLong = 2;

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

long StringFromText(std::string_view text, int width, OBS* value) {
  if (text.size() > static_cast<std::size_t>(width)) return kTooLong;
  standalone::PadText(text, width, value);
  return kConverted;
}

/// `width` counts digits, two to a byte; blanks behind them stand for bytes that are blank.
long StringFromHex(std::string_view text, int width, OBS* value) {
  if (text.size() > static_cast<std::size_t>(width)) return kTooLong;
  text = standalone::WithoutTrailingBlanks(text);
  if (text.size() % 2 != 0) return kBadText;
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = HexDigit(text[i]);
    const int low = HexDigit(text[i + 1]);
    if (high < 0 || low < 0) return kBadText;
    bytes += static_cast<char>(high * 16 + low);
  }
  bytes.resize(static_cast<std::size_t>(CellCount(width / 2)) * sizeof(OBS), ' ');
  std::memcpy(static_cast<void*>(value), bytes.data(), bytes.size());
  return kConverted;
}

long NumberFromText(std::string_view text, OBS* value) {
  const std::string_view trimmed = standalone::Trimmed(text);
  if (trimmed.empty() || trimmed == ".") {
    value->number = kSystemMissing;
    return kConverted;
  }
  standalone::CellNumber number;
  if (!standalone::ReadNumber(trimmed, number)) return kBadText;
  value->number = number.value;
  return kConverted;
}

std::string TextFromNumber(double number, int decimals) {
  std::string text = fmt::format("{:.{}f}", number, std::clamp(decimals, 0, standalone::kMostDecimals));
  if (text.size() > kLongFixed) return fmt::format("{}", number);
  // A zero that keeps the sign of what was rounded away would look like a value below 0.
  const bool isZero = text.find_first_of("123456789") == std::string::npos;
  if (isZero && text.front() == '-') text.erase(0, 1);
  return text;
}

std::string HexFromText(const OBS* value, int width) {
  std::string text;
  const char* bytes = reinterpret_cast<const char*>(value);
  for (int i = 0; i < width / 2; ++i)
    text += fmt::format("{:02X}", static_cast<unsigned char>(bytes[i]));
  return text;
}

}  // namespace

bool FUZZYINTEGER(const double* value) {
  return std::isfinite(*value) && std::abs(*value - std::round(*value)) <= kFuzz * std::abs(*value);
}

double FUZZYROUND(const double* value) {
  return std::round(*value);
}

long FromString(std::string_view text, const VORN_Format& format, OBS* value) {
  if (!format.IsString()) return NumberFromText(text, value);
  return format.type == kHexString ? StringFromHex(text, format.width, value)
                                   : StringFromText(text, format.width, value);
}

long ToString(const OBS* value, const VORN_Format& format, std::string& text) {
  if (format.type == kHexString) {
    text = HexFromText(value, format.width);
    return kConverted;
  }
  if (format.IsString()) {
    text.assign(reinterpret_cast<const char*>(value), static_cast<std::size_t>(format.width));
    return kConverted;
  }
  if (value->number == kSystemMissing || !std::isfinite(value->number)) {
    text = ".";
    return std::isfinite(value->number) ? kConverted : kBadText;
  }
  text = TextFromNumber(value->number, format.decimals);
  return kConverted;
}

char DecimalSymbol() {
  return '.';
}

}  // namespace host
