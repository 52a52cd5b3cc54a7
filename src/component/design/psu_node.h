// The level of the first-stage units under sampling without replacement with unequal probabilities.
#pragma once

#include <cstddef>
#include <vector>

#include "component/design/design_nodes.h"
#include "component/design/joint_units.h"

namespace tavo {

/// Keeps the totals of all units of the current stratum, which a pairwise variance needs together; see
/// joint_units.h for the estimator. Use, for each stratum: SetJointProbabilities; then for each of its units
/// in the sample SetUnitIndex, and AddUnit (one stage) or a merged child (more stages); then Finish. A unit
/// of the matrix that gets no total drops out of the variance.
class PSUNode final : public DesignNode {
 public:
  /// `isSingleStage`: the units are ultimate ones and arrive by AddUnit; otherwise nodes below bring them.
  PSUNode(int variables, bool isSingleStage) : DesignNode(variables), fbSingleStage(isSingleStage) {}

  /// Starts a stratum. `matrix`: joint inclusion probabilities, unitCount * unitCount by rows; its lower
  /// triangle counts. False, with a stratum of no units, for another length.
  bool SetJointProbabilities(int unitCount, std::vector<double> matrix);
  /// What arrives next belongs to this row of the matrix, from 1. False, and nothing is taken from then on,
  /// outside 1 … unitCount.
  bool SetUnitIndex(int unitNumber);
  /// An ultimate unit arrives, with one value per variable; missing values stay missing.
  void AddUnit(const std::vector<double>& totals);

  bool IsStrata() const override { return false; }
  /// Ends the stratum: its units and matrix are released. Always true.
  bool Finish() override;
  void MergeVariances(const OrvVariances& child) override;
  void MergeCovariances(const OrvCovariances& child) override;

 private:
  static constexpr std::size_t kNoUnit = static_cast<std::size_t>(-1);

  bool HasUnit() const { return fUnitIndex != kNoUnit; }

  bool fbSingleStage;
  JointUnits fUnits;
  std::size_t fUnitIndex = kNoUnit;
};

}  // namespace tavo
