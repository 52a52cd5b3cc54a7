// A category that a command or a plan names.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "host/data.h"

namespace tavo {

/// A value of a variable in host cells; empty: none.
struct CategoryValue {
  std::vector<host::OBS> cells;
  host::VORN_Format format;  // by which the value becomes text again
  bool Empty() const { return cells.empty(); }
};

/// Reads a text as a value of the variable, by the variable's own kind of format: a number, a string padded
/// with blanks, or the hexadecimal digits of a string. The result has exactly the cells of the variable's
/// values. Nothing for a text that doesn't fit, a string longer than the variable among them.
std::optional<CategoryValue> ReadCategoryValue(const host::VORN_Variable& variable, std::string_view text);

}  // namespace tavo
