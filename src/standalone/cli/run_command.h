// tavoreg run
#pragma once

#include "standalone/cli/arguments.h"

namespace standalone {

/// Reads the data, runs the commands, writes the output. The result is the exit status.
int RunCommandFile(const RunArguments& arguments);

}  // namespace standalone
