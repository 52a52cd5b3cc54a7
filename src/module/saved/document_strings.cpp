#include "module/saved/document_strings.h"

#include <cassert>

namespace tavo {

namespace {

// A line of a document holds 80 bytes in the host's case files. The first opens with the word, the others
// with as many blanks, so 71 bytes of each are left for text.
constexpr const char* kPrefix = "document ";
constexpr std::size_t kLineWidth = 80;

std::string NamesOf(const host::VORN_DataSource& source, const std::vector<int>& variables) {
  std::string names;
  for (const int variable : variables)
    names += source.GetVariable(static_cast<unsigned>(variable))->GetName() + " ";
  return names;
}

// These texts, as all of the document, are part of the file and not of the catalogue of messages: they keep
// their words and their spelling in every language.
const char* EstimatorText(StageEstimator estimator) {
  switch (estimator) {
    case StageEstimator::kEqualWor:
      return "Equal probability sampling without replacement";
    case StageEstimator::kUnequalWor:
      return "Unequal probability sampling without replacement(using joint inclusion probabilitites)";
    default:
      return "Sampling with replacement";
  }
}

std::string NumberText(double value) {
  host::OBS cell{};
  cell.number = value;
  std::string text;
  // More decimals than any plan needs, without the zeros at the end: a size reads as 1200 and a rate as 0.25.
  constexpr host::VORN_Format kFormat = {5, 40, 10};
  host::ToString(&cell, kFormat, text);
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

/// Empty for a stage without values.
std::string ParameterLine(const DesignStage& stage, const host::VORN_DataSource& source) {
  const auto from = [&](int variable) {
    return "Obtained from variable " + source.GetVariable(static_cast<unsigned>(variable))->GetName();
  };
  const std::string matrix = "Obtained from matrix specification";
  const std::string probability = "Inclusion Probability: ";
  const std::string size = "Population Size: ";
  switch (stage.InclusionType()) {
    case InclProbType::kInclProbValue:
      return probability + NumberText(stage.InclusionProbability());
    case InclProbType::kInclProbVariable:
      return probability + from(stage.InclusionProbabilityVariable());
    case InclProbType::kInclProbMatrix:
      return probability + matrix;
    case InclProbType::kPopSizeValue:
      return size + NumberText(stage.PopulationSize());
    case InclProbType::kPopSizeVariable:
      return size + from(stage.PopulationSizeVariable());
    case InclProbType::kPopSizeMatrix:
      return size + matrix;
    case InclProbType::kNone:
      break;
  }
  return "";
}

void AddStage(OrvRegDocumentStrings& lines, const PlanStageSpec& spec, std::size_t number,
              const host::VORN_DataSource& source) {
  lines.AddString("Stage " + std::to_string(number) + (spec.label.empty() ? "" : ": " + spec.label));
  if (!spec.stage.strata.empty()) {
    lines.AddString("Stratification Variables: " + NamesOf(source, spec.stage.strata));
  }
  if (!spec.stage.clusters.empty())
    lines.AddString("Cluster Variables: " + NamesOf(source, spec.stage.clusters));
  lines.AddString(std::string("Estimator Assumption: ") + EstimatorText(spec.stage.estimator));
  const std::string parameter = ParameterLine(spec.stage, source);
  if (!parameter.empty()) lines.AddString(parameter);
}

/// Where the piece that starts at `begin` ends: `width` bytes on, or before the character that stands there.
std::size_t PieceEnd(const std::string& text, std::size_t begin, std::size_t width) {
  if (text.size() - begin <= width) return text.size();
  std::size_t end = begin + width;
  while (end > begin && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
    --end;
  return end > begin ? end : begin + width;  // bytes without a start are no text; they are cut anywhere
}

std::string ModelLine(const TavoValidSpecs& specs, const host::VORN_Variable& dependent,
                      const std::vector<std::string>& effectNames) {
  std::string line =
      "Model: " + (dependent.GetLabel().empty() ? dependent.GetName() : dependent.GetLabel()) + " = ";
  if (specs.UsesIntercept()) line += "(Intercept)";
  for (std::size_t i = 0; i < effectNames.size(); ++i) {
    line += (i > 0 || specs.UsesIntercept() ? " + " : "") + effectNames[i];
  }
  return line;
}

}  // namespace

std::size_t OrvRegDocumentStrings::AddString(std::string text) {
  fStrings.push_back(std::move(text));
  return fStrings.back().size();
}

std::size_t OrvRegDocumentStrings::ChunkCount(std::size_t index, std::size_t width) const {
  assert(width > 0);
  if (index >= fStrings.size()) return 0;
  const std::string& text = fStrings[index];
  std::size_t count = 0;
  for (std::size_t begin = 0; begin < text.size(); begin = PieceEnd(text, begin, width))
    ++count;
  return count;
}

std::string OrvRegDocumentStrings::ChunkLine(std::size_t index, std::size_t number, std::size_t width) const {
  if (number >= ChunkCount(index, width)) return "";
  const std::string& text = fStrings[index];
  std::size_t begin = 0;
  for (std::size_t piece = 0; piece < number; ++piece)
    begin = PieceEnd(text, begin, width);
  return text.substr(begin, PieceEnd(text, begin, width) - begin);
}

OrvRegDocumentStrings DocumentLines(const TavoValidSpecs& specs, const host::VORN_DataSource& source,
                                    const std::string& reference,
                                    const std::vector<std::string>& effectNames) {
  const auto variable = [&](int index) -> const host::VORN_Variable& {
    return *source.GetVariable(static_cast<unsigned>(index));
  };
  OrvRegDocumentStrings lines;
  lines.AddString("Plan File: " + specs.PlanFileName());
  if (specs.WeightVariable() >= 0)
    lines.AddString("Weight Variable: " + variable(specs.WeightVariable()).GetName());
  for (std::size_t k = 0; k < specs.Stages().size(); ++k)
    AddStage(lines, specs.Stages()[k], k + 1, source);
  const host::VORN_Variable& dependent = variable(specs.DependentVariable());
  lines.AddString("Dependent Variable: " + dependent.GetName() + " (reference category = " + reference + ")");
  if (!effectNames.empty()) lines.AddString(ModelLine(specs, dependent, effectNames));
  if (specs.DomainVariable() >= 0) {
    lines.AddString("Subpopulation: " + variable(specs.DomainVariable()).GetName() + " = " +
                    TavoValidSpecs::ValueText(specs.DomainValue(), true));
  }
  return lines;
}

host::DSDocument BuildDocument(const OrvRegDocumentStrings& lines) {
  const std::string prefix = kPrefix;
  const std::string blanks(prefix.size(), ' ');
  const std::size_t width = kLineWidth - prefix.size();
  host::DSDocument document;
  for (std::size_t i = 0; i < lines.Count(); ++i) {
    for (std::size_t piece = 0; piece < lines.ChunkCount(i, width); ++piece) {
      // Of the whole document, not of the string: an empty first string has no piece to carry the word.
      const bool isFirst = document.Lines().empty();
      document.AddLine((isFirst ? prefix : blanks) + lines.ChunkLine(i, piece, width));
    }
  }
  if (document.Lines().empty()) return document;
  const host::CalendarDate today = host::BCLOCK();
  document.Day(today.day);
  document.Month(today.month);
  document.Year(today.year);
  document.AddDateLine();
  return document;
}

}  // namespace tavo
