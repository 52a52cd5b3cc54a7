// Values as cells: a text padded to its column's width, a number.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "host/data.h"

namespace standalone {

constexpr std::size_t kWidestText = 32767;  // bytes of a string variable

/// Bytes that the values in one dictionary (value labels, missing values) may take. Each takes the full width
/// of its variable, so that a file of few bytes could ask for very many.
constexpr std::size_t kDictionaryRoom = std::size_t{256} << 20;

/// Writes a string value of the given width: cut to the width, padded with blanks through all its cells.
void PadText(std::string_view text, int width, host::OBS* cells);

/// The same as a value of its own.
std::vector<host::OBS> TextValue(std::string_view text, int width);

/// The text of a string value of the given width, without the blanks behind it.
std::string_view UnpaddedText(const host::OBS* cells, int width);

/// A numeric value of its own.
std::vector<host::OBS> NumberValue(double number);

}  // namespace standalone
