#include "component/run/algorithm.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <stdexcept>

#include "component/design/sample_design.h"
#include "component/estimation/accum_stats.h"
#include "component/numerics/missing_value.h"
#include "component/run/pattern_evaluator.h"
#include "component/run/pattern_tabulator.h"

namespace tavo {

using MCCommonMath::MCMV;

namespace {

// A subpopulation code read from a record is the wanted one within this distance: a file that is scored may
// hold codes that were computed.
constexpr double kCodeTolerance = 0.1;

bool IsSubsetOf(const std::vector<int>& part, const std::vector<int>& whole) {
  return std::all_of(part.begin(), part.end(), [&](int column) {
    return std::find(whole.begin(), whole.end(), column) != whole.end();
  });
}

}  // namespace

TavoAlgorithm::TavoAlgorithm(const TavoCompSettings& settings)
    : fSettings(settings),
      fFactorTables(settings.Factors(), settings.FactorSizes(), settings.WeightVar(), settings.Dependent(),
                    settings.DependentCategories()),
      fCancel(settings.StopProcessor()),
      fModel(settings, fFactorTables, fPatternExtractor, fDataExtractor, fCancel),
      fConstFindings(settings.ContDesignVars().size()) {}

TavoAlgorithm::~TavoAlgorithm() = default;

// An error ends the run, so there is one; a warning stays in the list, once, as each pass may meet it again.
void TavoAlgorithm::Merge(const OrvStatus& status) {
  if (status.IsError()) {
    fStatus = status;
  } else if (status.IsWarning() &&
             std::find(fStatusList.begin(), fStatusList.end(), status) == fStatusList.end()) {
    fStatusList.push_back(status);
  }
}

// ---- first pass ----

// False when an effect names a column that isn't a factor or covariate of the settings.
bool TavoAlgorithm::SetUpEffects() {
  const std::size_t intercepts = fSettings.HasIntercept() ? 1 : 0;
  const std::size_t count = fSettings.Effects().size() + intercepts;
  std::vector<std::vector<int>> factors(count);
  std::vector<std::vector<int>> covariates(count);
  std::vector<std::vector<int>> powers(count);
  std::vector<int> nestingLevels;
  fUsedCovariates.clear();
  for (std::size_t e = intercepts; e < count; ++e) {
    const OrvModelEffect& effect = fSettings.Effects()[e - intercepts];
    effect.Factors(factors[e], nestingLevels);
    effect.Covariates(covariates[e], powers[e]);
    fUsedCovariates.insert(fUsedCovariates.end(), covariates[e].begin(), covariates[e].end());
  }
  if (!IsSubsetOf(fUsedCovariates, fSettings.Covariates())) return false;
  if (!fFactorTables.SetEffects(factors, fDataExtractor.FactorOffsets())) return false;
  fFactorTables.SetEffectCovariates(std::move(covariates), std::move(powers));
  fFactorTables.SetCovariates(fSettings.Covariates());
  return true;
}

OrvStatus TavoAlgorithm::ProcessData(MCCommon::RecordIterator& iterator) {
  OrvStatus status;
  if (fbFactorTableFilled) {
    status = OrvStatus::Error(StatusCode::kDataProcessedTwice);
  } else {
    // A row of a pattern needs no factors: the pattern knows its parameters.
    const TavoCompSettings& s = fSettings;
    fPatternExtractor.Set(s.Dependent(), {}, s.Covariates(), s.WeightVar());
    fDataExtractor.Set(s.Dependent(), s.Factors(), s.Covariates(), s.WeightVar());
    fScoringRow.resize(static_cast<std::size_t>(fDataExtractor.Size()));
    if (SetUpEffects()) {
      fpPatternTabulator =
          std::make_unique<TavoPatternTabulator>(fSettings, fPatternExtractor, fDataExtractor, fCancel);
      status = fpPatternTabulator->FillFactorTables(iterator, fFactorTables);
    } else {
      status = OrvStatus::Error(StatusCode::kUserError);
    }
  }
  Merge(status);
  if (fStatus.IsError()) return fStatus;
  fMeanValues = fFactorTables.CovariateMeans();
  fPatternExtractor.SetWeightUnit(fFactorTables.WeightUnit());
  fDataExtractor.SetWeightUnit(fFactorTables.WeightUnit());
  fbFactorTableFilled = true;
  return status;
}

// ---- the run ----

OrvStatus TavoAlgorithm::BuildModel(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint) {
  if (fbModelBuilt) return OrvStatus::Error(StatusCode::kModelBuiltTwice);
  if (fStatus.IsError()) return fStatus;
  // The door of the component: nothing below it throws anything but want of memory, and nothing above it may
  // meet an exception.
  try {
    RunStages(iterator, joint);
  } catch (const std::bad_alloc&) {
    Merge(OutOfMemory(fModel.ParameterCount()));
  } catch (const std::length_error&) {
    Merge(OutOfMemory(fModel.ParameterCount()));
  }
  fpPatternTabulator.reset();
  if (!fStatus.IsError() && fCancel.IsCancelled()) Merge(OrvStatus::Error(StatusCode::kCancelled));
  if (fStatus.IsError()) return fStatus;
  fbModelBuilt = true;
  if (!fStatusList.empty()) fStatus = fStatusList.back();
  return fStatus;
}

void TavoAlgorithm::RunStages(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint) {
  ProcessData(iterator);
  if (MayGoOn()) SetUpModel();
  if (MayGoOn()) ReduceToPatterns(iterator);
  if (MayGoOn()) Estimate();
  fpPatternTabulator.reset();  // the design pass builds a table of the same size
  if (MayGoOn()) ComputeVariances(iterator, joint);
}

void TavoAlgorithm::SetUpModel() {
  Merge(fModel.SetupDependent());
  if (MayGoOn()) Merge(fModel.BuildParameters(fFactorTables.AssignParameters()));
}

// Second pass; then the redundant columns and the start values.
void TavoAlgorithm::ReduceToPatterns(MCCommon::MultiPassRecordIter& iterator) {
  iterator.Reset();  // a stream that failed says so when it is read
  Merge(fpPatternTabulator->CreatePatterns(iterator, fFactorTables, fModel));
  if (MayGoOn()) Merge(fpPatternTabulator->ReplayPatterns(fModel));
  if (MayGoOn()) Merge(fModel.FindRedundancies());
  if (MayGoOn() && !fModel.IsRedundancyCertain()) {
    Merge(fpPatternTabulator->ReplayPatternsPrecisely(fModel));
    if (MayGoOn()) Merge(fModel.FindRedundancies());
  }
  if (MayGoOn()) Merge(fModel.GetInitialEstimates(fEstimates));
}

void TavoAlgorithm::Estimate() {
  TavoAccumStats accumulator(fSettings, fModel.BasicNonRedundantCount(), fModel.CategoryCount(), fEstimates);
  if (!accumulator.IsValid()) {
    Merge(OutOfMemory(static_cast<int>(fEstimates.size())));
    return;
  }
  TavoPatternEvaluator evaluator(*fpPatternTabulator, accumulator, fModel);
  fpOptimizer =
      std::make_unique<TavoOptimizer>(fSettings, fModel.FitLayout(), evaluator, fEstimates, fCancel,
                                      fSettings.GetProgressListener(), fSettings.HistoryFrequency());
  Merge(fpOptimizer->Estimate());
  if (MayGoOn()) Merge(fModel.SetEstimates(fpOptimizer->Estimates(), fpOptimizer->Hessian()));
  std::unique_ptr<TavoPreciseFit> pPreciseFit = fpOptimizer->TakePreciseFit();
  if (MayGoOn() && pPreciseFit != nullptr) Merge(fModel.SetPreciseFit(std::move(pPreciseFit)));
  fpOptimizer->ReleaseHessian();
}

// ---- the variance stage ----

void TavoAlgorithm::ComputeVariances(MCCommon::MultiPassRecordIter& iterator, MCOrv::JointInclProbs* joint) {
  if (fModel.AllNonRedundantCount() == 0) return;
  // Each large matrix of the model goes as soon as nobody needs it: several of the square of the parameters
  // may not stand in memory at once.
  SampleDesign design;
  Merge(FeedDesign(iterator, design, joint));
  if (MayGoOn()) Merge(fModel.ScaleSRSCovariance());
  if (MayGoOn()) ComputeCovariances(design);
  fModel.ReleaseSRSCentre();
  fModel.ReleaseHessianGI();
  fModel.ReleaseXPrimeX();
}

// Third pass. The table of units lives in here only.
OrvStatus TavoAlgorithm::FeedDesign(MCCommon::MultiPassRecordIter& iterator, SampleDesign& design,
                                    MCOrv::JointInclProbs* joint) {
  const bool needsJoint = fSettings.IsFirstStageUnequalProbability();
  if (needsJoint && joint == nullptr) return OrvStatus::Error(StatusCode::kUserError);
  if (!needsJoint) joint = nullptr;
  TavoDataTabulator tabulator(fSettings, fDataExtractor, fCancel);
  iterator.Reset();
  OrvStatus status = tabulator.TabulateDesign(iterator);
  TakeFindings(tabulator);
  if (status.IsError()) return status;

  const int parameters = fModel.ScoreCount();
  if (!design.BuildTree(fSettings.Stages(), parameters)) return OrvStatus::Error(StatusCode::kUserError);
  if (!design.SetMatrixBlocks({parameters}, {0})) return OutOfMemory(parameters);
  status = fSettings.HasClustersInLastStage() ? tabulator.FeedDesignByUnit(fModel, design, joint)
                                              : tabulator.FeedDesignByRecord(fModel, design, joint);
  TakeFindings(tabulator);
  return status;
}

void TavoAlgorithm::TakeFindings(const TavoDataTabulator& tabulator) {
  fConstFindings = tabulator.ConstFindings();
  fPopulationKeys = tabulator.PopulationKeys();
  for (const OrvStatus& status : tabulator.StatusList())
    Merge(status);
}

void TavoAlgorithm::ComputeCovariances(const SampleDesign& design) {
  fNStrata = design.StrataCount(0);
  fNClusters = design.UnitCount(0);
  fpInference = std::make_unique<TavoInference>(fSettings, fModel, design, fCancel);
  Merge(fpInference->ComputePECovar(design));
  if (MayGoOn() && fSettings.NeedsSRS()) {
    // Each case its own unit, drawn from one stratum with equal probabilities: the design is the comparison.
    const bool isItselfSRS = fSettings.IsSingleStageOfEqualProbability() && fNStrata == 1 &&
                             static_cast<double>(fNClusters) == fFactorTables.SampleSize();
    Merge(fpInference->ComputePECovarSRS(isItselfSRS));
  }
  fModel.ReleaseSRSCentre();
  fModel.ReleaseHessianGI();
  if (MayGoOn()) Merge(fpInference->PrepareTests(true));
}

// ---- what warnings are about ----

bool TavoAlgorithm::WarningDetail(const OrvStatus& status, int& stage, std::vector<int>& keyValues) const {
  keyValues.clear();
  switch (status.Code()) {
    case StatusCode::kInconsistentDesignValue:
    case StatusCode::kMissingInclusionProb:
      return ConstantDetail(status.Integer(1), stage, keyValues);
    case StatusCode::kPopulationBelowSample:
      return PopulationDetail(status.Integer(1), stage, keyValues);
    default:
      return false;
  }
}

bool TavoAlgorithm::ConstantDetail(int constantVariable, int& stage, std::vector<int>& keyValues) const {
  std::vector<int> stages;
  std::vector<int> positions;
  const auto index = static_cast<std::size_t>(constantVariable);
  if (!fSettings.ConstantVariableMap(stages, positions) || index >= stages.size()) return false;
  stage = stages[index];
  if (index < fConstFindings.size() && fConstFindings[index].reported) {
    const std::vector<std::int32_t>& key = fConstFindings[index].key.Values();
    keyValues.assign(key.begin(), key.begin() + positions[index]);
  }
  return true;
}

// The nodes of the design tree, outermost first: a stage's strata, then its clusters; records are the units
// of a last stage without clusters. A population belongs to the stratum that leads to its clusters.
bool TavoAlgorithm::PopulationDetail(int node, int& stage, std::vector<int>& keyValues) const {
  int nodes = 0;
  std::size_t keyVariables = 0;
  for (const DesignStage& each : fSettings.Stages()) {
    keyVariables += each.strata.size();
    nodes += each.strata.empty() ? 0 : 1;
    nodes += 1;
    if (node < nodes) {
      stage = each.stageNumber;
      if (fPopulationKeys.empty()) return true;
      const std::vector<std::int32_t>& key = fPopulationKeys.front().Values();
      keyValues.assign(key.begin(), key.begin() + static_cast<std::ptrdiff_t>(keyVariables));
      return true;
    }
    keyVariables += each.clusters.size();
  }
  return false;
}

// ---- scoring ----

bool TavoAlgorithm::LacksCovariate(const MCCommon::Record& record) const {
  return std::any_of(fUsedCovariates.begin(), fUsedCovariates.end(), [&](int column) {
    return !std::isfinite(record[column]) || MCCommonMath::IsMissing(record[column]);
  });
}

OrvStatus TavoAlgorithm::Predict(const MCCommon::Record& record, std::vector<int>& categories,
                                 std::vector<double>& probabilities, int& category) {
  category = 0;
  if (fCancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);
  if (!fbModelBuilt) return OrvStatus::Error(StatusCode::kModelNotBuilt);
  if (static_cast<std::size_t>(record.Size()) < fSettings.VariableTypes().size()) {
    return OrvStatus::Error(StatusCode::kShortRecord);
  }
  categories = fModel.Categories();
  probabilities.assign(categories.size(), MCMV::gMissingValue);
  const int subpop = fSettings.SubpopVar();
  if (subpop >= 0 && !(std::abs(record[subpop] - fSettings.SubpopValue()) < kCodeTolerance)) {
    return OrvStatus::Error(StatusCode::kOutsideSubpopulation);
  }
  if (LacksCovariate(record)) return OrvStatus();  // no error: a file that is scored may have gaps
  fDataExtractor.Extract(record.GetAll(), fScoringRow.data());
  return fModel.PredictCategory(fScoringRow.data(), probabilities, category);
}

}  // namespace tavo
