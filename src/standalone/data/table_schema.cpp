#include "standalone/data/table_schema.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <nlohmann/json.hpp>
#include <unordered_set>

#include "standalone/data/file_text.h"
#include "standalone/data/format_names.h"
#include "standalone/data/json_check.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

using nlohmann::json;

constexpr std::array<std::string_view, 4> kOwnKeys = {"x-blank-missing", "x-format", "x-measure",
                                                      "x-missing-range"};

/// A JSON value as a message shows it.
std::string Shown(const json& value) {
  return Shortened(value.dump(-1, ' ', false, json::error_handler_t::replace), 40);
}

/// Goes through the document and stops at the first thing that is wrong.
class SchemaParser {
 public:
  explicit SchemaParser(const std::string& path) { fResult.schema.path = path; }

  SchemaResult Parse(std::string_view text) {
    // Checked first, without building anything: a tree of hostile depth would end the program as it is
    // taken down, and a tree doesn't know on which lines its parts began.
    const JsonCheck check = CheckJson(text);
    if (!check.fault.empty()) {
      fLine = check.faultLine;
      Fail(fmt::format("no sound JSON: {}; correct the schema", check.fault));
      return std::move(fResult);
    }
    ReadDocument(json::parse(text, nullptr, /*allow_exceptions=*/false), check.fieldLines);
    return std::move(fResult);
  }

 private:
  bool ReadDocument(const json& document, const std::vector<int>& lines);
  bool ReadMissingTexts(const json& document);
  bool ReadDocuments(const json& document);
  bool ReadField(const json& entry);
  bool ReadName(const json& entry);
  bool ReadType(const json& entry);
  bool ReadTitle(const json& entry);
  bool ReadMissingValues(const json& entry);
  bool ReadCategories(const json& entry);
  bool ReadCategory(const json& entry);
  bool ReadOrdered(const json& entry);
  bool ReadFormat(const json& entry);
  bool ReadMeasure(const json& entry);
  bool ReadMissingRange(const json& entry);
  bool ReadBlankMissing(const json& entry);
  bool ReadBound(const json& bound, double open, double& value);
  bool ReadValue(const json& value, std::string_view key, SchemaValue& result);
  void WarnOfUnknownKeys(const json& entry);

  std::string Place() const {
    const std::string line = fLine > 0 ? fmt::format(":{}", fLine) : std::string();
    return fmt::format("{}{}: {}", fResult.schema.path, line,
                       fField.name.empty() ? std::string() : fmt::format("field \"{}\": ", fField.name));
  }
  bool Fail(std::string_view message) {
    fResult.error = Place() + std::string(message);
    fResult.schema.fields.clear();
    return false;
  }
  bool FailKind(std::string_view key, std::string_view expected, const json& found) {
    return Fail(fmt::format("\"{}\" must be {}, but is {}", key, expected, Shown(found)));
  }

  int fLine = 0;
  SchemaField fField;  // the one that is being read
  std::unordered_set<std::string> fNames;
  SchemaResult fResult;
};

bool SchemaParser::ReadDocument(const json& document, const std::vector<int>& lines) {
  if (!document.is_object()) return Fail("a schema is a JSON object with an array \"fields\"");
  if (!ReadMissingTexts(document) || !ReadDocuments(document)) return false;
  const auto fields = document.find("fields");
  if (fields == document.end())
    return Fail("there is no array \"fields\"; add one with an entry for each variable");
  if (!fields->is_array()) return FailKind("fields", "an array", *fields);
  for (std::size_t i = 0; i < fields->size(); ++i) {
    fField = SchemaField{};
    // Only objects have lines; up to the first entry that is none, entries and lines correspond.
    fLine = i < lines.size() ? lines[i] : 0;
    fField.line = fLine;
    if (!(*fields)[i].is_object()) return Fail(fmt::format("entry {} of \"fields\" is no object", i + 1));
    if (!ReadField((*fields)[i])) return false;
    fResult.schema.fields.push_back(fField);
  }
  return true;
}

bool SchemaParser::ReadMissingTexts(const json& document) {
  const auto texts = document.find("missingValues");
  if (texts == document.end()) return true;
  if (!texts->is_array()) return FailKind("missingValues", "an array of strings", *texts);
  for (const json& text : *texts) {
    if (!text.is_string()) return FailKind("missingValues", "an array of strings", text);
    fResult.schema.missingTexts.push_back(text.get<std::string>());
  }
  return true;
}

bool SchemaParser::ReadDocuments(const json& document) {
  const auto lines = document.find("x-documents");
  if (lines == document.end()) return true;
  if (!lines->is_array()) return FailKind("x-documents", "an array of strings", *lines);
  for (const json& line : *lines) {
    if (!line.is_string()) return FailKind("x-documents", "an array of strings", line);
    fResult.schema.documents.push_back(line.get<std::string>());
  }
  return true;
}

bool SchemaParser::ReadField(const json& entry) {
  if (!ReadName(entry)) return false;
  const bool isRead = ReadType(entry) && ReadTitle(entry) && ReadMissingValues(entry) &&
                      ReadCategories(entry) && ReadOrdered(entry) && ReadFormat(entry) &&
                      ReadMeasure(entry) && ReadMissingRange(entry) && ReadBlankMissing(entry);
  if (isRead) WarnOfUnknownKeys(entry);
  return isRead;
}

bool SchemaParser::ReadName(const json& entry) {
  const auto name = entry.find("name");
  if (name == entry.end()) return Fail("an entry of \"fields\" has no \"name\"");
  if (!name->is_string()) return FailKind("name", "a string", *name);
  if (name->get_ref<const std::string&>().empty())
    return Fail("the \"name\" of an entry of \"fields\" is empty");
  fField.name = name->get<std::string>();
  return fNames.insert(fField.name).second ||
         Fail("the field stands in the schema twice; remove one of them");
}

bool SchemaParser::ReadType(const json& entry) {
  const auto type = entry.find("type");
  if (type == entry.end()) return true;
  if (*type == "string") {
    fField.type = SchemaField::Type::kString;
  } else if (*type == "number") {
    fField.type = SchemaField::Type::kNumber;
  } else if (*type == "integer") {
    fField.type = SchemaField::Type::kInteger;
  } else {
    return FailKind("type", "\"string\", \"number\" or \"integer\"", *type);
  }
  return true;
}

bool SchemaParser::ReadTitle(const json& entry) {
  const auto title = entry.find("title");
  if (title == entry.end()) return true;
  if (!title->is_string()) return FailKind("title", "a string", *title);
  fField.title = title->get<std::string>();
  return true;
}

bool SchemaParser::ReadValue(const json& value, std::string_view key, SchemaValue& result) {
  if (value.is_number()) {
    // -0 becomes 0, as in the data: the two would be two categories.
    result = {true, value.get<double>() + 0.0, {}};
    return true;
  }
  if (!value.is_string()) return FailKind(key, "a number or a string", value);
  result = {false, 0, value.get<std::string>()};
  return true;
}

bool SchemaParser::ReadMissingValues(const json& entry) {
  const auto values = entry.find("missingValues");
  if (values == entry.end()) return true;
  if (!values->is_array()) return FailKind("missingValues", "an array", *values);
  for (const json& value : *values) {
    SchemaValue missing;
    if (!ReadValue(value, "missingValues", missing)) return false;
    fField.missingValues.push_back(std::move(missing));
  }
  return true;
}

bool SchemaParser::ReadCategories(const json& entry) {
  const auto categories = entry.find("categories");
  if (categories == entry.end()) return true;
  if (!categories->is_array()) return FailKind("categories", "an array", *categories);
  return std::all_of(categories->begin(), categories->end(),
                     [this](const json& category) { return ReadCategory(category); });
}

bool SchemaParser::ReadCategory(const json& entry) {
  SchemaCategory category;
  if (!entry.is_object()) {  // the convention also allows bare values
    if (!ReadValue(entry, "categories", category.value)) return false;
    fField.categories.push_back(std::move(category));
    return true;
  }
  const auto value = entry.find("value");
  if (value == entry.end()) return Fail("an entry of \"categories\" has no \"value\"");
  if (!ReadValue(*value, "value", category.value)) return false;
  const auto label = entry.find("label");
  if (label != entry.end()) {
    if (!label->is_string()) return FailKind("label", "a string", *label);
    category.label = label->get<std::string>();
  }
  fField.categories.push_back(std::move(category));
  return true;
}

bool SchemaParser::ReadOrdered(const json& entry) {
  const auto ordered = entry.find("categoriesOrdered");
  if (ordered == entry.end()) return true;
  if (!ordered->is_boolean()) return FailKind("categoriesOrdered", "true or false", *ordered);
  fField.categoriesOrdered = ordered->get<bool>();
  return true;
}

bool SchemaParser::ReadFormat(const json& entry) {
  const auto format = entry.find("x-format");
  if (format == entry.end()) return true;
  if (format->is_string()) fField.format = FormatFromText(format->get<std::string>());
  if (fField.format) return true;
  return FailKind("x-format", "a format such as \"F8.2\", \"A12\" or \"AHEX24\"", *format);
}

bool SchemaParser::ReadMeasure(const json& entry) {
  const auto measure = entry.find("x-measure");
  if (measure == entry.end()) return true;
  if (*measure == "nominal") {
    fField.measure = host::MeasurementLevel::kNominal;
  } else if (*measure == "ordinal") {
    fField.measure = host::MeasurementLevel::kOrdinal;
  } else if (*measure == "scale") {
    fField.measure = host::MeasurementLevel::kScale;
  } else if (*measure == "unknown") {
    fField.measure = host::MeasurementLevel::kUnknown;
  } else {
    return FailKind("x-measure", "\"nominal\", \"ordinal\", \"scale\" or \"unknown\"", *measure);
  }
  return true;
}

// Ranges are closed, so an end that isn't there is the largest number, which no case lies beyond.
bool SchemaParser::ReadBound(const json& bound, double open, double& value) {
  if (!bound.is_null() && !bound.is_number()) return false;
  value = bound.is_null() ? open : bound.get<double>();
  return true;
}

bool SchemaParser::ReadMissingRange(const json& entry) {
  const auto range = entry.find("x-missing-range");
  if (range == entry.end()) return true;
  constexpr double kLargest = std::numeric_limits<double>::max();
  double low = 0;
  double high = 0;
  const bool isSound = range->is_array() && range->size() == 2 && ReadBound((*range)[0], -kLargest, low) &&
                       ReadBound((*range)[1], kLargest, high) && low <= high;
  if (!isSound) return FailKind("x-missing-range", "an array of two numbers, the lower one first", *range);
  fField.missingRange = {low, high};
  return true;
}

bool SchemaParser::ReadBlankMissing(const json& entry) {
  const auto blank = entry.find("x-blank-missing");
  if (blank == entry.end()) return true;
  if (!blank->is_boolean()) return FailKind("x-blank-missing", "true or false", *blank);
  fField.blankMissing = blank->get<bool>();
  return true;
}

void SchemaParser::WarnOfUnknownKeys(const json& entry) {
  for (const auto& [key, value] : entry.items()) {
    const bool isOurs = key.starts_with("x-");
    if (!isOurs || std::find(kOwnKeys.begin(), kOwnKeys.end(), key) != kOwnKeys.end()) continue;
    fResult.warnings.push_back(
        fmt::format("{}the key \"{}\" is not known and does nothing; known are x-format, "
                    "x-measure, x-missing-range and x-blank-missing",
                    Place(), Shortened(key, 40)));
  }
}

}  // namespace

SchemaResult ParseTableSchema(const std::string& path, std::string_view text) {
  return SchemaParser(path).Parse(text);
}

SchemaResult ReadTableSchema(const std::string& path) {
  FileText text;
  SchemaResult result;
  if (const std::string failure = FileText::Read(path, text, kMostSchemaBytes); !failure.empty()) {
    result.error = fmt::format("{}: the schema can't be read: {}", path, failure);
    return result;
  }
  return ParseTableSchema(path, text.View());
}

}  // namespace standalone
