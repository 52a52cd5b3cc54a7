#include "component/estimation/precise_sums.h"

#include <cassert>
#include <cstddef>

namespace tavo {

using MCCommonMath::DoubleDouble;
using MCCommonMath::ExactProduct;
using MCCommonMath::PreciseColumn;
namespace precise = MCCommonMath::precise;

TavoPreciseSums::TavoPreciseSums(int parameters, int categories, const PreciseColumn& estimates)
    : fNParameters(static_cast<std::size_t>(parameters)),
      fNLogits(static_cast<std::size_t>(categories) - 1),
      fEstimates(estimates),
      fScores(fNLogits * fNParameters),
      fInformation(static_cast<int>(fNLogits * fNParameters)),
      fPredictors(fNLogits, PreciseColumn(TavoRowBlock::kMaxRows)),
      fFactors(TavoRowBlock::kMaxRows) {
  assert(estimates.Size() == fScores.Size());
}

bool TavoPreciseSums::Add(OrvPreciseBlock& block) {
  if (!FindProbabilities(block)) return false;
  for (std::size_t i = 0; i < fNLogits; ++i) {
    AddScores(block, i);
    for (std::size_t j = 0; j <= i; ++j)
      AddInformation(block, i, j);
  }
  return true;
}

bool TavoPreciseSums::FindProbabilities(OrvPreciseBlock& block) {
  std::vector<const double*> rounded;
  for (std::size_t j = 0; j < fNLogits; ++j) {
    block.LinearPredictors(fEstimates, j * fNParameters, fPredictors[j]);
    rounded.push_back(fPredictors[j].high.data());
  }
  return fProbabilities.EvaluatePredictors(block.Block(), rounded);
}

void TavoPreciseSums::AddScores(OrvPreciseBlock& block, std::size_t logit) {
  const double* const categories = block.Block().Categories();
  const double* const weights = block.Block().Weights();
  const double* const probability = fProbabilities.Of(logit);
  const double* const others = fProbabilities.OfOthers(logit);
  for (std::size_t r = 0; r < block.Block().RowCount(); ++r) {
    const bool isObserved = categories[r] == static_cast<double>(logit);
    fFactors.Set(r, ExactProduct(weights[r], isObserved ? others[r] : -probability[r]));
  }
  block.AddScaledTo(fScores, logit * fNParameters, fFactors);
}

// The covariance of the categories of a case is diag(p) - p p', whose diagonal is p_i times the sum of the
// others exactly. Rounded apart, diagonal and products would no longer belong to one set of probabilities,
// and with a rare reference nothing would be right of what they leave.
void TavoPreciseSums::AddInformation(OrvPreciseBlock& block, std::size_t logit, std::size_t other) {
  const double* const weights = block.Block().Weights();
  const double* const probability = fProbabilities.Of(logit);
  for (std::size_t r = 0; r < block.Block().RowCount(); ++r) {
    DoubleDouble sum = -fProbabilities.Of(other)[r];
    if (logit == other) {
      sum = 0.0;
      for (std::size_t c = 0; c <= fNLogits; ++c) {
        if (c != logit) sum += fProbabilities.Of(c)[r];
      }
    }
    fFactors.Set(r, sum * ExactProduct(weights[r], probability[r]));
  }
  const auto offset = [this](std::size_t l) { return static_cast<int>(l * fNParameters); };
  block.AddOuterTo(fInformation, offset(logit), offset(other), fFactors);
}

void TavoPreciseSums::Merge(const TavoPreciseSums& other) {
  precise::AddScaled(1.0, other.fScores, fScores.Size(), fScores);
  fInformation.Add(other.fInformation);
}

}  // namespace tavo
