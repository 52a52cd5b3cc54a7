// The units of one stratum under sampling without replacement with unequal probabilities.
//
// With pi_a the inclusion probability of unit a, pi_ab the joint one of a pair and t_a the unit's weighted
// total, the variance of the estimated stratum total is estimated by
//
//   sum over b < a of (pi_a pi_b / pi_ab - 1) (t_a - t_b)^2  +  sum over a of pi_a V_a
//
// The total is that of Horvitz and Thompson (1952). The first sum is the form of Yates and Grundy (1953) and
// Sen (1953), which holds for samples of a fixed size; unlike Horvitz and Thompson's own it is 0 when all t_a
// are equal. V_a is the variance that the stages below give t_a (Raj 1966). Pairs whose joint probability is
// above pi_a pi_b have a negative weight: the estimate can be negative.
//
// Two units with pi = 0.5 and a joint probability of 0.2 have the weight 0.25 / 0.2 - 1 = 0.25; totals of 3
// and 7 then give a variance of 4.
#pragma once

#include <cstddef>
#include <vector>

namespace tavo {

/// What the variance is made of. Units and variables count from 0 here; numbers by rows.
struct JointUnits {
  std::size_t count = 0;
  std::size_t variables = 0;
  /// count * count: below the diagonal the weight of a pair, on it the inclusion probability of the unit.
  /// What stands above the diagonal isn't read.
  std::vector<double> weights;
  std::vector<double> totals;     // count * variables; missing for a unit that isn't in the sample
  std::vector<double> variances;  // of the totals, from the stages below; empty when there are none

  double Probability(std::size_t unit) const { return weights[unit * count + unit]; }
  const double* Totals(std::size_t unit) const { return totals.data() + unit * variables; }
  const double* Variances(std::size_t unit) const { return variances.data() + unit * variables; }
};

/// Turns a matrix of joint inclusion probabilities (count * count, by rows) into pair weights: the elements
/// below the diagonal become pi_a pi_b / pi_ab - 1. Probabilities that aren't above 0 keep their value, and
/// so does the diagonal.
void TransformJointProbabilities(std::vector<double>& matrix, std::size_t count);

}  // namespace tavo
