// Reading a plan file.
#pragma once

#include <string>

#include "command/plan/plan_data.h"
#include "command/plan/plan_document.h"

namespace tavo {

/// Reads the analysis section of an XML plan document. Never throws.
class OrvPlanReader {
 public:
  static constexpr std::size_t kMaximumStages = 3;

  /// `plan` is lent and filled.
  explicit OrvPlanReader(OrvPlanData& plan) : fPlan(plan) {}

  /// Reads and checks. The first status that isn't OK wins; later elements are still read.
  PlanStatus ReadAnalysis(const std::string& path);

  /// What the status is about: "file:line:column: what the XML parser says", or the element and the value. Empty when
  /// there is nothing to add.
  const std::string& Detail() const { return fDetail; }

 private:
  void ReadStages(const PlanElement& design);
  void ReadStage(const PlanElement& element, std::size_t position);
  void ReadMethod(const PlanElement& element, std::size_t position);
  void ReadStrata(const PlanElement& list, OrvPlanStage& stage);
  void ReadClusters(const PlanElement& list, OrvPlanStage& stage);
  void ReadValueElement(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage);
  void ReadMatrix(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage);
  void ReadMatrixVariables(const PlanElement& list, OrvPlanStage& stage);
  void ReadSRSEstimator(const PlanElement& design);
  void ReadWeight(const PlanElement& design);
  void CheckClusters();
  void CheckValue(double value, PlanValueKind kind, const std::string& text);
  /// Checks a variable's name and enters it in the plan's set.
  void EnterPlanVariable(const std::string& name);
  /// Keeps the first status and what it is about.
  void Note(PlanStatus status, std::string detail);
  std::string Where(const std::string& what) const;

  OrvPlanData& fPlan;
  PlanStatus fStatus = PlanStatus::kOK;
  std::size_t fStagePosition = 0;  // of the stage in work, from 1; 0 outside stages
  std::string fDetail;
};

/// Sends the message of a status.
class OrvPlanMessages {
 public:
  /// `detail` as OrvPlanReader::Detail gives it. kOK and unknown statuses send nothing.
  static void Report(PlanStatus status, const std::string& detail);
};

}  // namespace tavo
