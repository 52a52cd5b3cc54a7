// Numbers as plain texts: those that the command language writes, and the shortest text of a double.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace standalone {

/// True for an optional sign, digits with at most one period among or beside them, and an optional exponent:
/// 1, -1, .5, 3., +2, 1e-6, 1E+5. Neither hexadecimal numbers nor "inf" or "nan".
bool IsNumberText(std::string_view text);

/// The nearest double to such a text; none when the number overflows or underflows, or is the value that
/// stands for a missing number.
std::optional<double> NumberFromText(std::string_view text);

/// The whole of a text as a double, as std::from_chars reads it: no plus sign, but "inf" and "nan". None for
/// anything else, and for a number that overflows or underflows.
std::optional<double> DoubleFromText(std::string_view text);

/// The shortest text that reads back to the same double; empty for a missing number.
std::string ShortestText(double value);
/// Puts that text behind another.
void AppendShortest(std::string& text, double value);

/// True for the host's missing value and for numbers that aren't finite.
bool IsMissingNumber(double value);

}  // namespace standalone
