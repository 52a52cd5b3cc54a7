// Numbers as the command language writes them.
#pragma once

#include <optional>
#include <string_view>

namespace standalone {

/// True for an optional sign, digits with at most one period among or beside them, and an optional exponent:
/// 1, -1, .5, 3., +2, 1e-6, 1E+5. Neither hexadecimal numbers nor "inf" or "nan".
bool IsNumberText(std::string_view text);

/// The nearest double to such a text; none when the number overflows or underflows, or is the value that
/// stands for a missing number.
std::optional<double> NumberFromText(std::string_view text);

}  // namespace standalone
