// The tables that describe sample and variables.
#pragma once

#include "module/reporting/table_frame.h"

namespace tavo {

void OutputSampleDesign(const TavoOutputFrame& frame);
void OutputCategoricalVariables(const TavoOutputFrame& frame);
/// Nothing without covariates.
void OutputCovariates(const TavoOutputFrame& frame);

}  // namespace tavo
