// tavoreg plan show
#pragma once

#include "standalone/cli/plan_arguments.h"

namespace standalone {

/// Writes what a plan file says to standard output, faulty plans included; faults are told as messages. The
/// result is the exit status: 1 when a run would refuse the plan. Needs a current session.
int ShowPlan(const PlanShowArguments& arguments);

}  // namespace standalone
