// tavoreg plan show
#include <iostream>
#include <optional>

#include "module/command/plan/plan_methods.h"
#include "module/command/plan/plan_reader.h"
#include "standalone/cli/commands.h"
#include "standalone/cli/plan_words.h"
#include "standalone/output/json_writer.h"
#include "standalone/session/embedded_session.h"
#include "standalone/text/numbers.h"

namespace standalone {

namespace {

using host::VornVarName;
using tavo::OrvPlanData;
using tavo::OrvPlanReader;
using tavo::OrvPlanStage;
using tavo::PlanStatus;
using tavo::PlanValueKind;
using tavo::PlanValueWay;

/// One section of a plan, as far as it could be read.
struct Section {
  OrvPlanData plan;
  std::string fault;  // what a run, or the drawing of the sample, would refuse; empty for a sound one
};

struct PlanContent {
  std::optional<Section> analysis, sample;
  std::string fault;  // of the file as a whole
  bool isReadable = true;
};

using Entry = PlanStatus (OrvPlanReader::*)(const std::string&);

/// Reads twice: the checked reader hands out nothing of a faulty plan, which is what this command is asked
/// about.
std::optional<Section> ReadSection(const std::string& path, Entry unchecked, Entry checked) {
  Section section;
  if ((OrvPlanReader(section.plan).*unchecked)(path) != PlanStatus::kOK) return std::nullopt;
  OrvPlanData strict;
  OrvPlanReader reader(strict);
  const PlanStatus status = (reader.*checked)(path);
  if (status != PlanStatus::kOK) section.fault = StatusSentence(status, reader.Detail());
  return section;
}

PlanContent ReadPlan(const std::string& path) {
  PlanContent content;
  OrvPlanData plan;
  OrvPlanReader reader(plan);
  const PlanStatus status = reader.ReadAnalysisUnchecked(path);
  content.isReadable = status != PlanStatus::kInvalidFile;
  if (!content.isReadable) {
    content.fault = StatusSentence(status, reader.Detail());
    return content;
  }
  content.analysis = ReadSection(path, &OrvPlanReader::ReadAnalysisUnchecked, &OrvPlanReader::ReadAnalysis);
  content.sample = ReadSection(path, &OrvPlanReader::ReadSampleUnchecked, &OrvPlanReader::ReadSample);
  if (!content.analysis) content.fault = StatusSentence(status, reader.Detail());
  return content;
}

std::vector<std::string> FaultsOf(const PlanContent& content) {
  std::vector<std::string> faults;
  if (!content.fault.empty()) faults.push_back(content.fault);
  for (const auto* section : {&content.analysis, &content.sample}) {
    if (section->has_value() && !(*section)->fault.empty()) faults.push_back((*section)->fault);
  }
  return faults;
}

struct OutputVariable {
  const char* label;
  const char* key;
  VornVarName OrvPlanStage::*name;
};

constexpr OutputVariable kOutputVariables[] = {
    {"Writes unit numbers to", "index", &OrvPlanStage::indexVariable},
    {"Writes probabilities to", "inclusion_probability", &OrvPlanStage::inclusionProbVariable},
    {"Writes populations to", "population_size", &OrvPlanStage::populationSizeVariable},
    {"Writes sample sizes to", "sample_size", &OrvPlanStage::sampleSizeVariable},
    {"Writes rates to", "sample_rate", &OrvPlanStage::sampleRateVariable},
    {"Writes weights to", "weight", &OrvPlanStage::weightVariable},
    {"Writes total weights to", "cumulative_weight", &OrvPlanStage::cumulativeWeightVariable}};

// ---- text ----

/// Lines of labels and values, the values under each other.
class Lines {
 public:
  explicit Lines(std::ostream& out) : fOut(out) {}
  void Heading(const std::string& text) { fOut << '\n' << text << '\n'; }
  void Put(int depth, const std::string& label, const std::string& value) {
    fOut << LabelledLine(depth, label, value);
  }
  void PutName(int depth, const std::string& label, const VornVarName& name) {
    if (!name.Empty()) Put(depth, label, name.Text());
  }

 private:
  std::ostream& fOut;
};

std::string JoinedNames(const std::vector<std::string>& names) {
  return ListText({names.begin(), names.end()});
}

void PutMatrix(Lines& lines, const host::VarCatList& matrix) {
  for (const host::VarCatList::Row& row : matrix.copyMapKeyVal())
    lines.Put(3, JoinedNames(row.categories), ShortestText(row.value));
}

void PutValue(Lines& lines, const OrvPlanStage& stage) {
  const char* label = "";
  switch (stage.valueKind) {
    case PlanValueKind::kNone:
      return;
    case PlanValueKind::SIZE:
      label = "Sample size";
      break;
    case PlanValueKind::RATE:
      label = "Sampling rate";
      break;
    case PlanValueKind::POPSIZE:
      label = "Population size";
      break;
    case PlanValueKind::INCLPROB:
      label = "Inclusion probability";
      break;
  }
  switch (stage.valueWay) {
    case PlanValueWay::NOT_GIVEN:
      return lines.Put(2, label, "not given");
    case PlanValueWay::BY_VALUE:
      return lines.Put(2, label, ShortestText(stage.value));
    case PlanValueWay::BY_VARNAME:
      return lines.Put(2, label, "variable " + stage.valueVariable.Text());
    case PlanValueWay::BY_VARCATLIST:
      lines.Put(2, label,
                "matrix of " + std::to_string(stage.valueMatrix.getMapSize()) + " values by " +
                    JoinedNames(stage.valueMatrix.copyVarList()));
      PutMatrix(lines, stage.valueMatrix);
  }
}

void PutStage(Lines& lines, const OrvPlanStage& stage, const char* methodLabel) {
  lines.Put(1, "Stage " + std::to_string(stage.stageNumber), stage.label);
  lines.Put(2, methodLabel, MethodText(stage.method));
  lines.Put(2, "Strata", ListText(stage.strata));
  lines.Put(2, "Clusters", ListText(stage.clusters));
  PutValue(lines, stage);
  if (stage.minSize != 0) lines.Put(2, "Smallest sample size", ShortestText(stage.minSize));
  if (stage.maxSize != 0) lines.Put(2, "Largest sample size", ShortestText(stage.maxSize));
  for (const OutputVariable& output : kOutputVariables)
    lines.PutName(2, output.label, stage.*output.name);
}

void PutAnalysis(Lines& lines, const OrvPlanData& plan) {
  lines.Heading("Analysis");
  lines.Put(1, "Weight", plan.weight.Empty() ? "not given" : plan.weight.Text());
  const bool isWith = plan.srsEstimator == tavo::PlanSRSEstimator::WR;
  lines.Put(1, "Design effects compare to",
            std::string("simple random sampling ") + (isWith ? "with replacement" : "without replacement"));
  for (const OrvPlanStage& stage : plan.stages)
    PutStage(lines, stage, "Estimator");
}

void PutSample(Lines& lines, const OrvPlanData& plan) {
  lines.Heading("Sample");
  lines.PutName(1, "Weight", plan.weight);
  lines.PutName(1, "Previous weight", plan.previousWeight);
  if (plan.estimation == tavo::PlanEstimation::WR) lines.Put(1, "Estimation", "with replacement");
  if (plan.mosFromData) lines.Put(1, "Measure of size", "counted in the data");
  lines.PutName(1, "Measure of size", plan.mosVariable);
  if (plan.mosMinimum != 0) lines.Put(1, "Smallest measure", ShortestText(plan.mosMinimum));
  if (plan.mosMaximum != 0) lines.Put(1, "Largest measure", ShortestText(plan.mosMaximum));
  for (const OrvPlanStage& stage : plan.stages)
    PutStage(lines, stage, "Selection");
}

void ShowAsText(std::ostream& out, const std::string& path, const PlanContent& content) {
  Lines lines(out);
  lines.Put(0, "Plan file", path);
  if (content.analysis) PutAnalysis(lines, content.analysis->plan);
  if (content.sample) PutSample(lines, content.sample->plan);
}

// ---- JSON ----

void WriteName(JsonWriter& json, std::string_view key, const VornVarName& name) {
  if (!name.Empty()) json.TextMember(key, name.Text());
}

std::vector<std::string> TextsOf(const std::vector<VornVarName>& names) {
  std::vector<std::string> texts;
  for (const VornVarName& name : names)
    texts.push_back(name.Text());
  return texts;
}

void WriteMatrix(JsonWriter& json, const host::VarCatList& matrix) {
  json.TextsMember("variables", matrix.copyVarList());
  json.Key("rows");
  json.BeginArray(true);
  for (const host::VarCatList::Row& row : matrix.copyMapKeyVal()) {
    json.BeginObject();
    json.TextsMember("categories", row.categories);
    json.NumberMember("value", row.value);
    json.EndObject();
  }
  json.EndArray();
}

void WriteValue(JsonWriter& json, const OrvPlanStage& stage) {
  constexpr const char* kKeys[] = {"", "size", "rate", "population", "probability"};
  if (stage.valueKind == PlanValueKind::kNone) return;
  json.Key(kKeys[static_cast<int>(stage.valueKind)]);
  json.BeginObject();
  if (stage.valueWay == PlanValueWay::BY_VALUE) json.NumberMember("value", stage.value);
  if (stage.valueWay == PlanValueWay::BY_VARNAME) json.TextMember("variable", stage.valueVariable.Text());
  if (stage.valueWay == PlanValueWay::BY_VARCATLIST) WriteMatrix(json, stage.valueMatrix);
  if (stage.minSize != 0) json.NumberMember("minimum", stage.minSize);
  if (stage.maxSize != 0) json.NumberMember("maximum", stage.maxSize);
  json.EndObject();
}

void WriteStage(JsonWriter& json, const OrvPlanStage& stage) {
  json.BeginObject(true);
  json.NumberMember("number", stage.stageNumber);
  json.TextMember("label", stage.label);
  json.TextMember("method", tavo::WordOf(stage.method));
  json.TextsMember("strata", TextsOf(stage.strata));
  json.TextsMember("clusters", TextsOf(stage.clusters));
  WriteValue(json, stage);
  for (const OutputVariable& output : kOutputVariables)
    WriteName(json, output.key, stage.*output.name);
  json.EndObject();
}

void WriteMeasure(JsonWriter& json, const OrvPlanData& plan) {
  if (!plan.mosFromData && plan.mosVariable.Empty()) return;
  json.Key("measure_of_size");
  json.BeginObject();
  if (plan.mosFromData) json.TextMember("source", "data");
  WriteName(json, "variable", plan.mosVariable);
  if (plan.mosMinimum != 0) json.NumberMember("minimum", plan.mosMinimum);
  if (plan.mosMaximum != 0) json.NumberMember("maximum", plan.mosMaximum);
  json.EndObject();
}

void WriteSection(JsonWriter& json, const char* key, const OrvPlanData& plan) {
  json.Key(key);
  json.BeginObject(true);
  WriteName(json, "weight", plan.weight);
  WriteName(json, "previous_weight", plan.previousWeight);
  if (plan.mode == tavo::PlanMode::ANALYSIS_MODE) {
    json.TextMember("srs_estimator", plan.srsEstimator == tavo::PlanSRSEstimator::WR ? "wr" : "wor");
  } else if (plan.estimation == tavo::PlanEstimation::WR) {
    json.TextMember("estimation", "wr");
  }
  WriteMeasure(json, plan);
  json.Key("stages");
  json.BeginArray(true);
  for (const OrvPlanStage& stage : plan.stages)
    WriteStage(json, stage);
  json.EndArray();
  json.EndObject();
}

void ShowAsJson(std::ostream& out, const std::string& path, const PlanContent& content) {
  JsonWriter json(out);
  json.BeginObject(true);
  json.TextMember("tavoreg", TAVOREG_VERSION);
  json.TextMember("file", path);
  if (content.analysis) WriteSection(json, "analysis", content.analysis->plan);
  if (content.sample) WriteSection(json, "sample", content.sample->plan);
  json.TextsMember("faults", FaultsOf(content));
  json.EndObject();
  out << '\n';
}

}  // namespace

int ShowPlan(const PlanShowArguments& arguments) {
  const PlanContent content = ReadPlan(arguments.plan);
  const std::vector<std::string> faults = FaultsOf(content);
  for (const std::string& fault : faults)
    SessionScope::Current().AddTextMessage(true, "Plan file problem...", fault);
  if (!content.isReadable) return kBadCall;
  if (arguments.format == OutputFormat::kJson) {
    ShowAsJson(std::cout, arguments.plan, content);
  } else {
    ShowAsText(std::cout, arguments.plan, content);
  }
  std::cout.flush();
  if (!std::cout) return kOutputFailed;
  return faults.empty() ? kRan : kCommandFailed;
}

}  // namespace standalone
