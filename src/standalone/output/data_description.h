// The dictionary of a data file, for people and for programs.
#pragma once

#include <iosfwd>
#include <string>

#include "standalone/data/table.h"
#include "standalone/output/document.h"

namespace standalone {

/// Tables with the file's size, its variables (name, label, type, format, measure, value labels and missing
/// values) and its documents.
void DescribeData(const std::string& path, const Table& table, CommandOutput& output);

/// The same as JSON: {"tavoreg", "file", "cases", "variables": [{"name", "label", "type" ("number" or
/// "string"), "width" (of a string, in bytes), "format", "measure", "values": [{"value", "label"}],
/// "missing": {"values": […], "low", "high"}}], "documents": […]}. Values are numbers or texts; members that
/// hold nothing are left out.
void DescribeDataAsJson(std::ostream& out, const std::string& version, const std::string& path,
                        const Table& table);

}  // namespace standalone
