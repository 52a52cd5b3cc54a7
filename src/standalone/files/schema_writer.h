// The schema document that goes with a data file of text.
#pragma once

#include <string>

#include "standalone/data/table.h"

namespace standalone {

/// A Table Schema document that says all that a dictionary holds, so that reading the data with it gives the
/// same dictionary again. The dictionary must be sound (`DictionaryFault`).
std::string SchemaText(const Table& table);

}  // namespace standalone
