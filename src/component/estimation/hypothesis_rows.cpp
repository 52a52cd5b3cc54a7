#include "component/estimation/hypothesis_rows.h"

#include <cstddef>

#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCRectMatrix;

namespace {

// An effect is named by its place in the list of effects, in which the intercept has none.
OrvStatus FillEffectTerms(const TavoMatrixRow& row, int number, const OrvParameterList& parameters,
                          MCRectMatrix& L) {
  const int intercepts = parameters.HasIntercept() ? 1 : 0;
  for (int term = 0; term < row.EffectCount(); ++term) {
    const int effect = row.EffectIndex(term);
    int column = 0;
    int count = 0;
    if (effect < 0 || !parameters.EffectRange(effect + intercepts, column, count)) {
      return OrvStatus::Error(StatusCode::kUnknownEffect).SetInteger(0, number).SetInteger(1, effect);
    }
    const std::vector<double>* values = row.Values(term);
    if (values == nullptr || values->size() != static_cast<std::size_t>(count)) {
      return OrvStatus::Error(StatusCode::kWrongCoefficientCount)
          .SetInteger(0, number)
          .SetInteger(1, effect)
          .SetInteger(2, count);
    }
    for (const double value : *values)
      L.SetElem(number, column++, value);
  }
  return OrvStatus();
}

OrvStatus FillAllValues(const TavoMatrixRow& row, int number, MCRectMatrix& L) {
  const std::vector<double>* values = row.AllValues();
  if (values == nullptr || values->size() != static_cast<std::size_t>(L.GetNCols())) {
    return OrvStatus::Error(StatusCode::kWrongLMatrixWidth).SetInteger(0, number);
  }
  int column = 0;
  for (const double value : *values)
    L.SetElem(number, column++, value);
  return OrvStatus();
}

OrvStatus FillRow(const TavoMatrixRow& row, int number, bool isFull, const OrvParameterList& parameters,
                  MCRectMatrix& L) {
  const bool isAll = row.Type() == MatrixRowType::kAll;
  // The order of the checks decides which fault of a row the user hears of.
  if (row.Type() == MatrixRowType::kInvalid) {
    return OrvStatus::Error(StatusCode::kRowWithoutCoefficients).SetInteger(0, number);
  }
  if (row.Type() == MatrixRowType::kValueEffectList && !parameters.HasIntercept()) {
    return OrvStatus::Error(StatusCode::kInterceptRowNotAllowed).SetInteger(0, number);
  }
  if (isAll != isFull) return OrvStatus::Error(StatusCode::kAllRowsMixed);
  if (isAll) return FillAllValues(row, number, L);
  // The intercept's column is the first; a row that doesn't name it has no value for it.
  if (!IsMissing(row.FirstValue())) L.SetElem(number, 0, row.FirstValue());
  return FillEffectTerms(row, number, parameters, L);
}

}  // namespace

OrvStatus BuildHypothesisRows(const std::vector<TavoMatrixRow>& rows, const OrvParameterList& parameters,
                              const OrvCancelInfo& cancel, MCRectMatrix& L, bool& isFull) {
  isFull = !rows.empty() && rows.front().Type() == MatrixRowType::kAll;
  const int columns = isFull ? parameters.AllCount() : parameters.BasicCount();
  if (!L.SetNRowsCols(static_cast<int>(rows.size()), columns)) {
    return OutOfMemory(parameters.AllCount());
  }
  if (cancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const OrvStatus status = FillRow(rows[i], static_cast<int>(i), isFull, parameters, L);
    if (!status.IsOK()) return status;
  }
  return OrvStatus();
}

}  // namespace tavo
