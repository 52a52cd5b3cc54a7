#include "module/command/plan/analysis_reader.h"

#include "module/command/plan/plan_methods.h"

namespace tavo {

void PlanAnalysisReader::Read(const PlanElement& design) {
  ForEachStage(design,
               [this](const PlanElement& element, OrvPlanStage& stage) { ReadStage(element, stage); });
  CheckClusters();
  GoToStage(0);
  ReadVariable(design.Child("Weight"), Plan().weight);
  if (Status() == PlanStatus::kOK || !fbChecks) ReadSRSEstimator(design);
}

void PlanAnalysisReader::ReadStage(const PlanElement& element, OrvPlanStage& stage) {
  ReadStageHead(element, stage);
  ReadMethod(element, stage);
  ReadVariableLists(element, stage);
  // Other estimators have no finite population correction from sizes, so a size that stands there is not even
  // checked.
  if (fbChecks && stage.method != PlanMethod::EQUAL_WOR) return;
  if (const PlanElement size = element.Child("PopulationSize")) {
    ReadValueElement(size, PlanValueKind::POPSIZE, stage);
  } else if (const PlanElement probability = element.Child("IncProb")) {
    ReadValueElement(probability, PlanValueKind::INCLPROB, stage);
  }
}

void PlanAnalysisReader::ReadMethod(const PlanElement& element, OrvPlanStage& stage) {
  stage.method = EstimationMethodOf(element.Attribute("estimationMethod"));
  if (stage.method == PlanMethod::UNEQUAL_WOR && StagePosition() > 1) {
    Note(PlanStatus::kIllegalEstimation, "estimationMethod=\"unequal_wor\"");
  }
}

void PlanAnalysisReader::ReadSRSEstimator(const PlanElement& design) {
  const std::string estimator = design.Attribute("SRSestimator");
  if (estimator == "wr") {
    Plan().srsEstimator = PlanSRSEstimator::WR;
  } else if (!estimator.empty() && estimator != "wor") {
    Note(PlanStatus::kIllegalSRSEstimator, "SRSestimator=" + Quoted(estimator));
  }
}

}  // namespace tavo
