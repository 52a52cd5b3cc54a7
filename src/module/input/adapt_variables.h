// One variable of the record: how its host value becomes a double.
#pragma once

#include <memory>
#include <vector>

#include "host/data.h"
#include "module/command/plan_valid_specs.h"

namespace tavo {

/// One column of the current case, with the rule of what counts as missing: with `includeUserMissing` every
/// string and every number but system-missing is valid; without it values that the dictionary declares
/// missing are not.
class OrvCaseValue : public host::CaseValue {
 public:
  OrvCaseValue(const host::VORN_InputCaseIterator& iterator, int column, bool includeUserMissing)
      : host::CaseValue(iterator, static_cast<unsigned>(column)), fbIncludeUserMissing(includeUserMissing) {}

  bool IsValid() const {
    if (!fbIncludeUserMissing) return !IsMissing();
    return IsString() || Number() != host::kSystemMissing;
  }

 private:
  bool fbIncludeUserMissing;
};

/// A categorical variable and its table of codes 1, 2, 3, …, in order of first appearance until it is sorted.
class OrvAdaptCatVar {
 public:
  OrvAdaptCatVar(const host::VORN_DataSource& source, const host::VORN_InputCaseIterator& iterator,
                 int variable, bool includeUserMissing);

  /// Binds to another pass.
  void Rebind(const host::VORN_InputCaseIterator& iterator) { Rebind(iterator, fbIncludeUserMissing); }
  /// The same for a pass that takes declared missing values otherwise than the passes before.
  void Rebind(const host::VORN_InputCaseIterator& iterator, bool includeUserMissing) {
    fValue = OrvCaseValue(iterator, fVariable, includeUserMissing);
  }
  /// The code of the current case's value, 0 for a missing one. A new value gets the next code.
  double InsertCode() { return fValue.IsValid() ? CodeOf(fValue.Cells(), true) : 0; }
  /// The same for a pass after the first: 0 also for a value that isn't in the table.
  double LookUpCode() const {
    if (!fValue.IsValid()) return 0;
    const host::OBS* cell = fMap.Contains(fValue.Cells());
    return cell == nullptr ? 0 : cell->number;
  }
  /// The code of a value, 0 when it isn't in the table and not to be inserted.
  double CodeOf(const host::OBS* cells, bool insert);

  int Variable() const { return fVariable; }
  int Count() const { return static_cast<int>(fKeys.size()); }
  /// Cells of a code from 1 to Count(), otherwise null.
  const host::OBS* ValueForCode(int code) const;
  /// Recodes so that codes rise, or fall, with the value.
  void Sort(bool ascending);

 private:
  int fVariable;
  bool fbIncludeUserMissing;
  host::ObsVecMap fMap;
  int fNKeyCells;
  OrvCaseValue fValue;
  std::vector<const host::OBS*> fKeys;  // by code - 1
};

/// A continuous variable. Declared missing values are missing in every case.
class OrvAdaptContVar {
 public:
  enum class Kind { kPlain, kPopulationSize, kInclusionProbability };

  OrvAdaptContVar(const host::VORN_InputCaseIterator& iterator, int variable, Kind kind)
      : fVariable(variable), fKind(kind), fValue(iterator, variable, false) {}

  void Rebind(const host::VORN_InputCaseIterator& iterator) { Rebind(iterator, false); }
  void Rebind(const host::VORN_InputCaseIterator& iterator, bool includeUserMissing) {
    fValue = OrvCaseValue(iterator, fVariable, includeUserMissing);
  }
  /// The value, or the missing marker. `invalid`: a design value that can't be. `missingAllowed`: a design
  /// value that is missing, which the design tree deals with.
  double GetValue(bool& invalid, bool& missingAllowed) const;

  int Variable() const { return fVariable; }
  Kind GetKind() const { return fKind; }

 private:
  int fVariable;
  Kind fKind;
  OrvCaseValue fValue;
};

/// A design value that a stage's matrix gives for the values of its key variables.
class OrvAdaptMatrixVar {
 public:
  OrvAdaptMatrixVar(const host::VORN_InputCaseIterator& iterator, const StageMatrix& matrix, int stageNumber,
                    bool isSize, bool includeUserMissing);

  void Rebind(const host::VORN_InputCaseIterator& iterator);
  /// The value, or the missing marker. `notFound`: the key has no row; a missing key value is not reported
  /// so.
  double GetValue(bool& notFound);

  int StageNumber() const { return fStageNumber; }
  bool IsSize() const { return fbSize; }
  const std::vector<int>& KeyVariables() const { return fpMatrix->variables; }
  const std::vector<OrvCaseValue>& KeyValues() const { return fKeyValues; }

 private:
  const StageMatrix* fpMatrix;
  int fStageNumber;
  bool fbSize;
  bool fbIncludeUserMissing;
  std::vector<OrvCaseValue> fKeyValues;
  std::vector<int> fKeyCells;
  std::vector<host::OBS> fKey;  // work
};

}  // namespace tavo
