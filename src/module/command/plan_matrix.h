// The matrix form of a stage's sizes or probabilities: one value per combination of categories.
#pragma once

#include <memory>

#include "host/command.h"
#include "module/command/parse_context.h"

namespace tavo {

/// Makes a look-up table of the plan's rows, whose category texts are read as values of their variables. A
/// key that comes twice keeps its last value. Each row has one category per variable. Null after a message.
std::unique_ptr<StageMatrix> ReadStageMatrix(ParseContext& context, const host::VarCatList& matrix);

}  // namespace tavo
