// tavoreg describe
#pragma once

#include "standalone/cli/arguments.h"

namespace standalone {

/// Reads a data file and shows its dictionary on standard output. The result is the exit status.
int DescribeDataFile(const DescribeArguments& arguments);

}  // namespace standalone
