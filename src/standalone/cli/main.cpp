// The program tavoreg.
#include <exception>
#include <iostream>

#include "standalone/cli/arguments.h"
#include "standalone/cli/commands.h"

int main(int argc, char** argv) {
  try {
    const standalone::Arguments arguments = standalone::ReadArguments(argc, argv);
    if (arguments.run) return standalone::RunCommandFile(*arguments.run);
    if (arguments.describe) return standalone::DescribeDataFile(*arguments.describe);
    if (arguments.convert) return standalone::ConvertDataFile(*arguments.convert);
    if (arguments.plan) return standalone::RunPlanCommand(*arguments.plan);
    return arguments.status;
  } catch (const std::exception& fault) {
    std::cerr << "error: The program met a fault of its own (" << fault.what()
              << "). Please report what led here.\n";
    return standalone::kCommandFailed;
  }
}
