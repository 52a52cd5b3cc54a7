#include "reference_contrasts.h"

#include <algorithm>
#include <cmath>

namespace reference {

Matrix Repeated(const Matrix& l, std::size_t equations) {
  Matrix result(l.Rows() * equations, l.Columns() * equations);
  for (std::size_t j = 0; j < equations; ++j) {
    for (std::size_t i = 0; i < l.Rows(); ++i) {
      for (std::size_t k = 0; k < l.Columns(); ++k)
        result(j * l.Rows() + i, j * l.Columns() + k) = l(i, k);
    }
  }
  return result;
}

Contrasts GeneralEstimableFunctions(const Columns& columns, const Independence& independence) {
  Contrasts result;
  result.l = EstimableFunctions(columns, independence.kept);
  for (const std::size_t k : independence.kept)
    result.numbers.push_back(static_cast<int>(k) + 1);
  return result;
}

Contrasts ModelContrasts(const Problem& problem, const Columns& columns, const Independence& independence) {
  Contrasts all = GeneralEstimableFunctions(columns, independence);
  if (!problem.hasIntercept) return all;
  Contrasts result;
  result.l = Matrix(0, columns.parameters.size());
  for (std::size_t i = 1; i < all.l.Rows(); ++i) {
    result.l.Append(all.l.Row(i));
    result.numbers.push_back(all.numbers[i]);
  }
  return result;
}

namespace {

bool Contains(const Effect& outer, const Effect& inner) {
  if (outer.powers != inner.powers || outer.factors.size() <= inner.factors.size()) return false;
  return std::all_of(inner.factors.begin(), inner.factors.end(), [&](std::size_t factor) {
    return std::find(outer.factors.begin(), outer.factors.end(), factor) != outer.factors.end();
  });
}

/// Takes the span of `basis` out of a row.
void TakeOut(const std::vector<Vector>& basis, Vector& row) {
  for (int round = 0; round < 2; ++round) {
    for (const Vector& direction : basis) {
      const Real c = Dot(direction, row);
      for (std::size_t k = 0; k < row.size(); ++k)
        row[k] -= c * direction[k];
    }
  }
}

}  // namespace

Contrasts EffectContrasts(const Columns& columns, std::size_t e) {
  const auto isContaining = [&](std::size_t f) { return Contains(columns.effects[f], columns.effects[e]); };
  std::vector<std::size_t> order;
  const auto append = [&](std::size_t f) {
    for (std::size_t k = 0; k < columns.countOfEffect[f]; ++k)
      order.push_back(columns.firstOfEffect[f] + k);
  };
  for (std::size_t f = 0; f < columns.effects.size(); ++f) {
    if (f != e && !isContaining(f)) append(f);
  }
  append(e);
  for (std::size_t f = 0; f < columns.effects.size(); ++f) {
    if (isContaining(f)) append(f);
  }
  const Independence independence = FindIndependent(columns, order);
  const Matrix functions = EstimableFunctions(columns, independence.kept);

  std::vector<Vector> basis;  // of the functions of the containing effects
  for (std::size_t i = 0; i < independence.kept.size(); ++i) {
    if (!isContaining(columns.parameters[independence.kept[i]].effect)) continue;
    Vector row = functions.Row(i);
    TakeOut(basis, row);
    const Real length = std::sqrt(Dot(row, row));
    for (Real& x : row)
      x /= length;
    basis.push_back(row);
  }
  Contrasts result;
  result.isDecided = independence.IsClear();
  result.l = Matrix(0, columns.parameters.size());
  for (std::size_t i = 0; i < independence.kept.size(); ++i) {
    if (columns.parameters[independence.kept[i]].effect != e) continue;
    Vector row = functions.Row(i);
    TakeOut(basis, row);
    for (Real& x : row) {
      if (std::abs(x) < 1e-13L) x = 0;
    }
    result.l.Append(row);
    result.numbers.push_back(static_cast<int>(independence.kept[i]) + 1);
  }
  return result;
}

namespace {

/// The coefficients of a row over effects; empty when there are too many or too few for an effect.
Vector EffectRow(const Problem& problem, const Columns& columns, const HypothesisRow& row) {
  Vector result(columns.parameters.size(), 0.0L);
  if (row.intercept) result[0] = row.intercept->Value();
  for (std::size_t t = 0; t < row.effects.size(); ++t) {
    const std::size_t e = row.effects[t] + (problem.hasIntercept ? 1 : 0);
    if (row.coefficients[t].size() != columns.countOfEffect[e]) return {};
    for (std::size_t k = 0; k < row.coefficients[t].size(); ++k)
      result[columns.firstOfEffect[e] + k] = row.coefficients[t][k].Value();
  }
  return result;
}

enum class Estimability { kYes, kNo, kUndecided };

/// Whether one equation's coefficients are a combination of the estimable functions.
Estimability IsEstimable(const Vector& l, const Matrix& functions, const std::vector<std::size_t>& kept) {
  Real largest = 0, off = 0;
  for (std::size_t j = 0; j < l.size(); ++j) {
    Real rest = l[j];
    for (std::size_t k = 0; k < kept.size(); ++k)
      rest -= l[kept[k]] * functions(k, j);
    off = std::max(off, std::abs(rest));
    largest = std::max(largest, std::abs(l[j]));
  }
  if (off <= 1e-15L * largest) return Estimability::kYes;
  return off > 1e-6L * largest ? Estimability::kNo : Estimability::kUndecided;
}

}  // namespace

NumericHypothesis NumbersOf(const Problem& problem, const Columns& columns, const Independence& independence,
                            std::size_t equations, const Hypothesis& hypothesis) {
  const std::size_t p = columns.parameters.size();
  const Matrix functions = EstimableFunctions(columns, independence.kept);
  NumericHypothesis result;
  Matrix l(0, p);
  if (hypothesis.rows.empty()) {
    l.Append(functions.Row(0));
  } else {
    result.isAll = hypothesis.rows[0].isAll;
    l = Matrix(0, result.isAll ? p * equations : p);
    for (const HypothesisRow& row : hypothesis.rows) {
      Vector numbers;
      if (row.isAll) {
        for (const Fraction& fraction : row.coefficients[0])
          numbers.push_back(fraction.Value());
      } else {
        numbers = EffectRow(problem, columns, row);
      }
      if (numbers.size() != l.Columns()) return result;
      for (std::size_t first = 0; first < numbers.size(); first += p) {
        const Vector part(numbers.begin() + static_cast<std::ptrdiff_t>(first),
                          numbers.begin() + static_cast<std::ptrdiff_t>(first + p));
        const Estimability answer = IsEstimable(part, functions, independence.kept);
        if (answer == Estimability::kUndecided) result.isDecided = false;
        if (answer == Estimability::kNo) return result;
      }
      l.Append(numbers);
    }
  }
  result.isValid = true;
  result.rows = l.Rows();
  result.l = result.isAll ? l : Repeated(l, equations);
  result.values.assign(result.l.Rows(), 0.0L);
  for (std::size_t i = 0; i < result.values.size(); ++i) {
    if (!hypothesis.values.empty()) result.values[i] = hypothesis.values[i % result.rows];
  }
  return result;
}

}  // namespace reference
