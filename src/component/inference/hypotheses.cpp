// The half of inference that tests hypotheses: which contrasts belong to what is asked, an effect, the whole
// model or what a user wrote, and whether they are estimable. What becomes of contrasts is OrvModelTests's.
#include "component/estimation/model.h"
#include "component/inference/effect_contrasts.h"
#include "component/inference/inference.h"
#include "component/inference/model_tests.h"

namespace tavo {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCRectMatrix;

namespace {

/// The numbers, from 1, of the set bits from the position `first` on.
std::vector<int> NumbersOf(const MCBitSet& bits, int first) {
  std::vector<int> numbers;
  for (const int position : bits.Members()) {
    if (position >= first) numbers.push_back(position + 1);
  }
  return numbers;
}

}  // namespace

OrvStatus TavoInference::PrepareTests(bool withEffects) {
  fpContrasts.reset();
  if (!fpPECovar) {
    if (!fStatus.IsError()) fStatus = OrvStatus::Error(StatusCode::kUserError);
    return OrvStatus::Error(StatusCode::kUserError);
  }
  // A failure stands against every later test: they are asked for one by one, long after this.
  auto contrasts = std::make_unique<EffectContrasts>(fModel, fCancel);
  const OrvStatus status = contrasts->Prepare(withEffects);
  if (status.IsError()) {
    fStatus = status;
    return status;
  }
  fpContrasts = std::move(contrasts);
  return status;
}

OrvModelTests TavoInference::ModelTests(TestType type, PAdjustMethod method) const {
  OrvModelTests tests(fBasis.Estimates(), *fpInBasis, fpInBasisSRS.get(), fNDegFreedom, &fBasis);
  tests.SetTestType(type);
  tests.SetPAdjustMethod(method);
  return tests;
}

// ---- effects ----

/// What stands against the test of any effect.
OrvStatus TavoInference::EffectTestStatus(int effect) const {
  if (fStatus.IsError()) return fStatus;
  if (!fpContrasts) return OrvStatus::Error(StatusCode::kUserError);
  const bool isEffect = effect >= 0 && effect < static_cast<int>(fSettings.Effects().size());
  if (!isEffect && effect != kWholeModel && !(effect == kIntercept && fModel.HasIntercept())) {
    return OrvStatus::Error(StatusCode::kInvalidEffect);
  }
  if (fpContrasts->Basis().GetNCols() == 0) return OrvStatus::Error(StatusCode::kNoColumns);
  if (fStatus.IsOK() && fCancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);
  return fStatus;
}

/// The contrasts of one logit.
OrvStatus TavoInference::EffectContrast(int effect, MCRectMatrix& L, std::vector<int>& columns) const {
  if (effect != kWholeModel) return fpContrasts->Build(effect + fModel.InterceptCount(), L, columns);
  // The hypothesis that nothing but the intercept matters: all estimable functions but the intercept's, which
  // is the first. A redundant intercept can't be, as the first column depends on none before it.
  const MCRectMatrix& basis = fpContrasts->Basis();
  const int first = fModel.InterceptCount();
  columns = NumbersOf(fModel.BasicBits(), first);
  if (!L.CopyColumns(basis, first, basis.GetNCols() - first) || !L.Transpose())
    return OutOfMemory(fModel.ParameterCount());
  return OrvStatus();
}

OrvStatus TavoInference::TestEffect(int effect, MCRectMatrix& L, std::vector<int>& columns,
                                    OrvTestStats& overall) const {
  overall.Reset(true);
  columns.clear();
  L.SetNRowsCols(0, 0);
  // All logits have the same design columns, so an effect has the same contrasts in each.
  OrvStatus status = EffectTestStatus(effect);
  MCRectMatrix ofOneLogit;
  MCRectMatrix ofAllLogits;
  if (status.IsOK()) status = EffectContrast(effect, ofOneLogit, columns);
  if (status.IsOK() && !ofOneLogit.CreateBlockDiagonal(fModel.EquationCount(), ofAllLogits)) {
    status = OutOfMemory(fModel.ParameterCount());
  }
  if (!status.IsOK()) return status;

  status = ModelTests(fSettings.GetTestType(), fSettings.Adjustment()).TestHypothesis(ofAllLogits, overall);
  if (!status.IsError() && ofAllLogits.GetNRows() == 0) {
    status = OrvStatus::Error(StatusCode::kNothingEstimable);
  }
  if (status.IsOK()) L = std::move(ofAllLogits);
  return status;
}

OrvStatus TavoInference::GeneralEstimableFunction(MCRectMatrix& L, std::vector<int>& columns) const {
  columns.clear();
  L.SetNRowsCols(0, 0);
  if (!fpContrasts) return OrvStatus::Error(StatusCode::kUserError);
  if (fpContrasts->Basis().GetNCols() == 0) return OrvStatus::Error(StatusCode::kNoColumns);
  L = fpContrasts->Basis();
  if (!L.IsValidMatrix() || !L.Transpose()) return OutOfMemory(fModel.ParameterCount());
  columns = NumbersOf(fModel.BasicBits(), 0);
  return OrvStatus();
}

// ---- custom hypotheses ----

OrvStatus TavoInference::TestCustom(const OrvCustomTest& test, TestType type, PAdjustMethod method,
                                    MCRectMatrix& L, std::vector<OrvTestStats>& rows,
                                    OrvTestStats& overall) const {
  overall.Reset(true);
  rows.assign(static_cast<std::size_t>(test.RowCount()), OrvTestStats());
  L.SetNRowsCols(0, 0);
  if (!fStatus.IsError() && (!fpContrasts || fpContrasts->Basis().GetNCols() == 0)) {
    return OrvStatus::Error(StatusCode::kNoColumns);
  }
  if (!fStatus.IsOK()) return fStatus;
  if (fCancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);

  MCRectMatrix contrasts;
  std::vector<double> K;
  OrvStatus status =
      test.RowCount() == 0 ? InterceptContrast(test, contrasts, K) : CustomContrasts(test, contrasts, K);
  if (!status.IsOK()) return status;
  status = ModelTests(type, method).TestCustomHypothesis(contrasts, K, rows, overall);
  if (status.IsOK()) L = std::move(contrasts);
  return status;
}

/// The first estimable function in each logit, which is that of the intercept.
OrvStatus TavoInference::InterceptContrast(const OrvCustomTest& test, MCRectMatrix& L,
                                           std::vector<double>& K) const {
  if (test.K().size() != 1) return OrvStatus::Error(StatusCode::kMoreThanOneRow);
  MCRectMatrix row;
  if (!row.CopyColumns(fpContrasts->Basis(), 0, 1) || !row.Transpose() ||
      !row.CreateBlockDiagonal(fModel.EquationCount(), L)) {
    return OutOfMemory(fModel.ParameterCount());
  }
  K.assign(static_cast<std::size_t>(fModel.EquationCount()), test.K().front());
  return OrvStatus();
}

OrvStatus TavoInference::CustomContrasts(const OrvCustomTest& test, MCRectMatrix& L,
                                         std::vector<double>& K) const {
  if (test.K().size() != test.Rows().size()) return OrvStatus::Error(StatusCode::kMoreThanOneRow);
  MCRectMatrix stated;
  bool isFull = false;
  const OrvStatus status = fModel.BuildHypothesisMatrix(test.Rows(), stated, isFull);
  if (status.IsError()) return status;
  if (!IsEstimable(stated, isFull)) return OrvStatus::Error(StatusCode::kNotEstimable);
  if (isFull) {
    L = std::move(stated);
    K = test.K();
    return OrvStatus();
  }
  // What is said of one logit is meant of each.
  if (!stated.CreateBlockDiagonal(fModel.EquationCount(), L)) return OutOfMemory(fModel.ParameterCount());
  for (int logit = 0; logit < fModel.EquationCount(); ++logit)
    K.insert(K.end(), test.K().begin(), test.K().end());
  return OrvStatus();
}

/// Rows over all parameters are checked logit by logit, each by itself.
bool TavoInference::IsEstimable(const MCRectMatrix& L, bool isFull) const {
  const int p = fModel.BasicParameterCount();
  const int blocks = isFull ? fModel.EquationCount() : 1;
  for (int block = 0; block < blocks; ++block) {
    MCRectMatrix part;
    if (!part.CopyColumns(L, block * p, p) ||
        !part.IsEstimable(fpContrasts->Basis(), fModel.BasicBits(), fpContrasts->Rounding())) {
      return false;
    }
  }
  return true;
}

}  // namespace tavo
