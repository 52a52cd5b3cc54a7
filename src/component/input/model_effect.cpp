// An effect is a vector with one entry per predictor of the model, so that comparing, containing and reducing
// effects are loops over positions, whatever was crossed or nested in which order.
#include "component/input/model_effect.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace tavo {

using MCCommonMath::MCBitSet;

namespace {

/// The position of a variable in predictors [first, last), or -1.
int PositionIn(const std::vector<int>* predictors, int first, int last, int variable) {
  if (predictors == nullptr) return -1;
  const int end = std::min(last, static_cast<int>(predictors->size()));
  for (int i = first; i < end; ++i) {
    if ((*predictors)[static_cast<std::size_t>(i)] == variable) return i;
  }
  return -1;
}

}  // namespace

OrvModelEffect::OrvModelEffect(int factorCount, int covariateCount, const std::vector<int>* predictors) {
  Set(factorCount, covariateCount, predictors);
}

void OrvModelEffect::Set(int factorCount, int covariateCount, const std::vector<int>* predictors) {
  fpPredictors = predictors;
  fNFactorsInModel = std::max(factorCount, 0);
  fNCovariatesInModel = std::max(covariateCount, 0);
  Reset();
}

void OrvModelEffect::Reset() {
  fMain.assign(static_cast<std::size_t>(fNFactorsInModel), -1);
  fMain.resize(fMain.size() + static_cast<std::size_t>(fNCovariatesInModel), 0);
  fNFactorsInEffect = 0;
  fNCovariatesInEffect = 0;
  fNNestingLevels = 0;
  fbFactorAfterCovariates = false;
}

int OrvModelEffect::AddCovariate(int variable) {
  const int end = fNFactorsInModel + fNCovariatesInModel;
  const int position = PositionIn(fpPredictors, fNFactorsInModel, end, variable);
  if (position < 0) return -1;
  if (++fMain[static_cast<std::size_t>(position)] == 1) ++fNCovariatesInEffect;
  return position;
}

bool OrvModelEffect::AddFactor(int variable, bool nested) {
  const int position = PositionIn(fpPredictors, 0, fNFactorsInModel, variable);
  if (position < 0 || fMain[static_cast<std::size_t>(position)] >= 0) return false;
  // Factors are added from the outside in: those already there are what the new one is nested in.
  if (nested && fNFactorsInEffect > 0) {
    const auto factorsEnd = fMain.begin() + fNFactorsInModel;
    std::for_each(fMain.begin(), factorsEnd, [](int& level) { level += level >= 0 ? 1 : 0; });
    ++fNNestingLevels;
  }
  if (fNFactorsInEffect == 0) fNNestingLevels = 1;
  fMain[static_cast<std::size_t>(position)] = 0;
  ++fNFactorsInEffect;
  return true;
}

bool OrvModelEffect::Equals(const OrvModelEffect& other) const {
  return fNFactorsInModel == other.fNFactorsInModel && fNCovariatesInModel == other.fNCovariatesInModel &&
         fNFactorsInEffect == other.fNFactorsInEffect && fNCovariatesInEffect == other.fNCovariatesInEffect &&
         fNNestingLevels == other.fNNestingLevels && fpPredictors == other.fpPredictors &&
         fbFactorAfterCovariates == other.fbFactorAfterCovariates && fMain == other.fMain;
}

int OrvModelEffect::FactorLevel(int variable) const {
  const int position = PositionIn(fpPredictors, 0, fNFactorsInModel, variable);
  return position < 0 ? -1 : fMain[static_cast<std::size_t>(position)];
}

int OrvModelEffect::CovariatePower(int variable) const {
  const int end = fNFactorsInModel + fNCovariatesInModel;
  const int position = PositionIn(fpPredictors, fNFactorsInModel, end, variable);
  return position < 0 ? -1 : fMain[static_cast<std::size_t>(position)];
}

void OrvModelEffect::Factors(std::vector<int>& variables, std::vector<int>& levels) const {
  variables.clear();
  levels.clear();
  for (std::size_t i = 0; i < static_cast<std::size_t>(fNFactorsInModel); ++i) {
    if (fMain[i] < 0) continue;
    variables.push_back((*fpPredictors)[i]);
    levels.push_back(fMain[i]);
  }
}

void OrvModelEffect::Covariates(std::vector<int>& variables, std::vector<int>& powers) const {
  variables.clear();
  powers.clear();
  for (std::size_t i = static_cast<std::size_t>(fNFactorsInModel); i < fMain.size(); ++i) {
    if (fMain[i] <= 0) continue;
    variables.push_back((*fpPredictors)[i]);
    powers.push_back(fMain[i]);
  }
}

int OrvModelEffect::TotalPower() const {
  return std::accumulate(fMain.begin() + fNFactorsInModel, fMain.end(), 0);
}

bool OrvModelEffect::ContainedIn(const OrvModelEffect& other) const {
  const bool sameModel = fNFactorsInModel == other.fNFactorsInModel &&
                         fNCovariatesInModel == other.fNCovariatesInModel &&
                         fpPredictors == other.fpPredictors;
  // Containment as hypotheses of type III define it (Goodnight 1976): the same covariates, and all of this
  // effect's factors among more. So A is contained in A*B and in B(A), but not in A*X, nor X in X*X.
  if (!sameModel || fNCovariatesInEffect != other.fNCovariatesInEffect) return false;
  if (other.fNFactorsInEffect <= fNFactorsInEffect) return false;
  const auto factorsEnd = fMain.begin() + fNFactorsInModel;
  const bool factorsContained = std::equal(fMain.begin(), factorsEnd, other.fMain.begin(),
                                           [](int mine, int theirs) { return mine < 0 || theirs >= 0; });
  return factorsContained && std::equal(factorsEnd, fMain.end(), other.fMain.begin() + fNFactorsInModel);
}

bool OrvModelEffect::KeepOnly(const MCBitSet& usedPositions) {
  bool droppedNone = true;
  // From the end, so that positions that are still to be looked at keep their number.
  for (int i = static_cast<int>(fMain.size()) - 1; i >= 0; --i) {
    if (usedPositions.IsIn(i)) continue;
    const bool isFactor = i < fNFactorsInModel;
    const int entry = fMain[static_cast<std::size_t>(i)];
    const bool inUse = isFactor ? entry >= 0 : entry > 0;
    if (inUse) droppedNone = false;
    --(isFactor ? fNFactorsInModel : fNCovariatesInModel);
    if (inUse) --(isFactor ? fNFactorsInEffect : fNCovariatesInEffect);
    fMain.erase(fMain.begin() + i);
  }
  return droppedNone;
}

MCBitSet OrvModelEffect::UsedPositions(const std::vector<OrvModelEffect>& effects) {
  std::size_t size = 0;
  for (const OrvModelEffect& effect : effects)
    size = std::max(size, effect.fMain.size());
  MCBitSet used(static_cast<int>(size));
  for (const OrvModelEffect& effect : effects) {
    for (int i = 0; i < static_cast<int>(effect.fMain.size()); ++i) {
      const int entry = effect.fMain[static_cast<std::size_t>(i)];
      if (i < effect.fNFactorsInModel ? entry >= 0 : entry > 0) used.Set(i, true);
    }
  }
  return used;
}

}  // namespace tavo
