// A pairwise variance needs all units of a stratum at once, so this node alone holds their totals: one vector
// for each unit of the joint matrix, whether the sample has it or not, so that the number of a unit is its
// row.
#include "component/design/psu_node.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::MCMV;

bool PSUNode::SetJointProbabilities(int unitCount, std::vector<double> matrix) {
  fUnits = JointUnits();
  fUnitIndex = kNoUnit;
  const auto count = static_cast<std::size_t>(std::max(unitCount, 0));
  if (unitCount < 0 || matrix.size() != count * count) return false;
  fUnits.count = count;
  fUnits.variables = static_cast<std::size_t>(fVariances.Variables());
  fUnits.weights = std::move(matrix);
  TransformJointProbabilities(fUnits.weights, count);
  const std::size_t values = count * fUnits.variables;
  fUnits.totals.assign(values, MCMV::gMissingValue);
  fUnits.variances.assign(fbSingleStage ? 0 : values, 0.0);
  return true;
}

bool PSUNode::SetUnitIndex(int unitNumber) {
  const bool isKnown = unitNumber >= 1 && static_cast<std::size_t>(unitNumber) <= fUnits.count;
  fUnitIndex = isKnown ? static_cast<std::size_t>(unitNumber) - 1 : kNoUnit;
  return isKnown;
}

void PSUNode::AddUnit(const std::vector<double>& totals) {
  if (!HasUnit()) return;
  assert(totals.size() == fUnits.variables);
  std::copy(totals.begin(), totals.end(), fUnits.totals.data() + fUnitIndex * fUnits.variables);
}

void PSUNode::MergeVariances(const OrvVariances& child) {
  assert(!fbSingleStage);  // its units are ultimate ones
  if (!HasUnit()) return;
  const std::size_t first = fUnitIndex * fUnits.variables;
  for (std::size_t i = 0; i < fUnits.variables; ++i) {
    const TotalEstimate& estimate = child.Estimate(static_cast<int>(i));
    fUnits.totals[first + i] = estimate.HasUnits() ? estimate.total : MCMV::gMissingValue;
    fUnits.variances[first + i] = estimate.variance;
  }
}

// The units' own covariances enter by a plain sum, so they need not wait for the end of the stratum: keeping
// a triangle for each unit would take units times the square of the parameters.
void PSUNode::MergeCovariances(const OrvCovariances& child) {
  if (HasUnit()) fpCovariances->MergeAsLowerStage(child, fUnits.Probability(fUnitIndex));
}

bool PSUNode::Finish() {
  fVariances.FinishJoint(fUnits);
  if (fpCovariances) fpCovariances->FinishJoint(fUnits);
  SetJointProbabilities(0, {});
  return true;
}

}  // namespace tavo
