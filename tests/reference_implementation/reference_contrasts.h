// The hypotheses behind the tests: estimable functions, contrasts of effects, and what a user writes.
#pragma once

#include "reference_columns.h"

namespace reference {

/// Contrasts of one equation: a row of `l` for each entry of `numbers`, the 1-based number of the parameter
/// that names the row.
struct Contrasts {
  Matrix l;
  std::vector<int> numbers;
  bool isDecided = true;  // rounding does not decide which rows there are
};

/// All estimable functions: one for each column that is not redundant.
Contrasts GeneralEstimableFunctions(const Columns& columns, const Independence& independence);
/// The same without the intercept's, which is the hypothesis that no effect matters.
Contrasts ModelContrasts(const Problem& problem, const Columns& columns, const Independence& independence);

/// Type III, of the columns as they stand, not about their means: the estimable functions that involve effect
/// `e` and, of the others, only effects that contain it, orthogonal to those of the effects that contain it
/// (Goodnight 1978, Tests of hypotheses in fixed effects linear models). An effect contains another when it
/// has the same covariates, all its factors and more.
Contrasts EffectContrasts(const Columns& columns, std::size_t e);

/// A hypothesis as numbers, for all equations. `isValid` is false when the numbers of coefficients do not fit
/// the model or a row is not estimable.
struct NumericHypothesis {
  bool isValid = false, isDecided = true;
  bool isAll = false;    // given for all equations together
  std::size_t rows = 0;  // as given, or of one equation
  Matrix l;              // columns: the parameters of all equations
  Vector values;
};
NumericHypothesis NumbersOf(const Problem& problem, const Columns& columns, const Independence& independence,
                            std::size_t equations, const Hypothesis& hypothesis);

/// The same rows for each equation, equation after equation.
Matrix Repeated(const Matrix& l, std::size_t equations);

}  // namespace reference
