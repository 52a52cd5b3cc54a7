// What leaves a run besides its tables.
#pragma once

#include "component/run/component.h"
#include "host/data.h"
#include "module/input/reg_input_adapter.h"
#include "module/reporting/table_frame.h"

namespace tavo {

/// Writes the predictions into the data, and the matrix and model files, as the command asks, and notes the
/// saved files. Each failure is reported; the tables aren't touched. Component, adapter and source are those
/// of the run: predicting takes one more pass through them.
void SaveResults(const TavoOutputFrame& frame, TavoComponent& component, OrvRegInputAdapter& adapter,
                 host::ProcedureDataSource& source);

}  // namespace tavo
