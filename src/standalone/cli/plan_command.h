// tavoreg plan: making, showing and checking plan files
#pragma once

#include "standalone/cli/plan_arguments.h"

namespace standalone {

/// Does what is asked for. The result is the exit status.
int RunPlanCommand(const PlanArguments& arguments);

}  // namespace standalone
