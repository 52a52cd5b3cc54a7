// The reference distributions of the tests: Student's t, chi-square and F.
#pragma once

namespace MCCommonMath {

/// Distribution functions. Every function returns `MCMV::gMissingValue`, and never throws, when a result
/// can't be computed: an argument that is missing or NaN, degrees of freedom that are not above 0, a negative
/// statistic where the distribution has none, a probability outside the open interval (0, 1). Degrees of
/// freedom need not be whole.
struct MCDistFun {
  /// Lower tail of Student's t. The two-sided p-value of a statistic t is 2 CdfT(-|t|, df).
  [[nodiscard]] static double CdfT(double t, double df);

  /// Quantile of Student's t: CdfT(IdfT(p, df), df) = p.
  [[nodiscard]] static double IdfT(double p, double df);

  /// Lower tail of the chi-square distribution.
  [[nodiscard]] static double CdfChi(double x, double df);

  /// Upper tail of the chi-square distribution. One minus the lower tail has no digits left below 1e-16; this
  /// has all.
  [[nodiscard]] static double UpperChi(double x, double df);

  /// Lower tail of the F distribution.
  [[nodiscard]] static double CdfF(double x, double df1, double df2);

  /// Upper tail of the F distribution, with all digits however small it is.
  [[nodiscard]] static double UpperF(double x, double df1, double df2);
};

}  // namespace MCCommonMath
