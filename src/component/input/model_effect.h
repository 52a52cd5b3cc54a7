// One term of the model: a main effect, a crossing or a nesting of factors and covariates.
#pragma once

#include <vector>

#include "component/numerics/bit_set.h"

namespace tavo {

/// Refers to a list of predictors, factors first, then covariates, which is not owned and must stay unmoved
/// while the effect lives. A position in that list stands for one predictor. An effect without factors and
/// covariates is the intercept.
class OrvModelEffect {
 public:
  OrvModelEffect() = default;
  /// An empty effect over `factorCount` + `covariateCount` predictors.
  OrvModelEffect(int factorCount, int covariateCount, const std::vector<int>* predictors);
  void Set(int factorCount, int covariateCount, const std::vector<int>* predictors);
  void Reset();

  /// Raises a covariate's power by 1. Returns its position, or -1 when the variable is no covariate of the
  /// list.
  int AddCovariate(int variable);
  /// Adds a factor at nesting level 0. `nested`: every factor already there moves one level out. False when
  /// the variable is no factor of the list or is already in the effect.
  bool AddFactor(int variable, bool nested);
  /// The effect has the form X(A): covariates, then factors in parentheses.
  void MarkFactorAfterCovariates() { fbFactorAfterCovariates = true; }
  bool IsFactorAfterCovariates() const { return fbFactorAfterCovariates; }

  bool Equals(const OrvModelEffect& other) const;
  /// Nesting level of a factor (0 innermost), -1 when not in the effect.
  int FactorLevel(int variable) const;
  /// Power of a covariate, 0 when not in the effect, -1 for an unknown variable.
  int CovariatePower(int variable) const;
  /// Variables in position order, with their levels or powers.
  void Factors(std::vector<int>& variables, std::vector<int>& levels) const;
  void Covariates(std::vector<int>& variables, std::vector<int>& powers) const;
  int FactorsInModel() const { return fNFactorsInModel; }
  int CovariatesInModel() const { return fNCovariatesInModel; }
  int FactorsInEffect() const { return fNFactorsInEffect; }
  int CovariatesInEffect() const { return fNCovariatesInEffect; }
  int NestingLevels() const { return fNNestingLevels; }
  int TotalPower() const;
  bool IsEmpty() const { return fNFactorsInEffect == 0 && fNCovariatesInEffect == 0; }
  /// Every factor of this effect is a factor of the other, the covariate part is the same, and the other has
  /// more factors.
  bool ContainedIn(const OrvModelEffect& other) const;
  /// Drops the positions whose bit is off, from the effect and from the counts of the model. False when a
  /// dropped position was in use. The predictor list itself isn't changed.
  bool KeepOnly(const MCCommonMath::MCBitSet& usedPositions);
  /// The positions that any effect of the list uses.
  static MCCommonMath::MCBitSet UsedPositions(const std::vector<OrvModelEffect>& effects);

  /// The same effect over another predictor list of the same layout.
  void SetPredictors(const std::vector<int>* predictors) { fpPredictors = predictors; }
  const std::vector<int>* Predictors() const { return fpPredictors; }
  /// Per position: a factor's level or -1, a covariate's power.
  const std::vector<int>& MainVector() const { return fMain; }

 private:
  const std::vector<int>* fpPredictors = nullptr;
  std::vector<int> fMain;
  int fNFactorsInModel = 0;
  int fNCovariatesInModel = 0;
  int fNFactorsInEffect = 0;
  int fNCovariatesInEffect = 0;
  int fNNestingLevels = 0;
  bool fbFactorAfterCovariates = false;
};

}  // namespace tavo
