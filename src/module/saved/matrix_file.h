// The matrices of the estimates as a case file.
#pragma once

#include <string>
#include <vector>

#include "component/run/output_stats.h"
#include "host/files.h"
#include "module/frame/procedure_driver.h"

namespace tavo {

enum class MatrixKind { kCovariances, kCorrelations };

/// Writes the matrix, then estimates, standard errors, significances and degrees of freedom, one case per row
/// and logit; whole or not at all. Failures are reported. `parameterNames` are those of one equation. False
/// when nothing was written.
bool WriteMatrixFile(const host::UserCaseFileSpec& file, MatrixKind kind, const TavoProcedureDriver& driver,
                     const TavoOutputStats& stats, const host::VORN_DataSource& source,
                     const std::vector<std::string>& parameterNames,
                     const std::vector<std::string>& effectNames);

}  // namespace tavo
