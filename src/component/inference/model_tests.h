// From a contrast matrix to a test: Wald statistics, their reference distributions, and adjusted
// significances.
#pragma once

#include <vector>

#include "component/frame/orv_status.h"
#include "component/inference/estimate_basis.h"
#include "component/inference/test_stats.h"
#include "component/numerics/bit_set.h"
#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

/// Tests of L b = K for estimates b with a design-based covariance V and d design degrees of freedom. Knows
/// nothing of effects, variables or categories. L has one column per parameter of all logits. Nothing is
/// owned and everything only read; a result lives in the caller's records.
///
/// With X the Wald chi-square, r its rank and d the design degrees of freedom, the plain tests are X itself
/// on r degrees of freedom, and its F form (d - r + 1) / (r d) X on r and d - r + 1 (Korn and Graubard 1990):
/// V is estimated from d independent pieces, so X is distributed as Hotelling's T squared rather than as a
/// chi-square, and the more so the fewer clusters there are.
///
/// The adjusted tests need no inverse of the contrasts' design covariance, which few clusters make unstable:
/// they refer the chi-square under simple random sampling to its distribution under the design, with the
/// second-order correction of its degrees of freedom (Satterthwaite 1946; Rao and Scott 1984; Thomas and Rao
/// 1987 for the F form).
///
/// Several rows are adjusted for by Bonferroni's inequality, by that of Sidak (1967), or in sequence from the
/// smallest significance on (Holm 1979; Holland and Copenhaver 1987 for Sidak's).
///
/// The scale of a row never matters, nor does cancellation among its terms: each row of L, with its K, is
/// divided by a power of two near its largest element, taken to the basis of the covariance, and divided by
/// the standard error of its own contrast there, so that the fixed limit 1e-12 of the rank compares like with
/// like. A row whose contrast has no variance, but for rounding, is left out of the overall test. Estimates
/// and standard errors of rows are those of L as given.
class OrvModelTests {
 public:
  /// `covarianceSRS` may be null; the adjusted tests need it. Estimates and covariances are in `basis`, or,
  /// where that is null, on the scale of L. None of the arguments is owned.
  OrvModelTests(const std::vector<double>& estimates, const MCCommonMath::MCSymMatrix& covariance,
                const MCCommonMath::MCSymMatrix* covarianceSRS, double degreesOfFreedom,
                const OrvEstimateBasis* basis = nullptr);

  void SetTestType(TestType type) { fTestType = type; }
  void SetPAdjustMethod(PAdjustMethod method) { fAdjustment = method; }

  /// L b = 0: the overall test, with the smallest adjusted significance of its distinct rows.
  /// kNoDesignCovariance for an adjusted test without SRS covariance (integer 0: test type),
  /// kWrongLMatrixWidth when L has not one column per parameter (integers: columns, parameters).
  OrvStatus TestHypothesis(const MCCommonMath::MCRectMatrix& L, OrvTestStats& overall) const;
  /// L b = K, K with one value per row, and a test of every row; `rows` gets one record per row of L. Errors
  /// as above.
  OrvStatus TestCustomHypothesis(const MCCommonMath::MCRectMatrix& L, const std::vector<double>& K,
                                 std::vector<OrvTestStats>& rows, OrvTestStats& overall) const;

  /// The Wald chi-square (L b - K)' (L V L')^- (L b - K). `K` null is 0. `used` gets one bit per row, set for
  /// the `rank` rows that the inverse kept: the first independent ones.
  double ComputeChiSquare(const MCCommonMath::MCRectMatrix& L, const std::vector<double>* K, int& rank,
                          MCCommonMath::MCBitSet& used) const;
  /// The same with the SRS covariance. With D = (L V_srs L')^- (L V L') the matrix of design effects of the
  /// contrasts (Rao and Scott 1984), it is divided by tr(D) / df, where df = tr(D)^2 / tr(D D) (Satterthwaite
  /// 1946): mean and variance then fit a chi-square on `df`. Missing, as `df` may be, when the design effects
  /// say nothing.
  double ComputeAdjChiSquare(const MCCommonMath::MCRectMatrix& L, const std::vector<double>* K, double& df,
                             MCCommonMath::MCBitSet& used) const;
  /// The inverse of a contrast covariance on the rows that don't depend on earlier ones; returns their
  /// number.
  static int InvertContrastCovariance(const MCCommonMath::MCSymMatrix& A, MCCommonMath::MCSymMatrix& inverse,
                                      MCCommonMath::MCBitSet& used);
  /// One row against `hypothesized`, with `contrastCount` rows to adjust for. Whether its standard error is
  /// above 0.
  bool TestRow(const MCCommonMath::MCRectMatrix& L, int row, double hypothesized, int contrastCount,
               OrvTestStats& stats) const;
  /// One mark per row: -1 stands for itself, -2 is zero, otherwise the earlier row of which it is a multiple.
  /// `K` null is 0. Returns the number of rows that stand for themselves.
  static int FindDistinctRows(const MCCommonMath::MCRectMatrix& L, const std::vector<double>* K,
                              std::vector<int>& marks);

 private:
  bool IsAdjusted() const;
  bool IsF() const;
  OrvStatus Check(const MCCommonMath::MCRectMatrix& L) const;
  /// One row, and what is known of it, each divided by the same power of two.
  struct Contrast {
    std::vector<double> row;  // in the basis
    int exponent = 0;         // of that power
    double estimate = 0.0;
    double standardError = 0.0;  // 0 when the variance isn't above 0
  };
  /// All rows in the basis, each over its standard error where it has one, and L b - K likewise.
  struct ScaledRows {
    MCCommonMath::MCRectMatrix rows;
    std::vector<double> difference;
    std::vector<int> withoutVariance;
  };
  Contrast TakeContrast(const MCCommonMath::MCRectMatrix& L, int row) const;
  bool ScaleRows(const MCCommonMath::MCRectMatrix& L, const std::vector<double>* K, ScaledRows& scaled) const;
  bool CovarianceOf(const ScaledRows& scaled, MCCommonMath::MCSymMatrix& result) const;
  double ChiSquareOfOrthogonal(const ScaledRows& scaled, const MCCommonMath::MCBitSet& used) const;
  void TestOverall(const MCCommonMath::MCRectMatrix& L, const std::vector<double>* K,
                   MCCommonMath::MCBitSet& used, OrvTestStats& overall) const;
  void FillWald(double chiSquare, int rank, OrvTestStats& overall) const;
  void FillAdjusted(double chiSquare, double df, OrvTestStats& overall) const;
  double Adjusted(double significance, int contrastCount) const;
  void AdjustInSequence(const std::vector<int>& marks, int contrastCount,
                        std::vector<OrvTestStats>& rows) const;

  const std::vector<double>& fEstimates;
  const MCCommonMath::MCSymMatrix& fCovariance;
  const MCCommonMath::MCSymMatrix* fpCovarianceSRS;
  double fNDegFreedom;
  const OrvEstimateBasis* fpBasis;
  TestType fTestType = TestType::WaldF;
  PAdjustMethod fAdjustment = PAdjustMethod::LeastSignificanceDifference;
};

}  // namespace tavo
