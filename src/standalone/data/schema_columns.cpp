#include "standalone/data/schema_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

#include "standalone/data/cell_number.h"
#include "standalone/data/cells.h"
#include "standalone/data/format_names.h"
#include "standalone/text/ascii.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

using Kind = ColumnRule::Kind;
using Type = SchemaField::Type;

constexpr int kUsualWidth = 8;  // of a number's format
constexpr int kWidestNumber = 40;
constexpr int kListedNames = 10;

std::string FieldError(const TableSchema& schema, const SchemaField& field, std::string_view message) {
  return fmt::format("{}:{}: field \"{}\": {}", schema.path, field.line, Shortened(field.name, 64), message);
}

std::string FirstNames(const std::vector<std::string>& names) {
  const std::size_t count = std::min<std::size_t>(names.size(), kListedNames);
  std::string list;
  for (std::size_t i = 0; i < count; ++i)
    list += (i == 0 ? "" : ", ") + Shortened(names[i], 64);
  return names.size() > count ? list + ", ..." : list;
}

/// The kind that type and format ask for; `error` when they contradict each other.
Kind KindOf(const SchemaField& field, std::string& error) {
  const bool isText = field.type == Type::kString;
  const bool isNumber = field.type == Type::kNumber || field.type == Type::kInteger;
  if (field.format && field.format->IsString() && isNumber)
    error = "x-format is for strings, but the type is for numbers";
  if (field.format && !field.format->IsString() && isText)
    error = "x-format is for numbers, but the type is string";
  if (field.type == Type::kInteger) return Kind::kInteger;
  if (isText || (field.format && field.format->IsString())) return Kind::kText;
  return isNumber || field.format ? Kind::kNumber : Kind::kGuess;
}

/// Bytes of the widest text among the values that the field names.
std::size_t WidestValue(const SchemaField& field) {
  std::size_t width = 1;
  for (const SchemaValue& value : field.missingValues)
    width = std::max(width, value.text.size());
  for (const SchemaCategory& category : field.categories)
    width = std::max(width, category.value.text.size());
  return width;
}

std::string Shown(const SchemaValue& value) {
  return value.isNumber ? fmt::format("{}", value.number) : fmt::format("\"{}\"", Shortened(value.text, 40));
}

/// Turns a schema's value into a value of the variable; false when it doesn't fit its type.
bool ToCells(const SchemaValue& value, const host::VORN_Variable& variable, std::vector<host::OBS>& cells) {
  if (!variable.IsNumeric()) {
    if (value.isNumber) return false;
    cells = TextValue(value.text, variable.GetType());
    return true;
  }
  CellNumber number{value.number, 0};
  if (!value.isNumber && !ReadNumber(value.text, number)) return false;
  cells = NumberValue(number.value);
  return true;
}

std::string Misfit(const SchemaValue& value, const host::VORN_Variable& variable) {
  if (variable.IsNumeric()) {
    return fmt::format(
        "the value {} is no number, but the variable is numeric; texts that stand for a missing number "
        "belong into \"missingValues\" at the top of the schema",
        Shown(value));
  }
  return fmt::format("the value {} is a number, but the variable is a string; put it in quotes",
                     Shown(value));
}

/// Texts that are missing in any case and need no declaration.
bool IsEmptyText(const SchemaValue& value) {
  const std::string_view text = Trimmed(value.text);
  return !value.isNumber && (text.empty() || text == "." || text == "NA");
}

std::string ApplyMissing(const SchemaField& field, host::VORN_Variable& variable) {
  if (field.blankMissing && variable.IsNumeric())
    return "x-blank-missing is for strings, but the variable is numeric";
  host::VORN_MissingValues missing;
  // What was guessed from the file holds unless the schema says otherwise.
  if (field.blankMissing.value_or(true)) missing = variable.GetMissingValues();  // a blank, for strings
  for (const SchemaValue& value : field.missingValues) {
    if (variable.IsNumeric() ? IsEmptyText(value) : Trimmed(value.text).empty() && !value.isNumber) continue;
    std::vector<host::OBS> cells;
    if (!ToCells(value, variable, cells)) return Misfit(value, variable);
    missing.values.push_back(std::move(cells));
  }
  if (field.missingRange) {
    if (!variable.IsNumeric()) return "x-missing-range is for numbers, but the variable is a string";
    missing.hasRange = true;
    std::tie(missing.rangeLow, missing.rangeHigh) = *field.missingRange;
  }
  variable.SetMissingValues(std::move(missing));
  return {};
}

std::string ApplyLabels(const SchemaField& field, host::VORN_Variable& variable) {
  host::VORN_ValueLabelMap labels;
  for (const SchemaCategory& category : field.categories) {
    std::vector<host::OBS> cells;
    if (!ToCells(category.value, variable, cells)) return Misfit(category.value, variable);
    if (!category.label.empty()) labels.AddPair(std::move(cells), category.label);
  }
  variable.SetValueLabels(std::move(labels));
  return {};
}

host::MeasurementLevel MeasureOf(const SchemaField& field, const host::VORN_Variable& variable) {
  if (field.measure) return *field.measure;
  if (field.categoriesOrdered.value_or(false)) return host::MeasurementLevel::kOrdinal;
  if (field.categoriesOrdered || !field.categories.empty()) return host::MeasurementLevel::kNominal;
  return variable.GetMeasurementLevel();
}

}  // namespace

FieldMatch MatchFields(const TableSchema& schema, const std::vector<std::string>& headers,
                       const std::vector<std::string>& names) {
  std::unordered_map<std::string, std::size_t> byHeader;
  std::unordered_map<std::string, std::size_t> byName;
  for (std::size_t i = 0; i < headers.size(); ++i) {
    byHeader.emplace(headers[i], i);  // the first of equal ones stands
    byName.emplace(host::GetUpperVarName(names[i]), i);
  }
  FieldMatch match;
  match.fields.resize(headers.size(), nullptr);
  for (const SchemaField& field : schema.fields) {
    auto found = byHeader.find(field.name);
    if (found == byHeader.end()) {
      found = byName.find(host::GetUpperVarName(field.name));
      if (found == byName.end()) {
        match.error = FieldError(
            schema, field, fmt::format("the data file has no such column; it has {}", FirstNames(headers)));
        return match;
      }
    }
    const SchemaField*& place = match.fields[found->second];
    if (place != nullptr) {
      match.error = FieldError(
          schema, field,
          fmt::format("its column is that of field \"{}\"; remove one of them", Shortened(place->name, 64)));
      return match;
    }
    place = &field;
  }
  return match;
}

SchemaRules RulesFrom(const TableSchema& schema, const FieldMatch& match,
                      const std::vector<std::string>& names) {
  SchemaRules result;
  for (const std::string& text : schema.missingTexts) {
    const std::string_view trimmed = Trimmed(text);
    if (!trimmed.empty()) result.rules.missingTexts.emplace_back(trimmed);
  }
  result.rules.columns.resize(names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    ColumnRule& rule = result.rules.columns[i];
    rule.name = names[i];
    const SchemaField* field = match.fields[i];
    if (field == nullptr) continue;
    std::string error;
    rule.kind = KindOf(*field, error);
    rule.leastWidth = WidestValue(*field);
    if (field->format && field->format->IsString())
      rule.mostWidth = static_cast<std::size_t>(FormatBytes(*field->format));
    if (rule.mostWidth != 0 && rule.leastWidth > rule.mostWidth) {
      error = fmt::format("a value of {} bytes doesn't fit the x-format", rule.leastWidth);
    }
    if (rule.kind != Kind::kNumber && rule.kind != Kind::kInteger && rule.leastWidth > kWidestText) {
      error = fmt::format("a value of {} bytes is too wide; a variable holds at most {}", rule.leastWidth,
                          kWidestText);
    }
    if (error.empty()) continue;
    result.error = FieldError(schema, *field, error);
    return result;
  }
  return result;
}

host::VORN_Variable VariableOf(const std::string& name, const ReadColumn& column) {
  host::VORN_Variable variable(name, column.width);
  if (column.width == 0) {
    const int width = std::clamp(std::max(column.longest, column.decimals + 2), kUsualWidth, kWidestNumber);
    variable.SetFormat({5, width, column.decimals});
    return variable;
  }
  variable.SetMeasurementLevel(host::MeasurementLevel::kNominal);
  host::VORN_MissingValues missing;
  missing.values.push_back(TextValue("", column.width));
  variable.SetMissingValues(std::move(missing));
  return variable;
}

std::string ApplyField(const TableSchema& schema, const SchemaField& field, host::VORN_Variable& variable) {
  if (field.title) variable.SetLabel(*field.title);
  if (field.type == Type::kInteger) variable.SetFormat({5, variable.GetFormat().width, 0});
  if (field.format) variable.SetFormat(*field.format);
  std::string error = ApplyMissing(field, variable);
  if (error.empty()) error = ApplyLabels(field, variable);
  variable.SetMeasurementLevel(MeasureOf(field, variable));
  return error.empty() ? error : FieldError(schema, field, error);
}

}  // namespace standalone
