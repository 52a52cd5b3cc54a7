// One pivot table as aligned text.
#pragma once

#include <cstddef>
#include <iosfwd>

#include "standalone/output/table_layout.h"

namespace standalone {

/// Prints title, caption, the grid and the footnotes. Columns that do not fit into `width` follow in further
/// blocks.
void WriteTextTable(std::ostream& out, const TableLayout& layout, std::size_t width);

}  // namespace standalone
