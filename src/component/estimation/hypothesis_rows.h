// Rows of custom hypotheses as numbers.
#pragma once

#include <vector>

#include "component/estimation/parameter_list.h"
#include "component/frame/orv_cancel_info.h"
#include "component/frame/orv_status.h"
#include "component/input/custom_test.h"
#include "component/numerics/rect_matrix.h"

namespace tavo {

/// One row of L for each row of a hypothesis: coefficients of the basic parameters, the columns of one logit,
/// or of all parameters (`isFull`) when the first row is MatrixRowType::kAll. Coefficients that a row doesn't
/// state are 0.
///
/// Errors; rows count from 0 in their arguments. StatusCode::kWrongLMatrixWidth: wrong number of values in a
/// kAll row. kRowWithoutCoefficients: a row without type. kWrongCoefficientCount: wrong number of values for
/// an effect. kInterceptRowNotAllowed: an intercept where the model has none. kUnknownEffect. kAllRowsMixed:
/// kAll beside rows of other types. kTooManyParameters: no memory. kCancelled: L is zero then.
OrvStatus BuildHypothesisRows(const std::vector<TavoMatrixRow>& rows, const OrvParameterList& parameters,
                              const OrvCancelInfo& cancel, MCCommonMath::MCRectMatrix& L, bool& isFull);

}  // namespace tavo
