#include "command/plan/plan_reader.h"

#include <charconv>
#include <cmath>

#include "host/command.h"

namespace tavo {

namespace {

/// A number in an attribute; what isn't a number as a whole reads as 0, which no value of a plan may be.
double NumberOf(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return 0;
  const std::size_t last = text.find_last_not_of(" \t\r\n");
  const char* begin = text.data() + first + (text[first] == '+' ? 1 : 0);
  const char* end = text.data() + last + 1;
  double value = 0;
  const auto [stopped, failure] = std::from_chars(begin, end, value);
  return failure == std::errc() && stopped == end && std::isfinite(value) ? value : 0;
}

int IntegerOf(const std::string& text) {
  const double value = NumberOf(text);
  return host::IsValidInteger(value) ? static_cast<int>(value) : 0;
}

PlanMethod MethodOf(const std::string& text) {
  if (text == "equal_wor") return PlanMethod::EQUAL_WOR;
  if (text == "unequal_wor") return PlanMethod::UNEQUAL_WOR;
  if (text == "wr") return PlanMethod::WR;
  return PlanMethod::NO_VALUE;
}

/// A text of the file for a message, cut when it is longer than anybody wants to read.
std::string Quoted(const std::string& text) {
  constexpr std::size_t kLongest = 100;
  if (text.size() <= kLongest) return "\"" + text + "\"";
  std::size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
    --end;  // not inside a character
  return "\"" + text.substr(0, end) + "...\"";
}

}  // namespace

PlanStatus OrvPlanReader::ReadAnalysis(const std::string& path) {
  PlanDocument document;
  if (!document.Parse(path)) {
    Note(PlanStatus::kInvalidFile, document.Error());
    return fStatus;
  }
  fPlan.mode = PlanMode::ANALYSIS_MODE;
  fPlan.file = path;
  const PlanElement design = document.Root().Child("AnalysisDesign");
  if (!design) {
    Note(PlanStatus::kNoAnalysisDesign, path);
    return fStatus;
  }
  ReadStages(design);
  fStagePosition = 0;
  ReadWeight(design);
  if (fStatus == PlanStatus::kOK) ReadSRSEstimator(design);
  return fStatus;
}

void OrvPlanReader::ReadStages(const PlanElement& design) {
  const std::vector<PlanElement> elements = design.Descendants("AnalysisStage");
  if (elements.size() > kMaximumStages) {
    Note(PlanStatus::kTooManyStages, std::to_string(kMaximumStages));
    return;
  }
  fPlan.stages.resize(elements.size());
  for (std::size_t i = 0; i < elements.size(); ++i)
    ReadStage(elements[i], i + 1);
  CheckClusters();
}

void OrvPlanReader::ReadStage(const PlanElement& element, std::size_t position) {
  fStagePosition = position;
  OrvPlanStage& stage = fPlan.stages[position - 1];
  stage.label = element.Attribute("label");
  stage.stageNumber = IntegerOf(element.Attribute("stageNumber"));
  ReadMethod(element, position);
  ReadStrata(element.Child("StrataVarList"), stage);
  ReadClusters(element.Child("ClusterVarList"), stage);
  if (stage.method != PlanMethod::EQUAL_WOR) return;
  if (const PlanElement size = element.Child("PopulationSize")) {
    ReadValueElement(size, PlanValueKind::POPSIZE, stage);
  } else if (const PlanElement probability = element.Child("IncProb")) {
    ReadValueElement(probability, PlanValueKind::INCLPROB, stage);
  }
}

void OrvPlanReader::ReadMethod(const PlanElement& element, std::size_t position) {
  const PlanMethod method = MethodOf(element.Attribute("estimationMethod"));
  fPlan.stages[position - 1].method = method;
  if (method == PlanMethod::UNEQUAL_WOR && position > 1) {
    Note(PlanStatus::kIllegalEstimation, Where("estimationMethod=\"unequal_wor\""));
  }
}

void OrvPlanReader::ReadStrata(const PlanElement& list, OrvPlanStage& stage) {
  for (const PlanElement& variable : list.Descendants("Variable")) {
    if (!variable.HasAttribute("name")) continue;
    const std::string name = variable.Attribute("name");
    EnterPlanVariable(name);
    fPlan.designVariables.insert(host::GetUpperVarName(name));
    stage.strata.emplace_back(name);
  }
}

void OrvPlanReader::ReadClusters(const PlanElement& list, OrvPlanStage& stage) {
  for (const PlanElement& variable : list.Descendants("Variable")) {
    if (!variable.HasAttribute("name")) continue;
    const std::string name = variable.Attribute("name");
    EnterPlanVariable(name);
    fPlan.designVariables.insert(host::GetUpperVarName(name));
    stage.stageVariables.insert(host::GetUpperVarName(name));
    stage.clusters.emplace_back(name);
  }
}

// When an element holds more than one form of its value, the later form in this order wins.
void OrvPlanReader::ReadValueElement(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage) {
  stage.valueKind = kind;
  const PlanElement single = element.Child("SingleValue");
  if (single.HasAttribute("value")) {
    const std::string text = single.Attribute("value");
    stage.value = NumberOf(text);
    CheckValue(stage.value, kind, text);
    stage.valueWay = PlanValueWay::BY_VALUE;
  }
  const PlanElement variable = element.Child("Variable");
  if (variable.HasAttribute("name")) {
    stage.valueVariable = variable.Attribute("name");
    EnterPlanVariable(stage.valueVariable.Text());
    stage.valueWay = PlanValueWay::BY_VARNAME;
  }
  if (const PlanElement matrix = element.Child("Matrix")) {
    stage.valueWay = PlanValueWay::BY_VARCATLIST;
    ReadMatrix(matrix, kind, stage);
  }
}

void OrvPlanReader::ReadMatrix(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage) {
  ReadMatrixVariables(element.Child("MatrixVarList"), stage);
  const std::vector<PlanElement> rows = element.Descendants("MatrixValue");
  const int stated = IntegerOf(element.Attribute("numberOfValues"));
  const std::size_t wanted = stated > 0 ? static_cast<std::size_t>(stated) : 0;
  if (wanted > rows.size()) {
    Note(PlanStatus::kMatrixCategoriesMismatch,
         Where("Matrix states numberOfValues=" + Quoted(std::to_string(stated)) + " and holds " +
               std::to_string(rows.size())));
  }
  for (std::size_t i = 0; i < std::min(wanted, rows.size()); ++i) {
    for (const PlanElement& category : rows[i].Children()) {
      if (category.HasAttribute("value")) stage.valueMatrix.addStringToCatList(category.Attribute("value"));
    }
    const std::string text = rows[i].Attribute("sizeValue");
    if (!stage.valueMatrix.isCatListOK()) {
      Note(PlanStatus::kMatrixCategoriesMismatch, Where("MatrixValue number " + std::to_string(i + 1)));
      stage.valueMatrix.dropOpenRow();
      continue;
    }
    CheckValue(NumberOf(text), kind, text);
    stage.valueMatrix.addCatList(NumberOf(text));
  }
}

// A matrix gives values by the outer design variables: those of its own stage are what it has no value for
// yet.
void OrvPlanReader::ReadMatrixVariables(const PlanElement& list, OrvPlanStage& stage) {
  for (const PlanElement& variable : list.Children()) {
    if (!variable.HasAttribute("name")) continue;
    const std::string name = variable.Attribute("name");
    const std::string upper = host::GetUpperVarName(name);
    if (!host::ValidateVORNName(name))
      Note(PlanStatus::kInvalidName, Where("matrix variable " + Quoted(name)));
    if (!fPlan.designVariables.contains(upper) || stage.stageVariables.contains(upper)) {
      Note(PlanStatus::kMatrixVariableInvalid, Where("matrix variable " + Quoted(name)));
    }
    stage.valueMatrix.addVarName(name);
  }
}

void OrvPlanReader::CheckValue(double value, PlanValueKind kind, const std::string& text) {
  if (kind == PlanValueKind::POPSIZE && !(value > 0 && host::IsValidInteger(value))) {
    Note(PlanStatus::kPopulationSizeIncorrect, Where("value " + Quoted(text)));
  } else if (kind == PlanValueKind::INCLPROB && !(value > 0 && value <= 1)) {
    Note(PlanStatus::kInclusionProbIncorrect, Where("value " + Quoted(text)));
  }
}

void OrvPlanReader::CheckClusters() {
  for (std::size_t i = 0; i + 1 < fPlan.stages.size(); ++i) {
    fStagePosition = i + 1;
    if (fPlan.stages[i].clusters.empty()) Note(PlanStatus::kClustersRequired, Where("ClusterVarList"));
  }
}

void OrvPlanReader::ReadWeight(const PlanElement& design) {
  const PlanElement variable = design.Child("Weight").Child("Variable");
  if (!variable.HasAttribute("name")) return;
  fPlan.weight = variable.Attribute("name");
  EnterPlanVariable(fPlan.weight.Text());
}

void OrvPlanReader::ReadSRSEstimator(const PlanElement& design) {
  const std::string estimator = design.Attribute("SRSestimator");
  if (estimator.empty()) return;
  if (estimator == "wor") {
    fPlan.srsEstimator = PlanSRSEstimator::WOR;
  } else if (estimator == "wr") {
    fPlan.srsEstimator = PlanSRSEstimator::WR;
  } else {
    Note(PlanStatus::kIllegalSRSEstimator, "AnalysisDesign, SRSestimator=" + Quoted(estimator));
  }
}

void OrvPlanReader::EnterPlanVariable(const std::string& name) {
  if (!host::ValidateVORNName(name)) Note(PlanStatus::kInvalidName, Where("variable " + Quoted(name)));
  if (!fPlan.planVariables.insert(host::GetUpperVarName(name)).second) {
    Note(PlanStatus::kRepeatedVariable, Where("variable " + Quoted(name)));
  }
}

void OrvPlanReader::Note(PlanStatus status, std::string detail) {
  if (fStatus != PlanStatus::kOK) return;
  fStatus = status;
  fDetail = std::move(detail);
}

std::string OrvPlanReader::Where(const std::string& what) const {
  if (fStagePosition == 0) return "AnalysisDesign, " + what;
  return "AnalysisStage " + std::to_string(fStagePosition) + ", " + what;
}

}  // namespace tavo
