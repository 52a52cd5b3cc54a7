// Writing data files of delimited text, and the schemas that go with them.
#pragma once

#include <string>

#include "standalone/data/table.h"

namespace standalone {

/// Writes a table as delimited text, with its schema beside it (`<name>.schema.json`): both or neither. The
/// result says what went wrong, as a clause; empty on success. The dictionary must be sound
/// (`DictionaryFault`).
///
/// No file system puts two files in place at once. The schema goes first: as long as the data aren't there,
/// it harms nobody, and data without their schema would be read with wrong missing values. When the data
/// can't follow it, the schema that was there before comes back.
std::string WriteDelimited(const std::string& path, char delimiter, const Table& table);

/// A Table Schema document that says all that a dictionary holds, so that reading the data with it gives the
/// same dictionary again. The dictionary must be sound (`DictionaryFault`).
std::string SchemaText(const Table& table);

/// Where the schema of a data file of text lies by default.
std::string SchemaPathFor(const std::string& path);

}  // namespace standalone
