// The matrices of the parameter estimates.
#pragma once

#include "module/reporting/table_frame.h"

namespace tavo {

/// Nothing without a covariance.
void OutputCovariances(const TavoOutputFrame& frame);
void OutputCorrelations(const TavoOutputFrame& frame);

}  // namespace tavo
