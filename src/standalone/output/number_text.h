// Numbers as the text, Markdown and HTML renderers print them.
#pragma once

#include <string>

#include "host/output.h"

namespace standalone {

/// A number by its format, in the style of statistical tables: no zero before the decimal point (".123",
/// "-.5"), and no sign before a zero. A missing number, and one that isn't finite, is empty. With the formats
/// of coefficients and general statistics a number that isn't zero never prints as .000: below .01 it has
/// three significant digits, below 1e-5 with an exponent; from 1e15 on there is an exponent too, as with the
/// formats of means and of significant digits.
std::string NumberText(double value, const host::BpFormatSpec& format);

/// The same for a label: a number that the format would round shows all its digits, so that two labels of
/// different numbers never look alike.
std::string NumberLabel(double value, const host::BpFormatSpec& format);

}  // namespace standalone
