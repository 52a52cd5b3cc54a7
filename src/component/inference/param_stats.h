// The statistics of one parameter.
#pragma once

#include "component/numerics/missing_value.h"

namespace tavo {

struct OrvParamStats {
  int parameterIndex = 0;
  double estimate = MCCommonMath::MCMV::gMissingValue;
  bool redundant = false;
  double standardError = MCCommonMath::MCMV::gMissingValue;
  double confidenceLower = MCCommonMath::MCMV::gMissingValue;
  double confidenceUpper = MCCommonMath::MCMV::gMissingValue;
  double t = MCCommonMath::MCMV::gMissingValue;
  double df = MCCommonMath::MCMV::gMissingValue;
  double significance = MCCommonMath::MCMV::gMissingValue;
  double designEffect = MCCommonMath::MCMV::gMissingValue;
  int effectIndex = -1;
  bool negativeVariance = false;

  /// Missing when the design effect is missing or negative.
  double SquareRootDesignEffect() const;
};

}  // namespace tavo
