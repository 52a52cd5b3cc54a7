#include "reference_tests.h"

#include <algorithm>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <cmath>

namespace reference {

namespace {

bool IsF(TestType type) {
  return type == TestType::kF || type == TestType::kAdjustedF;
}
bool IsAdjusted(TestType type) {
  return type == TestType::kAdjustedF || type == TestType::kAdjustedChiSquare;
}

Real UpperTail(bool isF, Real x, Real df1, Real df2) {
  x = std::max(x, 0.0L);
  if (isF) return boost::math::cdf(complement(boost::math::fisher_f_distribution<Real>(df1, df2), x));
  return boost::math::cdf(complement(boost::math::chi_squared_distribution<Real>(df1), x));
}

/// The upper tail of F (or chi-square), with the tolerances of the statistic and its degrees of freedom
/// carried through.
Value Significance(bool isF, const Value& x, const Value& df1, const Value& df2) {
  if (x.isMissing || df1.isMissing || (isF && df2.isMissing)) return Value::Missing();
  if (x.IsUndecided() || df1.IsUndecided() || (isF && df2.IsUndecided())) return Value::Undecided();
  const Real p = UpperTail(isF, x.number, df1.number, df2.number);
  Real tolerance = 1e-10L * p + 1e-300L;
  for (const Real sign : {-1.0L, 1.0L}) {
    tolerance += std::abs(p - UpperTail(isF, x.number + sign * x.tolerance, df1.number, df2.number));
    tolerance += std::abs(p - UpperTail(isF, x.number, df1.number + sign * df1.tolerance, df2.number));
    if (isF)
      tolerance += std::abs(p - UpperTail(isF, x.number, df1.number, df2.number + sign * df2.tolerance));
  }
  return Value::Of(p, tolerance);
}

/// 1 - (1 - p)^m without the loss of a small p.
Real SidakOf(Real p, int m) {
  return p >= 1 ? 1 : -std::expm1(static_cast<Real>(m) * std::log1p(-p));
}

/// A significance adjusted for m contrasts by the single-step form of the method.
Value Adjusted(const Value& p, Adjustment adjustment, int m) {
  if (p.isMissing || p.IsUndecided()) return p;
  const auto count = static_cast<Real>(m);
  switch (adjustment) {
    case Adjustment::kNone:
      return p;
    case Adjustment::kBonferroni:
    case Adjustment::kSequentialBonferroni:
      return Value::Of(std::min(1.0L, count * p.number), count * p.tolerance);
    case Adjustment::kSidak:
    case Adjustment::kSequentialSidak:
      return Value::Of(SidakOf(p.number, m), count * p.tolerance);
  }
  return p;
}

/// The smallest of some values; missing ones do not count.
Value Smallest(const std::vector<Value>& values) {
  Value smallest = Value::Missing();
  for (const Value& value : values) {
    if (value.isMissing) continue;
    if (value.IsUndecided()) return value;
    if (smallest.isMissing || value.number < smallest.number) smallest = value;
  }
  for (const Value& value : values) {  // another one may be the smallest, within rounding
    if (!value.isMissing && value.number - value.tolerance <= smallest.number + smallest.tolerance)
      smallest.tolerance = std::max(smallest.tolerance, value.tolerance);
  }
  return smallest;
}

/// For each row of (L, k) the row that it repeats: itself, the first row of which it is a multiple, or -1 for
/// a row of zeros.
std::vector<int> Originals(const Matrix& l, const Vector& k) {
  std::vector<int> originals;
  const auto extended = [&](std::size_t i) {
    Vector row = l.Row(i);
    row.push_back(k[i]);
    return row;
  };
  for (std::size_t i = 0; i < l.Rows(); ++i) {
    const Vector row = l.Row(i);
    if (std::all_of(row.begin(), row.end(), [](Real x) { return x == 0; })) {
      originals.push_back(-1);
      continue;
    }
    int original = static_cast<int>(i);
    const Vector own = extended(i);
    for (std::size_t j = 0; j < i && original == static_cast<int>(i); ++j) {
      if (originals[j] != static_cast<int>(j)) continue;
      const Vector other = extended(j);
      const Real cosine = Dot(own, other) / std::sqrt(Dot(own, own) * Dot(other, other));
      if (1 - std::abs(cosine) < 1e-16L) original = static_cast<int>(j);
    }
    originals.push_back(original);
  }
  return originals;
}

TestResult TestRow(const Estimates& estimates, const Vector& l, Real k, TestType type, Adjustment adjustment,
                   int count) {
  TestResult result;
  const Real d = estimates.degreesOfFreedom;
  result.estimate = estimates.Contrast(l);
  result.standardError = estimates.StandardError(l);
  const Value& se = result.standardError;
  if (se.IsUndecided()) {
    result.df1 = result.df2 = result.wald = result.significance = result.adjusted = Value::Undecided();
    return result;
  }
  if (se.number == 0) {
    if (!IsAdjusted(type)) result.df1 = Value::Exactly(0);
    if (type == TestType::kF) result.df2 = Value::Exactly(d + 1);
    return result;
  }
  result.df1 = Value::Exactly(1);
  if (IsF(type)) result.df2 = Value::Exactly(d);
  const Real t = (result.estimate.number - k) / se.number;
  const Real off = result.estimate.tolerance / se.number + std::abs(t) * se.tolerance / se.number;
  result.wald = Value::Of(t * t, 2 * std::abs(t) * off + off * off);
  if (!IsF(type) || d > 0)
    result.significance = Significance(IsF(type), result.wald, result.df1, Value::Exactly(d));
  const bool isSequential =
      adjustment == Adjustment::kSequentialBonferroni || adjustment == Adjustment::kSequentialSidak;
  if (!isSequential) result.adjusted = Adjusted(result.significance, adjustment, count);
  return result;
}

/// The step-down adjustment over distinct rows; a row that repeats another has that row's.
void AdjustInSequence(std::vector<TestResult>& rows, const std::vector<int>& originals,
                      Adjustment adjustment) {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (originals[i] == static_cast<int>(i) && !rows[i].significance.isMissing) order.push_back(i);
  }
  const bool isDecided = std::none_of(order.begin(), order.end(),
                                      [&](std::size_t i) { return rows[i].significance.IsUndecided(); });
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return rows[a].significance.number < rows[b].significance.number;
  });
  int remaining = static_cast<int>(std::count_if(originals.begin(), originals.end(),
                                                 [i = 0](int original) mutable { return original == i++; }));
  Value last = Value::Exactly(0);
  for (const std::size_t i : order) {
    Value own = isDecided ? Adjusted(rows[i].significance, adjustment, remaining--) : Value::Undecided();
    if (isDecided && own.number < last.number) own.number = last.number;
    if (isDecided) own.tolerance = std::max(own.tolerance, last.tolerance);
    rows[i].adjusted = last = own;
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const int original = originals[i];
    if (original >= 0 && original != static_cast<int>(i) && !rows[i].significance.isMissing)
      rows[i].adjusted = rows[static_cast<std::size_t>(original)].adjusted;
  }
}

/// L V L' with rows and columns divided by standard errors; rows without one are 0.
struct ScaledCovariance {
  Matrix matrix;
  Vector divisors;  // standard errors
  Real relativeError = 0;
  bool isDecided = true;
};

ScaledCovariance Scaled(const Matrix& l, const Matrix& v, const Vector& divisors) {
  ScaledCovariance result{Congruence(l, v), divisors, 0, true};
  for (std::size_t i = 0; i < l.Rows(); ++i) {
    for (std::size_t j = 0; j < l.Rows(); ++j) {
      const Real divisor = divisors[i] * divisors[j];
      result.matrix(i, j) = divisor > 0 ? result.matrix(i, j) / divisor : 0;
    }
  }
  return result;
}

/// What the overall statistic is made from.
struct Moments {
  Value statistic;  // X
  Value df;         // rank, or trace(D)^2 / trace(D^2)
};

Value WithError(Real number, Real relative) {
  return Value::Of(number, std::abs(number) * relative);
}

Moments ChiSquare(const Estimates& estimates, const Matrix& l, const Vector& k, bool isAdjusted) {
  const std::size_t n = l.Rows();
  Vector difference(n), divisors(n);
  Real relative = 0, offset = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const Value estimate = estimates.Contrast(l.Row(i));
    const Value se = estimates.StandardError(l.Row(i));
    if (se.IsUndecided()) return {Value::Undecided(), Value::Undecided()};
    divisors[i] = se.number;
    if (se.number == 0) continue;
    difference[i] = (estimate.number - k[i]) / se.number;
    relative = std::max(relative, 2 * se.tolerance / se.number);
    offset = std::max(offset, estimate.tolerance / se.number);
  }
  if (isAdjusted) {
    for (std::size_t i = 0; i < n; ++i) {  // the yardstick's own standard errors scale it
      const Real variance = QuadraticForm(l.Row(i), estimates.srsCovariance);
      const Real scale = variance > 0 ? std::sqrt(variance) : 0;
      difference[i] = scale > 0 ? (estimates.Contrast(l.Row(i)).number - k[i]) / scale : 0;
      if (scale > 0) offset = std::max(offset, estimates.Contrast(l.Row(i)).tolerance / scale);
      divisors[i] = scale;
    }
  }
  const Matrix yardstick =
      Scaled(l, isAdjusted ? estimates.srsCovariance : estimates.covariance, divisors).matrix;
  const IndependentInverse inverse = InverseOverIndependentRows(yardstick);
  const Real amplified = relative / inverse.smallestPivot * static_cast<Real>(n);
  if (inverse.largestLeftPivot > 1e-18L / (inverse.smallestPivot * inverse.smallestPivot) ||
      amplified > 1e-5L || inverse.smallestPivot < 1e-7L)
    return {Value::Undecided(), Value::Undecided()};
  const Real x = QuadraticForm(difference, inverse.inverse);
  Real linear = 0, quadratic = 0;  // how x answers to an offset in each difference
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      linear += 2 * std::abs(inverse.inverse(i, j) * difference[j]);
      quadratic += std::abs(inverse.inverse(i, j));
    }
  }
  const Value statistic =
      Value::Of(x, std::abs(x) * amplified + linear * offset + quadratic * offset * offset);
  if (!isAdjusted) return {statistic, Value::Exactly(inverse.rank)};

  const Matrix d = Product(inverse.inverse, Scaled(l, estimates.covariance, divisors).matrix);
  Real trace = 0, traceOfSquare = 0;
  for (std::size_t i = 0; i < n; ++i) {
    trace += d(i, i);
    traceOfSquare += Dot(d.Row(i), d.Column(i));
  }
  if (!(traceOfSquare > 0)) return {};
  const Real df = trace * trace / traceOfSquare;
  Value scaledStatistic = Value::Missing();
  if (trace != 0) {
    const Real scale = trace / df;
    scaledStatistic =
        Value::Of(x / scale, std::abs(x / scale) * 3 * amplified + statistic.tolerance / std::abs(scale));
  }
  return {scaledStatistic, WithError(df, 4 * amplified)};
}

TestResult Overall(const Estimates& estimates, const Matrix& l, const Vector& k, TestType type) {
  TestResult result;
  const Real d = estimates.degreesOfFreedom;
  const Moments moments = ChiSquare(estimates, l, k, IsAdjusted(type));
  if (moments.statistic.IsUndecided()) {
    result.df1 = result.wald = result.significance = Value::Undecided();
    if (IsF(type)) result.df2 = Value::Undecided();
    return result;
  }
  result.df1 = moments.df;
  const Value& x = moments.statistic;
  if (type == TestType::kF && d >= result.df1.number) result.df2 = Value::Exactly(d - result.df1.number + 1);
  if (type == TestType::kAdjustedF && !result.df1.isMissing && d >= 0)
    result.df2 = Value::Of(result.df1.number * d, result.df1.tolerance * d);
  if (x.isMissing || result.df1.isMissing || !(result.df1.number > 0)) return result;
  if (x.number < 0) return result;  // a variance below 0, which unequal probabilities allow
  if (type == TestType::kF) {
    if (result.df2.isMissing) return result;
    const Real factor = result.df2.number / (result.df1.number * d);
    result.wald = Value::Of(factor * x.number, factor * x.tolerance);
  } else if (type == TestType::kAdjustedF) {
    if (!(d > 0)) return result;
    const Real f = x.number / result.df1.number;
    result.wald =
        Value::Of(f, x.tolerance / result.df1.number + f * result.df1.tolerance / result.df1.number);
  } else {
    result.wald = x;
  }
  result.significance = Significance(IsF(type), result.wald, result.df1, result.df2);
  return result;
}

}  // namespace

HypothesisResult TestLinearHypothesis(const Estimates& estimates, const Matrix& l, const Vector& k,
                                      TestType type, Adjustment adjustment) {
  HypothesisResult result;
  result.overall = Overall(estimates, l, k, type);
  const std::vector<int> originals = Originals(l, k);
  int count = 0;
  for (std::size_t i = 0; i < originals.size(); ++i)
    count += originals[i] == static_cast<int>(i) ? 1 : 0;
  for (std::size_t i = 0; i < l.Rows(); ++i)
    result.rows.push_back(TestRow(estimates, l.Row(i), k[i], type, adjustment, count));
  if (adjustment == Adjustment::kSequentialBonferroni || adjustment == Adjustment::kSequentialSidak)
    AdjustInSequence(result.rows, originals, adjustment);
  std::vector<Value> adjusted;
  for (const TestResult& row : result.rows)
    adjusted.push_back(row.adjusted);
  result.overall.adjusted = Smallest(adjusted);
  return result;
}

TestResult TestEffect(const Estimates& estimates, const Matrix& l, TestType type, Adjustment adjustment) {
  const Vector zeros(l.Rows(), 0.0L);
  TestResult result = Overall(estimates, l, zeros, type);
  const std::vector<int> originals = Originals(l, zeros);
  std::vector<Value> significances;
  for (std::size_t i = 0; i < l.Rows(); ++i) {
    if (originals[i] != static_cast<int>(i)) continue;
    significances.push_back(TestRow(estimates, l.Row(i), 0, type, Adjustment::kNone, 1).significance);
  }
  result.adjusted = Adjusted(Smallest(significances), adjustment, static_cast<int>(significances.size()));
  return result;
}

}  // namespace reference
