// A value as text.
#pragma once

#include <string>

#include "host/data.h"

namespace tavo {

/// A value by its variable's print format, without blanks around it; empty for null cells.
std::string PrintedValue(const host::VORN_Variable& variable, const host::OBS* cells);

/// A value so that no other of its variable reads the same: a number with as many digits as it has, a string
/// whole and in single quotes (those in it doubled), without the blanks that pad it. Empty for null cells.
std::string ValueInFull(const host::VORN_Variable& variable, const host::OBS* cells);

/// The shortest text that reads back to the same number.
std::string ShortestText(double number);

}  // namespace tavo
