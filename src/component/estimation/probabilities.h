// Sums of the probabilities of one case.
#pragma once

#include <cstddef>
#include <vector>

namespace tavo {

/// The probability of all categories but one. As a sum of theirs it keeps the digits that 1 minus a
/// probability near 1 has lost: with a rare reference these are all the digits of its scores and of its
/// information.
inline double ProbabilityOfOthers(const std::vector<double>& probabilities, std::size_t category) {
  double sum = 0;
  for (std::size_t c = 0; c < probabilities.size(); ++c)
    sum += c == category ? 0.0 : probabilities[c];
  return sum;
}

}  // namespace tavo
