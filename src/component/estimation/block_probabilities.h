// The probabilities of the categories in a block of rows.
#pragma once

#include <cstddef>
#include <vector>

#include "component/estimation/row_block.h"

namespace tavo {

/// The baseline-category logit at one parameter vector, for all rows of a block at once: what
/// TavoAccumStats::ComputeProbabilities is for one row. Vectors over rows have as many elements as the block
/// last evaluated has rows.
class TavoBlockProbabilities {
 public:
  /// `parameters` has (K-1) p values, logit by logit; the block's categories are below K, its indices below
  /// p. False when a predictor isn't finite: what rows of that kind mean is for the row-wise evaluation to
  /// say, and nothing can be read here. Memory that runs out throws std::bad_alloc.
  bool Evaluate(const TavoRowBlock& block, const double* parameters, std::size_t categories,
                std::size_t parameterCount);
  /// The same with the predictors given, by logit and row.
  bool EvaluatePredictors(const TavoRowBlock& block, const std::vector<const double*>& predictors);
  /// By category, the reference last.
  const double* Of(std::size_t category) const { return fValues.data() + category * TavoRowBlock::kMaxRows; }
  /// The probability of all other categories: their sum, which keeps the digits that 1 minus a probability
  /// near 1 has lost. Good until the next call.
  const double* OfOthers(std::size_t category);
  /// Of each row's own category.
  const double* Observed() const { return fObserved.data(); }
  const double* LogObserved() const { return fLogObserved.data(); }

 private:
  using RowVector = std::vector<double>;

  void SetShape(const TavoRowBlock& block, std::size_t categories);
  bool EvaluatePredictors(const TavoRowBlock& block);
  double* Values(std::size_t category) { return fValues.data() + category * TavoRowBlock::kMaxRows; }
  bool FindHighestPredictors();
  void TakeExponentials();
  void TakeOneExponential();
  void TakeLogObserved();
  void Normalise();
  void CopyObserved(const TavoRowBlock& block, RowVector& observed) const;

  std::size_t fNRows = 0;
  std::size_t fNCategories = 0;
  std::vector<double> fValues;  // by category kMaxRows of them: predictors, then probabilities
  RowVector fHighest = RowVector(TavoRowBlock::kMaxRows);
  RowVector fOthers = RowVector(TavoRowBlock::kMaxRows);  // exponentials but one of the highest predictor
  RowVector fComplement = RowVector(TavoRowBlock::kMaxRows);
  RowVector fTies = RowVector(TavoRowBlock::kMaxRows);  // categories with the highest predictor
  RowVector fObserved = RowVector(TavoRowBlock::kMaxRows);
  RowVector fLogObserved = RowVector(TavoRowBlock::kMaxRows);
};

}  // namespace tavo
