// tavoreg plan check
#pragma once

#include "standalone/cli/plan_arguments.h"

namespace standalone {

/// Checks a plan against data and writes what came of it to standard output. The result is the exit status: 1
/// when there are findings. Needs a current session.
int CheckPlanFile(const PlanCheckArguments& arguments);

}  // namespace standalone
