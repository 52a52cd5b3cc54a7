// Which cases are analysed, which parameters a model has, what the columns of its design matrix are, and
// which of them are redundant.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "reference_matrix.h"
#include "reference_problem.h"

namespace reference {

/// The cases that count. A case with a missing value in any variable of the command or the plan is left out;
/// so is one whose weight is not above 0.
struct AnalysedCases {
  std::vector<std::size_t> cases;     // in and out of the domain
  std::vector<bool> isInDomain;       // by position in `cases`
  std::vector<std::size_t> inDomain;  // the cases of the domain
  std::size_t invalid = 0;
  Real totalWeight = 0, domainWeight = 0;
};
AnalysedCases SelectCases(const Problem& problem);

/// The categories of a variable that have weight in the domain, ascending, with weighted and unweighted
/// counts.
struct CategoryCounts {
  std::vector<int> codes;
  std::vector<Real> weights;
  std::vector<int> counts;
};
CategoryCounts CountCategories(const Problem& problem, const AnalysedCases& cases,
                               const Categorical& variable);
/// The position in `counts.codes` of the category asked for; of the highest when it has no cases.
std::size_t PositionOf(const CategoryCounts& counts, const CategoryRequest& request);

/// One column: an effect (0 is the intercept when the model has one) and the codes of its factors, in the
/// order of the factor list. `label` is its name in the tables.
struct Parameter {
  std::size_t effect = 0;
  std::vector<int> levels;
  std::string label;
};

/// The effects with the intercept as a first, empty one.
std::vector<Effect> EffectsWithIntercept(const Problem& problem);
std::string EffectName(const Problem& problem, const Effect& effect);
/// Positions of the factors of an effect in the order of the factor list.
std::vector<std::size_t> FactorsOf(const Effect& effect);
bool HasCovariates(const Effect& effect);

/// Full dummy coding: one column for each combination of the levels of an effect's factors that occurs, times
/// the powers of its covariates.
struct Columns {
  std::vector<Effect> effects;
  std::vector<Parameter> parameters;
  std::vector<std::size_t> firstOfEffect, countOfEffect;
  Matrix raw;      // cases of the domain by parameters
  Matrix centred;  // the same; effects of covariates alone whose covariates no other effect has, about their
                   // weighted means (in a model with an intercept)
  Vector weights;  // of the cases of the domain
};
Columns BuildColumns(const Problem& problem, const AnalysedCases& cases);
/// The row of the design matrix for given factor codes and covariate values; a combination that did not occur
/// has no column.
Vector DesignRow(const Columns& columns, const std::vector<int>& factorCodes, const Vector& covariates);

/// Which columns, as they stand, are independent of those before them in `order`. A column is redundant when
/// the part of its sum of squares that the columns before it leave unexplained is not above 1e-12.
struct Independence {
  std::vector<bool> isKept;
  std::vector<std::size_t> kept;  // in `order`
  Real smallestKept = 1;          // share of the sum of squares
  Real largestDropped = 0;
  /// Whether double precision sees the same columns as redundant.
  bool IsClear() const { return smallestKept > 1e-8L && largestDropped < 1e-24L; }
};
Independence FindIndependent(const Columns& columns, const std::vector<std::size_t>& order);
/// Which parameters are redundant: the columns in their own order, those of covariates alone about their
/// means.
Independence FindRedundant(const Columns& columns);

/// Kept columns, weighted mean squares 1 and orthogonal: raw = q r over the kept columns, r upper triangular.
struct OrthogonalColumns {
  Matrix q, r;
};
OrthogonalColumns Orthogonalise(const Columns& columns, const std::vector<std::size_t>& kept);

/// The coefficients of each column on the kept columns: row k is the estimable function of kept column k, the
/// rows of (X'WX)^- X'WX (Searle 1971, Linear Models, chapter 5).
Matrix EstimableFunctions(const Columns& columns, const std::vector<std::size_t>& kept);

}  // namespace reference
