// The tables of the fitted model.
#pragma once

#include "module/reporting/table_frame.h"

namespace tavo {

/// The warnings about how the fit ended, always; then the table, when it was asked for.
void OutputIterationHistory(const TavoOutputFrame& frame);
void OutputPseudoRSquares(const TavoOutputFrame& frame);
/// Nothing unless statistics were asked for.
void OutputParameterEstimates(const TavoOutputFrame& frame);
void OutputClassification(const TavoOutputFrame& frame);

}  // namespace tavo
