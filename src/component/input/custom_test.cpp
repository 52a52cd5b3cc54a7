// Custom hypotheses while they are read: each setter refuses what the type of the row has no place for, so a
// row that is valid can be turned into numbers without asking again.
#include "component/input/custom_test.h"

#include <utility>

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCMV;

bool TavoMatrixRow::SetType(MatrixRowType type, int modelEffects) {
  fType = type;
  fNModelEffects = modelEffects;
  return type != MatrixRowType::kInvalid && (type == MatrixRowType::kAll || modelEffects >= 0);
}

bool TavoMatrixRow::SetFirstValue(double value) {
  if (fType != MatrixRowType::kValueEffectList) return false;
  fFirstValue = value;
  return true;
}

bool TavoMatrixRow::AddEffect(int effect, std::vector<double> values) {
  const bool mayBeNegative = effect == kNoFirstValue && fEffects.empty();
  const bool takesEffects = fType == MatrixRowType::kValueEffectList || fType == MatrixRowType::kEffectList;
  if ((effect < 0 && !mayBeNegative) || effect >= fNModelEffects || !takesEffects || values.empty()) {
    return false;
  }
  fEffects.push_back(effect);
  fValues.push_back(std::move(values));
  return true;
}

bool TavoMatrixRow::SetAllValues(std::vector<double> values) {
  if (fType != MatrixRowType::kAll || values.empty()) return false;
  fValues.clear();
  fValues.push_back(std::move(values));
  return true;
}

void TavoMatrixRow::Reset(MatrixRowType type) {
  fType = type;
  fFirstValue = MCMV::gMissingValue;
  fEffects.clear();
  fValues.clear();
}

bool TavoMatrixRow::IsValid() const {
  const bool hasListPerEffect = fValues.size() == fEffects.size();
  switch (fType) {
    case MatrixRowType::kAll:
      return fValues.size() == 1 && !fValues.front().empty();
    case MatrixRowType::kEffectList:
      return IsMissing(fFirstValue) && !fValues.empty() && hasListPerEffect;
    case MatrixRowType::kValueEffectList:
      // Without a first value the row must say so: a forgotten one would quietly count as 0.
      if (IsMissing(fFirstValue) && (fEffects.empty() || fEffects.front() != kNoFirstValue)) return false;
      return hasListPerEffect;
    default:
      return false;
  }
}

int TavoMatrixRow::ValueCount() const {
  if (fType == MatrixRowType::kInvalid) return 0;
  if (fType == MatrixRowType::kAll) return fValues.empty() ? 0 : static_cast<int>(fValues.front().size());
  std::size_t count = fType == MatrixRowType::kValueEffectList && !IsMissing(fFirstValue) ? 1 : 0;
  for (const std::vector<double>& values : fValues)
    count += values.size();
  return static_cast<int>(count);
}

int TavoMatrixRow::EffectIndex(int i) const {
  return i >= 0 && i < EffectCount() ? fEffects[static_cast<std::size_t>(i)] : -1;
}

const std::vector<double>* TavoMatrixRow::Values(int i) const {
  return i >= 0 && i < static_cast<int>(fValues.size()) ? &fValues[static_cast<std::size_t>(i)] : nullptr;
}

const std::vector<double>* TavoMatrixRow::AllValues() const {
  return fType == MatrixRowType::kAll && !fValues.empty() ? &fValues.front() : nullptr;
}

bool OrvCustomTest::AddRow(const TavoMatrixRow& row) {
  if (fbKSet || !row.IsValid()) return false;
  fRows.push_back(row);
  fK.push_back(0.0);
  return true;
}

bool OrvCustomTest::SetK(std::vector<double> values) {
  if (!fRows.empty() && values.size() != fRows.size()) return false;
  fK = std::move(values);
  fbKSet = true;
  return true;
}

bool OrvCustomTest::IsValid() const {
  if (fRows.empty() || fK.size() != fRows.size()) return false;
  // Rows over all parameters and rows over effects are compared among their own kind; that a test may not mix
  // the two is found where the matrix is built, with the number of the row.
  const TavoMatrixRow* firstAll = nullptr;
  const TavoMatrixRow* firstOther = nullptr;
  for (const TavoMatrixRow& row : fRows) {
    if (!row.IsValid()) return false;
    const bool isAll = row.Type() == MatrixRowType::kAll;
    const TavoMatrixRow*& first = isAll ? firstAll : firstOther;
    if (first == nullptr) first = &row;
    if (isAll && row.ValueCount() != first->ValueCount()) return false;
    if (!isAll && row.ModelEffectCount() != first->ModelEffectCount()) return false;
  }
  return true;
}

void OrvCustomTest::Clear() {
  fRows.clear();
  fK.clear();
  fbKSet = false;
}

const TavoMatrixRow* OrvCustomTest::Row(int i) const {
  return i >= 0 && i < RowCount() ? &fRows[static_cast<std::size_t>(i)] : nullptr;
}

}  // namespace tavo
