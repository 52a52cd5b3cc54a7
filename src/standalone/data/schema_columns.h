// What a schema means for the columns of one data file.
#pragma once

#include <string>
#include <vector>

#include "host/data.h"
#include "standalone/data/read_columns.h"
#include "standalone/data/slice_reader.h"
#include "standalone/data/table_schema.h"

namespace standalone {

/// The schema's fields by column, or what keeps them from fitting the file.
struct FieldMatch {
  std::string error;
  std::vector<const SchemaField*> fields;  // per column, not owned; null where the schema says nothing
};

/// Finds each field's column: by the text of the header, failing that by the variable's name without regard
/// to case.
FieldMatch MatchFields(const TableSchema& schema, const std::vector<std::string>& headers,
                       const std::vector<std::string>& names);

/// What the fields ask of the columns while they are read. `error` is set when a field contradicts itself.
struct SchemaRules {
  std::string error;
  ReadRules rules;
};
SchemaRules RulesFrom(const TableSchema& schema, const FieldMatch& match,
                      const std::vector<std::string>& names);

/// The dictionary entry of a column as it was read, without a schema: a number's format shows the decimals
/// seen, and a blank string is declared missing.
host::VORN_Variable VariableOf(const std::string& name, const ReadColumn& column);

/// Puts a field's attributes over what was guessed. Empty for success, otherwise what is wrong.
std::string ApplyField(const TableSchema& schema, const SchemaField& field, host::VORN_Variable& variable);

}  // namespace standalone
