#include "module/command/plan/section_reader.h"

#include <charconv>
#include <cmath>

#include "host/command.h"

namespace tavo {

namespace {

int IntegerOf(const std::string& text) {
  const double value = NumberOfText(text);
  return host::IsValidInteger(value) ? static_cast<int>(value) : 0;
}

}  // namespace

double NumberOfText(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return 0;
  const std::size_t last = text.find_last_not_of(" \t\r\n");
  // from_chars reads the same in every locale, but knows no plus sign.
  const char* begin = text.data() + first + (text[first] == '+' ? 1 : 0);
  const char* end = text.data() + last + 1;
  double value = 0;
  const auto [stopped, failure] = std::from_chars(begin, end, value);
  return failure == std::errc() && stopped == end && std::isfinite(value) ? value : 0;
}

bool IsCount(double value) {
  constexpr double kLargest = 9007199254740992;
  return value >= 0 && value <= kLargest && value == std::floor(value);
}

// Stages that are too many are none of this format: nothing that they say could be trusted.
bool PlanSectionReader::MakeStages(std::size_t count) {
  fStagePosition = 0;
  if (count > kMaximumStages) {
    if (fStatus == PlanStatus::kOK) fDetail = std::to_string(kMaximumStages);
    if (fStatus == PlanStatus::kOK) fStatus = PlanStatus::kTooManyStages;
    return false;
  }
  fPlan.stages.resize(count);
  return true;
}

void PlanSectionReader::ReadStageHead(const PlanElement& element, OrvPlanStage& stage) {
  stage.label = element.Attribute("label");
  stage.stageNumber = IntegerOf(element.Attribute("stageNumber"));
}

void PlanSectionReader::ReadVariableLists(const PlanElement& element, OrvPlanStage& stage) {
  EnterDesignVariables(element.Child("StrataVarList"), stage.strata, nullptr);
  EnterDesignVariables(element.Child("ClusterVarList"), stage.clusters, &stage.stageVariables);
}

void PlanSectionReader::EnterDesignVariables(const PlanElement& list, std::vector<host::VornVarName>& names,
                                             std::set<std::string>* stageVariables) {
  for (const PlanElement& variable : list.Descendants("Variable")) {
    if (!variable.HasAttribute("name")) continue;
    const std::string name = variable.Attribute("name");
    EnterPlanVariable(name);
    fPlan.designVariables.insert(host::GetUpperVarName(name));
    if (stageVariables != nullptr) stageVariables->insert(host::GetUpperVarName(name));
    names.emplace_back(name);
  }
}

void PlanSectionReader::EnterPlanVariable(const std::string& name) {
  if (!host::ValidateVORNName(name)) Note(PlanStatus::kInvalidName, "variable " + Quoted(name));
  if (!fPlan.planVariables.insert(host::GetUpperVarName(name)).second) {
    Note(PlanStatus::kRepeatedVariable, "variable " + Quoted(name));
  }
}

void PlanSectionReader::ReadVariable(const PlanElement& element, host::VornVarName& name) {
  const PlanElement variable = element.Child("Variable");
  if (!variable.HasAttribute("name")) return;
  name = variable.Attribute("name");
  EnterPlanVariable(name.Text());
}

// When an element holds more than one form of its value, the later form in this order wins.
void PlanSectionReader::ReadValueElement(const PlanElement& element, PlanValueKind kind,
                                         OrvPlanStage& stage) {
  stage.valueKind = kind;
  const PlanElement single = element.Child("SingleValue");
  if (single.HasAttribute("value")) {
    const std::string text = single.Attribute("value");
    stage.value = NumberOfText(text);
    CheckValue(stage.value, kind, text);
    stage.valueWay = PlanValueWay::BY_VALUE;
  }
  if (element.Child("Variable").HasAttribute("name")) {
    ReadVariable(element, stage.valueVariable);
    stage.valueWay = PlanValueWay::BY_VARNAME;
  }
  if (const PlanElement matrix = element.Child("Matrix")) {
    stage.valueWay = PlanValueWay::BY_VARCATLIST;
    ReadMatrix(matrix, kind, stage);
  }
}

void PlanSectionReader::ReadMatrix(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage) {
  ReadMatrixVariables(element.Child("MatrixVarList"), stage);
  ReadMatrixRows(element, kind, stage);
}

// A matrix gives values by the outer design variables: those of its own stage are what it has no value for
// yet.
void PlanSectionReader::ReadMatrixVariables(const PlanElement& list, OrvPlanStage& stage) {
  for (const PlanElement& variable : list.Children()) {
    if (!variable.HasAttribute("name")) continue;
    const std::string name = variable.Attribute("name");
    const std::string upper = host::GetUpperVarName(name);
    if (!host::ValidateVORNName(name)) Note(PlanStatus::kInvalidName, "matrix variable " + Quoted(name));
    if (!fPlan.designVariables.contains(upper) || stage.stageVariables.contains(upper)) {
      Note(PlanStatus::kMatrixVariableInvalid, "matrix variable " + Quoted(name));
    }
    stage.valueMatrix.addVarName(name);
  }
}

void PlanSectionReader::ReadMatrixRows(const PlanElement& element, PlanValueKind kind, OrvPlanStage& stage) {
  const std::vector<PlanElement> rows = element.Descendants("MatrixValue");
  const int stated = IntegerOf(element.Attribute("numberOfValues"));
  const std::size_t wanted = stated > 0 ? static_cast<std::size_t>(stated) : 0;
  if (wanted > rows.size()) {
    Note(PlanStatus::kMatrixCategoriesMismatch,
         "Matrix states numberOfValues=" + Quoted(std::to_string(stated)) + " and holds " +
             std::to_string(rows.size()));
  }
  for (std::size_t i = 0; i < std::min(wanted, rows.size()); ++i) {
    for (const PlanElement& category : rows[i].Children()) {
      if (category.HasAttribute("value")) stage.valueMatrix.addStringToCatList(category.Attribute("value"));
    }
    const std::string text = rows[i].Attribute("sizeValue");
    if (!stage.valueMatrix.isCatListOK()) {
      Note(PlanStatus::kMatrixCategoriesMismatch, "MatrixValue number " + std::to_string(i + 1));
      stage.valueMatrix.dropOpenRow();
      continue;
    }
    CheckValue(NumberOfText(text), kind, text);
    stage.valueMatrix.addCatList(NumberOfText(text));
  }
}

void PlanSectionReader::CheckValue(double value, PlanValueKind kind, const std::string& text) {
  const auto require = [&](bool passes, PlanStatus status) {
    if (!passes) Note(status, "value " + Quoted(text));
  };
  switch (kind) {
    case PlanValueKind::SIZE:
      return require(value > 0 && IsCount(value), PlanStatus::kSampleSizeNotPositive);
    case PlanValueKind::RATE:
      return require(value > 0, PlanStatus::kSampleRateNotPositive);
    case PlanValueKind::POPSIZE:
      return require(value > 0 && IsCount(value), PlanStatus::kPopulationSizeIncorrect);
    case PlanValueKind::INCLPROB:
      return require(value > 0 && value <= 1, PlanStatus::kInclusionProbIncorrect);
    case PlanValueKind::kNone:
      break;
  }
}

void PlanSectionReader::CheckClusters() {
  for (std::size_t i = 0; i + 1 < fPlan.stages.size(); ++i) {
    fStagePosition = i + 1;
    if (fPlan.stages[i].clusters.empty()) Note(PlanStatus::kClustersRequired, "ClusterVarList");
  }
}

void PlanSectionReader::Note(PlanStatus status, const std::string& what) {
  if (fStatus != PlanStatus::kOK) return;
  fStatus = status;
  const std::string place = fStagePosition == 0 ? fSection : fStage + (" " + std::to_string(fStagePosition));
  fDetail = place + ", " + what;
}

std::string PlanSectionReader::Quoted(const std::string& text) {
  constexpr std::size_t kLongest = 100;
  if (text.size() <= kLongest) return "\"" + text + "\"";
  std::size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)  // not inside a character
    --end;
  return "\"" + text.substr(0, end) + "...\"";
}

}  // namespace tavo
