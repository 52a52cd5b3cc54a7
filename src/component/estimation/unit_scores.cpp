#include "component/estimation/unit_scores.h"

#include <algorithm>

namespace tavo {

void OrvUnitScores::StartUnit() {
  std::fill(fTotals.begin(), fTotals.end(), 0.0);
  fSums.Clear();
}

void OrvUnitScores::Add(const double* dataRow) {
  if (fModel.PreciseFit() == nullptr) {
    fModel.AddCaseScores(fTotals, dataRow);
  } else {
    fModel.AddPreciseCaseScores(fSums, dataRow);
  }
}

const std::vector<double>& OrvUnitScores::Totals() {
  if (const TavoPreciseFit* const fit = fModel.PreciseFit()) {
    fit->factor.ForwardSolve(fSums);
    fTotals = fSums.high;
  }
  return fTotals;
}

}  // namespace tavo
