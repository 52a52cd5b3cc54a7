// The fitted model as a file for scoring programs.
#pragma once

#include "module/reporting/table_frame.h"

namespace tavo {

/// Writes the model as the command asks: the model file, with the covariance of the estimates, or the
/// parameter file, without. Notes the file, or reports why there is none; a file that was there before is
/// then untouched. Nothing is said when the run was cancelled.
void SaveModelFile(const TavoOutputFrame& frame);

}  // namespace tavo
