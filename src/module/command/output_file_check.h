// No file is written over another one of the same command.
#pragma once

#include "module/command/parse_context.h"

namespace tavo {

/// Compares the name of each file to be written, without regard to case, with the names of plan, joint
/// probabilities and the files to be written before it. Names are compared as they stand, not the files
/// behind them. `outfile` is the OUTFILE subcommand or null. False after a message.
bool CheckOutputFiles(ParseContext& context, const host::SubComObj* outfile);

}  // namespace tavo
