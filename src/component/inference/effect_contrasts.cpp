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

/// False when memory ran out.
bool CopyColumns(const MCRectMatrix& source, const std::vector<int>& columns, MCRectMatrix& result) {
  if (!result.SetNRowsCols(source.GetNRows(), static_cast<int>(columns.size()))) return false;
  for (int i = 0; i < result.GetNRows(); ++i) {
    for (int j = 0; j < result.GetNCols(); ++j)
      result.SetElem(i, j, source.GetElem(i, columns[static_cast<std::size_t>(j)]));
  }
  return true;
}

/// A number that is whole but for rounding, as that whole number.
double WholeWithin(double rounding, double number) {
  const double whole = std::nearbyint(number);
  return std::abs(number - whole) <= rounding ? whole : number;
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

OrvStatus EffectContrasts::Prepare(bool withEffects) {
  if (fModel.XPrimeX() == nullptr || fModel.XPrimeX()->GetNRows() != ParameterCount() ||
      fModel.BasicBits().Size() != ParameterCount()) {
    return OrvStatus::Error(StatusCode::kUserError);
  }
  // The model leaves X'WX as its own search for redundant columns swept it, in list order.
  fDiagonal = fModel.XPrimeXDiagonal();
  Swept swept = {*fModel.XPrimeX(), fModel.BasicBits()};
  if (!swept.matrix.IsValidMatrix()) return OutOfMemory(fModel.ParameterCount());
  fRounding = RoundingOf(swept);
  fInterceptTerms = InterceptTerms(swept);
  MCBitSet taken(ParameterCount());
  int column = 0;
  if (!BringToDataScale(swept) || !fBasis.SetNRowsCols(ParameterCount(), swept.pivots.InSet()) ||
      !swept.matrix.ExtractH(0, ParameterCount() - 1, swept.pivots, fBasis, column, taken, -1)) {
    return OutOfMemory(fModel.ParameterCount());
  }
  if (withEffects) fNonRedundant = swept.pivots;
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

/// The length of a column over that of a pivot, on the scale of the fit.
double EffectContrasts::LengthRatio(int pivot, int column) const {
  return std::sqrt(fDiagonal[static_cast<std::size_t>(column)] / fDiagonal[static_cast<std::size_t>(pivot)]);
}

/// The length of a column, in the units of the data but about the centre.
double EffectContrasts::Length(int column) const {
  const auto index = static_cast<std::size_t>(column);
  return fModel.Scales()[index] * std::sqrt(fDiagonal[index]);
}

/// The size of the terms that make up a column's coefficient on a pivot, in the units of the data: what its
/// rounding error is relative to.
double EffectContrasts::CoefficientSize(int pivot, int column) const {
  const auto u = static_cast<std::size_t>(column);
  if (pivot == 0 && fModel.HasIntercept()) return fInterceptTerms[u];
  return LengthRatio(pivot, column) * fModel.Scales()[u] / fModel.Scales()[static_cast<std::size_t>(pivot)];
}

/// For each column the size of the terms that make up its coefficient on the intercept's column.
std::vector<double> EffectContrasts::InterceptTerms(const Swept& swept) const {
  std::vector<double> size(static_cast<std::size_t>(ParameterCount()), 0.0);
  for (int u = 0; u < ParameterCount(); ++u) {
    double sum = 1.0;
    for (int s = 1; s < ParameterCount() && !swept.pivots.IsIn(u); ++s) {
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
  ForEachCoefficient(swept.matrix, swept.pivots, [&](int pivot, int column, double& coefficient) {
    if (std::abs(coefficient) <= fRounding * LengthRatio(pivot, column)) coefficient = 0.0;
  });
  if (!swept.matrix.TransformParameterMatrix(fModel.Centres(), fModel.Scales(), swept.pivots,
                                             fModel.InterceptCount())) {
    return false;
  }
  ForEachCoefficient(swept.matrix, swept.pivots, [&](int pivot, int column, double& coefficient) {
    coefficient = WholeWithin(fRounding * CoefficientSize(pivot, column), coefficient);
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

/// The functions of the basis that belong to the parameters of some effects. All functions without a
/// coefficient on other effects are combinations of them, since each function of the basis has a coefficient
/// on its own parameter that no other one has.
bool EffectContrasts::TakeFunctions(const std::vector<int>& effects, Functions& functions) const {
  for (const int effect : effects) {
    int first = 0;
    int count = 0;
    fModel.GetEffectParameters(effect, first, count);
    for (int k = first; k < first + count; ++k) {
      if (fNonRedundant.IsIn(k)) functions.owners.push_back(k);
    }
  }
  std::vector<int> columns;
  for (const int k : functions.owners)
    columns.push_back(fNonRedundant.InRange(0, k - 1));
  functions.open.Resize(static_cast<int>(columns.size()), true);
  functions.inUse = functions.open;
  return CopyColumns(fBasis, columns, functions.matrix);
}

/// The open function with the largest coefficient on a parameter, measured by the length of what the
/// parameter's column has from it; -1 when none has one. What is below a millionth of the column's length
/// counts for nothing, as in the search for redundant columns, and becomes 0: the digits that a file keeps of
/// a covariate that is another one in other units leave as much.
int EffectContrasts::FindPivot(Functions& functions, int parameter) const {
  int pivot = -1;
  double largest = 0.0;
  for (int j = 0; j < functions.matrix.GetNCols(); ++j) {
    const double coefficient = functions.matrix.GetElem(parameter, j);
    if (coefficient == 0.0 || !functions.open.IsIn(j)) continue;
    const double length = std::abs(coefficient) * Length(functions.owners[static_cast<std::size_t>(j)]);
    if (length > largest) {
      largest = length;
      pivot = j;
    }
  }
  if (largest > kCoarsest * Length(parameter)) return pivot;
  for (int j = 0; j < functions.matrix.GetNCols(); ++j) {
    if (functions.open.IsIn(j)) functions.matrix.SetElem(parameter, j, 0.0);
  }
  return -1;
}

/// Takes the pivot's function out of all others, so that they have no coefficient on the parameter.
void EffectContrasts::TakeOutOfOthers(Functions& functions, int parameter, int pivot) const {
  MCRectMatrix& matrix = functions.matrix;
  const double divisor = matrix.GetElem(parameter, pivot);
  std::vector<std::pair<int, double>> multipliers;
  for (int j = 0; j < matrix.GetNCols(); ++j) {
    const double coefficient = matrix.GetElem(parameter, j);
    if (j != pivot && coefficient != 0.0 && functions.inUse.IsIn(j))
      multipliers.emplace_back(j, coefficient / divisor);
  }
  for (int i = 0; i < ParameterCount(); ++i) {
    const double element = matrix.GetElem(i, pivot);
    if (element == 0.0) continue;
    for (const auto& [j, multiplier] : multipliers) {
      const double before = matrix.GetElem(i, j);
      const double term = multiplier * element;
      const double size = std::abs(before) + std::abs(term) +
                          CoefficientSize(functions.owners[static_cast<std::size_t>(j)], i);
      matrix.SetElem(i, j, i == parameter ? 0.0 : WholeWithin(fRounding * size, before - term));
    }
  }
}

/// Makes a function that of the parameter, with a 1 there.
void EffectContrasts::GiveTo(Functions& functions, int parameter, int column) const {
  MCRectMatrix& matrix = functions.matrix;
  const double divisor = matrix.GetElem(parameter, column);
  functions.owners[static_cast<std::size_t>(column)] = parameter;
  functions.open.Set(column, false);
  for (int i = 0; i < ParameterCount() && divisor != 1.0; ++i) {
    const double element = matrix.GetElem(i, column) / divisor;
    const double size = std::abs(element) + CoefficientSize(parameter, i);
    matrix.SetElem(i, column, i == parameter ? 1.0 : WholeWithin(fRounding * size, element));
  }
}

/// Leaves the functions that have no coefficient on an effect.
void EffectContrasts::DropFunctionsOn(int effect, Functions& functions) const {
  int first = 0;
  int count = 0;
  fModel.GetEffectParameters(effect, first, count);
  for (int k = first; k < first + count && !fCancel.IsCancelled(); ++k) {
    const int pivot = FindPivot(functions, k);
    if (pivot < 0) continue;
    TakeOutOfOthers(functions, k, pivot);
    functions.open.Set(pivot, false);
    functions.inUse.Set(pivot, false);
  }
}

/// Gives each parameter of an effect, in order, a function of its own if one is left that has a coefficient
/// on it. Adds them to `given`, by their columns.
void EffectContrasts::GiveFunctionsTo(int effect, Functions& functions, std::vector<int>& given) const {
  int first = 0;
  int count = 0;
  fModel.GetEffectParameters(effect, first, count);
  for (int k = first; k < first + count && !fCancel.IsCancelled(); ++k) {
    const int pivot = FindPivot(functions, k);
    if (pivot < 0) continue;
    TakeOutOfOthers(functions, k, pivot);
    GiveTo(functions, k, pivot);
    given.push_back(pivot);
  }
}

OrvStatus EffectContrasts::BuildEffectContrast(int effect, EffectFunctions& result) const {
  const std::vector<int> containing = ContainingEffects(effect);
  std::vector<int> later = {effect};
  later.insert(later.end(), containing.begin(), containing.end());
  Functions functions;
  if (!TakeFunctions(later, functions)) return OutOfMemory(fModel.ParameterCount());

  for (int other = 0; other < static_cast<int>(fEffects.size()); ++other) {
    if (std::find(later.begin(), later.end(), other) == later.end()) DropFunctionsOn(other, functions);
  }
  std::vector<int> own;
  std::vector<int> above;
  GiveFunctionsTo(effect, functions, own);
  for (const int other : containing)
    GiveFunctionsTo(other, functions, above);
  if (fCancel.IsCancelled()) return OrvStatus::Error(StatusCode::kCancelled);
  if (!CopyColumns(functions.matrix, own, result.H) || !CopyColumns(functions.matrix, above, result.G))
    return OutOfMemory(fModel.ParameterCount());
  for (const int j : own)
    result.parameters.push_back(functions.owners[static_cast<std::size_t>(j)]);
  return OrvStatus();
}

/// False when memory ran out.
bool EffectContrasts::ReduceEffectContrast(EffectFunctions& functions, MCRectMatrix& L,
                                           std::vector<int>& columns) const {
  MCRectMatrix& H = functions.H;
  MCBitSet live(H.GetNCols());
  live.SetRange(0, H.GetNCols() - 1, true);
  MCBitSet spanning;
  if (functions.G.GetNCols() > 0 && !H.ResidOfOrthProjection(functions.G, kTolerance, spanning, live)) {
    return false;
  }
  if (!L.SetNRowsCols(live.InSet(), ParameterCount())) return false;
  int row = 0;
  for (const int column : live.Members()) {
    H.ColClean(column, ParameterCount());
    L.CopyColToRow(H, column, row++);
    columns.push_back(functions.parameters[static_cast<std::size_t>(column)] + 1);
  }
  return true;
}

OrvStatus EffectContrasts::Build(int effect, MCRectMatrix& L, std::vector<int>& columns) const {
  assert(effect >= 0 && effect < static_cast<int>(fEffects.size()));
  assert(fNonRedundant.Size() == ParameterCount());
  columns.clear();
  L.SetNRowsCols(0, ParameterCount());
  EffectFunctions functions;
  const OrvStatus status = BuildEffectContrast(effect, functions);
  if (!status.IsOK() || functions.H.GetNCols() == 0) return status;
  return ReduceEffectContrast(functions, L, columns) ? OrvStatus() : OutOfMemory(fModel.ParameterCount());
}

}  // namespace tavo
