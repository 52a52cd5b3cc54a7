// The structure of the model: record layout, response categories, parameters, and what the estimates equal.
#include "component/estimation/model.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "component/numerics/machine_constants.h"
#include "component/numerics/math_functions.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

using MCCommonMath::MCMathFun;
using MCCommonMath::MCPower;

namespace {

// The parameters of all logits may number at most the whole part of the square root of 2147483647.
constexpr std::int32_t kParameterLimit = 46340;

// The mean of a constant is only as exact as its running update, and the spread about it is rounding. A
// spread of no more than this share of the mean is none.
constexpr double kSpreadOfConstant = 64 * MCPower::gMachineEpsilon;

bool HasSpread(double centre, double scale) {
  return std::isfinite(centre) && scale > kSpreadOfConstant * std::abs(centre);
}

}  // namespace

TavoModel::TavoModel(const TavoCompSettings& settings, const OrvCancelInfo& cancel)
    : fSettings(settings), fCancel(cancel), fNIntercepts(settings.HasIntercept() ? 1 : 0) {
  fNEffects = static_cast<int>(settings.Effects().size()) + fNIntercepts;
}

TavoModel::~TavoModel() = default;

OrvStatus TavoModel::Fail(std::uint32_t code) {
  fStatus = OrvStatus::Error(code);
  return fStatus;
}

OrvStatus TavoModel::FailWithCount(std::int64_t count, std::int32_t limit) {
  constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
  fStatus = OrvStatus::Error(StatusCode::kTooManyParameters);
  fStatus.SetInteger(0, static_cast<std::int32_t>(std::min(count, largest))).SetInteger(1, limit);
  return fStatus;
}

OrvStatus TavoModel::EndOfLongStep() {
  if (!fStatus.IsError() && fCancel.IsCancelled()) return Fail(StatusCode::kCancelled);
  return fStatus;
}

void TavoModel::SetRecordLayout(const OrvRecordExtractor& patternRow, const OrvRecordExtractor& dataRow) {
  const std::vector<int>& covariates = fSettings.Covariates();
  int columns = static_cast<int>(fSettings.VariableTypes().size());
  for (const int column : covariates)
    columns = std::max(columns, column + 1);
  const auto lay = [&](const OrvRecordExtractor& extractor, RowLayout& layout) {
    layout.weight = extractor.WeightOffset();
    layout.response = extractor.DependentOffset();
    layout.covariateOffset.assign(static_cast<std::size_t>(columns), -1);
    for (std::size_t c = 0; c < covariates.size(); ++c) {
      layout.covariateOffset[static_cast<std::size_t>(covariates[c])] = extractor.CovariateOffsets()[c];
    }
  };
  lay(patternRow, fPatternLayout);
  lay(dataRow, fDataLayout);
}

OrvStatus TavoModel::SetupDependent(OrvFactorTables& tables) {
  fpTables = &tables;
  const std::vector<OrvFactorCounts::CountPair>* counts = tables.DependentCounts();
  if (counts == nullptr) return Fail(StatusCode::kOneDependentValue);
  std::vector<int> used;
  for (std::size_t c = 0; c < counts->size(); ++c) {
    if ((*counts)[c].first > 0) used.push_back(static_cast<int>(c) + 1);
  }
  if (used.size() < 2) return Fail(StatusCode::kOneDependentValue);

  const auto reference = used.begin() + static_cast<std::ptrdiff_t>(ChooseReference(used));
  std::rotate(reference, reference + 1, used.end());
  fCategories = std::move(used);
  fLocalCategories.assign(counts->size(), -1);
  fWeightedCounts.clear();
  fUnweightedCounts.clear();
  for (std::size_t i = 0; i < fCategories.size(); ++i) {
    const std::size_t code = static_cast<std::size_t>(fCategories[i]) - 1;
    fLocalCategories[code] = static_cast<int>(i);
    fWeightedCounts.push_back((*counts)[code].first);
    fUnweightedCounts.push_back((*counts)[code].second);
  }
  fWorkProbabilities.assign(fCategories.size(), 0.0);
  fWorkTied.reserve(fCategories.size());
  return fStatus;
}

// The position among the used categories, which are in ascending order.
std::size_t TavoModel::ChooseReference(const std::vector<int>& used) {
  const int wanted = fSettings.DependentReference();
  if (wanted < 0) return 0;
  const auto found = std::find(used.begin(), used.end(), wanted);
  if (found != used.end()) return static_cast<std::size_t>(found - used.begin());
  if (wanted > 0) fStatus = OrvStatus::Warning(StatusCode::kReferenceNotInUse);
  return used.size() - 1;
}

OrvStatus TavoModel::BuildParameters(int maxCount) {
  if (fStatus.IsError()) return fStatus;
  if (fpTables == nullptr || fCategories.size() < 2) return Fail(StatusCode::kUserError);
  if (fbBuilt) return Fail(StatusCode::kModelBuiltTwice);
  const std::int64_t logits = static_cast<std::int64_t>(fCategories.size()) - 1;
  const std::int64_t count = logits * maxCount;
  if (count > kParameterLimit) return FailWithCount(count, kParameterLimit);

  ClearParameters();
  TakeTransformation();
  if (HasIntercept()) {
    OrvRegrParameter intercept;
    intercept.targetCategory = fCategories[0];
    AppendParameter(intercept, 0.0, 1.0);
    if (!AppendCovariateTerms(intercept)) return Fail(StatusCode::kUserError);
  }
  for (int effect = 0; effect < static_cast<int>(fSettings.Effects().size()); ++effect) {
    if (fCancel.IsCancelled()) return EndOfLongStep();
    if (!AppendEffectParameters(effect)) return Fail(StatusCode::kUserError);
  }
  RepeatForOtherLogits();
  AllocateMatrices();
  if (fStatus.IsError()) return fStatus;

  const std::size_t nonZero = static_cast<std::size_t>(fNEffects);
  fEstimates.assign(fAllParameters.size(), 0.0);
  fWorkParameters.assign(nonZero, -1);
  fWorkIndices.reserve(nonZero);
  fWorkValues.reserve(nonZero);
  fWorkScoreIndices.reserve(nonZero * static_cast<std::size_t>(fNEquations));
  fWorkScoreValues.reserve(nonZero * static_cast<std::size_t>(fNEquations));
  fbStructureReady = true;
  return fStatus;
}

void TavoModel::ClearParameters() {
  fbStructureReady = false;
  fAllParameters.clear();
  fBasicParameters.clear();
  fParameterCentres.clear();
  fParameterScales.clear();
  fFirstParameter.clear();
  fEffectParameters.clear();
  fCovariateTerms.clear();
  fFirstTerm.assign(1, 0);
  fTransformedEstimates.clear();
  fNRecordsAdded = 0;
  fNCasesWithWeight = 0;
  fNEquations = CategoryCount() - 1;
}

void TavoModel::TakeTransformation() {
  fEffectCentres = fpTables->Centres(HasIntercept());
  fEffectScales = fpTables->Scales(HasIntercept());
  fEffectCentres.resize(static_cast<std::size_t>(fNEffects), 0.0);
  fEffectScales.resize(static_cast<std::size_t>(fNEffects), 1.0);
  fConstantValues.assign(static_cast<std::size_t>(fNEffects), 0.0);
  for (std::size_t e = 0; e < fEffectScales.size(); ++e) {
    if (!HasSpread(fEffectCentres[e], fEffectScales[e])) {
      // The centre stays: it is the constant, by which the column is a multiple of the intercept's.
      if (!std::isfinite(fEffectCentres[e])) fEffectCentres[e] = 0;
      fEffectScales[e] = 0;
      continue;
    }
    const double centre = HasIntercept() ? fEffectCentres[e] : 0.0;
    fConstantValues[e] = (1.0 - centre) / fEffectScales[e];
  }
}

void TavoModel::AppendParameter(const OrvRegrParameter& parameter, double centre, double scale) {
  fAllParameters.push_back(parameter);
  fBasicParameters.push_back(parameter);
  fParameterCentres.push_back(centre);
  fParameterScales.push_back(scale);
}

// `effect` is the position in the settings' list. False when the factor tables don't know a parameter's
// levels or the effect has a covariate that no record holds.
bool TavoModel::AppendEffectParameters(int effect) {
  OrvRegrParameter parameter;
  parameter.Set(fSettings.Effects()[static_cast<std::size_t>(effect)], effect);
  parameter.targetCategory = fCategories[0];
  const int modelEffect = effect + fNIntercepts;
  const double centre = fEffectCentres[static_cast<std::size_t>(modelEffect)];
  const double scale = fEffectScales[static_cast<std::size_t>(modelEffect)];
  const int count = fpTables->ParameterCount(modelEffect);
  fFirstParameter.push_back(static_cast<int>(fAllParameters.size()));
  fEffectParameters.push_back(count);
  for (int level = 0; level < count; ++level) {
    if (!parameter.factors.empty() && !fpTables->EffectLevels(parameter.levels, modelEffect, level))
      return false;
    AppendParameter(parameter, centre, scale);
  }
  return AppendCovariateTerms(parameter);
}

// Closes the range of one model effect's terms.
bool TavoModel::AppendCovariateTerms(const OrvRegrParameter& parameter) {
  for (std::size_t c = 0; c < parameter.covariates.size(); ++c) {
    const std::size_t column = static_cast<std::size_t>(parameter.covariates[c]);
    if (column >= fPatternLayout.covariateOffset.size() || fPatternLayout.covariateOffset[column] < 0)
      return false;
    fCovariateTerms.push_back({fPatternLayout.covariateOffset[column], fDataLayout.covariateOffset[column],
                               parameter.multiplicities[c]});
  }
  fFirstTerm.push_back(fCovariateTerms.size());
  return true;
}

void TavoModel::RepeatForOtherLogits() {
  fAllParameters.reserve(fBasicParameters.size() * static_cast<std::size_t>(fNEquations));
  for (std::size_t j = 1; j < static_cast<std::size_t>(fNEquations); ++j) {
    for (const OrvRegrParameter& basic : fBasicParameters) {
      fAllParameters.push_back(basic);
      fAllParameters.back().targetCategory = fCategories[j];
    }
  }
}

void TavoModel::AllocateMatrices() {
  fpXPrimeX = std::make_unique<MCSymMatrix>(BasicParameterCount());
  fpSRSCentre.reset();
  if (!fpXPrimeX->IsValidMatrix()) {
    FailWithCount(ParameterCount(), 0);
    return;
  }
  if (fSettings.NeedsSRS()) {
    fpSRSCentre = std::make_unique<MCSymMatrix>(ParameterCount());
    // A row has one entry per effect and logit at most: with much fewer entries than columns it is cheaper to
    // touch only their pairs.
    fbSRSBySparseRows = 2 * fNEffects <= BasicParameterCount();
    if (!fpSRSCentre->IsValidMatrix() || !fSRSRows.SetLength(fbSRSBySparseRows ? 0 : ParameterCount())) {
      fpSRSCentre.reset();
      FailWithCount(ParameterCount(), 0);
      return;
    }
  }
  if (!fClassification.SetNRowsCols(CategoryCount(), CategoryCount())) FailWithCount(ParameterCount(), 0);
}

bool TavoModel::GetEffectParameters(int effect, int& first, int& count) const {
  const int listed = effect - fNIntercepts;
  if (effect < 0 || listed >= static_cast<int>(fFirstParameter.size())) return false;
  first = listed < 0 ? 0 : fFirstParameter[static_cast<std::size_t>(listed)];
  count = listed < 0 ? 1 : fEffectParameters[static_cast<std::size_t>(listed)];
  return true;
}

OrvStatus TavoModel::SetEstimates(const std::vector<double>& estimates, const MCSymMatrix& hessianInverse) {
  if (fCancel.IsCancelled()) return Fail(StatusCode::kCancelled);
  if (!fbStructureReady || static_cast<int>(estimates.size()) != fNAllNonRedundant ||
      hessianInverse.GetNRows() != fNAllNonRedundant) {
    return Fail(StatusCode::kUserError);
  }
  std::size_t next = 0;
  for (int k = 0; k < ParameterCount(); ++k) {
    if (fAllBits.IsIn(k)) fEstimates[static_cast<std::size_t>(k)] = estimates[next++];
  }
  fTransformedEstimates = fEstimates;
  fpHessianGI = std::make_unique<MCSymMatrix>();
  if (!hessianInverse.Expand(fAllBits, *fpHessianGI)) {
    fpHessianGI.reset();
    return FailWithCount(ParameterCount(), 0);
  }
  MCMathFun::TransformParameters(fEstimates, fParameterCentres, fParameterScales, fNEquations, fNIntercepts);
  return fStatus;
}

void TavoModel::SetCaseCounts(double sampleSize, double populationTotal) {
  fSampleSize = sampleSize;
  fPopulationTotal = populationTotal;
}

}  // namespace tavo
