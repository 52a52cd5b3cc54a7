// What both sections of a plan are read with: variable lists, value elements, and the first fault.
#pragma once

#include <cstddef>
#include <string>

#include "module/command/plan/plan_data.h"
#include "module/command/plan/plan_document.h"

namespace tavo {

/// The number in an attribute; what isn't a finite number as a whole reads as 0.
double NumberOfText(const std::string& text);

/// True for a whole number at which doubles still tell neighbours apart, up to 2^53: a count may well be
/// above what 32 bits hold, as that of a population of people is.
bool IsCount(double value);

/// Reads elements into a plan and keeps the first status that isn't OK; later elements are still read.
class PlanSectionReader {
 public:
  static constexpr std::size_t kMaximumStages = 3;

  PlanStatus Status() const { return fStatus; }
  /// Which element and which value the status is about; empty when there is nothing to add.
  const std::string& Detail() const { return fDetail; }

 protected:
  /// The plan is not owned. The names are those of the section and of its stages.
  PlanSectionReader(OrvPlanData& plan, const char* section, const char* stage)
      : fPlan(plan), fSection(section), fStage(stage) {}
  ~PlanSectionReader() = default;

  /// Makes one empty stage for each stage element and calls `readStage(element, stage)`, the stage in work
  /// being set. Too many stages are not read at all.
  template <class ReadStage>
  void ForEachStage(const PlanElement& design, ReadStage&& readStage);
  /// Label, number and the lists of strata and clusters.
  void ReadStageHead(const PlanElement& element, OrvPlanStage& stage);
  void ReadVariableLists(const PlanElement& element, OrvPlanStage& stage);
  /// The stage's value: a number, a variable or a matrix.
  void ReadValueElement(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage);
  /// The variable that an element names, if it does, into `name`.
  void ReadVariable(const PlanElement& element, host::VornVarName& name);
  /// A stage other than the last needs clusters: the stages below must know whose units theirs are.
  void CheckClusters();
  /// Sets the stage that faults are noted for, from 1; 0: the section as a whole.
  void GoToStage(std::size_t position) { fStagePosition = position; }

  /// From 1; 0 outside stages.
  std::size_t StagePosition() const { return fStagePosition; }
  bool IsLastStage() const { return fStagePosition == fPlan.stages.size(); }
  OrvPlanData& Plan() { return fPlan; }
  /// Keeps the first status and what it is about: the section or stage in work, and `what`.
  void Note(PlanStatus status, const std::string& what);
  /// A text of the file for a message, cut when it is longer than anybody wants to read.
  static std::string Quoted(const std::string& text);

 private:
  bool MakeStages(std::size_t count);
  void EnterDesignVariables(const PlanElement& list, std::vector<host::VornVarName>& names,
                            std::set<std::string>* stageVariables);
  /// Checks a variable's name and enters it in the plan's set.
  void EnterPlanVariable(const std::string& name);
  void ReadMatrix(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage);
  void ReadMatrixVariables(const PlanElement& list, OrvPlanStage& stage);
  void ReadMatrixRows(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage);
  void CheckValue(double value, PlanValueKind kind, const std::string& text);

  OrvPlanData& fPlan;
  const char* fSection;
  const char* fStage;
  std::size_t fStagePosition = 0;
  PlanStatus fStatus = PlanStatus::kOK;
  std::string fDetail;
};

template <class ReadStage>
void PlanSectionReader::ForEachStage(const PlanElement& design, ReadStage&& readStage) {
  const std::vector<PlanElement> elements = design.Descendants(fStage);
  if (!MakeStages(elements.size())) return;
  for (const PlanElement& element : elements) {
    ++fStagePosition;
    readStage(element, fPlan.stages[fStagePosition - 1]);
  }
}

}  // namespace tavo
