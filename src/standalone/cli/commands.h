// The program's subcommands. Each does what is asked for and answers with the exit status of the program.
#pragma once

#include "standalone/cli/arguments.h"

namespace standalone {

/// `tavoreg run`: reads the data, runs the commands, writes the output.
int RunCommandFile(const RunArguments& arguments);

/// `tavoreg describe`: reads a data file and shows its dictionary on standard output.
int DescribeDataFile(const DescribeArguments& arguments);

/// `tavoreg convert`: reads a data file and writes it in the form that the other name's ending says.
int ConvertDataFile(const ConvertArguments& arguments);

/// `tavoreg plan`: one of the three below, within a session that takes their messages.
int RunPlanCommand(const PlanArguments& arguments);

/// `tavoreg plan create`: makes a plan from the options, reads it as a run would, and writes it when it is
/// sound. Requires a current session.
int CreatePlan(const PlanCreateArguments& arguments);

/// `tavoreg plan show`: writes what a plan file says to standard output, faulty plans included; faults are
/// told as messages. kCommandFailed when a run would refuse the plan. Requires a current session.
int ShowPlan(const PlanShowArguments& arguments);

/// `tavoreg plan check`: checks a plan against data and writes what came of it to standard output.
/// kCommandFailed when there are findings. Requires a current session.
int CheckPlanFile(const PlanCheckArguments& arguments);

}  // namespace standalone
