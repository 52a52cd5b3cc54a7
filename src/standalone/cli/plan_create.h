// tavoreg plan create
#pragma once

#include "standalone/cli/plan_arguments.h"

namespace standalone {

/// Makes a plan from the options, reads it as a run would, and writes it when it is sound. The result is the
/// exit status. Needs a current session for messages and the module's folder.
int CreatePlan(const PlanCreateArguments& arguments);

}  // namespace standalone
