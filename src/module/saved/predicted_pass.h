// The last pass over the cases: predictions are written into the data.
#pragma once

#include "component/run/component.h"
#include "host/data.h"
#include "module/command/valid_specs.h"
#include "module/input/reg_input_adapter.h"

namespace tavo {

/// Makes the variables that SAVE asks for and fills them. Cases outside the subpopulation, and cases that
/// lack a variable of the model or overflow its linear predictor, keep missing values; a case that lacks only
/// the dependent, the weight or a design variable is scored. The component has its model. The adapter stays in its prediction mode for good.
/// False when the host failed.
bool SavePredictions(const TavoValidSpecs& specs, TavoComponent& component, OrvRegInputAdapter& adapter,
                     host::ProcedureDataSource& source);

}  // namespace tavo
