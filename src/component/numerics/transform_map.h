// The change of scale between the fit and the data; internal to the numerics.
#pragma once

#include <vector>

namespace MCCommonMath {

/// The linear map T of one block between the coefficients of the columns x' = (x - c)/s and of the columns x:
///   (T b)_k = fFactor[k] b_k for slopes, (T b)_0 = b_0 + sum over k of fShift[k] b_k for an intercept.
struct TransformMap {
  std::vector<double> fFactor;
  std::vector<double> fShift;  // all 0 without an intercept

  /// From x' to x, or with `inverse` from x to x'. `scaleOnly` leaves out the shift. A column of scale 0 has
  /// factor 0 and shift 0 in both directions. `nIntercepts` is 0 or 1.
  TransformMap(const std::vector<double>& centers, const std::vector<double>& scales, int nIntercepts,
               bool inverse, bool scaleOnly);
};

}  // namespace MCCommonMath
