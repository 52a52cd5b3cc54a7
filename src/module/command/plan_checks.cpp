#include "module/command/plan_checks.h"

#include <set>
#include <utility>

#include "module/command/plan/plan_reader.h"

namespace tavo {

namespace {

StageEstimator EstimatorOf(PlanMethod method) {
  switch (method) {
    case PlanMethod::EQUAL_WOR:
      return StageEstimator::kEqualWor;
    case PlanMethod::UNEQUAL_WOR:
      return StageEstimator::kUnequalWor;
    case PlanMethod::WR:
      return StageEstimator::kWithReplacement;
    default:
      return StageEstimator::kNotDefined;
  }
}

/// The plan file's name with another ending in place of its own.
std::string WithEnding(const std::string& planFile, const char* ending) {
  // A point in the name of a folder is no ending of the file.
  const std::size_t separator = planFile.find_last_of("/\\");
  const std::size_t point = planFile.find_last_of('.');
  const bool hasEnding = point != std::string::npos && (separator == std::string::npos || point > separator);
  return planFile.substr(0, hasEnding ? point : std::string::npos) + ending;
}

class PlanResolver {
 public:
  explicit PlanResolver(ParseContext& context)
      : fContext(context), fSpecs(context.specs), fMessages(context.messages) {}

  bool ResolveGlobalPart(const OrvPlanData& plan);
  bool ResolveStages(const OrvPlanData& plan, bool hasJointProbFile);
  /// What the component would refuse without a word of its own.
  bool CheckCompleteness() const;

 private:
  /// The case file beside the plan that has its name: .vdt, or .csv when there is only that.
  bool SetDefaultJointProbFile();
  bool ResolveStage(const OrvPlanStage& stage);
  bool ResolveDesignVariables(const std::vector<host::VornVarName>& names, const char* parameter,
                              std::vector<int>& variables);
  bool ResolveInclusion(const OrvPlanStage& stage, PlanStageSpec& spec);
  bool ResolveVariableValue(const OrvPlanStage& stage, DesignStage& design);
  bool ResolveMatrix(const OrvPlanStage& stage, PlanStageSpec& spec);
  /// Dictionary index of a weight, size or probability variable; -1 after a message. `parameter` is what
  /// messages call its place, `lookUpParameter` when the fault lies with the dictionary.
  int CheckPlanVariable(const std::string& name, const char* parameter, const char* lookUpParameter);

  ParseContext& fContext;
  TavoValidSpecs& fSpecs;
  TavoParseMessages& fMessages;
};

bool PlanResolver::ResolveGlobalPart(const OrvPlanData& plan) {
  fMessages.SetGroupIndex(TavoParseMessages::kGlobalGroup);
  if (!plan.weight.Empty()) {
    const int weight = CheckPlanVariable(plan.weight.Text(), "ANALYSISWEIGHT", "ANALYSISWEIGHT");
    if (weight < 0) return false;
    fSpecs.SetWeightVariable(weight);
  }
  fSpecs.SetSRSWithoutReplacement(plan.srsEstimator != PlanSRSEstimator::WR);
  return true;
}

bool PlanResolver::ResolveStages(const OrvPlanData& plan, bool hasJointProbFile) {
  for (std::size_t k = 0; k < plan.stages.size(); ++k) {
    const OrvPlanStage& stage = plan.stages[k];
    fMessages.SetGroupIndex(static_cast<int>(k) + 1);
    const bool needsJointProb = k == 0 && stage.method == PlanMethod::UNEQUAL_WOR && !hasJointProbFile;
    if (needsJointProb && !SetDefaultJointProbFile()) return false;
    if (!ResolveStage(stage)) return false;
  }
  return !plan.stages.empty() || fMessages.NoStages();
}

bool PlanResolver::CheckCompleteness() const {
  if (fSpecs.WeightVariable() < 0) return fMessages.NoWeightInPlan();
  for (const PlanStageSpec& spec : fSpecs.Stages()) {
    const DesignStage& stage = spec.stage;
    if (stage.estimator == StageEstimator::kNotDefined)
      return fMessages.NoEstimationMethod(stage.stageNumber);
    if (stage.estimator == StageEstimator::kEqualWor && stage.InclusionType() == InclProbType::kNone) {
      return fMessages.NoInclusionData(stage.stageNumber);
    }
    // Joint probabilities belong to pairs of the stage's units, and only cluster variables tell them apart.
    if (stage.estimator == StageEstimator::kUnequalWor && stage.clusters.empty()) {
      OrvPlanMessages::Report(PlanStatus::kIllegalEstimation,
                              "AnalysisStage " + host::IntegerToString(stage.stageNumber) +
                                  ", estimationMethod=\"unequal_wor\" without ClusterVarList");
      return false;
    }
  }
  return true;
}

bool PlanResolver::SetDefaultJointProbFile() {
  host::UserCaseFileSpec& file = fSpecs.JointProbFile();
  const auto isAccessible = [&](const char* ending) {
    file.Init(WithEnding(fSpecs.PlanFileName(), ending), true, false);
    return file.Exists() && file.IsValid() && !file.IsInUse();
  };
  // When there is neither, messages name the first.
  if (isAccessible(".vdt") || isAccessible(".csv")) return true;
  file.Init(WithEnding(fSpecs.PlanFileName(), ".vdt"), true, false);
  return fMessages.DefaultJointProbFileNotAccessible(file.DocumentationString());
}

bool PlanResolver::ResolveStage(const OrvPlanStage& stage) {
  PlanStageSpec spec;
  spec.label = stage.label;
  spec.stage.stageNumber = stage.stageNumber;
  spec.stage.estimator = EstimatorOf(stage.method);
  if (!ResolveDesignVariables(stage.strata, "STRATA", spec.stage.strata)) return false;
  if (!ResolveDesignVariables(stage.clusters, "CLUSTER", spec.stage.clusters)) return false;
  if (!ResolveInclusion(stage, spec)) return false;
  fSpecs.AddStage(std::move(spec));
  return true;
}

bool PlanResolver::ResolveDesignVariables(const std::vector<host::VornVarName>& names, const char* parameter,
                                          std::vector<int>& variables) {
  fMessages.SetParameter(parameter);
  std::set<std::string> seen;
  for (const host::VornVarName& entry : names) {
    const std::string& name = entry.Text();
    const std::string upper = host::GetUpperVarName(name);
    if (!seen.insert(upper).second) return fMessages.VariableRepeated(name);
    // A design variable may be the subpopulation, but not part of the model.
    if (fContext.IsCommandVariable(name)) return fMessages.PlanVariableInCommand(name, parameter);
    fContext.designAndDomainVariables.insert(upper);
    const int index = fContext.FindVariable(name);
    if (index < 0) return false;
    variables.push_back(index);
  }
  return true;
}

bool PlanResolver::ResolveInclusion(const OrvPlanStage& stage, PlanStageSpec& spec) {
  const bool isSize = stage.valueKind == PlanValueKind::POPSIZE;
  if (!isSize && stage.valueKind != PlanValueKind::INCLPROB) {
    return stage.valueWay == PlanValueWay::NOT_GIVEN || fMessages.NoStageInformation();
  }
  switch (stage.valueWay) {
    case PlanValueWay::BY_VALUE:
      if (isSize) {
        spec.stage.SetPopulationSize(stage.value);
      } else {
        spec.stage.SetInclusionProbability(stage.value);
      }
      return true;
    case PlanValueWay::BY_VARNAME:
      return ResolveVariableValue(stage, spec.stage);
    case PlanValueWay::BY_VARCATLIST:
      return ResolveMatrix(stage, spec);
    case PlanValueWay::NOT_GIVEN:
      return true;
  }
  return true;
}

bool PlanResolver::ResolveVariableValue(const OrvPlanStage& stage, DesignStage& design) {
  const bool isSize = stage.valueKind == PlanValueKind::POPSIZE;
  const int variable =
      CheckPlanVariable(stage.valueVariable.Text(), isSize ? "POPSIZE VARIABLE" : "INCLPROB VARIABLE",
                        isSize ? "POPSIZE" : "INCLPROB");
  if (variable < 0) return false;
  if (isSize) {
    design.SetPopulationSizeVariable(variable);
  } else {
    design.SetInclusionProbabilityVariable(variable);
  }
  return true;
}

bool PlanResolver::ResolveMatrix(const OrvPlanStage& stage, PlanStageSpec& spec) {
  const bool isSize = stage.valueKind == PlanValueKind::POPSIZE;
  spec.stage.SetMatrix(isSize ? InclProbType::kPopSizeMatrix : InclProbType::kInclProbMatrix);
  spec.matrix = ReadStageMatrix(fContext, stage.valueMatrix);
  return spec.matrix != nullptr;
}

int PlanResolver::CheckPlanVariable(const std::string& name, const char* parameter,
                                    const char* lookUpParameter) {
  constexpr int kRefused = -1;
  fMessages.SetParameter(lookUpParameter);
  if (fContext.IsCommandVariable(name)) {
    fMessages.PlanVariableInCommand(name, parameter);
    return kRefused;
  }
  // Categories on one side, a number on the other: one column of the record can't be both.
  if (fContext.designAndDomainVariables.contains(host::GetUpperVarName(name))) {
    fMessages.PlanVariableInDomain(name);
    return kRefused;
  }
  const int index = fContext.FindVariable(name);
  if (index < 0) return kRefused;
  if (!fContext.IsNumeric(index)) {
    fMessages.VariableNotNumeric(name);
    return kRefused;
  }
  return index;
}

}  // namespace

bool ResolvePlan(ParseContext& context, const OrvPlanData& plan, bool hasJointProbFile) {
  PlanResolver resolver(context);
  const bool isResolved = resolver.ResolveGlobalPart(plan) && resolver.ResolveStages(plan, hasJointProbFile);
  context.messages.SetGroupIndex(TavoParseMessages::kNoGroup);
  return isResolved && resolver.CheckCompleteness();
}

}  // namespace tavo
