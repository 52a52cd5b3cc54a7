// The analysis section of a plan: how the sample is analysed.
#pragma once

#include "module/command/plan/section_reader.h"

namespace tavo {

class PlanAnalysisReader final : public PlanSectionReader {
 public:
  static constexpr const char* kSection = "AnalysisDesign";

  /// The plan is filled; not owned. Only equal probabilities without replacement use sizes; a reader that
  /// doesn't check reads them for any method, to show what the file holds.
  PlanAnalysisReader(OrvPlanData& plan, bool checks)
      : PlanSectionReader(plan, kSection, "AnalysisStage"), fbChecks(checks) {}

  void Read(const PlanElement& design);

 private:
  void ReadStage(const PlanElement& element, OrvPlanStage& stage);
  void ReadMethod(const PlanElement& element, OrvPlanStage& stage);
  void ReadSRSEstimator(const PlanElement& design);

  bool fbChecks;
};

}  // namespace tavo
