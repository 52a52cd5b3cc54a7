#include "standalone/data/format_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "standalone/data/cell_number.h"
#include "standalone/data/cells.h"
#include "standalone/text/ascii.h"

namespace standalone {

namespace {

constexpr int kWidestNumber = 40;
constexpr std::uint8_t kString = 1;
constexpr std::uint8_t kHexString = 2;

bool ToWhole(std::string_view text, int& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && !text.empty();
}

}  // namespace

std::optional<host::VORN_Format> FormatFromText(std::string_view text) {
  const std::size_t letters = std::min(text.find_first_of("0123456789."), text.size());
  const std::string name = UpperOf(text.substr(0, letters));
  const std::string_view digits = text.substr(letters);
  const std::size_t point = digits.find('.');
  host::VORN_Format format{5, 0, 0};
  if (!ToWhole(digits.substr(0, point), format.width) || format.width < 1) return std::nullopt;
  if (point != std::string_view::npos && !ToWhole(digits.substr(point + 1), format.decimals))
    return std::nullopt;
  if (name == "F") {
    const bool isSound = format.width <= kWidestNumber && format.decimals >= 0 &&
                         format.decimals <= kMostDecimals && format.decimals < format.width;
    return isSound ? std::optional(format) : std::nullopt;
  }
  if (point != std::string_view::npos) return std::nullopt;
  format.type = name == "A" ? 1 : 2;
  if (name != "A" && (name != "AHEX" || format.width % 2 != 0)) return std::nullopt;
  // AHEX shows each byte as two digits.
  const int bytes = name == "A" ? format.width : format.width / 2;
  return bytes <= static_cast<int>(kWidestText) ? std::optional(format) : std::nullopt;
}

std::string FormatText(const host::VORN_Format& format) {
  if (format.type == kString) return fmt::format("A{}", format.width);
  if (format.type == kHexString) return fmt::format("AHEX{}", format.width);
  return fmt::format("F{}.{}", format.width, format.decimals);
}

int FormatBytes(const host::VORN_Format& format) {
  return format.type == kHexString ? format.width / 2 : format.width;
}

}  // namespace standalone
