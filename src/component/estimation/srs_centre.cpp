#include "component/estimation/srs_centre.h"

namespace tavo {

using MCCommonMath::MCSymMatrix;

// With much fewer entries than columns it is cheaper to touch only the pairs of a row's entries, row by row,
// than to walk the whole triangle once for several rows.
OrvSRSCentre::OrvSRSCentre(int parameters, int entries)
    : fMatrix(parameters), fbRowByRow(2 * entries <= parameters) {
  fbValid = fMatrix.IsValidMatrix() && fRows.SetLength(fbRowByRow ? 0 : parameters);
}

void OrvSRSCentre::Add(const std::vector<int>& indices, const std::vector<double>& values, double weight) {
  if (fbRowByRow) {
    fMatrix.UpdateXXSparse(static_cast<int>(indices.size()), indices, values, weight);
    return;
  }
  double* row = fRows.NextRow(weight);
  for (std::size_t e = 0; e < indices.size(); ++e)
    row[indices[e]] = values[e];
  if (fRows.IsFull()) fRows.FlushInto(fMatrix);
}

const MCSymMatrix& OrvSRSCentre::Matrix() const {
  fRows.FlushInto(fMatrix);
  return fMatrix;
}

void OrvSRSCentre::Scale(double sampleSize, double populationTotal, SRSEstimator estimator,
                         double weightUnit) {
  fRows.FlushInto(fMatrix);
  if (sampleSize > 1 && populationTotal > 0) {
    double factor = populationTotal / weightUnit / (sampleSize - 1);
    if (estimator == SRSEstimator::kWithoutReplacement) {
      factor = populationTotal > sampleSize ? factor * (1 - sampleSize / populationTotal) : 0.0;
    }
    for (double& element : fMatrix.AsVector())
      element *= factor;
  } else if (sampleSize == 1) {
    fMatrix.Clear();
  }
}

}  // namespace tavo
