#include "component/estimation/case_scorer.h"

#include <cassert>
#include <cmath>
#include <numeric>

#include "component/estimation/probabilities.h"
#include "component/numerics/machine_constants.h"

namespace tavo {

using MCCommonMath::DoubleDouble;
using MCCommonMath::MCPower;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::PreciseColumn;

OrvCaseScorer::OrvCaseScorer(const OrvResponseCategories& response, const OrvParameterList& parameters,
                             const OrvDesignColumns& columns, OrvFactorTables& tables,
                             const std::vector<double>& estimates)
    : fResponse(response),
      fColumns(columns),
      fTables(tables),
      fEstimates(estimates),
      fNLogits(static_cast<std::size_t>(parameters.LogitCount())),
      fNBasic(parameters.Basic().size()),
      fParameters(static_cast<std::size_t>(parameters.EffectCount()), -1) {
  assert(estimates.size() == parameters.All().size() && parameters.LogitCount() == response.LogitCount());
  fValues.reserve(fParameters.size());
  fTied.reserve(fNLogits + 1);
  fScoreIndices.reserve(fParameters.size() * fNLogits);
  fScoreValues.reserve(fParameters.size() * fNLogits);
}

// False for a level combination that the estimation data didn't have.
bool OrvCaseScorer::FillRow(const double* dataRow) {
  if (!fTables.ParameterIndices(dataRow, fParameters)) return false;
  fValues.clear();
  for (std::size_t e = 0; e < fParameters.size(); ++e)
    fValues.push_back(fColumns.Value(dataRow, e, RowKind::kData));
  return true;
}

void OrvCaseScorer::EvaluateRow(std::vector<double>& probabilities, int& predicted) {
  probabilities.resize(fNLogits + 1);
  const double* block = fEstimates.data();
  for (std::size_t j = 0; j < fNLogits; ++j, block += fNBasic) {
    double eta = 0;
    for (std::size_t e = 0; e < fParameters.size(); ++e)
      eta += fValues[e] * block[fParameters[e]];
    probabilities[j] = eta;
  }
  TakeProbabilities(probabilities, predicted);
}

// From the predictors of the logits, in place. A predictor within machine epsilon of the highest so far is
// tied with it, and the tie is broken afterwards: rounding doesn't choose the category. Exponentials are
// taken relative to the highest predictor, that of the reference being 0, so that none overflows.
void OrvCaseScorer::TakeProbabilities(std::vector<double>& probabilities, int& predicted) {
  probabilities[fNLogits] = 0;
  double highest = 0;
  fTied.assign(1, static_cast<int>(fNLogits));
  for (std::size_t j = 0; j < fNLogits; ++j) {
    const double eta = probabilities[j];
    if (eta > highest + MCPower::gMachineEpsilon) {
      highest = eta;
      fTied.assign(1, static_cast<int>(j));
    } else if (eta > highest - MCPower::gMachineEpsilon) {
      fTied.push_back(static_cast<int>(j));
    }
  }
  double sum = 0;
  for (double& value : probabilities)
    sum += value = std::exp(value - highest);
  for (double& value : probabilities)
    value /= sum;
  predicted = fTied.size() == 1 ? fTied.front() : fResponse.BreakTie(fTied);
}

bool OrvCaseScorer::Predict(const double* dataRow, std::vector<double>& probabilities, int& predicted) {
  if (!FillRow(dataRow)) return false;
  EvaluateRow(probabilities, predicted);
  return true;
}

void OrvCaseScorer::AddScores(const double* dataRow, std::vector<double>& sums, MCRectMatrix& classification,
                              OrvSRSCentre* centre) {
  assert(sums.size() >= fEstimates.size());
  const int observed = fResponse.LocalIndexOf(fColumns.Response(dataRow));
  if (observed < 0 || !FillRow(dataRow)) return;
  int predicted = 0;
  EvaluateRow(fProbabilities, predicted);

  const double weight = fColumns.Weight(dataRow, RowKind::kData);
  // The score without its weight: the sums take it times w, the centre the product of two times w.
  fScoreIndices.clear();
  fScoreValues.clear();
  for (std::size_t j = 0; j < fNLogits; ++j) {
    const double residual =
        static_cast<int>(j) == observed ? ProbabilityOfOthers(fProbabilities, j) : -fProbabilities[j];
    for (std::size_t e = 0; e < fParameters.size(); ++e) {
      const std::size_t k = j * fNBasic + static_cast<std::size_t>(fParameters[e]);
      const double value = residual * fValues[e];
      fScoreIndices.push_back(static_cast<int>(k));
      fScoreValues.push_back(value);
      sums[k] += value * weight;
    }
  }
  // The covariance divides the squared score by the weight: a case without one has no share in it.
  if (weight != 0 && centre != nullptr) centre->Add(fScoreIndices, fScoreValues, weight);
  Count(observed, predicted, weight, classification);
}

void OrvCaseScorer::Count(int observed, int predicted, double weight, MCRectMatrix& classification) {
  if (weight != 0) ++fNCasesWithWeight;
  classification.SetElem(observed, predicted, classification.GetElem(observed, predicted) + weight);
}

void OrvCaseScorer::FillPreciseRow(const double* dataRow, const std::vector<int>& compressed) {
  fPreciseIndices.clear();
  fPreciseValues.clear();
  for (std::size_t e = 0; e < fParameters.size(); ++e) {
    const int index = compressed[static_cast<std::size_t>(fParameters[e])];
    if (index < 0) continue;
    fPreciseIndices.push_back(index);
    fPreciseValues.push_back(fColumns.PreciseValue(dataRow, e, RowKind::kData));
  }
}

void OrvCaseScorer::AddPreciseScores(const double* dataRow, const TavoPreciseFit& fit,
                                     const std::vector<int>& compressed, PreciseColumn& sums,
                                     MCRectMatrix& classification, OrvSRSCentre* centre) {
  const int observed = fResponse.LocalIndexOf(fColumns.Response(dataRow));
  if (observed < 0 || !fTables.ParameterIndices(dataRow, fParameters)) return;
  FillPreciseRow(dataRow, compressed);
  const std::size_t parameters = sums.Size() / fNLogits;
  fProbabilities.resize(fNLogits + 1);
  for (std::size_t j = 0; j < fNLogits; ++j) {
    DoubleDouble eta;
    for (std::size_t e = 0; e < fPreciseValues.size(); ++e)
      eta += fPreciseValues[e] *
             fit.estimates.Get(j * parameters + static_cast<std::size_t>(fPreciseIndices[e]));
    fProbabilities[j] = eta.Value();
  }
  int predicted = 0;
  TakeProbabilities(fProbabilities, predicted);

  const double weight = fColumns.Weight(dataRow, RowKind::kData);
  const bool isWanted = weight != 0 && centre != nullptr;
  if (isWanted) fPreciseScore.Assign(sums.Size());
  for (std::size_t j = 0; j < fNLogits; ++j) {
    const double residual =
        static_cast<int>(j) == observed ? ProbabilityOfOthers(fProbabilities, j) : -fProbabilities[j];
    for (std::size_t e = 0; e < fPreciseValues.size(); ++e) {
      const std::size_t k = j * parameters + static_cast<std::size_t>(fPreciseIndices[e]);
      const DoubleDouble value = fPreciseValues[e] * residual;
      sums.AddTo(k, value * weight);
      if (isWanted) fPreciseScore.Set(k, value);
    }
  }
  if (isWanted) {
    fit.factor.ForwardSolve(fPreciseScore);
    fScoreIndices.resize(sums.Size());
    std::iota(fScoreIndices.begin(), fScoreIndices.end(), 0);
    centre->Add(fScoreIndices, fPreciseScore.high, weight);
  }
  Count(observed, predicted, weight, classification);
}

}  // namespace tavo
