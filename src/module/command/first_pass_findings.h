// What only the data can tell about the values that a command names.
#pragma once

#include <vector>

#include "component/input/odds_ratio_spec.h"

namespace tavo {

/// Returned by the first pass over the cases, taken by the settings of the component. Codes are those of the
/// adapter's tables after sorting: 1 is the lowest value of a variable.
struct FirstPassFindings {
  int dependentCategories = 0;
  int referenceCode = 0;                     // 0: the highest category in use; -1: the lowest; else that code
  std::vector<int> factorLevels;             // the number of categories of each factor of the specification
  int domainCode = -1;                       // -1 without a subpopulation
  std::vector<OrvOddsRatioSpec> oddsRatios;  // the requests over record columns, values coded
};

}  // namespace tavo
