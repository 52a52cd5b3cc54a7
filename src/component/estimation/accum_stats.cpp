#include "component/estimation/accum_stats.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "component/estimation/probabilities.h"
#include "component/numerics/machine_constants.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCMV;
using MCCommonMath::MCPower;
using MCCommonMath::MCSymMatrix;

namespace {

// The missing value is a finite number, which a plain sum would take for one.
double SumOrMissing(double a, double b) {
  return IsMissing(a) || IsMissing(b) ? MCMV::gMissingValue : a + b;
}

void AddOrMissing(std::vector<double>& sums, const std::vector<double>& terms) {
  for (std::size_t e = 0; e < sums.size(); ++e)
    sums[e] = SumOrMissing(sums[e], terms[e]);
}

// Below this argument exp gives denormal numbers, slowly, or 0.
double ExpOrZero(double x) {
  return x >= MCPower::gMachineMinExp ? std::exp(x) : 0.0;
}

// Turns the predictors, the reference's 0 being last, into probabilities, and returns the logarithm of the
// sum of their exponentials. All exponentials are taken relative to the highest predictor, so none overflows.
// That one's term is exactly 1; log1p of the other terms keeps their digits beside it.
double PredictorsToProbabilities(double highest, std::vector<double>& values) {
  values.back() = 0;
  bool isHighestSeen = false;
  double others = 0;
  for (double& value : values) {
    if (!isHighestSeen && value == highest) {
      isHighestSeen = true;
      value = 1;
    } else {
      value = ExpOrZero(value - highest);
      others += value;
    }
  }
  // Denormal probabilities have few digits and slow everything down that they meet.
  for (double& value : values) {
    value /= 1 + others;
    if (value < std::numeric_limits<double>::min()) value = 0;
  }
  return std::log1p(others) + highest;
}

// Element (a, b) of a symmetric block, any order, written over the rows that the block has in the dense
// matrix.
void CopyBlock(const MCSymMatrix& block, int blockRow, int blockCol, int size, MCSymMatrix& dense) {
  const double* from = block.AsVectorConst().data();
  double* to = dense.AsVector().data();
  for (int a = 0; a < size; ++a) {
    double* row = to + MCSymMatrix::Position(blockRow * size + a, blockCol * size);
    const int last = blockRow == blockCol ? a : size - 1;
    for (int b = 0; b <= last; ++b)
      row[b] = from[MCSymMatrix::Position(std::max(a, b), std::min(a, b))];
  }
}

}  // namespace

OrvSymStructure::OrvSymStructure(int blocks, int rowsPerBlock)
    : fNBlocks(blocks), fNRowsPerBlock(rowsPerBlock) {
  if (!Allocate()) {
    fNBlocks = fNRowsPerBlock = -1;
    fBlocks.clear();
  }
}

// A model with many parameters and categories is where memory runs out first: a plain error, not an
// exception.
bool OrvSymStructure::Allocate() {
  if (fNBlocks < 0 || fNRowsPerBlock < 0) return false;
  try {
    fBlocks.resize(MCSymMatrix::PackedSize(fNBlocks));
  } catch (const std::bad_alloc&) {
    return false;
  }
  for (MCSymMatrix& block : fBlocks) {
    if (!block.SetNRows(fNRowsPerBlock)) return false;
  }
  return true;
}

void OrvSymStructure::Clear() {
  for (MCSymMatrix& block : fBlocks)
    block.Clear();
}

TavoAccumStats::TavoAccumStats(const TavoCompSettings& settings, int parameters, int categories,
                               const std::vector<double>& estimates)
    : fSettings(settings), fNParameters(parameters), fNCategories(categories), fEstimates(estimates) {
  if (parameters < 0 || categories < 2) return;
  const std::size_t all = static_cast<std::size_t>(categories - 1) * static_cast<std::size_t>(parameters);
  if (estimates.size() < all) return;
  try {
    fScores.assign(all, 0.0);
    fProbabilities.assign(static_cast<std::size_t>(categories), 0.0);
  } catch (const std::bad_alloc&) {
    return;
  }
  fHessian = OrvSymStructure(categories - 1, parameters);
  fbValid = fHessian.IsValid();
  TavoAccumStats::Reset(EstimationMethod::kFisherScoring, false);  // a derived class is not there yet
}

void TavoAccumStats::Reset(EstimationMethod method, bool separationCheck) {
  fMethod = method;
  fbSeparationCheck = separationCheck;
  fLogLikelihood = fLogLikelihoodRest = 0;
  std::fill(fScores.begin(), fScores.end(), 0.0);
  fHessian.Clear();
  fNValidRows = fNInvalidRows = 0;
  fWeight = 0;
  fMinObserved = std::numeric_limits<double>::max();
  fMaxObserved = std::numeric_limits<double>::lowest();
  fMinComputed = std::numeric_limits<double>::max();
}

double TavoAccumStats::LogLikelihood() const {
  return IsMissing(fLogLikelihood) ? fLogLikelihood : fLogLikelihood + fLogLikelihoodRest;
}

int TavoAccumStats::UpdateForRow(const std::vector<int>& indices, const std::vector<double>& values,
                                 int category, double weight, bool likelihoodOnly) {
  const OrvSparseVector row(indices, values);
  if (fNParameters > 0 && !row.IsValid()) return -1;
  if (category < 0 || category >= fNCategories || !(weight > 0)) return -1;

  double logReference = 0;
  if (fNParameters == 0) {
    std::fill(fProbabilities.begin(), fProbabilities.end(), 1.0 / fNCategories);
    logReference = -std::log(static_cast<double>(fNCategories));
  } else if (!ComputeProbabilities(row, fEstimates, fNCategories, fNParameters, fProbabilities,
                                   logReference)) {
    ++fNInvalidRows;
    return -1;
  }
  // From here on the row counts; what is refused above leaves no trace in the sums.
  ++fNValidRows;
  fWeight += weight;
  if (fbSeparationCheck) NoteProbabilities(fProbabilities[static_cast<std::size_t>(category)]);

  AddToLogLikelihood(weight * LogObserved(row, category, logReference));
  if (!likelihoodOnly && fNParameters > 0) AddScoresAndInformation(row, category, weight);
  return 0;
}

// By way of the predictors, as the logarithm of a probability that has become 0 or 1 in doubles would be
// infinite or 0. A probability near 1 is better known by that of the others: its predictor less the logarithm
// of the sum of the exponentials is a small difference of terms that may be large.
double TavoAccumStats::LogObserved(const OrvSparseVector& row, int category, double logReference) const {
  const double others = ProbabilityOfOthers(fProbabilities, static_cast<std::size_t>(category));
  if (fNParameters > 0 && others < 0.5) return std::log1p(-others);
  const bool isReference = category == fNCategories - 1;
  if (isReference || fNParameters == 0) return logReference;
  return logReference + row.LinearPredictor(fEstimates, category * fNParameters);
}

// Neumaier (1974): what the larger of sum and term took from the smaller is summed apart.
void TavoAccumStats::AddToLogLikelihood(double term) {
  const double sum = fLogLikelihood + term;
  const double larger = std::abs(fLogLikelihood) >= std::abs(term) ? fLogLikelihood : term;
  const double smaller = std::abs(fLogLikelihood) >= std::abs(term) ? term : fLogLikelihood;
  fLogLikelihoodRest += (larger - sum) + smaller;
  fLogLikelihood = sum;
}

void TavoAccumStats::NoteProbabilities(double observed) {
  fMinObserved = std::min(fMinObserved, observed);
  fMaxObserved = std::max(fMaxObserved, observed);
  for (const double probability : fProbabilities)
    fMinComputed = std::min(fMinComputed, probability);
}

// Only non-zero entries are touched, and of each symmetric block only its lower triangle: the cost of a row
// is that of its own entries, not of the model's parameters.
void TavoAccumStats::AddScoresAndInformation(const OrvSparseVector& row, int category, double weight) {
  const double* probability = fProbabilities.data();
  for (int i = 0; i < fNCategories - 1; ++i) {
    const double others = ProbabilityOfOthers(fProbabilities, static_cast<std::size_t>(i));
    const double residual = i == category ? others : -probability[i];
    row.AddScaledTo(fScores, i * fNParameters, weight * residual);
    const double wp = weight * probability[i];
    for (int j = 0; j < i; ++j)
      row.AddOuterTo(fHessian.Block(i, j), -wp * probability[j]);
    row.AddOuterTo(fHessian.Block(i, i), wp * others);
  }
}

bool TavoAccumStats::ComputeProbabilities(const OrvSparseVector& row, const std::vector<double>& parameters,
                                          int categories, int parameterCount,
                                          std::vector<double>& probabilities, double& logReference) {
  if (categories < 1 || parameterCount < 1 || parameterCount < row.MaxIndexPlusOne()) return false;
  const std::size_t logits = static_cast<std::size_t>(categories - 1);
  if (parameters.size() < logits * static_cast<std::size_t>(parameterCount)) return false;
  probabilities.resize(logits + 1);

  // A predictor that is NaN changes neither bound, and its category gets probability 0.
  // All predictors 0, as at the start of a model without intercept, gives exactly 1/K.
  double highest = 0;
  double lowest = 0;
  for (std::size_t j = 0; j < logits; ++j) {
    const double eta = row.LinearPredictor(parameters, static_cast<int>(j) * parameterCount);
    probabilities[j] = eta;
    if (eta > highest) highest = eta;
    if (eta < lowest) lowest = eta;
  }
  if (highest > lowest) {
    logReference = -PredictorsToProbabilities(highest, probabilities);
  } else {
    std::fill(probabilities.begin(), probabilities.end(), 1.0 / categories);
    logReference = -std::log(static_cast<double>(categories));
  }
  return true;
}

// It shares the estimates, which nobody changes during an evaluation.
std::unique_ptr<TavoAccumStats> TavoAccumStats::CloneEmpty() const {
  return std::make_unique<TavoAccumStats>(fSettings, fNParameters, fNCategories, fEstimates);
}

bool TavoAccumStats::HasSameShape(const TavoAccumStats& other) const {
  return fNParameters == other.fNParameters && fNCategories == other.fNCategories && fbValid && other.fbValid;
}

void TavoAccumStats::Merge(const TavoAccumStats& other) {
  if (!HasSameShape(other) || IsMissing(fLogLikelihood) || IsMissing(other.fLogLikelihood)) {
    fLogLikelihood = MCMV::gMissingValue;
    fLogLikelihoodRest = 0;
  } else {
    // Sum and rest are added apart: together they would lose the digits for which the rest was collected.
    AddToLogLikelihood(other.fLogLikelihood);
    AddToLogLikelihood(other.fLogLikelihoodRest);
  }
  if (!HasSameShape(other)) return;
  AddOrMissing(fScores, other.fScores);
  for (int i = 0; i < fNCategories - 1; ++i) {
    for (int j = 0; j <= i; ++j) {
      AddOrMissing(fHessian.Block(i, j).AsVector(), other.fHessian.Block(i, j).AsVectorConst());
    }
  }
  fNValidRows += other.fNValidRows;
  fNInvalidRows += other.fNInvalidRows;
  fWeight = SumOrMissing(fWeight, other.fWeight);
  fMinObserved = std::min(fMinObserved, other.fMinObserved);
  fMaxObserved = std::max(fMaxObserved, other.fMaxObserved);
  fMinComputed = std::min(fMinComputed, other.fMinComputed);
}

// The blocks are put together only when the matrix is wanted, once an iteration.
int TavoAccumStats::GetHessian(MCSymMatrix& matrix) const {
  const int logits = fNCategories - 1;
  const int size = logits * fNParameters;
  if (!fbValid || !matrix.SetNRows(size)) {
    matrix.Resize(0);
    return -1;
  }
  for (int i = 0; i < logits; ++i) {
    for (int j = 0; j <= i; ++j)
      CopyBlock(fHessian.Block(i, j), i, j, fNParameters, matrix);
  }
  return size;
}

void TavoAccumStats::GetCounts(int& valid, int& invalid, double& weight) const {
  valid = fNValidRows;
  invalid = fNInvalidRows;
  weight = fWeight;
}

void TavoAccumStats::GetObservedProbabilities(double& minObserved, double& maxObserved,
                                              double& minComputed) const {
  minObserved = fMinObserved;
  maxObserved = fMaxObserved;
  minComputed = fMinComputed;
}

}  // namespace tavo
