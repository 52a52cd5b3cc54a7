#include "component/inference/inference.h"

#include <cmath>

#include "component/design/sample_design.h"
#include "component/estimation/model.h"
#include "component/inference/effect_contrasts.h"
#include "component/numerics/distributions.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCBitSet;
using MCCommonMath::MCDistFun;
using MCCommonMath::MCMV;
using MCCommonMath::MCSymMatrix;

namespace {

constexpr double kDependenceTolerance = 1e-12;

/// The packed covariance of the score totals, or null when the design has none.
const std::vector<double>* CentralMatrix(const SampleDesign& design) {
  const DesignNode* root = design.Root();
  return root == nullptr || root->Covariances() == nullptr ? nullptr : root->Covariances()->Block(0);
}

double DesignEffect(const MCSymMatrix* srs, int parameter, double variance) {
  if (srs == nullptr) return MCMV::gMissingValue;
  const double reference = srs->GetElem(parameter, parameter);
  return !IsMissing(reference) && reference > 0.0 ? variance / reference : MCMV::gMissingValue;
}

void SetStatisticsMissing(OrvParamStats& row) {
  row.standardError = row.confidenceLower = row.confidenceUpper = MCMV::gMissingValue;
  row.t = row.df = row.significance = row.designEffect = MCMV::gMissingValue;
}

}  // namespace

TavoInference::TavoInference(const TavoCompSettings& settings, const TavoModel& model,
                             const SampleDesign& design, const OrvCancelInfo& cancel)
    : fSettings(settings),
      fModel(model),
      fCancel(cancel),
      fNDegFreedom(settings.DegreesOfFreedom(design.UnitCount(0), design.StrataCount(0))) {
  fTPercentile = MCDistFun::IdfT(0.5 * settings.Confidence() + 0.5, fNDegFreedom);
}

TavoInference::~TavoInference() = default;

OrvStatus TavoInference::OutOfMemory() const {
  return OrvStatus::Error(StatusCode::kTooManyParameters).SetInteger(0, fModel.ParameterCount());
}

/// G M G on the scale of the data, with one block per logit. Null when memory ran out.
TavoInference::SymMatrixPtr TavoInference::ComputeSandwich(const std::vector<double>& central) const {
  auto result = std::make_unique<MCSymMatrix>();
  const bool isDone = fModel.HessianGI()->ComputeGMG(central, *result) &&
                      result->TransformParameterMatrix(fModel.Centres(), fModel.Scales(),
                                                       fModel.EquationCount(), fModel.InterceptCount()) &&
                      result->SetNBlocks(fModel.EquationCount());
  return isDone ? std::move(result) : nullptr;
}

OrvStatus TavoInference::ComputePECovar(const SampleDesign& design) {
  if (!fModel.IsBuilt()) return OrvStatus::Error(StatusCode::kModelNotBuilt);
  const std::vector<double>* central = CentralMatrix(design);
  if (central == nullptr || fModel.HessianGI() == nullptr) return OrvStatus::Error(StatusCode::kUserError);

  fpPECovar = ComputeSandwich(*central);
  if (!fpPECovar) return OutOfMemory();
  const OrvStatus status = CheckCovariance(*central);
  const bool areAllZero =
      status.Code() == StatusCode::kVarianceZero || status.Code() == StatusCode::kVarianceZeroSomeNegative;
  if (areAllZero) fStatus = status;  // nothing can be tested
  if (status.IsOK() && fCancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);
  return status;
}

OrvStatus TavoInference::CheckCovariance(const std::vector<double>& central) {
  const MCBitSet& kept = fModel.AllBits();
  bool allZero = false;
  int rankFlag = 0;
  if (!fModel.HessianGI()->CheckGMG(central, kept, *fpPECovar, fBadVariances, allZero, rankFlag,
                                    fModel.InterceptCount())) {
    fpPECovar.reset();
    return OutOfMemory();
  }

  const int negative = fBadVariances.InSet();
  if (allZero && negative < 1) return OrvStatus::Warning(StatusCode::kVarianceZero);
  if (allZero) return OrvStatus::Warning(StatusCode::kVarianceZeroSomeNegative).SetInteger(0, negative);
  if (negative > 0) return OrvStatus::Warning(StatusCode::kNegativeVariance).SetInteger(0, negative);

  bool isSingular = rankFlag > 0;
  if (rankFlag == 0) {
    MCSymMatrix work;
    isSingular = work.CheckMDependent(fModel.ParameterCount(), central, kept, kDependenceTolerance) > 0;
  }
  return isSingular ? OrvStatus::Warning(StatusCode::kDesignCovarianceSingular) : OrvStatus();
}

OrvStatus TavoInference::ComputePECovarSRS(bool useDesignAsSRS) {
  if (!fModel.IsBuilt()) return OrvStatus::Error(StatusCode::kModelNotBuilt);
  if (useDesignAsSRS) {
    if (fpPECovar) fpPECovarSRS = std::make_unique<MCSymMatrix>(*fpPECovar);
    return fpPECovarSRS && !fpPECovarSRS->IsValidMatrix() ? OutOfMemory() : OrvStatus();
  }
  if (fModel.SRSCentre() == nullptr || fModel.HessianGI() == nullptr) return OrvStatus();

  const std::vector<double>& central = fModel.SRSCentre()->AsVectorConst();
  fpPECovarSRS = ComputeSandwich(central);
  if (!fpPECovarSRS) return OutOfMemory();
  MCBitSet negative;
  bool allZero = false;
  int rankFlag = 0;
  if (!fModel.HessianGI()->CheckGMG(central, fModel.AllBits(), *fpPECovarSRS, negative, allZero, rankFlag,
                                    fModel.InterceptCount())) {
    fpPECovarSRS.reset();
    return OutOfMemory();
  }
  return allZero ? OrvStatus::Warning(StatusCode::kSRSVarianceZero) : OrvStatus();
}

OrvStatus TavoInference::ComputeParamStats(std::vector<OrvParamStats>& rows) const {
  const int count = fModel.AllBits().Size();
  if (!fpPECovar || fpPECovar->GetNRows() != count || rows.size() != static_cast<std::size_t>(count)) {
    return OrvStatus::Error(StatusCode::kUserError);
  }
  for (int i = 0; i < count; ++i) {
    OrvParamStats& row = rows[static_cast<std::size_t>(i)];
    if (row.redundant) {
      SetStatisticsMissing(row);
      continue;
    }
    const double variance = fpPECovar->GetElem(i, i);
    row.standardError = std::sqrt(variance);
    row.negativeVariance = fBadVariances.IsIn(i);
    FillTest(row);
    row.designEffect = DesignEffect(fpPECovarSRS.get(), i, variance);
  }
  return OrvStatus();
}

/// Confidence bounds and the test of one estimate from its standard error.
void TavoInference::FillTest(OrvParamStats& row) const {
  row.confidenceLower = row.confidenceUpper = MCMV::gMissingValue;
  if (!IsMissing(fTPercentile)) {
    row.confidenceLower = row.estimate - fTPercentile * row.standardError;
    row.confidenceUpper = row.estimate + fTPercentile * row.standardError;
  }
  row.df = fNDegFreedom;
  row.t = row.significance = MCMV::gMissingValue;
  if (!(row.standardError > 0.0)) return;
  row.t = row.estimate / row.standardError;
  const double tail = MCDistFun::CdfT(-std::abs(row.t), fNDegFreedom);
  if (!IsMissing(tail)) row.significance = 2.0 * tail;
}

}  // namespace tavo
