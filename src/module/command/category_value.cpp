#include "module/command/category_value.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace tavo {

namespace {

constexpr std::uint8_t kStringFormat = 1;
constexpr std::uint8_t kHexFormat = 2;
constexpr std::uint8_t kNumberFormat = 5;
constexpr int kNumericWidth = 40;  // wider than any number that a format prints

/// The variable's format, made fit for reading: numbers are not bound to their print width, and a string has
/// its variable's width, whatever the dictionary says.
host::VORN_Format ReadingFormat(const host::VORN_Variable& variable) {
  host::VORN_Format format = variable.GetFormat();
  if (variable.IsNumeric()) {
    if (format.IsString()) format = {kNumberFormat, kNumericWidth, 0};
    format.width = kNumericWidth;
    return format;
  }
  const bool isHex = format.type == kHexFormat;
  return {isHex ? kHexFormat : kStringFormat, isHex ? 2 * variable.GetType() : variable.GetType(), 0};
}

/// Without a point, digits read by a format with decimals would have the last ones taken for decimals. The
/// point goes in front of an exponent.
std::string NumericText(std::string_view given, int decimals) {
  std::string text(given);
  const bool isNumber = text.find_first_of("0123456789") != std::string::npos;
  if (decimals > 0 && isNumber && text.find('.') == std::string::npos) {
    text.insert(std::min(text.find_first_of("eE"), text.find_last_of("0123456789") + 1), 1, '.');
  }
  if (const std::size_t point = text.find('.'); point != std::string::npos)
    text[point] = host::DecimalSymbol();
  return text;
}

/// Cells that hold blanks in a string and zero in a number.
std::vector<host::OBS> EmptyCells(const host::VORN_Variable& variable) {
  host::OBS empty;
  if (variable.IsNumeric()) {
    empty.number = 0;
  } else {
    std::memset(empty.text, ' ', sizeof empty.text);
  }
  return std::vector<host::OBS>(static_cast<std::size_t>(host::CellCount(variable.GetType())), empty);
}

}  // namespace

std::optional<CategoryValue> ReadCategoryValue(const host::VORN_Variable& variable, std::string_view text) {
  if (variable.GetType() < 0) return std::nullopt;
  CategoryValue value;
  value.format = ReadingFormat(variable);
  value.cells = EmptyCells(variable);
  const std::string read =
      variable.IsNumeric() ? NumericText(text, value.format.decimals) : std::string(text);
  if (read.size() > static_cast<std::size_t>(value.format.width)) return std::nullopt;
  if (host::FromString(read, value.format, value.cells.data()) != 0) return std::nullopt;
  return value;
}

}  // namespace tavo
