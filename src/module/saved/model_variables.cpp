#include "module/saved/model_variables.h"

#include "module/input/value_text.h"

namespace tavo {

namespace {

constexpr std::uint8_t kPlainString = 1;  // of the types of print formats

std::string NumberText(const host::OBS* cell, const host::VORN_Format& format) {
  std::string text;
  host::OBS back{};
  // What the format rounds away would make two categories one for a scoring program.
  const bool reads = host::ToString(cell, format, text) == 0 && host::FromString(text, format, &back) == 0;
  const bool isSame = reads && back.number == cell->number && cell->number != host::kSystemMissing;
  return isSame ? text : ShortestText(cell->number);
}

std::string LabelOf(const host::VORN_Variable& variable, const host::OBS* cells) {
  const std::string* label = variable.GetValueLabels().GetLabel(cells, variable.GetType());
  return label == nullptr ? "" : *label;
}

std::string BoundText(double bound, const host::VORN_Variable& variable) {
  host::OBS cell{};
  cell.number = bound;
  return NumberText(&cell, variable.GetFormat());
}

}  // namespace

std::string ScoringText(const host::OBS* cells, const host::VORN_Variable& variable) {
  if (variable.IsNumeric()) return NumberText(cells, variable.GetFormat());
  // A print format that is narrower than the variable would make two categories one.
  const host::VORN_Format& format = variable.GetFormat();
  const bool isNarrow = format.type == kPlainString && format.width < variable.GetType();
  std::string text;
  host::ToString(cells, isNarrow ? host::VORN_Format{kPlainString, variable.GetType(), 0} : format, text);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

OrvPMMLVariable DescribeVariable(const host::VORN_Variable& variable, int index, bool isContinuous) {
  using Level = OrvPMMLVariable::Level;
  const host::MeasurementLevel measured = variable.GetMeasurementLevel();
  // Values of a scale have an order too, once they are taken as categories.
  const bool isOrdered =
      measured == host::MeasurementLevel::kOrdinal || measured == host::MeasurementLevel::kScale;
  OrvPMMLVariable description;
  description.index = index;
  description.name = variable.GetName();
  description.label = variable.GetLabel();
  description.level = isContinuous ? Level::kContinuous : isOrdered ? Level::kOrdinal : Level::kNominal;
  description.type =
      variable.IsNumeric() ? OrvPMMLVariable::DataType::kNumeric : OrvPMMLVariable::DataType::kString;
  return description;
}

void AddCategoryTo(OrvPMMLVariable& description, const host::VORN_Variable& variable,
                   const host::OBS* cells) {
  description.categoryValues.push_back(ScoringText(cells, variable));
  description.categoryLabels.push_back(LabelOf(variable, cells));
}

void AddMissingTo(OrvPMMLVariable& description, const host::VORN_Variable& variable) {
  const host::VORN_MissingValues& missing = variable.GetMissingValues();
  for (const std::vector<host::OBS>& value : missing.values) {
    description.missingValues.push_back(ScoringText(value.data(), variable));
    description.missingLabels.push_back(LabelOf(variable, value.data()));
  }
  description.hasMissingInterval = missing.hasRange;
  if (!missing.hasRange) return;
  description.missingLow = BoundText(missing.rangeLow, variable);
  description.missingHigh = BoundText(missing.rangeHigh, variable);
}

}  // namespace tavo
