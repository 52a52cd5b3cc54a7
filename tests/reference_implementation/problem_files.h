// A problem as the files that a user would write: data, plan, joint probabilities and command.
#pragma once

#include <map>
#include <string>

#include "reference_problem.h"

namespace reference {

/// File name to text: data.csv, plan.xml, command.tvs, and joint.csv for unequal probabilities. Numbers are
/// written in the fewest digits that read back to them.
std::map<std::string, std::string> FilesOf(const Problem& problem);

}  // namespace reference
