// tavoreg convert
#pragma once

#include "standalone/cli/arguments.h"

namespace standalone {

/// Reads a data file and writes it in the form that the other name's ending says. The result is the exit
/// status.
int ConvertDataFile(const ConvertArguments& arguments);

}  // namespace standalone
