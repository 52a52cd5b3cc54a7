// Linearisation (Binder 1983): to first order the estimates differ from the population's by G times the score
// totals, G being the inverse information, so their covariance is that of a total, which the design knows how
// to estimate, between two G.
#include "component/inference/inference.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "component/design/sample_design.h"
#include "component/estimation/model.h"
#include "component/inference/effect_contrasts.h"
#include "component/numerics/distributions.h"
#include "component/numerics/machine_constants.h"
#include "component/numerics/math_functions.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;
using MCCommonMath::MCBitSet;
using MCCommonMath::MCDistFun;
using MCCommonMath::MCMathFun;
using MCCommonMath::MCMV;
using MCCommonMath::MCPower;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;

namespace {

/// Relative to a unit diagonal: what is below it in M is rounding.
constexpr double kDependenceTolerance = 1e-12;

/// Of an element of G M G, beside those that grow with its sums.
constexpr double kRoundings = 16.0;

/// The packed covariance of the score totals, or null when the design has none.
const std::vector<double>* CentralMatrix(const SampleDesign& design) {
  const DesignNode* root = design.Root();
  return root == nullptr || root->Covariances() == nullptr ? nullptr : root->Covariances()->Block(0);
}

/// The variance over that of a simple random sample of as many cases (Kish 1965).
double DesignEffect(double standardError, const std::vector<double>& underSRS, std::size_t parameter) {
  if (underSRS.empty() || !(underSRS[parameter] > 0.0)) return MCMV::gMissingValue;
  const double ratio = standardError / underSRS[parameter];
  return ratio * ratio;
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
      fBasis(model),
      fNDegFreedom(settings.DegreesOfFreedom(design.UnitCount(0), design.StrataCount(0))) {
  fTPercentile = MCDistFun::IdfT(0.5 * settings.Confidence() + 0.5, fNDegFreedom);
}

TavoInference::~TavoInference() = default;

/// G M G in the basis. Null when memory ran out.
TavoInference::SymMatrixPtr TavoInference::InBasis(const std::vector<double>& central) const {
  auto result = std::make_unique<MCSymMatrix>();
  if (fModel.PreciseFit() == nullptr) {
    return fModel.HessianGI()->ComputeGMG(central, *result) ? std::move(result) : nullptr;
  }
  // The scores were summed where the information is the identity.
  if (!result->SetNRows(fBasis.Size())) return nullptr;
  result->AsVector() = central;
  return result;
}

/// A covariance in the basis on the scale of the data, with one block per logit. Null when memory ran out.
TavoInference::SymMatrixPtr TavoInference::OnDataScale(const MCSymMatrix& inBasis) const {
  auto result = std::make_unique<MCSymMatrix>(inBasis);
  bool isDone = result->IsValidMatrix();
  if (fModel.PreciseFit() == nullptr) {
    isDone = isDone && result->TransformParameterMatrix(fModel.Centres(), fModel.Scales(),
                                                        fModel.EquationCount(), fModel.InterceptCount());
  } else {
    MCRectMatrix rows;
    isDone = isDone && rows.SetNRowsCols(fModel.ParameterCount(), fBasis.Size());
    for (int i = 0; isDone && i < fModel.ParameterCount(); ++i) {
      const std::vector<double> u = RowOfParameter(i);
      std::copy(u.begin(), u.end(), rows.AsVector().begin() + static_cast<std::ptrdiff_t>(i) * fBasis.Size());
    }
    isDone = isDone && inBasis.ComputeRSRTrans(rows, *result);
  }
  return isDone && result->SetNBlocks(fModel.EquationCount()) ? std::move(result) : nullptr;
}

/// A parameter as a row in the basis; 0 for a redundant one.
std::vector<double> TavoInference::RowOfParameter(int parameter) const {
  if (!fModel.AllBits().IsIn(parameter))
    return std::vector<double>(static_cast<std::size_t>(fBasis.Size()), 0.0);
  std::vector<double> row(static_cast<std::size_t>(fModel.ParameterCount()), 0.0);
  row[static_cast<std::size_t>(parameter)] = 1.0;
  return fBasis.Transform(row);
}

/// How far off G M G is. Each element of M is a sum over the units, off by roundings of the geometric mean of
/// its diagonal elements, and the products with G add up as many again as there are parameters.
void TavoInference::SetRounding(const std::vector<double>& central, int units) {
  const int size = fBasis.Size();
  std::vector<double> ofM;
  for (int j = 0; j < size; ++j)
    ofM.push_back(std::sqrt(std::abs(central[MCSymMatrix::Position(j, j)])));
  std::vector<double> deviations = ofM;
  if (fModel.PreciseFit() == nullptr) {
    for (int i = 0; i < size; ++i) {
      double sum = 0.0;
      for (int j = 0; j < size; ++j)
        sum += std::abs(fModel.HessianGI()->GetElem(i, j)) * ofM[static_cast<std::size_t>(j)];
      deviations[static_cast<std::size_t>(i)] = sum;
    }
  }
  const double roundings = kRoundings + size + std::sqrt(static_cast<double>(units));
  fBasis.SetRounding(std::move(deviations), roundings * MCPower::gMachineEpsilon);
}

/// By parameter, negative for a negative variance.
std::vector<double> TavoInference::StandardErrors(const MCSymMatrix& inBasis) const {
  std::vector<double> errors;
  for (int i = 0; i < fModel.ParameterCount(); ++i) {
    const bool isRedundant = !fModel.AllBits().IsIn(i);
    errors.push_back(isRedundant ? 0.0 : fBasis.SignedDeviation(inBasis, RowOfParameter(i)));
  }
  return errors;
}

OrvStatus TavoInference::ComputePECovar(const SampleDesign& design) {
  if (!fModel.IsBuilt()) return OrvStatus::Error(StatusCode::kModelNotBuilt);
  const std::vector<double>* central = CentralMatrix(design);
  if (central == nullptr || fModel.HessianGI() == nullptr) return OrvStatus::Error(StatusCode::kUserError);

  fpInBasis = InBasis(*central);
  if (fpInBasis) fpPECovar = OnDataScale(*fpInBasis);
  if (!fpPECovar) return OutOfMemory(fModel.ParameterCount());
  SetRounding(*central, design.UnitCount(0));
  fStandardErrors = StandardErrors(*fpInBasis);
  const OrvStatus status = CheckCovariance(*central);
  const bool areAllZero =
      status.Code() == StatusCode::kVarianceZero || status.Code() == StatusCode::kVarianceZeroSomeNegative;
  if (areAllZero) fStatus = status;  // nothing can be tested
  if (status.IsOK() && fCancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);
  return status;
}

/// Takes negative variances, and those that rounding may have made, out of the covariance, and tells the one
/// warning that says most: without any variance nothing can be tested; a negative one makes its own parameter
/// useless; a singular covariance spoils joint tests alone.
OrvStatus TavoInference::CheckCovariance(const std::vector<double>& central) {
  int positive = 0;
  fBadVariances.Resize(fModel.ParameterCount(), false);
  for (int i = 0; i < fModel.ParameterCount(); ++i) {
    double& error = fStandardErrors[static_cast<std::size_t>(i)];
    fBadVariances.Set(i, error < 0.0);
    error = std::max(error, 0.0);
    positive += error > 0.0 ? 1 : 0;
    for (int j = 0; error == 0.0 && j < fModel.ParameterCount(); ++j)
      fpPECovar->SetElem(i, j, 0.0);
  }
  const int negative = fBadVariances.InSet();
  if (positive == 0 && negative < 1) return OrvStatus::Warning(StatusCode::kVarianceZero);
  if (positive == 0) return OrvStatus::Warning(StatusCode::kVarianceZeroSomeNegative).SetInteger(0, negative);
  if (negative > 0) return OrvStatus::Warning(StatusCode::kNegativeVariance).SetInteger(0, negative);

  // With fewer units minus strata than parameters M can't have full rank, however regular V looks after
  // rounding: so the rank of M decides where V itself doesn't show it.
  MCBitSet all(fBasis.Size());
  if (fBasis.Size() > 0) all.SetRange(0, fBasis.Size() - 1, true);
  const MCBitSet& inBasis = fModel.PreciseFit() == nullptr ? fModel.AllBits() : all;
  bool isSingular = positive < fModel.AllNonRedundantCount();
  if (!isSingular && !fpInBasis->IsSafelyRegular(inBasis)) {
    MCSymMatrix work;
    isSingular = work.CheckMDependent(fBasis.Size(), central, inBasis, kDependenceTolerance) > 0;
  }
  return isSingular ? OrvStatus::Warning(StatusCode::kDesignCovarianceSingular) : OrvStatus();
}

OrvStatus TavoInference::ComputePECovarSRS(bool useDesignAsSRS) {
  if (!fModel.IsBuilt()) return OrvStatus::Error(StatusCode::kModelNotBuilt);
  if (useDesignAsSRS) {  // every design effect is then exactly 1, which two computations would miss by
                         // rounding
    if (!fpInBasis) return OrvStatus();
    fpInBasisSRS = std::make_unique<MCSymMatrix>(*fpInBasis);
    fpPECovarSRS = std::make_unique<MCSymMatrix>(*fpPECovar);
    fStandardErrorsSRS = fStandardErrors;
    const bool isDone = fpInBasisSRS->IsValidMatrix() && fpPECovarSRS->IsValidMatrix();
    return isDone ? OrvStatus() : OutOfMemory(fModel.ParameterCount());
  }
  if (fModel.SRSCentre() == nullptr || fModel.HessianGI() == nullptr) return OrvStatus();

  fpInBasisSRS = InBasis(fModel.SRSCentre()->AsVectorConst());
  if (fpInBasisSRS) fpPECovarSRS = OnDataScale(*fpInBasisSRS);
  if (!fpPECovarSRS) return OutOfMemory(fModel.ParameterCount());
  fStandardErrorsSRS = StandardErrors(*fpInBasisSRS);
  const bool allZero = std::none_of(fStandardErrorsSRS.begin(), fStandardErrorsSRS.end(),
                                    [](double error) { return error > 0.0; });
  return allZero ? OrvStatus::Warning(StatusCode::kSRSVarianceZero) : OrvStatus();
}

OrvStatus TavoInference::ComputeParamStats(std::vector<OrvParamStats>& rows) const {
  const int count = fModel.AllBits().Size();
  if (!fpPECovar || fpPECovar->GetNRows() != count || rows.size() != static_cast<std::size_t>(count)) {
    return OrvStatus::Error(StatusCode::kUserError);
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    OrvParamStats& row = rows[i];
    if (row.redundant) {
      SetStatisticsMissing(row);
      continue;
    }
    row.standardError = fStandardErrors[i];
    row.negativeVariance = fBadVariances.IsIn(static_cast<int>(i));
    FillTest(row);
    row.designEffect = DesignEffect(row.standardError, fStandardErrorsSRS, i);
  }
  return OrvStatus();
}

void TavoInference::TestContrast(int logit, const std::vector<double>& row, double& estimate,
                                 double& standardError) const {
  std::vector<double> all(static_cast<std::size_t>(fModel.ParameterCount()), 0.0);
  std::copy(row.begin(), row.end(), all.begin() + static_cast<std::ptrdiff_t>(row.size()) * logit);
  const std::vector<double> u = fBasis.Transform(all);
  estimate = MCMathFun::DDot(fBasis.Size(), u, 0, 1, fBasis.Estimates(), 0, 1);
  standardError = fpInBasis ? std::max(0.0, fBasis.SignedDeviation(*fpInBasis, u)) : MCMV::gMissingValue;
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
