// A fitted model as the model document takes it: of this procedure and of its siblings.
#pragma once

#include <string>
#include <vector>

#include "component/estimation/regr_parameter.h"
#include "component/input/model_effect.h"
#include "component/numerics/bit_set.h"

namespace tavo {

enum class ModelKind : int { kGeneralLinear = 0, kMultinomialLogistic = 1, kOrdinal = 2, kCox = 3 };
/// Of an ordinal model.
enum class CumulativeLink : int { kLogit = 0, kCauchit = 1, kCloglog = 2, kLoglog = 3, kProbit = 4 };

/// What a proportional hazards model has besides. Variables are dictionary indices, -1 for none. The baseline
/// lists run in parallel, one entry per stratum; a model without strata has one entry, and its stratum text
/// isn't written.
struct OrvPMMLCox {
  int startTime = -1;
  int strata = -1;
  int subject = -1;
  std::vector<double> referencePoints;  // per parameter
  std::vector<std::string> baselineStrata;
  std::vector<double> baselineMaximumTimes;
  std::vector<std::vector<double>> baselineTimes;    // per stratum
  std::vector<std::vector<double>> baselineHazards;  // cumulative, at those times
};

/// Nothing that is pointed to is owned. All variables, also those of parameters and effects, are
/// dictionary indices. The estimates are, by kind:
/// - multinomial: the parameters of the first target, of the second, and so on, without the reference;
/// - ordinal: the thresholds, one per target but the last, then the parameters of `targetParameters` but its
///   first, the intercept, which stands for all thresholds. The linear predictor is threshold minus x'b;
/// - general linear and Cox: one per parameter.
struct OrvPMMLModel {
  ModelKind kind = ModelKind::kMultinomialLogistic;
  CumulativeLink link = CumulativeLink::kLogit;
  const std::vector<int>* factors = nullptr;
  const std::vector<int>* covariates = nullptr;
  int dependent = -1;  // of a Cox model: the end time
  int subpopulation = -1;
  int parameterCount = 0;  // of the whole model, redundant ones included
  const std::vector<OrvRegrParameter>* targetParameters = nullptr;  // the distinct ones, with levels set
  const std::vector<double>* estimates = nullptr;
  const MCCommonMath::MCBitSet* nonRedundant = nullptr;  // one bit per estimate
  const std::vector<OrvModelEffect>* effects = nullptr;
  double degreesOfFreedom = 0;
  OrvPMMLCox cox;
};

}  // namespace tavo
