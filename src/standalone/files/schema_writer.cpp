#include "standalone/files/csv_writer.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>

#include "standalone/data/cells.h"
#include "standalone/data/format_names.h"

namespace standalone {

namespace {

using host::VORN_Variable;
using nlohmann::ordered_json;

ordered_json ValueJson(const VORN_Variable& variable, const std::vector<host::OBS>& value) {
  if (variable.IsNumeric()) return value.front().number;
  return std::string(UnpaddedText(value.data(), variable.GetType()));
}

/// The end of a range; the largest numbers stand for no end.
ordered_json BoundJson(double bound) {
  if (std::abs(bound) == std::numeric_limits<double>::max()) return nullptr;
  return bound;
}

const char* MeasureText(host::MeasurementLevel level) {
  switch (level) {
    case host::MeasurementLevel::kNominal:
      return "nominal";
    case host::MeasurementLevel::kOrdinal:
      return "ordinal";
    case host::MeasurementLevel::kScale:
      return "scale";
    case host::MeasurementLevel::kUnknown:
      break;
  }
  return "unknown";
}

/// Values declared missing. A blank is missing in a string unless the schema says otherwise.
void AddMissing(const VORN_Variable& variable, ordered_json& field) {
  const host::VORN_MissingValues& missing = variable.GetMissingValues();
  ordered_json values = ordered_json::array();
  bool isBlankMissing = false;
  for (const std::vector<host::OBS>& value : missing.values) {
    const bool isBlank = !variable.IsNumeric() && UnpaddedText(value.data(), variable.GetType()).empty();
    if (isBlank) isBlankMissing = true;
    if (!isBlank) values.push_back(ValueJson(variable, value));
  }
  if (!values.empty()) field["missingValues"] = std::move(values);
  if (missing.hasRange)
    field["x-missing-range"] = {BoundJson(missing.rangeLow), BoundJson(missing.rangeHigh)};
  if (!variable.IsNumeric() && !isBlankMissing) field["x-blank-missing"] = false;
}

void AddLabels(const VORN_Variable& variable, ordered_json& field) {
  ordered_json categories = ordered_json::array();
  for (const auto& [value, label] : variable.GetValueLabels().Pairs())
    categories.push_back({{"value", ValueJson(variable, value)}, {"label", label}});
  if (!categories.empty()) field["categories"] = std::move(categories);
}

ordered_json FieldJson(const VORN_Variable& variable) {
  ordered_json field;
  field["name"] = variable.GetName();
  field["type"] = variable.IsNumeric() ? "number" : "string";
  if (!variable.GetLabel().empty()) field["title"] = variable.GetLabel();
  field["x-format"] = FormatText(variable.GetFormat());
  field["x-measure"] = MeasureText(variable.GetMeasurementLevel());
  AddMissing(variable, field);
  AddLabels(variable, field);
  return field;
}

}  // namespace

std::string SchemaText(const Table& table) {
  std::string text = "{\n  \"fields\": [";
  // A field a line: a message about a schema names the line.
  for (std::size_t i = 0; i < table.ColumnCount(); ++i)
    text += (i == 0 ? "\n    " : ",\n    ") + FieldJson(table.At(i).variable).dump();
  text += "\n  ]";
  if (!table.Documents().empty()) text += ",\n  \"x-documents\": " + ordered_json(table.Documents()).dump(2);
  return text + "\n}\n";
}

}  // namespace standalone
