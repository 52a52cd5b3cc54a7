// The first pass. Means and sums of squares run along with the records (West 1979, the weighted form of
// Welford 1962): the spread of a year of birth, taken from sums of its squares, would have lost its digits.
// Sums of weights are compensated, as there may be millions of terms.
#include "component/tabulation/factor_tables.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "component/numerics/compensated_sum.h"
#include "component/numerics/machine_constants.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::MCMV;
using MCCommonMath::MCPower;

namespace {

/// The 0-based level of a category code, -1 when it isn't one of `count` codes. Compared as doubles, since a
/// missing value has no integer.
int LevelOf(double value, int count) {
  return value >= 0.5 && value < static_cast<double>(count) + 0.5 ? static_cast<int>(value - 0.5) : -1;
}

/// The running mean after a value with `share` of the weight so far. A mean that cancelled to rounding noise
/// becomes exactly 0, so that a centred covariate stays centred and isn't shifted by 1e-17 hereafter.
double UpdatedMean(double mean, double deviation, double share) {
  const double updated = mean + deviation * share;
  return 2.0 * std::abs(mean) * MCPower::gMachineEpsilon > std::abs(updated) ? 0.0 : updated;
}

/// In their unit deviations stay below this, their squares and the sums of these far from overflow.
constexpr double kLargestDeviation = 0x1p256;

/// Of a power of two near a value, such that its inverse is a normal number; 0 where there is none.
int ExponentOf(double value) {
  constexpr int kLargest = 1020;
  return value != 0 && std::isfinite(value) ? std::clamp(std::ilogb(value), -kLargest, kLargest) : 0;
}

/// The root of mean^2 + variance, with the variance in units of 4^exponent.
double RootMeanSquare(double mean, double variance, int exponent) {
  int unit = ExponentOf(mean);
  if (variance > 0 && (mean == 0 || exponent > unit)) unit = exponent;
  const double scaledMean = std::ldexp(mean, -unit);
  const double scaledVariance = std::ldexp(variance, 2 * (exponent - unit));
  return std::ldexp(std::sqrt(scaledMean * scaledMean + scaledVariance), unit);
}

}  // namespace

// ---- counts ----

OrvFactorCounts::OrvFactorCounts(std::vector<int> factorColumns, std::vector<int> categoryCounts,
                                 int weightColumn, int dependentColumn, int dependentCategories)
    : fFactorColumns(std::move(factorColumns)),
      fCategoryCounts(std::move(categoryCounts)),
      fWeightColumn(weightColumn),
      fDependentColumn(dependentColumn) {
  fCategoryCounts.resize(fFactorColumns.size(), 0);
  for (const int count : fCategoryCounts)
    fFactorCounts.emplace_back(static_cast<std::size_t>(std::max(count, 0)), 0.0);
  fFactorRests = fFactorCounts;
  if (fDependentColumn < 0) return;
  fDependentCounts.resize(static_cast<std::size_t>(std::max(dependentCategories, 0)));
  fDependentRests.resize(fDependentCounts.size(), 0.0);
}

int OrvFactorCounts::CategoriesInUse(int factor) const {
  if (factor < 0 || factor >= FactorCount()) return -1;
  const std::vector<double>& counts = FactorCounts(factor);
  return static_cast<int>(
      std::count_if(counts.begin(), counts.end(), [](double count) { return count > 0; }));
}

bool OrvFactorTables::CountCategories(const double* record, double weight) {
  bool allInRange = true;
  for (std::size_t f = 0; f < fFactorColumns.size(); ++f) {
    const int level = LevelOf(record[fFactorColumns[f]], fCategoryCounts[f]);
    if (level < 0) {
      allInRange = false;
      continue;
    }
    const auto cell = static_cast<std::size_t>(level);
    AddCompensated(fFactorCounts[f][cell], fFactorRests[f][cell], weight);
    fFactorValues[f] = level;
  }
  return allInRange;
}

bool OrvFactorTables::CountDependent(const double* record, double weight) {
  if (fDependentColumn < 0) return true;
  const int level = LevelOf(record[fDependentColumn], static_cast<int>(fDependentCounts.size()));
  if (level < 0) return false;
  const auto cell = static_cast<std::size_t>(level);
  AddCompensated(fDependentCounts[cell].first, fDependentRests[cell], weight);
  fDependentCounts[cell].second += 1;
  return true;
}

// ---- set-up ----

int OrvFactorTables::LocalFactor(int column) const {
  const auto found = std::find(fFactorColumns.begin(), fFactorColumns.end(), column);
  return found == fFactorColumns.end() ? -1 : static_cast<int>(found - fFactorColumns.begin());
}

bool OrvFactorTables::SetEffects(const std::vector<std::vector<int>>& effectFactors,
                                 const std::vector<int>& extractPositions) {
  // Into local variables first: a refused list leaves the tables as they were.
  if (extractPositions.size() < fFactorColumns.size()) return false;
  std::vector<std::vector<int>> local(effectFactors.size());
  for (std::size_t e = 0; e < effectFactors.size(); ++e) {
    for (const int column : effectFactors[e])
      local[e].push_back(LocalFactor(column));
    if (std::find(local[e].begin(), local[e].end(), -1) != local[e].end()) return false;
  }
  fEffectFactors = std::move(local);
  fExtractPositions = extractPositions;
  fFactorValues.assign(fFactorColumns.size(), -1);
  fParameterOffsets.assign(fEffectFactors.size(), 0);
  fLocalEffects.assign(fEffectFactors.size(), -1);
  fEffectNumbers.clear();
  fCombinations.clear();
  for (std::size_t e = 0; e < fEffectFactors.size(); ++e) {
    if (fEffectFactors[e].empty()) continue;
    fLocalEffects[e] = static_cast<int>(fCombinations.size());
    fEffectNumbers.push_back(static_cast<int>(e));
    fCombinations.emplace_back(fEffectFactors[e], fCategoryCounts);
  }
  return true;
}

void OrvFactorTables::SetEffectCovariates(std::vector<std::vector<int>> covariates,
                                          std::vector<std::vector<int>> exponents) {
  fEffectCovariates = std::move(covariates);
  fEffectExponents = std::move(exponents);
  fEffectExponents.resize(fEffectCovariates.size());
  fCentres.assign(fEffectCovariates.size(), 0.0);
  fScales.assign(fEffectCovariates.size(), 0.0);
  fbTransformationDone = false;
  fProducts.clear();
  for (std::size_t e = 0; e < fEffectCovariates.size(); ++e) {
    if (fEffectCovariates[e].empty()) continue;
    Product& product = fProducts.emplace_back();
    product.effect = e;
    fEffectExponents[e].resize(fEffectCovariates[e].size(), 1);
    for (std::size_t c = 0; c < fEffectCovariates[e].size(); ++c) {
      product.terms.push_back({fEffectCovariates[e][c], fEffectExponents[e][c]});
    }
  }
}

void OrvFactorTables::SetCovariates(std::vector<int> columns) {
  fCovariates = std::move(columns);
  fCovariateMeans.assign(fCovariates.size(), 0.0);
  fbMeansDone = false;
}

// ---- the first pass ----

bool OrvFactorTables::Update(const double* record) {
  const double weight = record[fWeightColumn];
  if (!CountCategories(record, weight) || !CountDependent(record, weight)) return false;
  for (OrvEffectCombinations& combinations : fCombinations)
    combinations.Enter(fFactorValues);

  const double weightBefore = fTotalWeight;
  AddCompensated(fTotalWeight, fTotalWeightRest, weight);
  fSampleSize += 1;
  fSubpopulationSize += 1;
  if (!(fTotalWeight > 0)) return true;
  if (fPerFirstWeight == 0) fPerFirstWeight = std::ldexp(1.0, -ExponentOf(weight));
  const double share = weight / fTotalWeight;
  UpdateCovariateMeans(record, share);
  UpdateEffectSpreads(record, share, weightBefore);
  return true;
}

void OrvFactorTables::AddComplement(double weight) {
  AddCompensated(fComplementWeight, fComplementWeightRest, weight);
  fSampleSize += 1;
}

void OrvFactorTables::UpdateCovariateMeans(const double* record, double share) {
  for (std::size_t c = 0; c < fCovariates.size(); ++c) {
    const double mean = fCovariateMeans[c];
    fCovariateMeans[c] = UpdatedMean(mean, record[fCovariates[c]] - mean, share);
  }
}

void OrvFactorTables::UpdateEffectSpreads(const double* record, double share, double weightBefore) {
  for (Product& product : fProducts) {
    double value = 1.0;  // powers by repeated multiplication, as in the design rows of the fit
    for (const Term& term : product.terms) {
      for (int power = 0; power < term.power; ++power)
        value *= record[term.column];
    }
    const double deviation = value - fCentres[product.effect];
    fCentres[product.effect] = UpdatedMean(fCentres[product.effect], deviation, share);
    if (deviation == 0) continue;
    if (product.perUnit == 0 || std::abs(deviation * product.perUnit) > kLargestDeviation)
      ChooseUnit(deviation, product);
    const double scaled = deviation * product.perUnit;
    product.squares += scaled * scaled * share * (weightBefore * fPerFirstWeight);
  }
}

// As in the norm of a vector whose squares may over- or underflow (Blue 1978): the unit follows the largest
// deviation. Beside a new one the squares so far may vanish.
void OrvFactorTables::ChooseUnit(double deviation, Product& product) {
  const int exponent = ExponentOf(deviation);
  product.squares = std::ldexp(product.squares, 2 * (product.exponent - exponent));
  product.exponent = exponent;
  product.perUnit = std::ldexp(1.0, -exponent);
}

double OrvFactorTables::WeightUnit() const {
  const double mean = fSubpopulationSize > 0 ? fTotalWeight / fSubpopulationSize : 1.0;
  return std::ldexp(1.0, 2 * (ExponentOf(mean) / 2));
}

// ---- parameters ----

// Sparse: an effect has a parameter for each combination that the data hold, none for the empty cells of its
// grid. A crossing of five factors may have a million cells and two hundred combinations.
int OrvFactorTables::AssignParameters() {
  int next = 0;
  for (std::size_t e = 0; e < fEffectFactors.size(); ++e) {
    fParameterOffsets[e] = next;
    const int local = fLocalEffects[e];
    next += local < 0 ? 1 : fCombinations[static_cast<std::size_t>(local)].AssignNumbers();
  }
  return next;
}

int OrvFactorTables::ParameterCount(int effect) const {
  if (effect < 0 || effect >= EffectCount()) return 0;
  const int local = fLocalEffects[static_cast<std::size_t>(effect)];
  return local < 0 ? 1 : fCombinations[static_cast<std::size_t>(local)].Count();
}

void OrvFactorTables::ReadLevels(const double* row) {
  for (std::size_t f = 0; f < fFactorValues.size(); ++f) {
    fFactorValues[f] = LevelOf(row[fExtractPositions[f]], fCategoryCounts[f]);
  }
}

bool OrvFactorTables::ParameterIndices(const double* row, std::vector<int>& indices) {
  indices.resize(fEffectFactors.size());
  ReadLevels(row);
  bool allKnown = true;
  for (std::size_t e = 0; e < fEffectFactors.size(); ++e) {
    const int local = fLocalEffects[e];
    const int position =
        local < 0 ? 0 : fCombinations[static_cast<std::size_t>(local)].NumberOf(fFactorValues);
    allKnown = allKnown && position >= 0;
    indices[e] = position < 0 ? -1 : fParameterOffsets[e] + position;
  }
  return allKnown;
}

bool OrvFactorTables::LocalParameterIndices(const double* row, std::vector<int>& positions) {
  positions.resize(fCombinations.size());
  ReadLevels(row);
  bool allKnown = true;
  for (std::size_t local = 0; local < fCombinations.size(); ++local) {
    positions[local] = fCombinations[local].NumberOf(fFactorValues);
    allKnown = allKnown && positions[local] >= 0;
  }
  return allKnown;
}

bool OrvFactorTables::EffectLevels(std::vector<int>& levels, int effect, int parameter) const {
  levels.clear();
  if (parameter < 0 || parameter >= ParameterCount(effect)) return false;
  const int local = fLocalEffects[static_cast<std::size_t>(effect)];
  if (local >= 0) fCombinations[static_cast<std::size_t>(local)].LevelsOf(parameter, levels);
  return true;
}

// ---- the transformation ----

bool OrvFactorTables::IsLoneCovariateEffect(std::size_t effect) const {
  const bool hasFactors = effect < fEffectFactors.size() && !fEffectFactors[effect].empty();
  if (hasFactors || fEffectCovariates[effect].empty()) return false;
  for (std::size_t other = 0; other < fEffectCovariates.size(); ++other) {
    if (other != effect && fEffectCovariates[other] == fEffectCovariates[effect] &&
        fEffectExponents[other] == fEffectExponents[effect]) {
      return false;
    }
  }
  return true;
}

// Centring is undone by the intercept, so a column may be centred only where an intercept stands beside it
// and no other column would have to move with it. What isn't centred is scaled by its root mean square about
// 0.
void OrvFactorTables::ComputeTransformation(bool hasIntercept) {
  if (fbTransformationDone) return;
  fbTransformationDone = true;
  if (!(fTotalWeight > 0)) {
    std::fill(fCentres.begin(), fCentres.end(), 0.0);
    std::fill(fScales.begin(), fScales.end(), 1.0);
    return;
  }
  // An effect without covariates counts as a sum of squares of 1: with an intercept its columns stay as they
  // are, without one they are scaled by the root of the total weight like all others.
  const double withoutCovariates = hasIntercept ? 1.0 : std::sqrt(1.0 / (fTotalWeight / WeightUnit()));
  std::fill(fScales.begin(), fScales.end(), withoutCovariates);
  for (const Product& product : fProducts) {
    const std::size_t e = product.effect;
    const double variance = product.squares / (fTotalWeight * fPerFirstWeight);
    if (hasIntercept && IsLoneCovariateEffect(e)) {
      fScales[e] = std::ldexp(std::sqrt(variance), product.exponent);
    } else {
      fScales[e] = RootMeanSquare(fCentres[e], variance, product.exponent);
      fCentres[e] = 0.0;
    }
  }
}

const std::vector<double>& OrvFactorTables::Centres(bool hasIntercept) {
  ComputeTransformation(hasIntercept);
  return fCentres;
}

const std::vector<double>& OrvFactorTables::Scales(bool hasIntercept) {
  ComputeTransformation(hasIntercept);
  return fScales;
}

const std::vector<double>& OrvFactorTables::CovariateMeans() {
  if (!fbMeansDone && !(fTotalWeight > 0))
    std::fill(fCovariateMeans.begin(), fCovariateMeans.end(), MCMV::gMissingValue);
  fbMeansDone = true;
  return fCovariateMeans;
}

}  // namespace tavo
