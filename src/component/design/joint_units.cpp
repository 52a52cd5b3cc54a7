// Once per stratum, in place: the weights are read once for every pair and variable, and the matrix is as
// large as the square of the units. A pair that can't be drawn together has a probability of 0 and gets no
// weight from it: the source of the probabilities refuses such a stratum before.
#include "component/design/joint_units.h"

#include <cassert>

namespace tavo {

void TransformJointProbabilities(std::vector<double>& matrix, std::size_t count) {
  assert(matrix.size() == count * count);
  for (std::size_t a = 1; a < count; ++a) {
    double* const row = matrix.data() + a * count;
    const double own = row[a];
    for (std::size_t b = 0; b < a; ++b) {
      if (row[b] > 0.0) row[b] = own * matrix[b * count + b] / row[b] - 1.0;
    }
  }
}

}  // namespace tavo
