// What holds for every table that a reader hands out.
#pragma once

#include <string>

#include "standalone/files/data_reader.h"
#include "test_folder.h"

namespace fuzz {

/// Requires that a failure says why and hands out no table, and that a table is sound, complete, and the same
/// after it was written as text with a schema and as a case file and was read back.
void CheckReading(const standalone::ReadResult& read, const TestFolder& folder);

}  // namespace fuzz
