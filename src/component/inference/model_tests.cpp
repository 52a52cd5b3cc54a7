#include "component/inference/model_tests.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "component/numerics/distributions.h"
#include "component/numerics/math_functions.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCBitSet;
using MCCommonMath::MCDistFun;
using MCCommonMath::MCMathFun;
using MCCommonMath::MCMV;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;

namespace {

/// Of a row's variance, 1 after scaling, that rows before it must leave for the row to count.
constexpr double kTolerance = 1e-12;
constexpr double kLargest = std::numeric_limits<double>::max();

/// 1 - (1 - p)^m (Sidak 1967), without cancellation for small p: from p = 1e-17 on, 1 - p is 1. With m = 2 it
/// is the square written out.
double Sidak(double p, int m) {
  if (m == 1) return p;
  if (m == 2) return p * (2.0 - p);
  return -std::expm1(m * std::log1p(-p));
}

bool IsSequential(PAdjustMethod method) {
  return method == PAdjustMethod::SequentialBonferroni || method == PAdjustMethod::SequentialSidak;
}

double SequentialStep(PAdjustMethod method, double p, int m) {
  return std::min(1.0, method == PAdjustMethod::SequentialSidak ? Sidak(p, m) : m * p);
}

void Minimise(double& smallest, double value) {
  if (!IsMissing(value)) smallest = std::min(smallest, value);
}

/// Nothing was met when the running minimum hasn't moved: a significance is at most 1.
double MinimumOrMissing(double smallest) {
  return smallest < kLargest ? smallest : MCMV::gMissingValue;
}

/// By row, the column of its first element that isn't 0, or the number of columns. Rows that start elsewhere
/// can't be multiples, which spares comparing all pairs of the many contrasts of a large crossing.
std::vector<int> FirstElements(const MCRectMatrix& L) {
  std::vector<int> first;
  for (int i = 0; i < L.GetNRows(); ++i) {
    const double* row = L.AsVectorConst().data() + static_cast<std::ptrdiff_t>(i) * L.GetNCols();
    const double* end = row + L.GetNCols();
    first.push_back(static_cast<int>(std::find_if(row, end, [](double x) { return x != 0.0; }) - row));
  }
  return first;
}

double TraceOfSquare(const MCRectMatrix& d) {
  double trace = 0.0;
  for (int i = 0; i < d.GetNRows(); ++i)
    trace += d.DotProductRowCol(i, d, i);
  return trace;
}

double Trace(const MCRectMatrix& d) {
  double trace = 0.0;
  for (int i = 0; i < d.GetNRows(); ++i)
    trace += d.GetElem(i, i);
  return trace;
}

}  // namespace

OrvModelTests::OrvModelTests(const std::vector<double>& estimates, const MCSymMatrix& covariance,
                             const MCSymMatrix* covarianceSRS, double degreesOfFreedom,
                             const OrvEstimateBasis* basis)
    : fEstimates(estimates),
      fCovariance(covariance),
      fpCovarianceSRS(covarianceSRS),
      fNDegFreedom(degreesOfFreedom),
      fpBasis(basis) {}

bool OrvModelTests::IsAdjusted() const {
  return fTestType == TestType::AdjustedWaldF || fTestType == TestType::AdjustedWaldChiSquare;
}

bool OrvModelTests::IsF() const {
  return fTestType == TestType::WaldF || fTestType == TestType::AdjustedWaldF;
}

OrvStatus OrvModelTests::Check(const MCRectMatrix& L) const {
  if (IsAdjusted() && fpCovarianceSRS == nullptr) {
    return OrvStatus::Error(StatusCode::kNoDesignCovariance).SetInteger(0, static_cast<int>(fTestType));
  }
  const int parameters = fpBasis == nullptr ? static_cast<int>(fEstimates.size()) : fpBasis->ParameterCount();
  if (L.GetNCols() != parameters) {
    return OrvStatus::Error(StatusCode::kWrongLMatrixWidth)
        .SetInteger(0, L.GetNCols())
        .SetInteger(1, parameters);
  }
  return OrvStatus();
}

// ---- statistics ----

OrvModelTests::Contrast OrvModelTests::TakeContrast(const MCRectMatrix& L, int row) const {
  Contrast contrast;
  L.GetRow(row, contrast.row);
  contrast.exponent = ScaleByPowerOfTwo(contrast.row);
  if (fpBasis != nullptr) contrast.row = fpBasis->Transform(contrast.row);
  const int size = static_cast<int>(contrast.row.size());
  contrast.estimate = MCMathFun::DDot(size, contrast.row, 0, 1, fEstimates, 0, 1);
  contrast.standardError = fpBasis == nullptr
                               ? fCovariance.SquareRootVSV(contrast.row)
                               : std::max(0.0, fpBasis->SignedDeviation(fCovariance, contrast.row));
  return contrast;
}

/// False when memory ran out.
bool OrvModelTests::ScaleRows(const MCRectMatrix& L, const std::vector<double>* K, ScaledRows& scaled) const {
  const int n = L.GetNRows();
  if (!scaled.rows.SetNRowsCols(n, static_cast<int>(fEstimates.size()))) return false;
  double* element = scaled.rows.AsVector().data();
  for (int i = 0; i < n; ++i, element += scaled.rows.GetNCols()) {
    const Contrast contrast = TakeContrast(L, i);
    const bool hasVariance = contrast.standardError > 0.0;
    const double unit = hasVariance ? contrast.standardError : 1.0;
    if (!hasVariance) scaled.withoutVariance.push_back(i);
    const double hypothesized =
        K == nullptr ? 0.0 : std::ldexp((*K)[static_cast<std::size_t>(i)], -contrast.exponent);
    scaled.difference.push_back((contrast.estimate - hypothesized) / unit);
    for (std::size_t j = 0; j < contrast.row.size(); ++j)
      element[j] = contrast.row[j] / unit;
  }
  return true;
}

/// The design-based covariance of scaled rows. What rounding left of a variance would look like one beside
/// those of the others. False when memory ran out.
bool OrvModelTests::CovarianceOf(const ScaledRows& scaled, MCSymMatrix& result) const {
  if (!fCovariance.ComputeRSRTrans(scaled.rows, result)) return false;
  for (const int i : scaled.withoutVariance) {
    for (int j = 0; j < result.GetNRows(); ++j)
      result.SetElem(i, j, 0.0);
  }
  return true;
}

int OrvModelTests::InvertContrastCovariance(const MCSymMatrix& A, MCSymMatrix& inverse, MCBitSet& used) {
  // A single row is tested against its own diagonal, so it counts however small its variance is. Among
  // several, a row without variance is compared with 1 and drops out.
  std::vector<double> diagonal;
  if (A.GetNRows() >= 2) {
    A.GetNCheckDiagonal(diagonal, kTolerance, 1.0);
  } else {
    A.GetDiagonal(diagonal);
  }
  return A.CholInverse(diagonal, kTolerance, inverse, used);
}

double OrvModelTests::ComputeChiSquare(const MCRectMatrix& L, const std::vector<double>* K, int& rank,
                                       MCBitSet& used) const {
  ScaledRows scaled;
  MCSymMatrix contrastCovariance;
  MCSymMatrix inverse;
  rank = -1;
  if (!ScaleRows(L, K, scaled) || !CovarianceOf(scaled, contrastCovariance)) return MCMV::gMissingValue;
  rank = InvertContrastCovariance(contrastCovariance, inverse, used);
  if (rank < 0) return MCMV::gMissingValue;
  if (rank < 2 || contrastCovariance.IsSafelyRegular(used)) return inverse.ComputeVSV(scaled.difference);
  const double chiSquare = ChiSquareOfOrthogonal(scaled, used);
  return IsMissing(chiSquare) ? inverse.ComputeVSV(scaled.difference) : chiSquare;
}

/// The same statistic over the rows in `used`, which are independent. It depends on the space alone that they
/// span, so nearly parallel ones are made orthogonal first: what they share would be squared in their
/// covariance, and cancel only there. Missing when it can't be had that way. Gram and Schmidt, twice (Giraud,
/// Langou and Rozloznik 2005).
double OrvModelTests::ChiSquareOfOrthogonal(const ScaledRows& scaled, const MCBitSet& used) const {
  const std::vector<int> kept = used.Members();
  const int columns = scaled.rows.GetNCols();
  std::vector<std::vector<double>> rows;
  std::vector<double> difference;
  for (const int i : kept) {
    std::vector<double>& row = rows.emplace_back();
    scaled.rows.GetRow(i, row);
    double rest = scaled.difference[static_cast<std::size_t>(i)];
    for (const int pass : {1, 2}) {
      for (std::size_t other = 0; other + 1 < rows.size(); ++other) {
        const double shared = MCMathFun::DDot(columns, row, 0, 1, rows[other], 0, 1);
        MCMathFun::Daxpy(columns, -shared, rows[other], 0, 1, row, 0, 1);
        rest -= shared * difference[other];
      }
      const double length = std::sqrt(MCMathFun::DDot(columns, row, 0, 1, row, 0, 1));
      if (!(length > 0.0)) return MCMV::gMissingValue;
      for (double& element : row)
        element /= length;
      rest /= length;
      if (pass == 2) difference.push_back(rest);
    }
  }
  MCRectMatrix orthogonal;
  MCSymMatrix covariance;
  MCSymMatrix inverse;
  MCBitSet all;
  if (!orthogonal.SetNRowsCols(static_cast<int>(kept.size()), columns)) return MCMV::gMissingValue;
  for (std::size_t i = 0; i < rows.size(); ++i)
    std::copy(rows[i].begin(), rows[i].end(),
              orthogonal.AsVector().begin() + static_cast<std::ptrdiff_t>(i) * columns);
  if (!fCovariance.ComputeRSRTrans(orthogonal, covariance)) return MCMV::gMissingValue;
  std::vector<double> diagonal;
  covariance.GetDiagonal(diagonal);
  const int rank = covariance.CholInverse(diagonal, kTolerance, inverse, all);
  return rank == static_cast<int>(kept.size()) ? inverse.ComputeVSV(difference) : MCMV::gMissingValue;
}

double OrvModelTests::ComputeAdjChiSquare(const MCRectMatrix& L, const std::vector<double>* K, double& df,
                                          MCBitSet& used) const {
  df = MCMV::gMissingValue;
  ScaledRows scaled;
  MCSymMatrix underSRS;
  MCSymMatrix underDesign;
  MCSymMatrix inverse;
  MCRectMatrix designEffects;
  if (fpCovarianceSRS == nullptr || !ScaleRows(L, K, scaled) ||
      !fpCovarianceSRS->ComputeRSRTrans(scaled.rows, underSRS) || !CovarianceOf(scaled, underDesign) ||
      !underDesign.SetCovarZeros(underSRS) || InvertContrastCovariance(underSRS, inverse, used) < 0 ||
      !inverse.ComputeSS(underDesign, designEffects)) {
    return MCMV::gMissingValue;
  }
  const double chiSquare = inverse.ComputeVSV(scaled.difference);
  const double first = Trace(designEffects);
  const double second = TraceOfSquare(designEffects);
  if (second > 0.0) df = first * first / second;
  if (first == 0.0 || !(df > 0.0)) return MCMV::gMissingValue;
  return chiSquare / (first / df);
}

// ---- the overall test ----

void OrvModelTests::FillWald(double chiSquare, int rank, OrvTestStats& overall) const {
  // The rank and not the number of rows: a row that depends on others says nothing new. With d below r there
  // are too few clusters for a joint test, and only its first degrees of freedom can be told.
  const double r = rank;
  const double d = fNDegFreedom;
  if (rank >= 0) overall.df1 = r;
  const bool isTestable = chiSquare >= 0.0 && rank >= 1;
  if (fTestType == TestType::WaldChiSquare) {
    if (!isTestable) return;
    overall.wald = chiSquare;
    overall.significance = MCDistFun::UpperChi(chiSquare, r);
    return;
  }
  if (!(d >= r) || rank < 0) return;
  overall.df2 = d - r + 1.0;
  if (!isTestable) return;
  overall.wald = overall.df2 / (r * d) * chiSquare;
  overall.significance = MCDistFun::UpperF(overall.wald, r, overall.df2);
}

void OrvModelTests::FillAdjusted(double chiSquare, double df, OrvTestStats& overall) const {
  const double d = fNDegFreedom;
  const bool isTestable = chiSquare >= 0.0 && df > 0.0;
  if (df >= 0.0) overall.df1 = df;
  if (fTestType == TestType::AdjustedWaldChiSquare) {
    if (!isTestable) return;
    overall.wald = chiSquare;
    overall.significance = MCDistFun::UpperChi(chiSquare, df);
    return;
  }
  if (df >= 0.0 && d >= 0.0) overall.df2 = df * d;
  if (!isTestable || !(d > 0.0)) return;
  overall.wald = chiSquare / df;
  overall.significance = MCDistFun::UpperF(overall.wald, df, overall.df2);
}

void OrvModelTests::TestOverall(const MCRectMatrix& L, const std::vector<double>* K, MCBitSet& used,
                                OrvTestStats& overall) const {
  overall.Reset(true);
  overall.testType = fTestType;
  overall.adjustment = fAdjustment;
  used.Resize(L.GetNRows(), false);
  int rank = 0;
  if (IsAdjusted()) {
    double df = MCMV::gMissingValue;
    const double chiSquare = ComputeAdjChiSquare(L, K, df, used);
    rank = used.InSet();
    FillAdjusted(chiSquare, df, overall);
  } else {
    const double chiSquare = ComputeChiSquare(L, K, rank, used);
    FillWald(chiSquare, rank, overall);
  }
  overall.usedInOverall = rank == L.GetNRows() || rank == 0;
}

// ---- single rows ----

int OrvModelTests::FindDistinctRows(const MCRectMatrix& L, const std::vector<double>* K,
                                    std::vector<int>& marks) {
  const int n = L.GetNRows();
  const auto valueOf = [K](int i) { return K == nullptr ? 0.0 : (*K)[static_cast<std::size_t>(i)]; };
  const std::vector<int> first = FirstElements(L);  // multiples start at the same column
  marks.assign(first.size(), -1);
  int distinct = n;
  for (std::size_t i = 0; i < first.size(); ++i) {
    const int row = static_cast<int>(i);
    if (L.IsRowZero(row)) {
      marks[i] = -2;
      --distinct;
      continue;
    }
    for (std::size_t j = i + 1; j < first.size() && marks[i] == -1; ++j) {
      if (marks[j] != -1 || first[j] != first[i]) continue;
      const int other = static_cast<int>(j);
      double factor = 0.0;
      if (L.IsERowMultipleOfAnother(row, other, valueOf(row), valueOf(other), factor)) {
        marks[j] = row;
        --distinct;
      }
    }
  }
  return distinct;
}

/// Missing for the sequential methods, which need all rows.
double OrvModelTests::Adjusted(double significance, int contrastCount) const {
  switch (fAdjustment) {
    case PAdjustMethod::LeastSignificanceDifference:
      return std::min(1.0, significance);
    case PAdjustMethod::Bonferroni:
      return std::min(1.0, contrastCount * significance);
    case PAdjustMethod::Sidak:
      return std::min(1.0, Sidak(significance, contrastCount));
    default:
      return MCMV::gMissingValue;
  }
}

bool OrvModelTests::TestRow(const MCRectMatrix& L, int row, double hypothesized, int contrastCount,
                            OrvTestStats& stats) const {
  // A single row needs no adjustment for the design beyond its variance: the adjusted types test it as the
  // plain ones do.
  const Contrast contrast = TakeContrast(L, row);
  stats.testType = fTestType;
  stats.adjustment = fAdjustment;
  stats.contrastEstimate = std::ldexp(contrast.estimate, contrast.exponent);
  stats.standardError = std::ldexp(contrast.standardError, contrast.exponent);
  if (!(contrast.standardError > 0.0)) {
    if (!IsAdjusted()) stats.df1 = 0.0;
    if (fTestType == TestType::WaldF) stats.df2 = fNDegFreedom + 1.0;
    return false;
  }
  stats.df1 = 1.0;
  if (IsF()) stats.df2 = fNDegFreedom;
  const double scaled = std::ldexp(hypothesized, -contrast.exponent);
  const double t = (contrast.estimate - scaled) / contrast.standardError;
  stats.wald = t * t;
  stats.significance =
      IsF() ? MCDistFun::UpperF(stats.wald, 1.0, fNDegFreedom) : MCDistFun::UpperChi(stats.wald, 1.0);
  if (!IsMissing(stats.significance)) {
    stats.adjustedSignificance = Adjusted(stats.significance, contrastCount);
  }
  return true;
}

// ---- hypotheses ----

OrvStatus OrvModelTests::TestHypothesis(const MCRectMatrix& L, OrvTestStats& overall) const {
  const OrvStatus status = Check(L);
  if (!status.IsOK()) return status;
  MCBitSet used;
  TestOverall(L, nullptr, used, overall);

  std::vector<int> marks;
  overall.contrastCount = FindDistinctRows(L, nullptr, marks);
  // In a sequence the smallest significance takes the first step, on all rows: no later step can be below it,
  // so the rest of the sequence needn't be gone through.
  double smallest = kLargest;
  double smallestAdjusted = kLargest;
  for (std::size_t i = 0; i < marks.size(); ++i) {
    if (marks[i] != -1) continue;
    OrvTestStats row;
    TestRow(L, static_cast<int>(i), 0.0, overall.contrastCount, row);
    Minimise(smallest, row.significance);
    Minimise(smallestAdjusted, row.adjustedSignificance);
  }
  if (!IsSequential(fAdjustment)) {
    overall.adjustedSignificance = MinimumOrMissing(smallestAdjusted);
  } else if (smallest < kLargest) {
    overall.adjustedSignificance = SequentialStep(fAdjustment, smallest, overall.contrastCount);
  }
  return status;
}

OrvStatus OrvModelTests::TestCustomHypothesis(const MCRectMatrix& L, const std::vector<double>& K,
                                              std::vector<OrvTestStats>& rows, OrvTestStats& overall) const {
  const OrvStatus status = Check(L);
  if (!status.IsOK()) return status;
  const int n = L.GetNRows();
  assert(K.size() == static_cast<std::size_t>(n));
  MCBitSet used;
  TestOverall(L, &K, used, overall);

  std::vector<int> marks;
  overall.contrastCount = FindDistinctRows(L, &K, marks);
  rows.assign(K.size(), OrvTestStats());
  for (int i = 0; i < n; ++i) {
    OrvTestStats& row = rows[static_cast<std::size_t>(i)];
    row.usedInOverall = used.IsIn(i);
    row.contrastCount = overall.contrastCount;
    TestRow(L, i, K[static_cast<std::size_t>(i)], overall.contrastCount, row);
  }
  if (IsSequential(fAdjustment)) AdjustInSequence(marks, overall.contrastCount, rows);
  double smallest = kLargest;
  for (const OrvTestStats& row : rows)
    Minimise(smallest, row.adjustedSignificance);
  overall.adjustedSignificance = MinimumOrMissing(smallest);
  return status;
}

/// Step-down from the smallest significance (Holm 1979; Holland and Copenhaver 1987): each distinct row takes
/// a step, a multiple follows the row that it repeats. The running maximum keeps the order of the
/// significances: a later row has fewer to be adjusted for, and could otherwise fall below the one before.
void OrvModelTests::AdjustInSequence(const std::vector<int>& marks, int contrastCount,
                                     std::vector<OrvTestStats>& rows) const {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!IsMissing(rows[i].significance)) order.push_back(i);
  }
  std::stable_sort(order.begin(), order.end(), [&rows](std::size_t a, std::size_t b) {
    return rows[a].significance < rows[b].significance;
  });
  int left = contrastCount;
  double highest = 0.0;
  for (const std::size_t i : order) {
    if (marks[i] != -1) continue;
    highest = std::max(highest, SequentialStep(fAdjustment, rows[i].significance, left--));
    rows[i].adjustedSignificance = highest;
  }
  for (const std::size_t i : order) {
    if (marks[i] < 0) continue;
    rows[i].adjustedSignificance = rows[static_cast<std::size_t>(marks[i])].adjustedSignificance;
  }
}

}  // namespace tavo
