// Reading a data file into a table; the forms of data files.
#pragma once

#include <string>
#include <vector>

#include "standalone/data/table.h"

namespace standalone {

/// What a data file's ending says of its form.
enum class DataFileForm { kUnknown, kCommas, kTabs, kCaseFile };

/// The form by the ending, in any case: .csv, .tsv, .vdt.
DataFileForm DataFileFormOf(const std::string& path);

/// Which file to read, and how.
struct ReadOptions {
  std::string path;
  std::string schemaPath;  // empty: `<name>.schema.json` beside the data when it exists
  int threads = 1;         // parsing may use that many
};

/// What came of reading. On failure the table is empty and `error` says what is wrong and where (file, line,
/// column) and what to do; a caller shows it as it stands.
struct ReadResult {
  bool ok = false;
  std::string error;
  std::vector<std::string> warnings;  // such as the list of variables that were renamed
  Table table;
};

/// The schema that reading takes into account; empty for none.
std::string SchemaPathOf(const ReadOptions& options);

/// Reads by the file's ending: .csv, .tsv, .vdt. Never throws for bad data.
ReadResult ReadDataFile(const ReadOptions& options);

}  // namespace standalone
