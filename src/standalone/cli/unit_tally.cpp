#include "standalone/cli/unit_tally.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace standalone {

namespace {

std::vector<host::CaseValue> ValuesOf(const host::VORN_InputCaseIterator& iterator,
                                      const std::vector<int>& variables) {
  std::vector<host::CaseValue> values;
  for (const int variable : variables)
    values.emplace_back(iterator, static_cast<unsigned>(variable));
  return values;
}

std::vector<int> CellsOf(const host::VORN_DataSource& source, const std::vector<int>& variables) {
  std::vector<int> cells;
  for (const int variable : variables)
    cells.push_back(host::CellCount(source.GetVariable(static_cast<unsigned>(variable))->GetType()));
  return cells;
}

bool AnyMissing(const std::vector<host::CaseValue>& values) {
  return std::any_of(values.begin(), values.end(), [](const host::CaseValue& v) { return v.IsMissing(); });
}

/// Values that were computed in two ways may differ in their last digits.
bool Differ(double stored, double value) {
  return std::abs(stored - value) > 2.0 * std::abs(stored) * std::numeric_limits<double>::epsilon();
}

}  // namespace

UnitTally::UnitTally(const host::VORN_DataSource& source, const host::VORN_InputCaseIterator& iterator,
                     const std::vector<int>& strata, const std::vector<int>& clusters)
    : fStrataValues(ValuesOf(iterator, strata)),
      fClusterValues(ValuesOf(iterator, clusters)),
      fStrataCells(CellsOf(source, strata)),
      fClusterCells(CellsOf(source, clusters)),
      fStrataMap(MakeMap(source, strata)),
      fUnitMap(MakeMap(source, clusters)) {}

// The number of what the values lie within leads the key: the same codes may be used in each stratum.
host::ObsVecMap UnitTally::MakeMap(const host::VORN_DataSource& source, const std::vector<int>& variables) {
  host::ObsVecMap::KeySpec spec = host::ObsVecMap::MakeKeySpec(source, variables);
  spec.insert(spec.begin(), 0);
  return {std::move(spec), 1};
}

bool UnitTally::IsMissing() const {
  return AnyMissing(fStrataValues) || AnyMissing(fClusterValues);
}

std::size_t UnitTally::Number(host::ObsVecMap& map, std::size_t outer,
                              const std::vector<host::CaseValue>& values, const std::vector<int>& cells,
                              bool& isNew) {
  fKey.clear();
  fKey.emplace_back().number = static_cast<double>(outer);
  for (std::size_t i = 0; i < values.size(); ++i)
    fKey.insert(fKey.end(), values[i].Cells(), values[i].Cells() + cells[i]);
  const std::size_t before = map.Size();
  host::OBS* const number = map.Insert(fKey.data());
  isNew = map.Size() > before;
  if (isNew) number->number = static_cast<double>(before);
  return static_cast<std::size_t>(number->number);
}

std::size_t UnitTally::Enter(std::size_t above, std::size_t caseNumber) {
  bool isNew = false;
  fCurrent = Number(fStrataMap, above, fStrataValues, fStrataCells, isNew);
  if (isNew) fStrata.push_back({.firstCase = caseNumber});
  std::size_t unit = fNUnits;
  isNew = true;
  if (!fClusterValues.empty()) unit = Number(fUnitMap, fCurrent, fClusterValues, fClusterCells, isNew);
  if (!isNew) return unit;
  ++fNUnits;
  ++fStrata[fCurrent].units;
  return unit;
}

void UnitTally::EnterValue(double value) {
  Stratum& stratum = fStrata[fCurrent];
  if (value == host::kSystemMissing) {
    stratum.lacksValue = true;
  } else if (stratum.value == host::kSystemMissing) {
    stratum.value = value;
  } else if (Differ(stratum.value, value)) {
    stratum.hasUnequalValues = true;
  }
}

std::vector<const UnitTally::Stratum*> UnitTally::SortedStrata() const {
  const int keyCells = std::accumulate(fStrataCells.begin(), fStrataCells.end(), 1);
  std::vector<const Stratum*> sorted;
  for (const host::OBS* key : fStrataMap.Sort())
    sorted.push_back(&fStrata[static_cast<std::size_t>(key[keyCells].number)]);
  return sorted;
}

}  // namespace standalone
