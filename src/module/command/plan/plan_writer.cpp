#include "module/command/plan/plan_writer.h"

#include <array>
#include <charconv>
#include <cmath>

#include "host/text.h"
#include "module/command/plan/plan_methods.h"

namespace tavo {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsAllowed(char16_t unit) {
  if (unit < 0x20) return unit == '\t' || unit == '\n' || unit == '\r';
  return unit != 0xFFFE && unit != 0xFFFF;
}

/// The text with what XML forbids replaced, and what means something to XML written as references. White
/// space other than blanks would be read as blanks if it stood as it is.
std::string Escaped(std::string_view text) {
  std::u16string units = host::VORNMBGenericToU16(text);
  for (char16_t& unit : units) {
    if (!IsAllowed(unit)) unit = kReplacement;
  }
  std::string escaped;
  for (const char c : host::VORNMBU16ToGeneric(units)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\t':
      case '\n':
      case '\r':
        escaped += "&#" + std::to_string(static_cast<int>(c)) + ";";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

/// The shortest text that reads back to the same number, without an exponent where people expect none.
std::string NumberText(double value) {
  constexpr double kPlainBelow = 1e15;
  const bool isPlain = std::abs(value) < kPlainBelow && value == std::trunc(value);
  std::array<char, 32> text;
  const auto end =
      isPlain ? std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed)
              : std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end.ptr};
}

struct Attribute {
  std::string_view name;
  std::string value;
};

/// Elements, one a line, indented by their depth.
class XmlLines {
 public:
  void Open(std::string_view name, const std::vector<Attribute>& attributes = {}) {
    Start(name, attributes);
    fText += ">\n";
    fOpen.emplace_back(name);
  }
  void Close() {
    const std::string name = fOpen.back();
    fOpen.pop_back();
    Indent();
    fText += "</" + name + ">\n";
  }
  void Empty(std::string_view name, const std::vector<Attribute>& attributes) {
    Start(name, attributes);
    fText += "/>\n";
  }
  void Content(std::string_view name, const std::string& content) {
    Start(name, {});
    fText += ">" + Escaped(content) + "</" + std::string(name) + ">\n";
  }
  void Line(std::string_view text) { fText.append(text) += '\n'; }
  std::string Take() { return std::move(fText); }

 private:
  void Indent() { fText.append(2 * fOpen.size(), ' '); }
  void Start(std::string_view name, const std::vector<Attribute>& attributes) {
    Indent();
    fText.append("<").append(name);
    for (const Attribute& attribute : attributes) {
      fText.append(" ").append(attribute.name).append("=\"") += Escaped(attribute.value) + "\"";
    }
  }

  std::string fText;
  std::vector<std::string> fOpen;
};

class SectionWriter {
 public:
  explicit SectionWriter(XmlLines& lines) : fLines(lines) {}

  void WriteAnalysis(const OrvPlanData& plan) {
    const bool isWith = plan.srsEstimator == PlanSRSEstimator::WR;
    fLines.Open("AnalysisDesign", {{"SRSestimator", isWith ? "wr" : "wor"}});
    for (const OrvPlanStage& stage : plan.stages)
      WriteAnalysisStage(stage);
    WriteSlot("Weight", plan.weight);
    fLines.Close();
  }

  void WriteSample(const OrvPlanData& plan) {
    std::vector<Attribute> attributes;
    if (plan.estimation == PlanEstimation::WR) attributes.push_back({"wrEstimation", "yes"});
    fLines.Open("SampleDesign", attributes);
    for (const OrvPlanStage& stage : plan.stages)
      WriteSampleStage(plan, stage);
    WriteSlot("PreviousWeight", plan.previousWeight);
    WriteSlot("Weight", plan.weight);
    fLines.Close();
  }

 private:
  void OpenStage(std::string_view name, const OrvPlanStage& stage, std::string_view methodAttribute) {
    std::vector<Attribute> attributes = {{"label", stage.label},
                                         {"stageNumber", std::to_string(stage.stageNumber)}};
    if (stage.method != PlanMethod::NO_VALUE) {
      attributes.push_back({methodAttribute, std::string(WordOf(stage.method))});
    }
    fLines.Open(name, attributes);
    WriteList("StrataVarList", stage.strata);
    WriteList("ClusterVarList", stage.clusters);
  }

  void WriteAnalysisStage(const OrvPlanStage& stage) {
    OpenStage("AnalysisStage", stage, "estimationMethod");
    if (stage.valueKind == PlanValueKind::POPSIZE) WriteValue("PopulationSize", stage);
    if (stage.valueKind == PlanValueKind::INCLPROB) WriteValue("IncProb", stage);
    fLines.Close();
  }

  void WriteSampleStage(const OrvPlanData& plan, const OrvPlanStage& stage) {
    OpenStage("SampleStage", stage, "selectionMethod");
    if (stage.valueKind == PlanValueKind::SIZE) WriteValue("InputSampleSize", stage);
    if (stage.valueKind == PlanValueKind::RATE) WriteValue("InputSampleRate", stage);
    if (IsProportionalToSize(stage.method)) WriteMOS(plan);
    WriteSlot("Index", stage.indexVariable);
    WriteSlot("IncProb", stage.inclusionProbVariable);
    WriteSlot("PopulationSize", stage.populationSizeVariable);
    WriteSlot("OutputSampleSize", stage.sampleSizeVariable);
    WriteSlot("OutputSampleRate", stage.sampleRateVariable);
    WriteSlot("Weight", stage.weightVariable);
    WriteSlot("CumulativeWeight", stage.cumulativeWeightVariable);
    fLines.Close();
  }

  void WriteMOS(const OrvPlanData& plan) {
    fLines.Open("MOS", {{"fromData", plan.mosFromData ? "yes" : "no"}});
    WriteVariable(plan.mosVariable);
    WriteBounds(plan.mosMinimum, plan.mosMaximum);
    fLines.Close();
  }

  /// 0 stands for no bound.
  void WriteBounds(double minimum, double maximum) {
    const auto write = [this](std::string_view name, double bound) {
      if (bound == 0) return;
      fLines.Open(name);
      fLines.Empty("SingleValue", {{"value", NumberText(bound)}});
      fLines.Close();
    };
    write("MinSize", minimum);
    write("MaxSize", maximum);
  }

  void WriteVariable(const host::VornVarName& name) {
    if (!name.Empty()) fLines.Empty("Variable", {{"name", name.Text()}});
  }

  void WriteSlot(std::string_view element, const host::VornVarName& name) {
    if (name.Empty()) return;
    fLines.Open(element);
    WriteVariable(name);
    fLines.Close();
  }

  void WriteList(std::string_view element, const std::vector<host::VornVarName>& names) {
    if (names.empty()) return;
    fLines.Open(element);
    for (const host::VornVarName& name : names)
      WriteVariable(name);
    fLines.Close();
  }

  /// An element without a value says no more than none at all, and the definition forbids it.
  void WriteValue(std::string_view element, const OrvPlanStage& stage) {
    if (stage.valueWay == PlanValueWay::NOT_GIVEN) return;
    fLines.Open(element);
    switch (stage.valueWay) {
      case PlanValueWay::BY_VALUE:
        fLines.Empty("SingleValue", {{"value", NumberText(stage.value)}});
        break;
      case PlanValueWay::BY_VARNAME:
        WriteVariable(stage.valueVariable);
        break;
      case PlanValueWay::BY_VARCATLIST:
        WriteMatrix(stage.valueMatrix);
        break;
      case PlanValueWay::NOT_GIVEN:
        break;
    }
    if (stage.valueKind == PlanValueKind::RATE) WriteBounds(stage.minSize, stage.maxSize);
    fLines.Close();
  }

  void WriteMatrix(const host::VarCatList& matrix) {
    fLines.Open("Matrix", {{"numberOfValues", std::to_string(matrix.getMapSize())}});
    fLines.Open("MatrixVarList", {{"numberOfVariables", std::to_string(matrix.copyVarList().size())}});
    for (const std::string& name : matrix.copyVarList())
      WriteVariable(name);
    fLines.Close();
    for (const host::VarCatList::Row& row : matrix.copyMapKeyVal()) {
      fLines.Open("MatrixValue", {{"sizeValue", NumberText(row.value)}});
      for (const std::string& category : row.categories)
        fLines.Empty("Category", {{"value", category}});
      fLines.Close();
    }
    fLines.Close();
  }

  XmlLines& fLines;
};

void WriteHeader(XmlLines& lines, const PlanHeader& header) {
  lines.Open("Header", {{"copyright", header.copyright}, {"description", header.description}});
  lines.Empty("Application", {{"name", header.application}, {"version", header.applicationVersion}});
  lines.Content("Annotation", header.annotation);
  lines.Content("Timestamp", header.timestamp);
  lines.Close();
}

}  // namespace

std::string OrvPlanWriter::Write(const PlanHeader& header, const OrvPlanData* sample,
                                 const OrvPlanData* analysis) {
  XmlLines lines;
  lines.Line("<?xml version=\"1.0\" encoding=\"utf-8\"?>");
  lines.Line("<!DOCTYPE VORNTessel SYSTEM \"vorn-tessel-1.0.dtd\">");
  lines.Open("VORNTessel", {{"version", "12.0"},
                            {"xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance"},
                            {"xsi:noNamespaceSchemaLocation", "vorntessel.xsd"}});
  WriteHeader(lines, header);
  SectionWriter sections(lines);
  if (sample != nullptr) sections.WriteSample(*sample);
  if (analysis != nullptr) sections.WriteAnalysis(*analysis);
  lines.Close();
  return lines.Take();
}

bool OrvPlanWriter::CanHold(std::string_view text) {
  const std::u16string units = host::VORNMBGenericToU16(text);
  for (const char16_t unit : units) {
    if (!IsAllowed(unit)) return false;
  }
  return host::VORNMBU16ToGeneric(units) == text;
}

}  // namespace tavo
