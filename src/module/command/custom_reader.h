// CUSTOM: a hypothesis of the user's own.
#pragma once

#include <string>

#include "component/input/custom_test.h"
#include "module/command/parse_context.h"

namespace tavo {

/// Reads one CUSTOM subcommand, the one in work for messages, into an empty test and an empty label. The
/// model must be settled. False after a message; the test is of no use then.
bool ReadCustom(ParseContext& context, const host::SubComObj& custom, OrvCustomTest& test,
                std::string& label);

}  // namespace tavo
