// The basis in which the covariance of the estimates is kept, and contrasts in it.
#pragma once

#include <span>
#include <vector>

#include "component/numerics/rect_matrix.h"
#include "component/numerics/sym_matrix.h"

namespace tavo {

class TavoModel;

/// Divides a row by a power of two near its largest element, and returns the exponent; 0 for a row of zeros
/// or with an element that isn't finite.
int ScaleByPowerOfTwo(std::vector<double>& row);

/// A contrast of the parameters on the scale of the data may be the small difference of large terms: that of
/// an intercept and a slope, say, at the mean of a covariate far from 0. Their covariances are as large, and
/// a variance formed from them has no digits left. So the covariance stays in the basis in which it was
/// summed, and a contrast is taken there first, with as many digits as it needs:
/// - the internal scale of the fit, where columns are centred and of one size, over all parameters;
/// - for a refined fit the basis of the factor of its information, over the non-redundant ones. See
///   TavoPreciseFit.
class OrvEstimateBasis {
 public:
  /// The model is not owned; it has its estimates.
  explicit OrvEstimateBasis(const TavoModel& model);

  /// Parameters of all logits.
  int ParameterCount() const;
  int Size() const { return fSize; }
  /// The estimates.
  const std::vector<double>& Estimates() const { return fEstimates; }
  /// A row over all parameters on the scale of the data as a row u of `Size` elements: its contrast is the
  /// product of u with `Estimates`. What it has on redundant parameters counts for nothing.
  std::vector<double> Transform(std::span<const double> row) const;

  /// Says how far off a variance may be: the sum over j of |u_j| deviations_j, squared, times `share`.
  void SetRounding(std::vector<double> deviations, double share);
  /// The root of u'V u, for a covariance in the basis; negative, the root of its absolute value, when u'V u
  /// is, and 0 when rounding may have made it. Nothing overflows on the way.
  double SignedDeviation(const MCCommonMath::MCSymMatrix& covariance, std::vector<double> u) const;

 private:
  const TavoModel& fModel;
  int fSize;
  std::vector<double> fEstimates;
  std::vector<double> fDeviations;
  double fShare = 0.0;
};

}  // namespace tavo
