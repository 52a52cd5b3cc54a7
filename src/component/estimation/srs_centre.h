// The covariance of the scores under simple random sampling.
#pragma once

#include <vector>

#include "component/estimation/rank_update.h"
#include "component/input/comp_settings.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

/// The central part of the sandwich (Binder 1983) that a simple random sample of n cases from a population of
/// N would have: N/(n-1) times the sum over the cases of w r r' x x', with the weight w, the residuals r of
/// the logits and the design row x. With the scores s = w r x that is the sum of (1/w) s s'. Without
/// replacement, the whole times 1 - n/N. Design effects compare the variances of the design with it.
class OrvSRSCentre {
 public:
  /// Over `parameters` parameters, rows of at most `entries` entries. Not valid when memory ran out.
  OrvSRSCentre(int parameters, int entries);
  bool IsValid() const { return fbValid; }
  /// Adds w (r x)(r x)'. `indices`, ascending, and `values` are those of r x.
  void Add(const std::vector<int>& indices, const std::vector<double>& values, double weight);
  /// Scales the sum as above; a sample larger than the population counts as the whole of it. The sum of a
  /// sample of one has no spread and becomes 0.
  /// `weightUnit`: what the weights of the sum were divided by, and the result is divided by its square, as
  /// are products of scores.
  void Scale(double sampleSize, double populationTotal, SRSEstimator estimator, double weightUnit = 1.0);
  /// All that was added so far. Not while another thread adds.
  const MCCommonMath::MCSymMatrix& Matrix() const;

 private:
  mutable MCCommonMath::MCSymMatrix fMatrix;
  mutable OrvRankUpdate fRows;  // still to be added; flushed before anyone reads the matrix
  bool fbRowByRow;
  bool fbValid;
};

}  // namespace tavo
