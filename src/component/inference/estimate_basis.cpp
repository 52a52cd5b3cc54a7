#include "component/inference/estimate_basis.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <utility>

#include "component/estimation/model.h"
#include "component/numerics/double_double.h"

namespace tavo {

using MCCommonMath::DoubleDouble;
using MCCommonMath::ExactProduct;
using MCCommonMath::MCSymMatrix;
using MCCommonMath::PreciseColumn;
using MCCommonMath::Quotient;

namespace {

/// The element of a row at column k of one logit on the internal scale, where x = scale x' + centre: with the
/// intercept's own coefficient a slope l becomes (l - l_0 centre) / scale. `logit` are the elements of one
/// logit.
DoubleDouble InternalElement(const TavoModel& model, std::span<const double> logit, std::size_t k) {
  const bool isIntercept = model.HasIntercept() && k == 0;
  if (isIntercept) return logit[0];
  const double scale = model.Scales()[k];
  if (scale == 0.0) return {};
  const double centre = model.HasIntercept() ? model.Centres()[k] : 0.0;
  if (centre == 0.0) return Quotient(logit[k], scale);
  // All over a power of two near the centre: no product overflows.
  const int exponent = std::ilogb(centre);
  const DoubleDouble element =
      DoubleDouble(std::ldexp(logit[k], -exponent)) - ExactProduct(logit[0], std::ldexp(centre, -exponent));
  return Quotient(element, std::ldexp(scale, -exponent));
}

/// Calls visit(parameter, place among the non-redundant ones, element) for the non-redundant parameters.
template <class Visitor>
void ForEachElement(const TavoModel& model, std::span<const double> row, Visitor&& visit) {
  const auto basic = static_cast<std::size_t>(model.BasicParameterCount());
  std::size_t place = 0;
  for (std::size_t parameter = 0; parameter < row.size(); ++parameter) {
    if (!model.AllBits().IsIn(static_cast<int>(parameter))) continue;
    const std::size_t k = parameter % basic;
    visit(parameter, place++, InternalElement(model, row.subspan(parameter - k, basic), k));
  }
}

}  // namespace

int ScaleByPowerOfTwo(std::vector<double>& row) {
  double largest = 0.0;
  for (const double element : row)
    largest = std::max(largest, std::abs(element));
  if (!(largest > 0.0) || !std::isfinite(largest)) return 0;
  const int exponent = std::ilogb(largest);
  for (double& element : row)
    element = std::ldexp(element, -exponent);
  return exponent;
}

OrvEstimateBasis::OrvEstimateBasis(const TavoModel& model) : fModel(model), fSize(model.ScoreCount()) {
  const TavoPreciseFit* const fit = model.PreciseFit();
  if (fit == nullptr) {
    fEstimates = model.TransformedEstimates();
    return;
  }
  // A contrast u of the estimates b is (inverse(L) u)' (L' b).
  PreciseColumn inBasis(fit->estimates.Size());
  for (int i = 0; i < fSize; ++i) {
    for (int j = 0; j <= i; ++j) {
      inBasis.AddTo(static_cast<std::size_t>(j),
                    fit->factor.Get(i, j) * fit->estimates.Get(static_cast<std::size_t>(i)));
    }
  }
  fEstimates = std::move(inBasis.high);
}

int OrvEstimateBasis::ParameterCount() const {
  return fModel.ParameterCount();
}

std::vector<double> OrvEstimateBasis::Transform(std::span<const double> row) const {
  assert(row.size() == static_cast<std::size_t>(fModel.ParameterCount()));
  std::vector<double> u(static_cast<std::size_t>(fSize), 0.0);
  const TavoPreciseFit* const fit = fModel.PreciseFit();
  if (fit == nullptr) {
    ForEachElement(fModel, row, [&](std::size_t parameter, std::size_t, const DoubleDouble& element) {
      u[parameter] = element.Value();
    });
    return u;
  }
  PreciseColumn elements(u.size());
  ForEachElement(fModel, row, [&](std::size_t, std::size_t place, const DoubleDouble& element) {
    elements.Set(place, element);
  });
  std::vector<double> rounded = elements.high;
  const int exponent = ScaleByPowerOfTwo(rounded);
  for (std::size_t i = 0; i < elements.Size(); ++i)
    elements.Set(i, TimesPowerOfTwo(elements.Get(i), -exponent));
  fit->factor.ForwardSolve(elements);
  for (std::size_t i = 0; i < u.size(); ++i)
    u[i] = std::ldexp(elements.high[i], exponent);
  return u;
}

void OrvEstimateBasis::SetRounding(std::vector<double> deviations, double share) {
  assert(deviations.size() == static_cast<std::size_t>(fSize));
  fDeviations = std::move(deviations);
  fShare = share;
}

double OrvEstimateBasis::SignedDeviation(const MCSymMatrix& covariance, std::vector<double> u) const {
  const int exponent = ScaleByPowerOfTwo(u);
  const double variance = covariance.ComputeVSV(u);
  double size = 0.0;
  for (std::size_t j = 0; j < fDeviations.size(); ++j)
    size += std::abs(u[j]) * fDeviations[j];
  if (!(std::abs(variance) > fShare * size * size)) return 0.0;
  return std::ldexp(std::copysign(std::sqrt(std::abs(variance)), variance), exponent);
}

}  // namespace tavo
