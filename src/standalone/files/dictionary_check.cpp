#include "standalone/files/dictionary_check.h"

#include <fmt/format.h>

#include <cmath>
#include <string_view>
#include <unordered_set>

#include "standalone/data/cells.h"
#include "standalone/data/format_names.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

constexpr std::size_t kShownName = 64;  // characters

bool IsText(std::string_view text) {
  return FindBadByte(text) == text.size();
}

std::string TypeFault(const host::VORN_Variable& variable) {
  const int type = variable.GetType();
  if (type < 0 || type > static_cast<int>(kWidestText))
    return fmt::format("a width of {} bytes; a string has 1 to {}", type, kWidestText);
  const host::VORN_Format& format = variable.GetFormat();
  const bool isFit = variable.IsNumeric() ? !format.IsString() && FormatFromText(FormatText(format))
                                          : format.IsString() && FormatBytes(format) == type;
  if (isFit) return {};
  return fmt::format("the format {}, which doesn't fit a {}", FormatText(format),
                     variable.IsNumeric() ? "number" : fmt::format("string of {} bytes", type));
}

bool IsValueOf(const host::VORN_Variable& variable, const std::vector<host::OBS>& value) {
  if (value.size() != static_cast<std::size_t>(host::CellCount(variable.GetType()))) return false;
  if (variable.IsNumeric()) return std::isfinite(value.front().number);
  return IsText(UnpaddedText(value.data(), variable.GetType()));
}

std::string ValuesFault(const host::VORN_Variable& variable) {
  for (const auto& [value, label] : variable.GetValueLabels().Pairs()) {
    if (!IsText(label)) return "a value label that is no text in UTF-8";
    if (!IsValueOf(variable, value)) return "a value label of a value that the variable can't have";
  }
  const host::VORN_MissingValues& missing = variable.GetMissingValues();
  for (const std::vector<host::OBS>& value : missing.values) {
    if (!IsValueOf(variable, value)) return "a missing value that the variable can't have";
  }
  if (!missing.hasRange) return {};
  if (!variable.IsNumeric()) return "a range of missing values, which only numbers can have";
  const bool isRange = std::isfinite(missing.rangeLow) && std::isfinite(missing.rangeHigh) &&
                       missing.rangeLow <= missing.rangeHigh;
  return isRange ? "" : "a range of missing values without a low and a high end";
}

/// What procedures make comes through an interface that checks nothing, so each part is looked at here.
std::string VariableFault(const host::VORN_Variable& variable) {
  if (!host::ValidateVORNName(variable.GetName()) || !IsText(variable.GetName())) return "no legal name";
  if (std::string fault = TypeFault(variable); !fault.empty()) return fault;
  if (!IsText(variable.GetLabel())) return "a label that is no text in UTF-8";
  return ValuesFault(variable);
}

}  // namespace

// A faulty name is faulty for what it holds, and must not steer the terminal that shows it.
std::string QuotedName(std::string_view name) {
  std::string text;
  for (std::size_t offset = 0; offset < name.size();) {
    const Utf8Character character = DecodeUtf8(name, offset);
    const bool isShown = character.valid && character.code >= U' ';
    text += isShown ? name.substr(offset, character.length) : std::string_view("?");
    offset += character.length;
  }
  return '"' + Shortened(text, kShownName) + '"';
}

std::string DictionaryFault(const Table& table) {
  if (table.ColumnCount() == 0) return "there are no variables";
  std::unordered_set<std::string> names;
  for (std::size_t i = 0; i < table.ColumnCount(); ++i) {
    const host::VORN_Variable& variable = table.At(i).variable;
    std::string fault = VariableFault(variable);
    if (fault.empty() && !names.insert(variable.GetUpperCaseName()).second)
      fault = "the name of another variable";
    if (!fault.empty())
      return fmt::format("variable {}, {}, has {}", i + 1, QuotedName(variable.GetName()), fault);
  }
  for (const std::string& line : table.Documents()) {
    if (!IsText(line)) return "a line of the documents is no text in UTF-8";
  }
  return {};
}

std::string BadNumberClause(const Column& column, std::size_t row) {
  return fmt::format("the number of variable {} in case {} is not finite", column.variable.GetName(),
                     row + 1);
}

std::string BadTextClause(const Column& column, std::size_t row) {
  return fmt::format("the text of variable {} in case {} is not UTF-8 or holds a NUL",
                     column.variable.GetName(), row + 1);
}

}  // namespace standalone
