// Linearisation (Binder 1983): to first order the estimates differ from the population's by G times the score
// totals, G being the inverse information, so their covariance is that of a total, which the design knows how
// to estimate, between two G.
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

/// Relative to a unit diagonal: what is below it in M is rounding.
constexpr double kDependenceTolerance = 1e-12;

/// The packed covariance of the score totals, or null when the design has none.
const std::vector<double>* CentralMatrix(const SampleDesign& design) {
  const DesignNode* root = design.Root();
  return root == nullptr || root->Covariances() == nullptr ? nullptr : root->Covariances()->Block(0);
}

/// The variance over that of a simple random sample of as many cases (Kish 1965).
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

/// G M G on the scale of the data, with one block per logit. Null when memory ran out.
TavoInference::SymMatrixPtr TavoInference::ComputeSandwich(const std::vector<double>& central) const {
  // The scores were summed on the scale of the fit; the back-transformation comes last, because the products
  // keep more digits where columns are centred and of one size.
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
  if (!fpPECovar) return OutOfMemory(fModel.ParameterCount());
  const OrvStatus status = CheckCovariance(*central);
  const bool areAllZero =
      status.Code() == StatusCode::kVarianceZero || status.Code() == StatusCode::kVarianceZeroSomeNegative;
  if (areAllZero) fStatus = status;  // nothing can be tested
  if (status.IsOK() && fCancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);
  return status;
}

OrvStatus TavoInference::CheckCovariance(const std::vector<double>& central) {
  const MCBitSet& nonRedundant = fModel.AllBits();
  bool allZero = false;
  int rankFlag = 0;
  if (!fModel.HessianGI()->CheckGMG(central, nonRedundant, *fpPECovar, fBadVariances, allZero, rankFlag,
                                    fModel.InterceptCount())) {
    fpPECovar.reset();
    return OutOfMemory(fModel.ParameterCount());
  }

  // One warning, the one that says most: without any variance nothing can be tested; a negative one makes its
  // own parameter useless; a singular covariance spoils joint tests alone.
  const int negative = fBadVariances.InSet();
  if (allZero && negative < 1) return OrvStatus::Warning(StatusCode::kVarianceZero);
  if (allZero) return OrvStatus::Warning(StatusCode::kVarianceZeroSomeNegative).SetInteger(0, negative);
  if (negative > 0) return OrvStatus::Warning(StatusCode::kNegativeVariance).SetInteger(0, negative);

  // With fewer units minus strata than parameters M can't have full rank, however regular V looks after
  // rounding: so the rank of M decides where V itself doesn't show it.
  bool isSingular = rankFlag > 0;
  if (rankFlag == 0) {
    MCSymMatrix work;
    isSingular =
        work.CheckMDependent(fModel.ParameterCount(), central, nonRedundant, kDependenceTolerance) > 0;
  }
  return isSingular ? OrvStatus::Warning(StatusCode::kDesignCovarianceSingular) : OrvStatus();
}

OrvStatus TavoInference::ComputePECovarSRS(bool useDesignAsSRS) {
  if (!fModel.IsBuilt()) return OrvStatus::Error(StatusCode::kModelNotBuilt);
  if (useDesignAsSRS) {  // every design effect is then exactly 1, which two computations would miss by
                         // rounding
    if (fpPECovar) fpPECovarSRS = std::make_unique<MCSymMatrix>(*fpPECovar);
    return fpPECovarSRS && !fpPECovarSRS->IsValidMatrix() ? OutOfMemory(fModel.ParameterCount())
                                                          : OrvStatus();
  }
  if (fModel.SRSCentre() == nullptr || fModel.HessianGI() == nullptr) return OrvStatus();

  const std::vector<double>& central = fModel.SRSCentre()->AsVectorConst();
  fpPECovarSRS = ComputeSandwich(central);
  if (!fpPECovarSRS) return OutOfMemory(fModel.ParameterCount());
  MCBitSet negative;
  bool allZero = false;
  int rankFlag = 0;
  if (!fModel.HessianGI()->CheckGMG(central, fModel.AllBits(), *fpPECovarSRS, negative, allZero, rankFlag,
                                    fModel.InterceptCount())) {
    fpPECovarSRS.reset();
    return OutOfMemory(fModel.ParameterCount());
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
    const double variance = fpPECovar->GetElem(i, i);  // negative ones are 0 and marked, so the root exists
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
  // The lower tail of -|t| keeps its digits where 1 minus the tail of |t| has none left.
  const double tail = MCDistFun::CdfT(-std::abs(row.t), fNDegFreedom);
  if (!IsMissing(tail)) row.significance = 2.0 * tail;
}

}  // namespace tavo
