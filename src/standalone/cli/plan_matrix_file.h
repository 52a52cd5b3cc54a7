// Sizes or probabilities by category, in a table of text.
#pragma once

#include <string>

#include "host/command.h"

namespace standalone {

/// Reads a CSV file with a header line into a matrix. The column named `valueColumn` (in any case) holds the
/// values; each other column holds the categories of the variable that it is named after. Blanks around cells
/// are left out. An empty answer is success; another says what is wrong and where (file, line), and the
/// matrix is of no use then.
std::string ReadMatrixFile(const std::string& path, const std::string& valueColumn, host::VarCatList& matrix);

}  // namespace standalone
