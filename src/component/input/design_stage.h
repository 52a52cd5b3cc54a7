// One stage of a sample design, resolved to variables.
#pragma once

#include <vector>

namespace tavo {

enum class StageEstimator : int {
  kNotDefined = 0,
  kWithReplacement = 1,
  kEqualWor = 2,   // without replacement, equal inclusion probabilities
  kUnequalWor = 3  // without replacement, unequal inclusion probabilities
};

enum class InclProbType : int {
  kNone = 0,
  kInclProbValue = 1,
  kInclProbVariable = 2,
  kInclProbMatrix = 3,
  kPopSizeValue = 4,
  kPopSizeVariable = 5,
  kPopSizeMatrix = 6
};

/// Variables are dictionary indices while the stage belongs to a validated specification, and record columns
/// while it belongs to component settings. -1 and -1.0 mean not given.
class DesignStage {
 public:
  int stageNumber = 0;  // from 1; 0 until it is known
  std::vector<int> strata;
  std::vector<int> clusters;
  StageEstimator estimator = StageEstimator::kNotDefined;

  InclProbType InclusionType() const { return fInclusionType; }
  double InclusionProbability() const { return fInclProbValue; }
  int InclusionProbabilityVariable() const { return fInclProbVariable; }
  double PopulationSize() const { return fPopSizeValue; }
  int PopulationSizeVariable() const { return fPopSizeVariable; }

  /// Each setter also sets the inclusion type.
  void SetInclusionProbability(double value);
  void SetInclusionProbabilityVariable(int variable);
  void SetPopulationSize(double value);
  void SetPopulationSizeVariable(int variable);
  /// kInclProbMatrix or kPopSizeMatrix: the values come from a matrix held elsewhere.
  void SetMatrix(InclProbType type);
  void Reset() { *this = DesignStage(); }

 private:
  InclProbType fInclusionType = InclProbType::kNone;
  double fInclProbValue = -1.0;
  int fInclProbVariable = -1;
  double fPopSizeValue = -1.0;
  int fPopSizeVariable = -1;
};

}  // namespace tavo
