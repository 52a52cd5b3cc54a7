// The grammar of the TAVOREG command.
#pragma once

#include "host/command.h"

namespace tavo {

inline constexpr const char* kCommandName = "TAVOREG";

/// The whole descriptor, the variable list first. Order is the order in which the host lists keywords to a
/// user.
host::CommandDescriptor BuildGrammar();

}  // namespace tavo
