// The plan against the dictionary and the command.
#pragma once

#include <memory>

#include "host/command.h"
#include "module/command/parse_context.h"
#include "module/command/plan/plan_data.h"

namespace tavo {

/// Checks that every variable of the plan exists, is numeric where a number is needed and has no role in the
/// command that it can't have; turns the stages into those of the validated specs and reads their matrices.
/// Stages that would leave the estimation without weight, method or inclusion data are refused. `plan` has
/// passed the checks of its reader; the command has been read, with `hasJointProbFile` when it names a file
/// of joint probabilities. False after a message.
bool ResolvePlan(ParseContext& context, const OrvPlanData& plan, bool hasJointProbFile);

/// The matrix form of a stage's sizes or probabilities, one value per combination of categories, as a look-up
/// table. The category texts are read as values of their variables. A key that comes twice keeps its last
/// value. Each row has one category per variable. Null after a message.
std::unique_ptr<StageMatrix> ReadStageMatrix(ParseContext& context, const host::VarCatList& matrix);

}  // namespace tavo
