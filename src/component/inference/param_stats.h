// The statistics of one parameter.
#pragma once

#include "component/numerics/missing_value.h"

namespace tavo {

/// One line of the table of estimates. A number that could not be computed is missing; those of a redundant
/// parameter are, but for its estimate, which is 0.
struct OrvParamStats {
  int parameterIndex = 0;  // from 0, logit after logit
  double estimate = MCCommonMath::MCMV::gMissingValue;
  bool redundant = false;
  double standardError = MCCommonMath::MCMV::gMissingValue;
  double confidenceLower = MCCommonMath::MCMV::gMissingValue;
  double confidenceUpper = MCCommonMath::MCMV::gMissingValue;
  double t = MCCommonMath::MCMV::gMissingValue;
  double df = MCCommonMath::MCMV::gMissingValue;
  double significance = MCCommonMath::MCMV::gMissingValue;
  double designEffect = MCCommonMath::MCMV::gMissingValue;  // variance over that of a simple random sample
  int effectIndex = -1;                                     // in the settings' effect list; -1: the intercept
  bool negativeVariance = false;                            // it came out negative; the standard error is 0

  /// The factor by which the design widens the standard error (Kish's deft). Missing when the design effect
  /// is missing or negative.
  double SquareRootDesignEffect() const;
};

}  // namespace tavo
