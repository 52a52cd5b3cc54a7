// The sample section of a plan: how the sample was drawn.
#pragma once

#include "module/command/plan/section_reader.h"

namespace tavo {

class PlanSampleReader final : public PlanSectionReader {
 public:
  static constexpr const char* kSection = "SampleDesign";

  /// The plan is filled; not owned.
  explicit PlanSampleReader(OrvPlanData& plan) : PlanSectionReader(plan, kSection, "SampleStage") {}

  void Read(const PlanElement& design);
  /// The first status of the section. A variable that is named twice has a status of its own here.
  PlanStatus SectionStatus() const;

 private:
  void ReadStage(const PlanElement& element, OrvPlanStage& stage);
  void ReadMethod(const PlanElement& element, OrvPlanStage& stage);
  void ReadInput(const PlanElement& element, OrvPlanStage& stage);
  void ReadRate(const PlanElement& rate, OrvPlanStage& stage);
  void ReadMOS(const PlanElement& element, const OrvPlanStage& stage);
  void ReadMOSSource(const PlanElement& mos);
  void ReadOutputVariables(const PlanElement& element, OrvPlanStage& stage);
  /// The number in an element's SingleValue; `bound` stays when the element is absent. False, and nothing
  /// said, when it is there and holds none.
  static bool ReadBound(const PlanElement& element, double& bound);
  void CheckFirstStageMethod();
};

}  // namespace tavo
