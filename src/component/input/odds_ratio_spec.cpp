#include "component/input/odds_ratio_spec.h"

#include <algorithm>

namespace tavo {

namespace {

template <class Entry>
bool HasVariable(const std::vector<Entry>& entries, int variable) {
  return std::any_of(entries.begin(), entries.end(),
                     [variable](const Entry& entry) { return entry.variable == variable; });
}

}  // namespace

int OrvOddsRatioSpec::AddFactor(int variable, int reference) {
  if (variable < 0 || reference < kLowest || !fCovariates.empty()) return kRefused;
  if (HasVariable(fFactors, variable)) return kRefused;
  fFactors.push_back({variable, reference});
  return FactorCount();
}

int OrvOddsRatioSpec::AddCovariate(int variable, std::vector<double> changes) {
  if (variable < 0 || !fFactors.empty()) return kRefused;
  if (std::find(fCovariates.begin(), fCovariates.end(), variable) != fCovariates.end()) return kRefused;
  // A change of 0 has the ratio 1 by definition; asking for it is a slip of the pen.
  if (std::find(changes.begin(), changes.end(), 0.0) != changes.end()) return kRefused;
  fCovariates.push_back(variable);
  fChanges.push_back(std::move(changes));
  return CovariateCount();
}

int OrvOddsRatioSpec::AddControl(int variable, double value) {
  if (variable < 0 || HasVariable(fControls, variable)) return kRefused;
  fControls.push_back({variable, value});
  return static_cast<int>(fControls.size());
}

void OrvOddsRatioSpec::Clear() {
  *this = OrvOddsRatioSpec();
}

}  // namespace tavo
