// With x' = (x - c)/s, b'x' = (b'/s) x - b' c/s: the slope is divided by the scale, and what the centre takes
// off goes to the intercept. The other direction solves for b'.
#include "component/numerics/transform_map.h"

#include <cstddef>

namespace MCCommonMath {

TransformMap::TransformMap(const std::vector<double>& centers, const std::vector<double>& scales,
                           int nIntercepts, bool inverse, bool scaleOnly)
    : fFactor(scales.size(), 0.0), fShift(scales.size(), 0.0) {
  const bool useCenters = nIntercepts == 1 && !scaleOnly;
  for (std::size_t k = 0; k < scales.size(); ++k) {
    const double center = useCenters ? centers[k] : 0.0;
    if (nIntercepts == 1 && k == 0) {
      fFactor[k] = 1.0;
    } else if (scales[k] == 0.0) {  // a constant column is redundant and has no slope to carry over
      continue;
    } else if (inverse) {
      fFactor[k] = scales[k];
      fShift[k] = center;
    } else {
      fFactor[k] = 1.0 / scales[k];
      fShift[k] = -center / scales[k];
    }
  }
}

}  // namespace MCCommonMath
