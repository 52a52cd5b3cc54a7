// The variables and the model of a command: the variable list, MODEL, and what INTERCEPT makes of them.
#pragma once

#include <vector>

#include "component/input/model_effect.h"
#include "module/command/parse_context.h"

namespace tavo {

/// Reads `dependent [(reference)] [BY factors] [WITH covariates]`, which opens the command, into the
/// validated specs and the context's predictors. False after a message.
bool ReadVariableList(ParseContext& context, const std::vector<host::TokenInfoObj>& tokens);

/// Reads the effects of MODEL; of equal ones the first stays, with one warning. False after a message.
bool ReadModel(ParseContext& context, const std::vector<host::TokenInfoObj>& tokens,
               std::vector<OrvModelEffect>& effects);

/// Settles the model once INTERCEPT is read and hands predictors and effects to the validated specs. `model`
/// is the MODEL subcommand or null; `effects` are those it gave. Without it every predictor gets a main
/// effect, covariates first. False after a message.
bool FixModel(ParseContext& context, const host::SubComObj* model, std::vector<OrvModelEffect> effects);

}  // namespace tavo
