#include "component/inference/param_stats.h"

#include <cmath>

namespace tavo {

double OrvParamStats::SquareRootDesignEffect() const {
  if (MCCommonMath::IsMissing(designEffect) || designEffect < 0.0) return MCCommonMath::MCMV::gMissingValue;
  return std::sqrt(designEffect);
}

}  // namespace tavo
