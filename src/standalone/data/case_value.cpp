// Reading the current case, and what the dictionary says of a value.
#include <algorithm>
#include <cstring>

#include "host/data.h"

namespace host {

namespace {

/// Whether two values of a type are equal: numbers as numbers, strings byte by byte over their cells.
bool IsSameValue(const OBS* value, const std::vector<OBS>& other, int type) {
  if (type == 0) return !other.empty() && value->number == other[0].number;
  const auto cells = static_cast<std::size_t>(CellCount(type));
  return other.size() == cells && std::memcmp(value, other.data(), cells * sizeof(OBS)) == 0;
}

}  // namespace

CaseValue::CaseValue(const VORN_InputCaseIterator& iterator, unsigned column)
    : fBinding(iterator.Bind(column)) {
  const VORN_Variable* variable = iterator.GetDataSource().GetVariable(column);
  fType = variable->GetType();
  const VORN_MissingValues& missing = variable->GetMissingValues();
  if (!missing.Empty()) fpMissing = &missing;
}

bool CaseValue::IsDeclaredMissing() const {
  const OBS* value = Cells();
  if (fpMissing->hasRange && fType == 0 && value->number >= fpMissing->rangeLow &&
      value->number <= fpMissing->rangeHigh) {
    return true;
  }
  return std::any_of(fpMissing->values.begin(), fpMissing->values.end(),
                     [&](const std::vector<OBS>& declared) { return IsSameValue(value, declared, fType); });
}

const std::string* VORN_ValueLabelMap::GetLabel(const OBS* value, int type) const {
  const auto found = std::find_if(fPairs.begin(), fPairs.end(),
                                  [&](const auto& pair) { return IsSameValue(value, pair.first, type); });
  return found == fPairs.end() ? nullptr : &found->second;
}

}  // namespace host
