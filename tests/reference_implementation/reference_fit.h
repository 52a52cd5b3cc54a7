// The pseudo-likelihood fit of a baseline-category logit model.
#pragma once

#include <vector>

#include "reference_columns.h"

namespace reference {

/// A line of the iteration history.
struct Iteration {
  int halvings = 0;
  Real logLikelihood = 0;
  Vector estimates;  // of all parameters, logit after logit; 0 at redundant ones
};

/// `inflation` up to which a fit counts as well posed: beyond it, half of the digits of a double are lost.
constexpr Real kLargestInflation = 1e8L;

struct Fit {
  CategoryCounts categories;        // of the dependent variable
  std::size_t reference = 0;        // position in `categories`
  std::vector<std::size_t> logits;  // the other positions, ascending
  std::vector<std::size_t> kept;    // columns that are not redundant
  std::vector<Iteration> history;   // from iteration 0
  Real initialLogLikelihood = 0, finalLogLikelihood = 0;
  int iterations = 0;
  Vector estimates;      // as in the last iteration
  Matrix probabilities;  // cases of the domain by categories, in the order of `categories`
  /// The influence of each case of the domain on each estimate: inverse information times score, on the scale
  /// of the data; columns as `estimates`. Their totals over units carry the variance (Binder 1983).
  Matrix influences;
  /// False when the fit is not one that double precision repeats to the last digits: a response nearly
  /// separated, or a stopping rule met within rounding.
  bool isWellPosed = false;
  Real inflation = 1;      // the largest variance inflation factor of the columns that are kept
  Real information = 1;    // the weight, against the least information on the way about a column
                           // of unit mean square
  Matrix modelCovariance;  // the inverse information, on the scale of the data; 0 at redundant parameters

  std::size_t Equations() const { return logits.size(); }
};

/// Newton's method from the fit of the intercepts alone, with step-halving; stopped by the change of the
/// estimates or the number of iterations. Needs two categories or more and a column that is kept.
Fit FitModel(const Problem& problem, const AnalysedCases& cases, const Columns& columns,
             const Independence& independence);

/// The category that is predicted, as a position in `categories`, from the linear predictors of a case (0 for
/// the reference); -1 when rounding decides between two.
int PredictedCategory(const Fit& fit, std::size_t caseInDomain);

}  // namespace reference
