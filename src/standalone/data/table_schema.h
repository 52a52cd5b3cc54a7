// Table Schema documents: what a file of JSON says about the columns of a data file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/data.h"

namespace standalone {

/// A schema with more bytes is refused.
constexpr std::size_t kMostSchemaBytes = std::size_t{16} << 20;

/// A value in a schema: a JSON number or a JSON string.
struct SchemaValue {
  bool isNumber = false;
  double number = 0;
  std::string text;  // of a string
};

/// A value with its label.
struct SchemaCategory {
  SchemaValue value;
  std::string label;  // empty: none
};

/// One entry of `fields`.
struct SchemaField {
  enum class Type { kUnsaid, kString, kNumber, kInteger };

  int line = 0;  // where the entry begins
  std::string name;
  Type type = Type::kUnsaid;
  std::optional<std::string> title;                       // the variable's label
  std::vector<SchemaValue> missingValues;                 // declared missing: they keep their value
  std::vector<SchemaCategory> categories;                 // value labels
  std::optional<bool> categoriesOrdered;                  // ordinal or nominal
  std::optional<host::VORN_Format> format;                // x-format
  std::optional<host::MeasurementLevel> measure;          // x-measure
  std::optional<std::pair<double, double>> missingRange;  // x-missing-range: [low, high], null for no bound
  std::optional<bool> blankMissing;                       // x-blank-missing, of a string; usually so
};

/// A schema as it stands, before it meets the columns of a file.
struct TableSchema {
  std::string path;
  std::vector<std::string> missingTexts;  // top `missingValues`: texts that count as empty
  std::vector<std::string> documents;     // x-documents: lines that say how the file came about
  std::vector<SchemaField> fields;
};

/// What came of reading a schema.
struct SchemaResult {
  std::string error;  // "path:line: …"; empty for success
  std::vector<std::string> warnings;
  TableSchema schema;
};

/// Reads a schema file. Keys of the convention that have no bearing on the dictionary are passed over; an
/// unknown key with our prefix "x-" gives a warning.
SchemaResult ReadTableSchema(const std::string& path);

/// The same from a text; `path` is what messages call it.
SchemaResult ParseTableSchema(const std::string& path, std::string_view text);

}  // namespace standalone
