// The stages of the model, one after the other; what is done in each is in its parts.
#include "component/estimation/model.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

#include "component/estimation/factor_levels.h"
#include "component/estimation/hypothesis_rows.h"
#include "component/estimation/start_values.h"
#include "component/numerics/math_functions.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::MCMathFun;
using MCCommonMath::MCMV;
using MCCommonMath::PreciseColumn;

namespace {

// The parameters of all logits may number at most the whole part of the square root of 2147483647: the
// elements of a square matrix over them can be counted in 32 bits.
constexpr std::int32_t kParameterLimit = 46340;

}  // namespace

TavoModel::TavoModel(const TavoCompSettings& settings, OrvFactorTables& tables,
                     const OrvRecordExtractor& patternRow, const OrvRecordExtractor& dataRow,
                     const OrvCancelInfo& cancel)
    : fSettings(settings), fTables(tables), fPatternRow(patternRow), fDataRow(dataRow), fCancel(cancel) {}

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

// A step that a cancel ended early has left something incomplete, which nobody may go on with.
OrvStatus TavoModel::EndOfLongStep() {
  if (!fStatus.IsError() && fCancel.IsCancelled()) return Fail(StatusCode::kCancelled);
  return fStatus;
}

// ---- structure ----

OrvStatus TavoModel::SetupDependent() {
  assert(fStage == Stage::kNothing);
  fStatus = fResponse.Set(fTables.DependentCounts(), fSettings.DependentReference());
  if (!fStatus.IsError()) fStage = Stage::kResponse;
  return fStatus;
}

OrvStatus TavoModel::BuildParameters(int maxCount) {
  if (fStatus.IsError()) return fStatus;
  assert(fStage == Stage::kResponse);
  // Before any list or matrix exists, and in 64 bits.
  const std::int64_t count = static_cast<std::int64_t>(fResponse.LogitCount()) * maxCount;
  if (count > kParameterLimit) return FailWithCount(count, kParameterLimit);

  fParameters = OrvParameterList(fSettings.Effects(), HasIntercept(), fResponse, fTables, fCancel);
  if (EndOfLongStep().IsError()) return fStatus;
  fColumns =
      OrvDesignColumns(fParameters, fSettings.Effects(), fSettings.Covariates(), fPatternRow, fDataRow);
  if (AllocateMatrices().IsError()) return fStatus;
  fEstimates.assign(fParameters.All().size(), 0.0);
  fStage = Stage::kParameters;
  return fStatus;
}

// All that grows with the square of the parameters is asked for before the cases are read again.
OrvStatus TavoModel::AllocateMatrices() {
  fRedundancy = OrvRedundancy(BasicParameterCount());
  if (!fRedundancy.IsValid()) return FailWithCount(ParameterCount(), 0);
  if (fSettings.NeedsSRS()) {
    fpSRSCentre = std::make_unique<OrvSRSCentre>(ParameterCount(), EffectCount());
    if (!fpSRSCentre->IsValid()) {
      fpSRSCentre.reset();
      return FailWithCount(ParameterCount(), 0);
    }
  }
  if (!fClassification.SetNRowsCols(CategoryCount(), CategoryCount()))
    return FailWithCount(ParameterCount(), 0);
  return fStatus;
}

// ---- redundancies ----

// One entry for each effect: the matrix is the p by p one of the basic columns, as all logits share them.
bool TavoModel::AddPatternToXPrimeX(const double* patternRow, const std::vector<int>& parameters) {
  if (fCancel.IsCancelled()) return false;
  assert(fStage == Stage::kParameters && patternRow != nullptr);
  assert(parameters.size() == static_cast<std::size_t>(EffectCount()));
  fWorkValues.clear();
  for (std::size_t e = 0; e < parameters.size(); ++e)
    fWorkValues.push_back(fColumns.Value(patternRow, e, RowKind::kPattern));
  return fRedundancy.AddRow(parameters, fWorkValues, fColumns.Weight(patternRow, RowKind::kPattern));
}

bool TavoModel::AddBlockToXPrimeX(const TavoRowBlock& block) {
  if (fCancel.IsCancelled()) return false;
  assert(fStage == Stage::kParameters);
  return fRedundancy.AddBlock(block);
}

OrvStatus TavoModel::FindRedundancies() {
  assert(fStage == Stage::kParameters || !fbRedundancyCertain);
  if (!fRedundancy.HasRows()) return Fail(StatusCode::kDataNotProcessed);
  if (fbRedundancyCertain) {
    fbRedundancyCertain = fRedundancy.Find(fSettings.Tolerance(), fCancel);
  } else {
    fRedundancy.FindPrecisely(fSettings.Tolerance(), fCancel);
    fbRedundancyCertain = true;
  }
  // All logits have the same columns, so what is redundant in one is so in all.
  fAllBits = fRedundancy.BitsOfAllLogits(EquationCount());
  fLayout = {EquationCount(),
             HasIntercept(),
             fRedundancy.NonRedundant(Centres()),
             fRedundancy.NonRedundant(Scales()),
             {}};
  for (std::size_t k = 0; k < BasicParameters().size(); ++k) {
    if (BasicBits().IsIn(static_cast<int>(k)))
      fLayout.isIndicator.push_back(BasicParameters()[k].covariates.empty());
  }
  fStage = Stage::kRedundancies;
  return EndOfLongStep();
}

// ---- the fit ----

OrvStatus TavoModel::GetInitialEstimates(std::vector<double>& estimates) {
  assert(fStage == Stage::kRedundancies);
  estimates = StartValues(fResponse, fLayout);
  return fStatus;
}

void TavoModel::StartBlock(const std::vector<int>& parameters, BlockColumns which,
                           TavoRowBlock& block) const {
  const bool all = which == BlockColumns::kAll;
  fColumns.StartBlock(parameters, all ? fRedundancy.OwnIndices() : fRedundancy.CompressedIndices(), block);
}

OrvStatus TavoModel::SetEstimates(const std::vector<double>& estimates, const MCSymMatrix& hessianInverse) {
  if (fCancel.IsCancelled()) return Fail(StatusCode::kCancelled);
  assert(fStage == Stage::kRedundancies || fStage == Stage::kEstimates);
  assert(static_cast<int>(estimates.size()) == AllNonRedundantCount());
  assert(hessianInverse.GetNRows() == AllNonRedundantCount());
  std::size_t next = 0;
  for (int k = 0; k < ParameterCount(); ++k) {
    if (fAllBits.IsIn(k)) fEstimates[static_cast<std::size_t>(k)] = estimates[next++];
  }
  // Cases are scored on the internal scale, where columns are centred and sums keep their digits; people read
  // the scale of the data.
  fTransformedEstimates = fEstimates;
  fpHessianGI = std::make_unique<MCSymMatrix>();
  if (!hessianInverse.Expand(fAllBits, *fpHessianGI)) {
    fpHessianGI.reset();
    return FailWithCount(ParameterCount(), 0);
  }
  MCMathFun::TransformParameters(fEstimates, Centres(), Scales(), EquationCount(), InterceptCount());
  fpScorer =
      std::make_unique<OrvCaseScorer>(fResponse, fParameters, fColumns, fTables, fTransformedEstimates);
  fStage = Stage::kEstimates;
  return fStatus;
}

OrvStatus TavoModel::SetPreciseFit(std::unique_ptr<TavoPreciseFit> fit) {
  assert(fStage == Stage::kEstimates);
  assert(fit->factor.GetNRows() == AllNonRedundantCount());
  fpPreciseFit = std::move(fit);
  if (fpSRSCentre != nullptr) {
    fpSRSCentre = std::make_unique<OrvSRSCentre>(AllNonRedundantCount(), AllNonRedundantCount());
    if (!fpSRSCentre->IsValid()) {
      fpSRSCentre.reset();
      return FailWithCount(ParameterCount(), 0);
    }
  }
  return fStatus;
}

// ---- cases ----

void TavoModel::ComputeCaseScores(std::vector<double>& scores, const double* dataRow) {
  scores.assign(fParameters.All().size(), 0.0);
  AddCaseScores(scores, dataRow);
}

void TavoModel::AddCaseScores(std::vector<double>& sums, const double* dataRow) {
  if (fCancel.IsCancelled()) return;
  assert(fpScorer != nullptr);
  fpScorer->AddScores(dataRow, sums, fClassification, fpSRSCentre.get());
}

void TavoModel::AddPreciseCaseScores(PreciseColumn& sums, const double* dataRow) {
  if (fCancel.IsCancelled()) return;
  assert(fpScorer != nullptr && fpPreciseFit != nullptr);
  fpScorer->AddPreciseScores(dataRow, *fpPreciseFit, fRedundancy.CompressedIndices(), sums, fClassification,
                             fpSRSCentre.get());
}

OrvStatus TavoModel::ScaleSRSCovariance() {
  assert(fStage == Stage::kEstimates);
  // Of all valid records, those outside the subpopulation included: they belong to the sample.
  const double n = fTables.SampleSize();
  const double population = fTables.PopulationEstimate();
  const double unit = fDataRow.WeightUnit();
  if (fpSRSCentre != nullptr) fpSRSCentre->Scale(n, population, fSettings.GetSRSEstimator(), unit);
  for (double& count : fClassification.AsVector())
    count *= unit;
  if (fpScorer->WeightedCaseCount() == 0 || n == 0 || !(population > 0)) {
    return Fail(StatusCode::kEmptySubpopulation);
  }
  if (!fStatus.IsError()) fStage = Stage::kBuilt;
  return fStatus;
}

OrvStatus TavoModel::PredictCategory(const double* dataRow, std::vector<double>& probabilities,
                                     int& category) {
  category = 0;
  probabilities.assign(static_cast<std::size_t>(CategoryCount()), MCMV::gMissingValue);
  // A cancelled prediction is a missing one; the status of a cancelled run is its driver's to give.
  if (fCancel.IsCancelled()) return OrvStatus();
  assert(fpScorer != nullptr);
  int local = 0;
  if (fpScorer->Predict(dataRow, probabilities, local))
    category = Categories()[static_cast<std::size_t>(local)];
  return OrvStatus();
}

// For single rows, as odds ratios compare them; it may allocate.
bool TavoModel::FillDesignRow(std::vector<double>& row, const double* dataRow, bool standardise) const {
  if (fCancel.IsCancelled()) return false;
  assert(fStage >= Stage::kParameters);
  row.assign(fParameters.Basic().size(), 0.0);
  std::vector<int> parameters(static_cast<std::size_t>(EffectCount()), -1);
  const bool isKnown = fTables.ParameterIndices(dataRow, parameters);
  for (std::size_t e = 0; e < parameters.size(); ++e) {
    if (parameters[e] < 0) continue;
    const std::size_t k = static_cast<std::size_t>(parameters[e]);
    row[k] = standardise ? fColumns.Value(dataRow, e, RowKind::kData)
                         : fColumns.ParameterValue(dataRow, BasicParameters()[k], RowKind::kData);
  }
  return isKnown;
}

// ---- hypotheses ----

OrvStatus TavoModel::FactorLevels(int factor, int reference, bool isControl, std::vector<int>& levels,
                                  std::vector<double>& counts) const {
  const int column = fSettings.Factors()[static_cast<std::size_t>(factor)];
  const std::vector<double>& weights = fTables.FactorCounts(factor);
  return tavo::FactorLevels(weights, {column, reference, isControl}, levels, counts);
}

OrvStatus TavoModel::BuildHypothesisMatrix(const std::vector<TavoMatrixRow>& rows, MCRectMatrix& L,
                                           bool& isFull) const {
  return BuildHypothesisRows(rows, fParameters, fCancel, L, isFull);
}

}  // namespace tavo
