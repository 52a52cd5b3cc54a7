// Counting the strata and units of one stage of a sample.
#pragma once

#include <cstddef>
#include <vector>

#include "host/data.h"

namespace standalone {

/// Units are told apart within their stratum, and strata within the unit of the stage above, as codes may be
/// used again in each. Stages are entered from the outermost to the innermost for each case.
class UnitTally {
 public:
  /// A stratum within a unit of the stage above (or of the whole sample).
  struct Stratum {
    std::size_t firstCase = 0;
    std::size_t units = 0;
    double value = host::kSystemMissing;  // its population size or probability, as first met
    bool lacksValue = false;              // in some case
    bool hasUnequalValues = false;
  };

  /// The cases come from `iterator`, which is not owned. Without cluster variables each case is a unit.
  UnitTally(const host::VORN_DataSource& source, const host::VORN_InputCaseIterator& iterator,
            const std::vector<int>& strata, const std::vector<int>& clusters);

  /// True when a stratum or cluster variable of the current case is missing.
  bool IsMissing() const;
  /// Enters the current case. `above` is the number of its unit in the stage above, 0 without one. The result
  /// is the number of its unit.
  std::size_t Enter(std::size_t above, std::size_t caseNumber);
  /// Enters the value of the last entered case's stratum; the missing value when there is none.
  void EnterValue(double value);

  /// In order of arrival.
  const std::vector<Stratum>& Strata() const { return fStrata; }
  /// Pointers into Strata(), by the unit of the stage above in its order of arrival, then ascending by the
  /// values of the strata variables.
  std::vector<const Stratum*> SortedStrata() const;
  std::size_t UnitCount() const { return fNUnits; }

 private:
  static host::ObsVecMap MakeMap(const host::VORN_DataSource& source, const std::vector<int>& variables);
  /// The number of (outer, the values' cells), given in order of arrival; `isNew` tells a first one.
  std::size_t Number(host::ObsVecMap& map, std::size_t outer, const std::vector<host::CaseValue>& values,
                     const std::vector<int>& cells, bool& isNew);

  std::vector<host::CaseValue> fStrataValues, fClusterValues;
  std::vector<int> fStrataCells, fClusterCells;
  host::ObsVecMap fStrataMap, fUnitMap;
  std::vector<host::OBS> fKey;
  std::vector<Stratum> fStrata;
  std::size_t fNUnits = 0;
  std::size_t fCurrent = 0;  // stratum of the last case
};

}  // namespace standalone
