// The same steps as for one row, each a loop over all rows of the block with one category after the other:
// predictors, the highest of them, exponentials relative to it, their sum, the observed logarithm,
// probabilities.
#include "component/estimation/block_probabilities.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "component/numerics/vector_kernels.h"

namespace tavo {

namespace vectors = MCCommonMath::vectors;

bool TavoBlockProbabilities::Evaluate(const TavoRowBlock& block, const double* parameters,
                                      std::size_t categories, std::size_t parameterCount) {
  SetShape(block, categories);
  for (std::size_t j = 0; j + 1 < categories; ++j)
    block.LinearPredictors(parameters + j * parameterCount, Values(j));
  return EvaluatePredictors(block);
}

bool TavoBlockProbabilities::EvaluatePredictors(const TavoRowBlock& block,
                                                const std::vector<const double*>& predictors) {
  SetShape(block, predictors.size() + 1);
  for (std::size_t j = 0; j < predictors.size(); ++j)
    std::copy(predictors[j], predictors[j] + fNRows, Values(j));
  return EvaluatePredictors(block);
}

void TavoBlockProbabilities::SetShape(const TavoRowBlock& block, std::size_t categories) {
  fNRows = block.RowCount();
  fNCategories = categories;
  fValues.resize(std::max(fValues.size(), categories * TavoRowBlock::kMaxRows));
}

// From the predictors of the logits, where the probabilities will be.
bool TavoBlockProbabilities::EvaluatePredictors(const TavoRowBlock& block) {
  const std::size_t reference = fNCategories - 1;
  std::fill(Values(reference), Values(reference) + fNRows, 0.0);
  if (!FindHighestPredictors()) return false;
  CopyObserved(block, fLogObserved);  // the predictors, before they are overwritten
  TakeExponentials();
  TakeLogObserved();
  Normalise();
  CopyObserved(block, fObserved);
  return true;
}

// Counts in doubles what isn't finite, so that the loop has no branch.
bool TavoBlockProbabilities::FindHighestPredictors() {
  std::fill(fHighest.begin(), fHighest.end(), 0.0);
  double* const highest = fHighest.data();
  double unbounded = 0;
  for (std::size_t j = 0; j + 1 < fNCategories; ++j) {
    const double* const predictors = Of(j);
    for (std::size_t r = 0; r < fNRows; ++r) {
      const double predictor = predictors[r];
      highest[r] = predictor > highest[r] ? predictor : highest[r];
      unbounded += std::abs(predictor) <= std::numeric_limits<double>::max() ? 0.0 : 1.0;
    }
  }
  return unbounded == 0;
}

// Relative to the row's highest predictor, so that none overflows. That one's own is exactly 1 and is left
// out of the sum of the others, which keeps its digits beside it.
void TavoBlockProbabilities::TakeExponentials() {
  if (fNCategories == 2) {
    TakeOneExponential();
    return;
  }
  std::fill(fOthers.begin(), fOthers.end(), 0.0);
  std::fill(fTies.begin(), fTies.end(), -1.0);
  const double* const highest = fHighest.data();
  double* const others = fOthers.data();
  double* const ties = fTies.data();
  for (std::size_t c = 0; c < fNCategories; ++c) {
    double* const values = Values(c);
    for (std::size_t r = 0; r < fNRows; ++r)
      values[r] -= highest[r];
    vectors::Exp(values, fNRows);
    for (std::size_t r = 0; r < fNRows; ++r) {
      others[r] += values[r] < 1 ? values[r] : 0.0;
      ties[r] += values[r] < 1 ? 0.0 : 1.0;
    }
  }
  // Ties started at -1: of several highest predictors all but one belong to the others.
  for (std::size_t r = 0; r < fNRows; ++r)
    others[r] += ties[r];
}

// Of two categories one has the highest predictor, and its exponential is 1.
void TavoBlockProbabilities::TakeOneExponential() {
  double* const first = Values(0);
  double* const reference = Values(1);
  double* const others = fOthers.data();
  for (std::size_t r = 0; r < fNRows; ++r)
    others[r] = -std::abs(first[r]);
  vectors::Exp(others, fNRows);
  for (std::size_t r = 0; r < fNRows; ++r) {
    const bool isFirstHigher = first[r] > 0;  // a select, not a branch
    first[r] = isFirstHigher ? 1.0 : others[r];
    reference[r] = isFirstHigher ? others[r] : 1.0;
  }
}

// On entry the predictors of the observed categories. Where the observed category has the highest one, the
// first difference is 0, and a logarithm near 0 keeps its digits.
void TavoBlockProbabilities::TakeLogObserved() {
  double* const logs = fTies.data();  // free again
  std::copy(fOthers.data(), fOthers.data() + fNRows, logs);
  vectors::Log1p(logs, fNRows);
  for (std::size_t r = 0; r < fNRows; ++r)
    fLogObserved[r] = (fLogObserved[r] - fHighest[r]) - logs[r];
}

// As in the row-wise form a probability below the normal range is 0: denormal numbers have few digits and are
// slow.
void TavoBlockProbabilities::Normalise() {
  const double* const others = fOthers.data();
  for (std::size_t c = 0; c < fNCategories; ++c) {
    double* const values = Values(c);
    for (std::size_t r = 0; r < fNRows; ++r) {
      const double probability = values[r] / (1 + others[r]);
      values[r] = probability < std::numeric_limits<double>::min() ? 0.0 : probability;
    }
  }
}

const double* TavoBlockProbabilities::OfOthers(std::size_t category) {
  if (fNCategories == 2) return Of(1 - category);
  std::fill(fComplement.begin(), fComplement.end(), 0.0);
  for (std::size_t c = 0; c < fNCategories; ++c) {
    if (c == category) continue;
    const double* const probability = Of(c);
    for (std::size_t r = 0; r < fNRows; ++r)
      fComplement[r] += probability[r];
  }
  return fComplement.data();
}

void TavoBlockProbabilities::CopyObserved(const TavoRowBlock& block, RowVector& observed) const {
  const double* const categories = block.Categories();
  for (std::size_t r = 0; r < fNRows; ++r)
    observed[r] = Of(static_cast<std::size_t>(categories[r]))[r];
}

}  // namespace tavo
