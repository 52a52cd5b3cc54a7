// The score and the information of a fit in twice the precision.
#pragma once

#include <vector>

#include "component/estimation/block_probabilities.h"
#include "component/estimation/precise_block.h"
#include "component/numerics/precise_sym_matrix.h"
#include "component/numerics/precise_vectors.h"

namespace tavo {

/// What TavoAccumStats sums, without the likelihood, for the end of a fit whose columns are nearly dependent
/// on each other, or whose reference category is rare: there most of the digits of the information cancel
/// when it is factored. Predictors, scores and information are summed in twice the precision; the
/// probabilities are doubles, each good to a few units in its last place, which changes no result by more.
///
/// Memory that runs out throws std::bad_alloc.
class TavoPreciseSums {
 public:
  /// Over (categories - 1) * parameters estimates, logit by logit; not owned.
  TavoPreciseSums(int parameters, int categories, const MCCommonMath::PreciseColumn& estimates);
  /// Adds the rows of a block. False, with nothing added, when a predictor isn't finite.
  bool Add(OrvPreciseBlock& block);
  /// Adds another object's sums, of the same shape.
  void Merge(const TavoPreciseSums& other);

  const MCCommonMath::PreciseColumn& Scores() const { return fScores; }
  MCCommonMath::PreciseSymMatrix& Information() { return fInformation; }

 private:
  bool FindProbabilities(OrvPreciseBlock& block);
  void AddScores(OrvPreciseBlock& block, std::size_t logit);
  void AddInformation(OrvPreciseBlock& block, std::size_t logit, std::size_t other);

  std::size_t fNParameters;
  std::size_t fNLogits;
  const MCCommonMath::PreciseColumn& fEstimates;
  MCCommonMath::PreciseColumn fScores;
  MCCommonMath::PreciseSymMatrix fInformation;
  // Of the block at work.
  TavoBlockProbabilities fProbabilities;
  std::vector<MCCommonMath::PreciseColumn> fPredictors;  // by logit
  MCCommonMath::PreciseColumn fFactors;
};

}  // namespace tavo
