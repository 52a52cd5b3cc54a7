// Reading the rows of a delimited text into complete columns.
#pragma once

#include <cstddef>
#include <vector>

#include "host/data.h"
#include "standalone/data/cell_scanner.h"
#include "standalone/data/file_text.h"
#include "standalone/data/slice_reader.h"

namespace standalone {

/// A column as it was read. A string column's cells are padded; `width` is its type, 0 for a number.
struct ReadColumn {
  int width = 0;
  int decimals = 0;  // most that were seen in a numeric column
  int longest = 0;   // bytes of its longest number
  std::vector<host::OBS> cells;
};

struct ReadColumns {
  TextFault fault;  // when set, there are no columns
  std::size_t rows = 0;
  std::vector<ReadColumn> columns;
};

/// How the work is shared out.
struct ReadShares {
  int threads = 1;
  std::size_t leastSlice = std::size_t{1} << 20;  // bytes below which a slice isn't worth a thread
};

/// Reads the rows from `body` to the end of the text. The text must be valid UTF-8 without NUL. The result is
/// the same for any number of threads.
ReadColumns ReadRows(const FileText& text, const char* body, const CellScanner& scanner,
                     const ReadRules& rules, const ReadShares& shares);

}  // namespace standalone
