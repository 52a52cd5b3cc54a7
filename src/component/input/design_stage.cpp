#include "component/input/design_stage.h"

namespace tavo {

void DesignStage::SetInclusionProbability(double value) {
  fInclusionType = InclProbType::kInclProbValue;
  fInclProbValue = value;
}

void DesignStage::SetInclusionProbabilityVariable(int variable) {
  fInclusionType = InclProbType::kInclProbVariable;
  fInclProbVariable = variable;
}

void DesignStage::SetPopulationSize(double value) {
  fInclusionType = InclProbType::kPopSizeValue;
  fPopSizeValue = value;
}

void DesignStage::SetPopulationSizeVariable(int variable) {
  fInclusionType = InclProbType::kPopSizeVariable;
  fPopSizeVariable = variable;
}

void DesignStage::SetMatrix(InclProbType type) {
  fInclusionType = type;
}

}  // namespace tavo
