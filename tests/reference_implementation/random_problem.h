// Random surveys and models for the twin and the program.
#pragma once

#include <cstdint>

#include "reference_problem.h"

namespace reference {

/// A sequence of random numbers that is the same on every machine (splitmix64; Steele, Lea and Flood 2014).
class Random {
 public:
  explicit Random(std::uint64_t seed) : fState(seed) {}
  std::uint64_t Next();
  /// A whole number from 0 to count - 1.
  int Below(int count);
  int Between(int low, int high) { return low + Below(high - low + 1); }
  bool Chance(double probability) { return Uniform(0, 1) < probability; }
  double Uniform(double low, double high);
  double Normal();
  template <class T>
  T OneOf(std::initializer_list<T> values) {
    return values.begin()[Below(static_cast<int>(values.size()))];
  }

 private:
  std::uint64_t fState;
};

/// A valid problem; the same seed gives the same one. One to three stages of any kind, one to many strata and
/// units, weights over some orders of magnitude, factors and covariates with interactions, nesting and
/// powers, empty cells and duplicated predictors, two to four responses, domains and missing values.
Problem MakeProblem(std::uint64_t seed);

}  // namespace reference
