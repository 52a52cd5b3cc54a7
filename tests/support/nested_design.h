// The covariance of an estimated total under a nested sample design, straight from the textbook formulas
// (Cochran 1977, ch. 11; Raj 1966). The whole tree of units stands in memory and every sum is taken over it
// again at every level: slow and obvious, an oracle for the design tree, which sees each unit once.
#pragma once

#include <cstddef>
#include <vector>

namespace nested_design {

using Vector = std::vector<long double>;

/// A full square matrix.
struct Matrix {
  explicit Matrix(std::size_t variables) : size(variables), elements(variables * variables, 0.0L) {}
  long double& At(std::size_t i, std::size_t j) { return elements[i * size + j]; }
  long double At(std::size_t i, std::size_t j) const { return elements[i * size + j]; }
  /// this += factor * other
  void Add(long double factor, const Matrix& other) {
    for (std::size_t k = 0; k < elements.size(); ++k)
      elements[k] += factor * other.elements[k];
  }
  std::size_t size;
  std::vector<long double> elements;
};

enum class Rate { kWithReplacement, kFraction, kPopulation };

struct Stratum;

/// A sampled unit: an ultimate unit with its values, or a cluster with the strata of the stage below.
struct Unit {
  std::vector<double> values;
  std::vector<Stratum> strata;
};

/// The sampled units of one stratum of one stage, and how they were drawn: `value` is the sampling fraction
/// or the number of units in the population.
struct Stratum {
  Rate rate = Rate::kWithReplacement;
  double value = 0;
  std::vector<Unit> units;

  long double Fraction() const {
    if (rate == Rate::kWithReplacement) return 0.0L;
    if (rate == Rate::kFraction) return value;
    return static_cast<long double>(units.size()) / static_cast<long double>(value);
  }
};

inline Vector Total(const Unit& unit, std::size_t variables) {
  Vector total(variables, 0.0L);
  for (std::size_t i = 0; i < unit.values.size(); ++i)
    total[i] += unit.values[i];
  for (const Stratum& stratum : unit.strata) {
    for (const Unit& below : stratum.units) {
      const Vector part = Total(below, variables);
      for (std::size_t i = 0; i < variables; ++i)
        total[i] += part[i];
    }
  }
  return total;
}

/// n/(n-1) times the sum over units of (z - mean z)(z - mean z)'; zero for a single unit.
inline Matrix BetweenUnits(const Stratum& stratum, std::size_t variables) {
  Matrix between(variables);
  const auto n = static_cast<long double>(stratum.units.size());
  if (stratum.units.size() < 2) return between;

  Vector mean(variables, 0.0L);
  for (const Unit& unit : stratum.units) {
    const Vector z = Total(unit, variables);
    for (std::size_t i = 0; i < variables; ++i)
      mean[i] += z[i] / n;
  }
  for (const Unit& unit : stratum.units) {
    const Vector z = Total(unit, variables);
    for (std::size_t i = 0; i < variables; ++i) {
      for (std::size_t j = 0; j < variables; ++j) {
        between.At(i, j) += n / (n - 1.0L) * (z[i] - mean[i]) * (z[j] - mean[j]);
      }
    }
  }
  return between;
}

inline Matrix Covariance(const Unit& unit, std::size_t variables);

/// (1 - f) between units + f times the sum of what is uncertain within them.
inline Matrix Covariance(const Stratum& stratum, std::size_t variables) {
  const long double f = stratum.Fraction();
  Matrix covariance(variables);
  covariance.Add(1.0L - f, BetweenUnits(stratum, variables));
  for (const Unit& unit : stratum.units)
    covariance.Add(f, Covariance(unit, variables));
  return covariance;
}

/// Strata are independent: their covariances add up. An ultimate unit is known exactly.
inline Matrix Covariance(const Unit& unit, std::size_t variables) {
  Matrix covariance(variables);
  for (const Stratum& stratum : unit.strata)
    covariance.Add(1.0L, Covariance(stratum, variables));
  return covariance;
}

}  // namespace nested_design
