// The result of one test.
#pragma once

#include "component/input/comp_settings.h"
#include "component/numerics/missing_value.h"

namespace tavo {

/// Of a whole hypothesis, or of one row of its L matrix. A number that could not be computed is missing.
struct OrvTestStats {
  TestType testType = TestType::WaldF;
  PAdjustMethod adjustment = PAdjustMethod::LeastSignificanceDifference;
  double df1 = MCCommonMath::MCMV::gMissingValue;
  double df2 = MCCommonMath::MCMV::gMissingValue;   // F types only
  double wald = MCCommonMath::MCMV::gMissingValue;  // F or chi-square, as the test type says
  double significance = MCCommonMath::MCMV::gMissingValue;
  double adjustedSignificance = MCCommonMath::MCMV::gMissingValue;
  double contrastEstimate = MCCommonMath::MCMV::gMissingValue;  // of a row: L b, K not subtracted
  double standardError = MCCommonMath::MCMV::gMissingValue;     // of a row
  /// Of a row: it took part in the overall test. Of a whole: L had full row rank, or rank 0.
  bool usedInOverall = true;
  int contrastCount = 0;  // distinct rows of L that aren't 0

  /// Back to the defaults; test type and adjustment only when `all`.
  void Reset(bool all);
};

}  // namespace tavo
