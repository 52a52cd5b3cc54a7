// The sums of an evaluation, a block of rows at a time: the formulas of the row-wise form, turned inside out.
// The loop over the rows of a block is the innermost one and has no branch and no index in it, so that it
// runs in vector registers; a column that is constant in the block enters once, with the sum of the row
// factors.
#include <algorithm>
#include <array>
#include <cmath>

#include "component/estimation/accum_stats.h"
#include "component/numerics/vector_kernels.h"

namespace tavo {

namespace vectors = MCCommonMath::vectors;

int TavoAccumStats::UpdateForBlock(const TavoRowBlock& block, bool likelihoodOnly) {
  if (!IsAcceptable(block)) return -1;
  // Rows with predictors beyond the range of doubles are rare, and what they count for is said in one place
  // only.
  const bool isEvaluated =
      fNParameters > 0 &&
      fBlockProbabilities.Evaluate(block, fEstimates.data(), static_cast<std::size_t>(fNCategories),
                                   static_cast<std::size_t>(fNParameters));
  if (!isEvaluated) return UpdateForRowsOf(block, likelihoodOnly);
  fNValidRows += static_cast<int>(block.RowCount());
  fWeight += vectors::Sum(block.Weights(), block.RowCount());
  if (fbSeparationCheck) NoteProbabilitiesOf(block);
  AddLogLikelihoodOf(block);
  if (!likelihoodOnly) AddScoresAndInformationOf(block);
  return 0;
}

// Written so that a NaN is refused.
bool TavoAccumStats::IsAcceptable(const TavoRowBlock& block) const {
  if (!fbValid || block.MaxIndexPlusOne() > fNParameters) return false;
  for (std::size_t r = 0; r < block.RowCount(); ++r) {
    const double category = block.Categories()[r];
    if (!(category >= 0 && category < fNCategories && block.Weights()[r] > 0)) return false;
  }
  return true;
}

int TavoAccumStats::UpdateForRowsOf(const TavoRowBlock& block, bool likelihoodOnly) {
  std::vector<int> indices;
  std::vector<double> values;
  for (std::size_t r = 0; r < block.RowCount(); ++r) {
    block.ExtractRow(r, indices, values);
    const int category = static_cast<int>(block.Categories()[r]);
    if (UpdateForRow(indices, values, category, block.Weights()[r], likelihoodOnly) < 0) return -1;
  }
  return 0;
}

void TavoAccumStats::NoteProbabilitiesOf(const TavoRowBlock& block) {
  const auto [least, most] =
      std::minmax_element(fBlockProbabilities.Observed(), fBlockProbabilities.Observed() + block.RowCount());
  // A block without rows has no extremes.
  if (least == fBlockProbabilities.Observed() + block.RowCount()) return;
  fMinObserved = std::min(fMinObserved, *least);
  fMaxObserved = std::max(fMaxObserved, *most);
  for (std::size_t c = 0; c < static_cast<std::size_t>(fNCategories); ++c) {
    const double* const computed = fBlockProbabilities.Of(c);
    fMinComputed = std::min(fMinComputed, *std::min_element(computed, computed + block.RowCount()));
  }
}

// Eight sums side by side, as a compensated sum waits for itself at each term, each with what rounding took
// from it (Knuth 1969, two-sum).
void TavoAccumStats::AddLogLikelihoodOf(const TavoRowBlock& block) {
  constexpr std::size_t kLanes = 8;
  static_assert(TavoRowBlock::kMaxRows % kLanes == 0);
  std::array<double, kLanes> sums{};
  std::array<double, kLanes> rests{};
  std::array<double, TavoRowBlock::kMaxRows> terms{};
  vectors::Multiply(block.Weights(), fBlockProbabilities.LogObserved(), terms.data(), block.RowCount());
  for (std::size_t r = 0; r < block.RowCount(); r += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const double term = terms[r + lane];
      const double sum = sums[lane] + term;
      const double added = sum - sums[lane];
      rests[lane] += (sums[lane] - (sum - added)) + (term - added);
      sums[lane] = sum;
    }
  }
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    AddToLogLikelihood(sums[lane]);
    fLogLikelihoodRest += rests[lane];
  }
}

// For each pair of logits one factor a row; the block multiplies it into its columns.
void TavoAccumStats::AddScoresAndInformationOf(const TavoRowBlock& block) {
  const std::size_t rows = block.RowCount();
  const double* const weights = block.Weights();
  const double* const categories = block.Categories();
  std::array<double, TavoRowBlock::kMaxRows> weighted;
  std::array<double, TavoRowBlock::kMaxRows> factors;
  for (int i = 0; i < fNCategories - 1; ++i) {
    const double* const probability = fBlockProbabilities.Of(static_cast<std::size_t>(i));
    const double* const others = fBlockProbabilities.OfOthers(static_cast<std::size_t>(i));
    for (std::size_t r = 0; r < rows; ++r) {
      factors[r] = weights[r] * (categories[r] == i ? others[r] : -probability[r]);
      weighted[r] = weights[r] * probability[r];
    }
    block.AddScaledTo(fScores.data() + static_cast<std::ptrdiff_t>(i) * fNParameters, factors.data());
    for (int j = 0; j < i; ++j) {
      const double* const other = fBlockProbabilities.Of(static_cast<std::size_t>(j));
      for (std::size_t r = 0; r < rows; ++r)
        factors[r] = -weighted[r] * other[r];
      block.AddOuterTo(fHessian.Block(i, j), factors.data());
    }
    for (std::size_t r = 0; r < rows; ++r)
      factors[r] = weighted[r] * others[r];
    block.AddOuterTo(fHessian.Block(i, i), factors.data());
  }
}

}  // namespace tavo
