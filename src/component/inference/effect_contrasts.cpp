#include "component/inference/effect_contrasts.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

#include "component/estimation/model.h"
#include "component/numerics/machine_constants.h"

namespace tavo {

using MCCommonMath::MCBitSet;
using MCCommonMath::MCPower;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;

namespace {

constexpr double kTolerance = 1e-12;
/// Rounding of a coefficient, in units of the machine precision: what a chain of sweeps leaves in practice.
constexpr double kRoundingShare = 64;
/// Columns are told apart to a relative 1e-6 of their length, the root of the usual tolerance of the sweeps:
/// a coefficient below that says nothing, however badly conditioned the pivots are.
constexpr double kCoarsest = 1e-6;

/// Visits each (pivot, column left out) with the coefficient, by which it may change it.
template <typename Visitor>
void ForEachCoefficient(MCSymMatrix& matrix, const MCBitSet& pivots, Visitor visit) {
  double* element = matrix.AsVector().data();
  for (int i = 0; i < matrix.GetNRows(); ++i) {
    const bool isPivot = pivots.IsIn(i);
    for (int j = 0; j <= i; ++j, ++element) {
      if (isPivot == pivots.IsIn(j)) continue;
      if (isPivot) {
        visit(i, j, *element);
      } else {
        visit(j, i, *element);
      }
    }
  }
}

}  // namespace

EffectContrasts::EffectContrasts(const TavoModel& model, const OrvCancelInfo& cancel)
    : fModel(model), fCancel(cancel), fEffects(model.Settings().Effects()) {
  // The intercept is an effect without predictors, which every effect of factors alone contains.
  if (model.HasIntercept()) {
    const OrvModelEffect first = fEffects.empty() ? OrvModelEffect() : fEffects.front();
    fEffects.insert(fEffects.begin(),
                    OrvModelEffect(first.FactorsInModel(), first.CovariatesInModel(), first.Predictors()));
  }
}

int EffectContrasts::ParameterCount() const {
  return fModel.BasicParameterCount();
}

/// Why a sequence of sweeps ended early.
OrvStatus EffectContrasts::Unfinished() const {
  return fCancel.IsCancelled() ? OrvStatus::Error(StatusCode::kCancelled)
                               : OutOfMemory(fModel.ParameterCount());
}

OrvStatus EffectContrasts::Prepare(bool withEffects) {
  if (fModel.XPrimeX() == nullptr || fModel.XPrimeX()->GetNRows() != ParameterCount() ||
      fModel.BasicBits().Size() != ParameterCount()) {
    return OrvStatus::Error(StatusCode::kUserError);
  }
  // The model leaves X'WX as its own search for redundant columns swept it, in list order: what an effect
  // needs differs from that by a few sweeps, so nothing is swept twice from the start.
  fTolerance = fModel.Settings().Tolerance();
  fDiagonal = fModel.XPrimeXDiagonal();
  for (int k = 0; k < ParameterCount(); ++k) {
    const auto index = static_cast<std::size_t>(k);
    const double size = std::hypot(fModel.Scales()[index], fModel.Centres()[index]);
    const bool hasCovariate = !fModel.BasicParameters()[index].covariates.empty();
    fUnits.push_back(hasCovariate && size > 0.0 ? size : 1.0);
  }

  fSwept = {*fModel.XPrimeX(), fModel.BasicBits()};
  if (!fSwept.matrix.IsValidMatrix()) return OutOfMemory(fModel.ParameterCount());
  fRounding = RoundingOf(fSwept);
  Swept onDataScale = fSwept;
  MCBitSet taken(ParameterCount());
  int column = 0;
  if (!onDataScale.matrix.IsValidMatrix() || !BringToDataScale(onDataScale) ||
      !fBasis.SetNRowsCols(ParameterCount(), fSwept.pivots.InSet()) ||
      !onDataScale.matrix.ExtractH(0, ParameterCount() - 1, fSwept.pivots, fBasis, column, taken, -1)) {
    return OutOfMemory(fModel.ParameterCount());
  }
  if (!withEffects) fSwept = Swept();
  return fCancel.IsCancelled() ? OrvStatus::Error(StatusCode::kCancelled) : OrvStatus();
}

/// How far off a coefficient on columns of unit length may be: rounding, times the largest variance inflation
/// (Marquardt 1970) of the pivots: a swept pivot holds minus the inverse's diagonal element. Columns that are
/// nearly dependent leave fewer digits.
double EffectContrasts::RoundingOf(const Swept& swept) const {
  double inflation = 1.0;
  for (int k = 0; k < ParameterCount(); ++k) {
    if (!swept.pivots.IsIn(k)) continue;
    inflation = std::max(inflation, -swept.matrix.GetElem(k, k) * fDiagonal[static_cast<std::size_t>(k)]);
  }
  return std::clamp(kRoundingShare * MCPower::gMachineEpsilon * inflation, kTolerance, kCoarsest);
}

/// The length of the column left out over that of the pivot, on the scale of the fit.
double EffectContrasts::LengthRatio(int pivot, int column) const {
  return std::sqrt(fDiagonal[static_cast<std::size_t>(column)] / fDiagonal[static_cast<std::size_t>(pivot)]);
}

/// For each column left out the size of the terms that make up its coefficient on the intercept's column.
std::vector<double> EffectContrasts::InterceptTerms(const Swept& swept) const {
  std::vector<double> size(static_cast<std::size_t>(ParameterCount()), 0.0);
  for (int u = 0; u < ParameterCount(); ++u) {
    if (swept.pivots.IsIn(u)) continue;
    double sum = 1.0;
    for (int s = 1; s < ParameterCount(); ++s) {
      const double centre = fModel.Centres()[static_cast<std::size_t>(s)];
      if (centre == 0.0 || !swept.pivots.IsIn(s)) continue;
      sum += std::abs(swept.matrix.GetElem(s, u) * centre / fModel.Scales()[static_cast<std::size_t>(s)]);
    }
    const auto index = static_cast<std::size_t>(u);
    size[index] = fModel.Scales()[index] * sum + std::abs(fModel.Centres()[index]);
  }
  return size;
}

/// The swept cross-products of the columns in their own units. A coefficient that is a whole number but for
/// rounding, as most are between columns of factors, becomes that number; 0 does so before the centres of
/// columns add up in the coefficients of the intercept.
bool EffectContrasts::BringToDataScale(Swept& swept) const {
  const double rounding = RoundingOf(swept);
  ForEachCoefficient(swept.matrix, swept.pivots, [&](int pivot, int column, double& coefficient) {
    if (std::abs(coefficient) <= rounding * LengthRatio(pivot, column)) coefficient = 0.0;
  });
  const bool isCentred = fModel.HasIntercept() && swept.pivots.IsIn(0);
  const std::vector<double> terms = isCentred ? InterceptTerms(swept) : std::vector<double>();
  if (!swept.matrix.TransformParameterMatrix(fModel.Centres(), fModel.Scales(), swept.pivots,
                                             fModel.InterceptCount())) {
    return false;
  }
  ForEachCoefficient(swept.matrix, swept.pivots, [&](int pivot, int column, double& coefficient) {
    const auto u = static_cast<std::size_t>(column);
    const double units = fModel.Scales()[u] / fModel.Scales()[static_cast<std::size_t>(pivot)];
    const double size = pivot == 0 && isCentred ? terms[u] : LengthRatio(pivot, column) * units;
    const double whole = std::nearbyint(coefficient);
    if (std::abs(coefficient - whole) <= rounding * size) coefficient = whole;
  });
  return true;
}

// ---- the hypothesis of one effect ----

std::vector<int> EffectContrasts::ContainingEffects(int effect) const {
  std::vector<int> containing;
  for (int other = 0; other < static_cast<int>(fEffects.size()); ++other) {
    const bool contains =
        fEffects[static_cast<std::size_t>(effect)].ContainedIn(fEffects[static_cast<std::size_t>(other)]);
    if (other != effect && contains) containing.push_back(other);
  }
  return containing;
}

/// Undoes the sweeps of an effect's columns, the last one first: so the rounding of each is undone in the
/// state in which it arose.
bool EffectContrasts::SweepBackEffect(Swept& swept, int effect) const {
  int first = 0;
  int count = 0;
  fModel.GetEffectParameters(effect, first, count);
  for (int k = first + count - 1; k >= first; --k) {
    if (fCancel.IsCancelled()) return false;
    if (swept.pivots.IsIn(k) && !swept.matrix.Sweep(k, fTolerance, fDiagonal, swept.pivots, true)) {
      return false;
    }
  }
  return true;
}

/// Sweeps those columns of an effect that aren't swept and don't depend on swept ones. Returns how many, or
/// -1 when nothing more can be done.
int EffectContrasts::SweepEffect(Swept& swept, int effect) const {
  int first = 0;
  int count = 0;
  fModel.GetEffectParameters(effect, first, count);
  int done = 0;
  for (int k = first; k < first + count; ++k) {
    if (fCancel.IsCancelled()) return -1;
    if (swept.pivots.IsIn(k)) continue;
    if (swept.matrix.Sweep(k, fTolerance, fDiagonal, swept.pivots, true)) {
      ++done;
      continue;
    }
    // What is left of a dependent column is rounding. Left as it is, a later sweep on a small pivot would
    // blow it up into coefficients.
    if (!swept.matrix.ClearResidual(k, swept.pivots)) return -1;  // a matrix that is lost has no column k
  }
  return done;
}

/// First the effects that don't contain this one, then it, then those that contain it. All columns are swept
/// already but the redundant ones of the model. Only this effect and those that contain it have to go back;
/// of the others, columns that depended on them alone come in. What is kept is the same as in a fresh
/// sequence: a column kept in list order is independent of all others before it, whatever becomes of later
/// ones.
bool EffectContrasts::SweepInOrder(Swept& swept, int effect, const std::vector<int>& containing, int& own,
                                   int& above) const {
  own = above = 0;
  for (const int other : containing) {
    if (!SweepBackEffect(swept, other)) return false;
  }
  if (!SweepBackEffect(swept, effect)) return false;

  for (int other = 0; other < static_cast<int>(fEffects.size()); ++other) {
    const bool isLater = other == effect || std::binary_search(containing.begin(), containing.end(), other);
    if (!isLater && SweepEffect(swept, other) < 0) return false;
  }
  own = SweepEffect(swept, effect);
  if (own < 1) return own == 0;
  for (const int other : containing) {
    const int count = SweepEffect(swept, other);
    if (count < 0) return false;
    above += count;
  }
  return true;
}

OrvStatus EffectContrasts::BuildEffectContrast(int effect, Functions& functions) const {
  const std::vector<int> containing = ContainingEffects(effect);
  Swept swept = fSwept;  // a copy, since each effect needs its own order
  if (!swept.matrix.IsValidMatrix()) return OutOfMemory(fModel.ParameterCount());
  int own = 0;
  int above = 0;
  if (!SweepInOrder(swept, effect, containing, own, above)) return Unfinished();
  functions.parameters.Resize(ParameterCount(), false);
  if (own < 1) return OrvStatus();  // all its columns depend on other effects: nothing to be tested

  if (!BringToDataScale(swept) || !functions.H.SetNRowsCols(ParameterCount(), own) ||
      !functions.G.SetNRowsCols(ParameterCount(), above)) {
    return OutOfMemory(fModel.ParameterCount());
  }
  int first = 0;
  int count = 0;
  int column = 0;
  fModel.GetEffectParameters(effect, first, count);
  swept.matrix.ExtractH(first, first + count - 1, swept.pivots, functions.H, column, functions.parameters,
                        -1);
  MCBitSet taken(ParameterCount());
  column = 0;
  for (const int other : containing) {
    fModel.GetEffectParameters(other, first, count);
    swept.matrix.ExtractH(first, first + count - 1, swept.pivots, functions.G, column, taken, -1);
  }
  ScaleToUnits(functions);
  return OrvStatus();
}

/// Rows of covariates in the units of their columns, relative to the effect's own. Those of the effect and of
/// the effects that contain it, which have the same covariates, stay as they are.
void EffectContrasts::ScaleToUnits(Functions& functions) const {
  // A projection compares lengths, so an income in cents must not outweigh the level beside it. The
  // hypothesis doesn't depend on the scale of the rows, and the effect's own stay in its units, as they are
  // reported.
  int own = 0;
  while (!functions.parameters.IsIn(own))
    ++own;
  for (MCRectMatrix* matrix : {&functions.H, &functions.G}) {
    for (int i = 0; i < matrix->GetNRows(); ++i) {
      const double ratio = fUnits[static_cast<std::size_t>(own)] / fUnits[static_cast<std::size_t>(i)];
      for (int j = 0; j < matrix->GetNCols(); ++j)
        matrix->SetElem(i, j, matrix->GetElem(i, j) * ratio);
    }
  }
}

/// False when memory ran out.
bool EffectContrasts::ReduceEffectContrast(int effect, Functions& functions, MCRectMatrix& L,
                                           std::vector<int>& columns) const {
  MCRectMatrix& H = functions.H;
  MCBitSet live(H.GetNCols());
  live.SetRange(0, H.GetNCols() - 1, true);
  MCBitSet spanning;
  if (functions.G.GetNCols() > 0 && !H.ResidOfOrthProjection(functions.G, kTolerance, spanning, live)) {
    return false;
  }
  // A function with a coefficient on another effect doesn't belong to this one alone: columns that give no
  // new direction on the centred scale may still hold the intercept on the scale of the data.
  const std::vector<int> containing = ContainingEffects(effect);
  for (int other = 0; other < static_cast<int>(fEffects.size()); ++other) {
    if (other == effect || std::binary_search(containing.begin(), containing.end(), other)) continue;
    int first = 0;
    int count = 0;
    fModel.GetEffectParameters(other, first, count);
    for (int row = first; row < first + count; ++row) {
      int pivot = -1;
      H.ZeroOutPivotRow(row, kTolerance, live, pivot);
      live.Set(pivot, false);
    }
  }

  if (!L.SetNRowsCols(live.InSet(), ParameterCount())) return false;
  int column = 0;
  int row = 0;
  for (int parameter = 0; parameter < ParameterCount(); ++parameter) {
    if (!functions.parameters.IsIn(parameter)) continue;
    if (live.IsIn(column)) {
      H.ColClean(column, ParameterCount());
      L.CopyColToRow(H, column, row++);
      columns.push_back(parameter + 1);
    }
    ++column;
  }
  return true;
}

OrvStatus EffectContrasts::Build(int effect, MCRectMatrix& L, std::vector<int>& columns) const {
  assert(effect >= 0 && effect < static_cast<int>(fEffects.size()));
  assert(fSwept.matrix.GetNRows() == ParameterCount());
  columns.clear();
  L.SetNRowsCols(0, ParameterCount());
  Functions functions;
  const OrvStatus status = BuildEffectContrast(effect, functions);
  if (!status.IsOK() || functions.H.GetNCols() == 0) return status;
  return ReduceEffectContrast(effect, functions, L, columns) ? OrvStatus()
                                                             : OutOfMemory(fModel.ParameterCount());
}

}  // namespace tavo
