#include "module/command/plan/sample_reader.h"

#include <array>

#include "host/command.h"
#include "module/command/plan/plan_methods.h"

namespace tavo {

namespace {

bool IsWithReplacement(PlanMethod method) {
  return method == PlanMethod::SIMPLE_WR || method == PlanMethod::PPS_WR;
}

/// These two draw exactly two units of a stratum, whatever a plan says.
bool HasFixedSize(PlanMethod method) {
  return method == PlanMethod::PPS_BREWER || method == PlanMethod::PPS_MURTHY;
}

/// Methods whose probabilities belong to pairs of units, which only clusters tell apart.
bool NeedsClusters(PlanMethod method) {
  return method == PlanMethod::PPS_WOR || method == PlanMethod::PPS_SAMPFORD || HasFixedSize(method);
}

struct OutputVariable {
  const char* element;
  host::VornVarName OrvPlanStage::*place;
};

constexpr std::array<OutputVariable, 7> kOutputVariables = {
    {{"Index", &OrvPlanStage::indexVariable},
     {"IncProb", &OrvPlanStage::inclusionProbVariable},
     {"PopulationSize", &OrvPlanStage::populationSizeVariable},
     {"OutputSampleSize", &OrvPlanStage::sampleSizeVariable},
     {"OutputSampleRate", &OrvPlanStage::sampleRateVariable},
     {"Weight", &OrvPlanStage::weightVariable},
     {"CumulativeWeight", &OrvPlanStage::cumulativeWeightVariable}}};

}  // namespace

void PlanSampleReader::Read(const PlanElement& design) {
  if (design.Attribute("wrEstimation") == "yes") Plan().estimation = PlanEstimation::WR;
  ForEachStage(design,
               [this](const PlanElement& element, OrvPlanStage& stage) { ReadStage(element, stage); });
  CheckClusters();
  CheckFirstStageMethod();
  GoToStage(0);
  ReadVariable(design.Child("PreviousWeight"), Plan().previousWeight);
  ReadVariable(design.Child("Weight"), Plan().weight);
}

PlanStatus PlanSampleReader::SectionStatus() const {
  const PlanStatus status = Status();
  return status == PlanStatus::kRepeatedVariable ? PlanStatus::kRepeatedInSampleDesign : status;
}

void PlanSampleReader::ReadStage(const PlanElement& element, OrvPlanStage& stage) {
  ReadStageHead(element, stage);
  ReadMethod(element, stage);
  ReadVariableLists(element, stage);
  ReadInput(element, stage);
  ReadMOS(element, stage);
  ReadOutputVariables(element, stage);
}

void PlanSampleReader::ReadMethod(const PlanElement& element, OrvPlanStage& stage) {
  const std::string word = element.Attribute("selectionMethod");
  stage.method = SelectionMethodOf(word);
  // A plan holds one measure of size, that of the first stage; and a unit that was drawn with replacement has
  // no stages below it.
  const bool isLate = IsProportionalToSize(stage.method) && StagePosition() > 1;
  if (stage.method == PlanMethod::NO_VALUE || isLate) {
    Note(PlanStatus::kIllegalSelection, "selectionMethod=" + Quoted(word));
  }
  if (IsWithReplacement(stage.method) && !IsLastStage()) {
    Note(PlanStatus::kNoPlanSpecifications, "selectionMethod=" + Quoted(word) + " before the last stage");
  }
}

void PlanSampleReader::ReadInput(const PlanElement& element, OrvPlanStage& stage) {
  if (const PlanElement size = element.Child("InputSampleSize")) {
    ReadValueElement(size, PlanValueKind::SIZE, stage);
  } else if (const PlanElement rate = element.Child("InputSampleRate")) {
    ReadValueElement(rate, PlanValueKind::RATE, stage);
    ReadRate(rate, stage);
  } else if (!HasFixedSize(stage.method)) {
    Note(PlanStatus::kNoSampleSizeOrRate, "InputSampleSize or InputSampleRate");
  }
}

void PlanSampleReader::ReadRate(const PlanElement& rate, OrvPlanStage& stage) {
  if (!ReadBound(rate.Child("MinSize"), stage.minSize) || !IsCount(stage.minSize)) {
    Note(PlanStatus::kMinMaxNotPositive, "InputSampleRate, MinSize");
  }
  if (!ReadBound(rate.Child("MaxSize"), stage.maxSize) || !IsCount(stage.maxSize)) {
    Note(PlanStatus::kMinMaxNotPositive, "InputSampleRate, MaxSize");
  }
  if (stage.maxSize > 0 && stage.minSize > stage.maxSize) {
    Note(PlanStatus::kMinAboveMax, "InputSampleRate, MinSize and MaxSize");
  }
}

void PlanSampleReader::ReadMOS(const PlanElement& element, const OrvPlanStage& stage) {
  if (!IsProportionalToSize(stage.method)) return;
  const PlanElement mos = element.Child("MOS");
  if (!mos) {
    Note(PlanStatus::kNoMOS, "MOS");
    return;
  }
  ReadMOSSource(mos);
  OrvPlanData& plan = Plan();
  if (!ReadBound(mos.Child("MinSize"), plan.mosMinimum) || plan.mosMinimum < 0) {
    Note(PlanStatus::kMinMaxNotPositive, "MOS, MinSize");
  }
  if (!ReadBound(mos.Child("MaxSize"), plan.mosMaximum) || plan.mosMaximum < 0) {
    Note(PlanStatus::kMinMaxNotPositive, "MOS, MaxSize");
  }
  if (plan.mosMaximum > 0 && plan.mosMaximum < plan.mosMinimum) {
    Note(PlanStatus::kMinAboveMax, "MOS, MinSize and MaxSize");
  }
}

void PlanSampleReader::ReadMOSSource(const PlanElement& mos) {
  const std::string fromData = mos.Attribute("fromData");
  if (fromData == "yes") {
    Plan().mosFromData = true;
  } else if (fromData == "no" && mos.Child("Variable").HasAttribute("name")) {
    ReadVariable(mos, Plan().mosVariable);
  } else {
    Note(PlanStatus::kNoMOSSource, "MOS, fromData=" + Quoted(fromData));
  }
}

// A bound that isn't there is none; one that is there must have its value.
bool PlanSampleReader::ReadBound(const PlanElement& element, double& bound) {
  if (!element) return true;
  const PlanElement single = element.Child("SingleValue");
  if (!single.HasAttribute("value")) return false;
  bound = NumberOfText(single.Attribute("value"));
  return true;
}

void PlanSampleReader::ReadOutputVariables(const PlanElement& element, OrvPlanStage& stage) {
  for (const OutputVariable& output : kOutputVariables)
    ReadVariable(element.Child(output.element), stage.*output.place);
}

void PlanSampleReader::CheckFirstStageMethod() {
  const std::vector<OrvPlanStage>& stages = Plan().stages;
  if (stages.empty() || !NeedsClusters(stages.front().method)) return;
  if (stages.size() > 1 && !stages.front().clusters.empty()) return;
  GoToStage(1);
  Note(PlanStatus::kClusterMissingInLastStage,
       "selectionMethod=\"" + std::string(WordOf(stages.front().method)) + "\"");
}

}  // namespace tavo
