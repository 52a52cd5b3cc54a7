// The last pass over the cases: predictions are written into the data.
#pragma once

#include "host/data.h"
#include "module/frame/procedure_driver.h"

namespace tavo {

/// Makes the variables that SAVE asks for and fills them. Cases outside the subpopulation, and cases that
/// lack a variable of the model, keep missing values; a case that lacks only the dependent, the weight or a
/// design variable is scored. False when the host failed.
bool SavePredictions(TavoProcedureDriver& driver, host::ProcedureDataSource& source);

}  // namespace tavo
