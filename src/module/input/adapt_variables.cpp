#include "module/input/adapt_variables.h"

#include <algorithm>

#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::MCMV;

namespace {

host::ObsVecMap::KeySpec KeySpecOf(const host::VORN_DataSource& source, int variable) {
  return host::ObsVecMap::MakeKeySpec(source, {variable});
}

// Sizes that were computed or came through a text may miss their whole number by rounding; they are put
// right.
bool IsPopulationSize(double& value) {
  if (!(value > 0) || !host::FUZZYINTEGER(&value)) return false;
  value = host::FUZZYROUND(&value);
  return true;
}

}  // namespace

OrvAdaptCatVar::OrvAdaptCatVar(const host::VORN_DataSource& source,
                               const host::VORN_InputCaseIterator& iterator, int variable,
                               bool includeUserMissing)
    : fVariable(variable),
      fbIncludeUserMissing(includeUserMissing),
      fMap(KeySpecOf(source, variable), 1),
      fNKeyCells(fMap.CellSize() - 1),
      fValue(iterator, variable, includeUserMissing) {}

double OrvAdaptCatVar::CodeOf(const host::OBS* cells, bool insert) {
  if (const host::OBS* cell = fMap.Contains(cells)) return cell->number;
  if (!insert) return 0;
  host::OBS* cell = fMap.Insert(cells);
  cell->number = static_cast<double>(fMap.Size());
  // The map keeps the cells of a key in front of the value cell, and both stay where they are while it grows.
  fKeys.push_back(cell - fNKeyCells);
  return cell->number;
}

const host::OBS* OrvAdaptCatVar::ValueForCode(int code) const {
  return code < 1 || code > Count() ? nullptr : fKeys[static_cast<std::size_t>(code) - 1];
}

void OrvAdaptCatVar::Sort(bool ascending) {
  std::vector<const host::OBS*> keys = fMap.Sort();
  if (!ascending) std::reverse(keys.begin(), keys.end());
  host::ObsVecMap old = std::move(fMap);  // holds the keys that are copied below
  fMap = host::ObsVecMap(old.GetKeySpec(), 1);
  fKeys.clear();
  for (const host::OBS* key : keys)
    CodeOf(key, true);
}

double OrvAdaptContVar::GetValue(bool& invalid, bool& missingAllowed) const {
  invalid = false;
  missingAllowed = false;
  if (!fValue.IsValid()) {
    missingAllowed = fKind != Kind::kPlain;
    return MCMV::gMissingValue;
  }
  double value = fValue.Number();
  switch (fKind) {
    case Kind::kPlain:
      break;
    case Kind::kPopulationSize:
      invalid = !IsPopulationSize(value);
      break;
    case Kind::kInclusionProbability:
      invalid = !(value > 0 && value <= 1);
      break;
  }
  return invalid ? MCMV::gMissingValue : value;
}

OrvAdaptMatrixVar::OrvAdaptMatrixVar(const host::VORN_InputCaseIterator& iterator, const StageMatrix& matrix,
                                     int stageNumber, bool isSize, bool includeUserMissing)
    : fpMatrix(&matrix), fStageNumber(stageNumber), fbSize(isSize), fbIncludeUserMissing(includeUserMissing) {
  for (const std::uint16_t width : matrix.values->GetKeySpec())
    fKeyCells.push_back(host::CellCount(width));
  int cells = 0;
  for (const int count : fKeyCells)
    cells += count;
  fKey.resize(static_cast<std::size_t>(cells));
  Rebind(iterator);
}

void OrvAdaptMatrixVar::Rebind(const host::VORN_InputCaseIterator& iterator) {
  fKeyValues.clear();
  for (const int variable : fpMatrix->variables)
    fKeyValues.emplace_back(iterator, variable, fbIncludeUserMissing);
}

double OrvAdaptMatrixVar::GetValue(bool& notFound) {
  notFound = false;
  auto target = fKey.begin();
  for (std::size_t i = 0; i < fKeyValues.size(); ++i) {
    // The case lacks a value, which is another thing than a matrix that lacks a row.
    if (!fKeyValues[i].IsValid()) return MCMV::gMissingValue;
    target = std::copy_n(fKeyValues[i].Cells(), fKeyCells[i], target);
  }
  const host::OBS* cell = fpMatrix->values->Contains(fKey.data());
  notFound = cell == nullptr;
  return notFound ? MCMV::gMissingValue : cell->number;
}

}  // namespace tavo
