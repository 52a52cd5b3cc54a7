// tavoreg describe
#pragma once

#include "cli/arguments.h"

namespace standalone {

/// Reads a data file and shows its dictionary on standard output. The result is the exit status.
int DescribeDataFile(const DescribeArguments& arguments);

}  // namespace standalone
