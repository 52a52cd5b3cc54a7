// The model of a command: MODEL, and what INTERCEPT and the variable list make of it.
#pragma once

#include <vector>

#include "component/input/model_effect.h"
#include "module/command/parse_context.h"

namespace tavo {

/// Reads the effects of MODEL; equal ones are kept once, with one warning. False after a message.
bool ReadModel(ParseContext& context, const std::vector<host::TokenInfoObj>& tokens,
               std::vector<OrvModelEffect>& effects);

/// Settles the model once INTERCEPT is read and hands predictors and effects to the validated specs. `model`
/// is the MODEL subcommand or null; `effects` are those it gave. Without it every predictor gets a main
/// effect, covariates first. False after a message.
bool FixModel(ParseContext& context, const host::SubComObj* model, std::vector<OrvModelEffect> effects);

}  // namespace tavo
