// What leaves a run besides its tables.
#pragma once

#include "module/reporting/table_frame.h"

namespace tavo {

/// Writes the predictions into the data, and the matrix and model files, as the command asks, and notes the
/// saved files. Each failure is reported; the tables aren't touched.
void SaveResults(const TavoOutputFrame& frame, TavoProcedureDriver& driver,
                 host::ProcedureDataSource& source);

}  // namespace tavo
