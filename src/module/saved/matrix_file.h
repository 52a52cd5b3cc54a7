// The matrices of the estimates as a case file.
#pragma once

#include "host/files.h"
#include "module/reporting/table_frame.h"

namespace tavo {

enum class MatrixKind { kCovariances, kCorrelations };

/// Writes the matrix, then estimates, standard errors, significances and degrees of freedom, one case per row
/// and logit; whole or not at all. The run has results and a covariance. Failures are reported; false when
/// nothing was written.
bool WriteMatrixFile(const host::UserCaseFileSpec& file, MatrixKind kind, const TavoOutputFrame& frame);

}  // namespace tavo
