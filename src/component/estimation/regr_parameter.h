// One regression parameter.
#pragma once

#include <utility>
#include <vector>

#include "component/input/model_effect.h"

namespace tavo {

/// What a parameter stands for. Factors, levels and nesting levels run in parallel, covariates and
/// multiplicities too; variables are record columns. Without factors and covariates it is an intercept.
struct OrvRegrParameter {
  std::vector<int> factors;
  std::vector<int> levels;  // 1-based codes; empty until a level combination is set
  std::vector<int> nestingLevels;
  std::vector<int> covariates;
  std::vector<int> multiplicities;  // powers of the covariates
  int effectIndex = -1;             // in the settings' effect list; -1 for an intercept
  int targetCategory = 0;           // response category code of the parameter's logit

  bool IsIntercept() const { return factors.empty() && covariates.empty(); }
  /// Takes factors, nesting levels, covariates and multiplicities of an effect.
  void Set(const OrvModelEffect& effect, int index) {
    effect.Factors(factors, nestingLevels);
    effect.Covariates(covariates, multiplicities);
    levels.clear();
    effectIndex = index;
  }
};

}  // namespace tavo
