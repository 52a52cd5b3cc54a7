// The end of a fit in twice the precision.
#pragma once

#include "component/numerics/precise_sym_matrix.h"
#include "component/numerics/precise_vectors.h"

namespace tavo {

/// The estimates of the non-redundant parameters on the internal scale, logit by logit, and the factor L of
/// their information L L'. With it scores are taken to a basis in which the information is the identity: z =
/// inverse(L) s. What cancels among them does so there, before they are squared.
struct TavoPreciseFit {
  MCCommonMath::PreciseColumn estimates;
  MCCommonMath::PreciseSymMatrix factor;
};

}  // namespace tavo
