// A value as text.
#pragma once

#include <string>

#include "host/data.h"

namespace tavo {

/// A value by its variable's print format, without blanks around it; empty for null cells.
std::string PrintedValue(const host::VORN_Variable& variable, const host::OBS* cells);

}  // namespace tavo
