// A category that a command or a plan gives as text, as a value of its variable.
#pragma once

#include <optional>
#include <string_view>

#include "host/data.h"
#include "module/command/valid_specs.h"

namespace tavo {

/// Reads a text as a value of the variable, by the variable's own kind of format: a number, a string padded
/// with blanks, or the hexadecimal digits of a string. The result has exactly the cells of the variable's
/// values. Nothing for a text that doesn't fit, a string longer than the variable among them.
std::optional<CategoryValue> ReadCategoryValue(const host::VORN_Variable& variable, std::string_view text);

}  // namespace tavo
