// The list of variables that opens the command: the dependent variable, its reference, factors and
// covariates.
#pragma once

#include <vector>

#include "module/command/parse_context.h"

namespace tavo {

/// Reads `dependent [(reference)] [BY factors] [WITH covariates]` into the validated specs and the context's
/// predictors. False after a message.
bool ReadVariableList(ParseContext& context, const std::vector<host::TokenInfoObj>& tokens);

}  // namespace tavo
