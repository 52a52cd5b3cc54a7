// Rows of custom hypotheses as numbers.
#include "component/estimation/model.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;

OrvStatus TavoModel::BuildHypothesisMatrix(const std::vector<TavoMatrixRow>& rows, MCRectMatrix& L,
                                           bool& isFull) const {
  isFull = !rows.empty() && rows.front().Type() == MatrixRowType::kAll;
  const int columns = isFull ? ParameterCount() : BasicParameterCount();
  if (!L.SetNRowsCols(static_cast<int>(rows.size()), columns)) {
    return OutOfMemory(ParameterCount());
  }
  if (fCancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const OrvStatus status = FillHypothesisRow(rows[i], static_cast<int>(i), isFull, L);
    if (!status.IsOK()) return status;
  }
  return OrvStatus();
}

OrvStatus TavoModel::FillHypothesisRow(const TavoMatrixRow& row, int number, bool isFull,
                                       MCRectMatrix& L) const {
  const bool isAll = row.Type() == MatrixRowType::kAll;
  if (row.Type() == MatrixRowType::kInvalid) {
    return OrvStatus::Error(StatusCode::kRowWithoutCoefficients).SetInteger(0, number);
  }
  if (row.Type() == MatrixRowType::kValueEffectList && !HasIntercept()) {
    return OrvStatus::Error(StatusCode::kInterceptRowNotAllowed).SetInteger(0, number);
  }
  if (isAll != isFull) return OrvStatus::Error(StatusCode::kAllRowsMixed);
  if (isAll) return FillAllValues(row, number, L);
  if (!IsMissing(row.FirstValue())) L.SetElem(number, 0, row.FirstValue());
  return FillEffectTerms(row, number, L);
}

OrvStatus TavoModel::FillEffectTerms(const TavoMatrixRow& row, int number, MCRectMatrix& L) const {
  for (int term = 0; term < row.EffectCount(); ++term) {
    const int effect = row.EffectIndex(term);
    int column = 0;
    int count = 0;
    if (effect < 0 || !GetEffectParameters(effect + fNIntercepts, column, count)) {
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

OrvStatus TavoModel::FillAllValues(const TavoMatrixRow& row, int number, MCRectMatrix& L) const {
  const std::vector<double>* values = row.AllValues();
  if (values == nullptr || values->size() != static_cast<std::size_t>(L.GetNCols())) {
    return OrvStatus::Error(StatusCode::kWrongLMatrixWidth).SetInteger(0, number);
  }
  int column = 0;
  for (const double value : *values)
    L.SetElem(number, column++, value);
  return OrvStatus();
}

}  // namespace tavo
