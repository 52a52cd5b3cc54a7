// The readers of the subcommands that set options. Each is called with a subcommand that was given, which is
// also the one in work for messages, and returns false after a message of an error.
#pragma once

#include "module/command/parse_context.h"

namespace tavo {

bool ReadPlanFile(ParseContext& context, const host::SubComObj& plan);
bool ReadJointProbFile(ParseContext& context, const host::SubComObj& jointProb);
bool ReadIntercept(ParseContext& context, const host::SubComObj& intercept);
/// Reads on after some faults, so that two can be seen in one run.
bool ReadCriteria(ParseContext& context, const host::SubComObj& criteria);
bool ReadStatistics(ParseContext& context, const host::SubComObj& statistics);
bool ReadTest(ParseContext& context, const host::SubComObj& test);
bool ReadDomain(ParseContext& context, const host::SubComObj& domain);
bool ReadMissing(ParseContext& context, const host::SubComObj& missing);
bool ReadPrint(ParseContext& context, const host::SubComObj& print);
/// Names of new variables: a root and a count for probabilities, a name for predicted values.
bool ReadSave(ParseContext& context, const host::SubComObj& save);
/// Names of files to write; whether they can be written is seen when they are.
bool ReadOutfile(ParseContext& context, const host::SubComObj& outfile);

/// Compares the name of each file to be written, without regard to case, with the names of plan, joint
/// probabilities and the files to be written before it, and asks the host whether writing it would replace a
/// file that the run reads, whatever that one's name is. Tells the host of plan and joint probabilities
/// before. `outfile` is the OUTFILE subcommand or null. Call it once the plan is resolved, which may settle
/// the name of the joint probabilities.
bool CheckOutputFiles(ParseContext& context, const host::SubComObj* outfile);

}  // namespace tavo
