// Operations on plain vectors: products, changes between iterations, the scale of the fit.
#pragma once

#include <span>
#include <vector>

namespace MCCommonMath {

/// Vector operations. Offsets and steps count elements; a step may be 0 or negative as long as every element
/// used lies within its vector.
struct MCMathFun {
  /// Sum over i < n of x[xOffset + i xStep] * y[yOffset + i yStep]. n <= 0 gives 0; elements outside a vector
  /// give the missing value.
  [[nodiscard]] static double DDot(int n, std::span<const double> x, int xOffset, int xStep,
                                   std::span<const double> y, int yOffset, int yStep);

  /// y[yOffset + i yStep] += alpha * x[xOffset + i xStep] for i < n. False, with y unchanged, when an element
  /// lies outside its vector.
  static bool Daxpy(int n, double alpha, std::span<const double> x, int xOffset, int xStep,
                    std::span<double> y, int yOffset, int yStep);

  /// Sum of absolute differences. Vectors of different lengths give infinity, which no criterion takes for a
  /// small change; a NaN stays NaN.
  [[nodiscard]] static double VNrm1Diff(std::span<const double> a, std::span<const double> b);

  /// The largest |a_i - b_i| / max(|b_i|, eps), b being the previous vector; 0 for equal vectors. Different
  /// lengths and NaN as in `VNrm1Diff`.
  [[nodiscard]] static double VMaxRelDiff(std::span<const double> a, std::span<const double> b, double eps);

  /// Takes coefficients b' of columns x' = (x - c)/s back to the columns x, in place. `params` holds
  /// `nBlocks` equal blocks, one per logit; `centers` and `scales` have the length of one block. With
  /// `nIntercepts` 1 the first element of each block is the intercept. Per block: b_k = b'_k / s_k, and b_0 =
  /// b'_0 - sum over k of c_k b'_k / s_k; without an intercept the centres are not used. A column of scale 0
  /// is constant and carries no slope: its coefficient becomes 0 and it adds nothing to the intercept.
  ///
  /// `inverse` goes the other way, from x to x'. `scaleOnly` leaves the centres alone.
  ///
  /// False, with nothing changed, when the lengths do not match or `nIntercepts` is neither 0 nor 1.
  static bool TransformParameters(std::vector<double>& params, const std::vector<double>& centers,
                                  const std::vector<double>& scales, int nBlocks, int nIntercepts,
                                  bool inverse = false, bool scaleOnly = false);
};

}  // namespace MCCommonMath
