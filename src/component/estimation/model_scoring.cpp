// The evaluation of single cases: probabilities, scores, and the covariance under simple random sampling.
#include <algorithm>
#include <cmath>

#include "component/estimation/model.h"
#include "component/numerics/machine_constants.h"
#include "component/numerics/missing_value.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

using MCCommonMath::MCMV;
using MCCommonMath::MCPower;

namespace {

int CodeOf(double cell) {
  return static_cast<int>(cell + 0.5);
}

// Keeps those of the tied categories whose count is largest, comparing exactly.
void KeepLargest(std::vector<int>& tied, const std::vector<double>& counts) {
  const auto countOf = [&](int local) { return counts[static_cast<std::size_t>(local)]; };
  double largest = countOf(tied.front());
  for (const int local : tied)
    largest = std::max(largest, countOf(local));
  std::erase_if(tied, [&](int local) { return countOf(local) < largest; });
}

}  // namespace

// False for a level combination that the estimation data didn't have.
bool TavoModel::FindParameters(const double* dataRow) const {
  return fpTables->ParameterIndices(dataRow, fWorkParameters);
}

bool TavoModel::FillDesignRow(std::vector<double>& row, const double* dataRow, bool standardise) const {
  if (!fbStructureReady || fCancel.IsCancelled()) return false;
  row.assign(fBasicParameters.size(), 0.0);
  const bool isKnown = FindParameters(dataRow);
  for (std::size_t e = 0; e < fWorkParameters.size(); ++e) {
    if (fWorkParameters[e] < 0) continue;
    const std::size_t k = static_cast<std::size_t>(fWorkParameters[e]);
    row[k] =
        standardise ? DesignValue(dataRow, e, false) : ParameterValue(dataRow, fBasicParameters[k], false);
  }
  return isKnown;
}

// The standardised design row as index and value pairs: one per effect at most.
bool TavoModel::FillScoringRow(const double* dataRow) {
  fWorkIndices.clear();
  fWorkValues.clear();
  if (!FindParameters(dataRow)) return false;
  for (std::size_t e = 0; e < fWorkParameters.size(); ++e) {
    fWorkIndices.push_back(fWorkParameters[e]);
    fWorkValues.push_back(DesignValue(dataRow, e, false));
  }
  return true;
}

// Probabilities of the scoring row by local index, and the local index of the predicted category.
void TavoModel::EvaluateScoringRow(std::vector<double>& probabilities, int& local) {
  const std::size_t logits = static_cast<std::size_t>(fNEquations);
  probabilities.resize(logits + 1);
  probabilities[logits] = 0;
  double highest = 0;
  fWorkTied.assign(1, fNEquations);
  const double* block = fTransformedEstimates.data();
  for (std::size_t j = 0; j < logits; ++j, block += fBasicParameters.size()) {
    double eta = 0;
    for (std::size_t e = 0; e < fWorkIndices.size(); ++e)
      eta += fWorkValues[e] * block[fWorkIndices[e]];
    probabilities[j] = eta;
    if (eta > highest + MCPower::gMachineEpsilon) {
      highest = eta;
      fWorkTied.assign(1, static_cast<int>(j));
    } else if (eta > highest - MCPower::gMachineEpsilon) {
      fWorkTied.push_back(static_cast<int>(j));
    }
  }
  double sum = 0;
  for (double& value : probabilities)
    sum += value = std::exp(value - highest);
  for (double& value : probabilities)
    value /= sum;
  local = fWorkTied.size() == 1 ? fWorkTied.front() : BreakTie();
}

int TavoModel::BreakTie() {
  KeepLargest(fWorkTied, fWeightedCounts);
  KeepLargest(fWorkTied, fUnweightedCounts);
  return *std::min_element(fWorkTied.begin(), fWorkTied.end(), [this](int a, int b) {
    return fCategories[static_cast<std::size_t>(a)] < fCategories[static_cast<std::size_t>(b)];
  });
}

OrvStatus TavoModel::PredictCategory(const double* dataRow, std::vector<double>& probabilities,
                                     int& category) {
  category = 0;
  probabilities.assign(fCategories.size(), MCMV::gMissingValue);
  if (fTransformedEstimates.empty()) return OrvStatus::Error(StatusCode::kModelNotBuilt);
  if (fCancel.IsCancelled() || !FillScoringRow(dataRow)) return OrvStatus();
  int local = 0;
  EvaluateScoringRow(probabilities, local);
  category = fCategories[static_cast<std::size_t>(local)];
  return OrvStatus();
}

void TavoModel::ComputeCaseScores(std::vector<double>& scores, const double* dataRow) {
  scores.assign(fAllParameters.size(), 0.0);
  ScoreRow(scores, dataRow);
}

void TavoModel::AddCaseScores(std::vector<double>& sums, const double* dataRow) {
  if (sums.size() < fAllParameters.size()) sums.resize(fAllParameters.size(), 0.0);
  ScoreRow(sums, dataRow);
}

// False when the row adds nothing: a cancel, no estimates, an unknown level combination or response.
bool TavoModel::ScoreRow(std::vector<double>& sums, const double* dataRow) {
  if (fTransformedEstimates.empty() || fCancel.IsCancelled() || !FillScoringRow(dataRow)) return false;
  const int code = CodeOf(dataRow[fDataLayout.response]);
  if (code < 1 || code > static_cast<int>(fLocalCategories.size())) return false;
  const int observed = fLocalCategories[static_cast<std::size_t>(code) - 1];
  if (observed < 0) return false;
  int predicted = 0;
  EvaluateScoringRow(fWorkProbabilities, predicted);

  const double weight = dataRow[fDataLayout.weight];
  fWorkScoreIndices.clear();
  fWorkScoreValues.clear();
  for (int j = 0; j < fNEquations; ++j) {
    const double residual = (j == observed ? 1.0 : 0.0) - fWorkProbabilities[static_cast<std::size_t>(j)];
    for (std::size_t e = 0; e < fWorkIndices.size(); ++e) {
      const int k = j * BasicParameterCount() + fWorkIndices[e];
      const double value = residual * fWorkValues[e];
      fWorkScoreIndices.push_back(k);
      fWorkScoreValues.push_back(value);
      sums[static_cast<std::size_t>(k)] += value * weight;
    }
  }
  if (weight != 0) {
    ++fNCasesWithWeight;
    if (fpSRSCentre != nullptr) AddToSRSCentre(weight);
  }
  fClassification.SetElem(observed, predicted, fClassification.GetElem(observed, predicted) + weight);
  return true;
}

// Adds (1/w) s s' of the row's score s = w r x, that is w (r x)(r x)'.
void TavoModel::AddToSRSCentre(double weight) {
  if (fbSRSBySparseRows) {
    fpSRSCentre->UpdateXXSparse(static_cast<int>(fWorkScoreIndices.size()), fWorkScoreIndices,
                                fWorkScoreValues, weight);
    return;
  }
  double* row = fSRSRows.NextRow(weight);
  for (std::size_t e = 0; e < fWorkScoreIndices.size(); ++e)
    row[fWorkScoreIndices[e]] = fWorkScoreValues[e];
  if (fSRSRows.IsFull()) fSRSRows.FlushInto(*fpSRSCentre);
}

const MCSymMatrix* TavoModel::SRSCentre() const {
  if (fpSRSCentre != nullptr) fSRSRows.FlushInto(*fpSRSCentre);
  return fpSRSCentre.get();
}

void TavoModel::ReleaseSRSCentre() {
  fpSRSCentre.reset();
  fSRSRows.SetLength(0);
}

OrvStatus TavoModel::ScaleSRSCovariance() {
  if (fbBuilt) return Fail(StatusCode::kModelBuiltTwice);
  if (fpTables == nullptr) return Fail(StatusCode::kUserError);
  const double n = fpTables->SampleSize();
  const double population = fpTables->PopulationEstimate();
  if (fpSRSCentre != nullptr) {
    fSRSRows.FlushInto(*fpSRSCentre);
    if (n > 1 && population > 0) {
      double factor = population / (n - 1);
      if (fSettings.GetSRSEstimator() == SRSEstimator::kWithoutReplacement) {
        factor = population > n ? factor * (1 - n / population) : 0.0;
      }
      for (double& element : fpSRSCentre->AsVector())
        element *= factor;
    } else if (n == 1) {
      fpSRSCentre->Clear();
    }
  }
  if (fNCasesWithWeight == 0 || n == 0 || !(population > 0)) return Fail(StatusCode::kEmptySubpopulation);
  if (!fStatus.IsError()) fbBuilt = true;
  return fStatus;
}

}  // namespace tavo
