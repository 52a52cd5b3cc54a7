// tavoreg describe and tavoreg convert: data files without an analysis.
#include <iostream>
#include <optional>

#include "standalone/cli/commands.h"
#include "standalone/files/data_reader.h"
#include "standalone/files/data_writer.h"
#include "standalone/files/run_inputs.h"
#include "standalone/output/data_description.h"
#include "standalone/output/message.h"

namespace standalone {

namespace {

void Show(const std::string& text, bool isError) {
  WriteMessage(std::cerr, {isError, {}, text, {}, {}});
}

/// The data; none after a failure, which has been told.
std::optional<Table> ReadTable(const std::string& path, const std::string& schema) {
  ReadResult read = ReadDataFile({path, schema, 1});
  for (const std::string& warning : read.warnings)
    Show(warning, false);
  if (!read.ok) {
    Show(read.error, true);
    return std::nullopt;
  }
  return std::move(read.table);
}

void WriteDescription(const DescribeArguments& arguments, const Table& table) {
  if (arguments.format == OutputFormat::kJson) {
    DescribeDataAsJson(std::cout, TAVOREG_VERSION, arguments.file, table);
    return;
  }
  Document document;
  document.version = TAVOREG_VERSION;
  CommandOutput& output = document.commands.emplace_back();
  output.name = "DESCRIBE";
  DescribeData(arguments.file, table, output);
  if (arguments.format != OutputFormat::kText) {
    Render(std::cout, document, arguments.format);
    return;
  }
  // No command ran, so the text has no title that names one and tells its time.
  const char* gap = "";
  for (const auto& part : output.tables) {
    std::cout << gap;
    RenderTextTable(std::cout, *part);
    gap = "\n";
  }
}

}  // namespace

int DescribeDataFile(const DescribeArguments& arguments) {
  const std::optional<Table> table = ReadTable(arguments.file, arguments.schema);
  if (!table) return kBadCall;
  WriteDescription(arguments, *table);
  std::cout.flush();
  return std::cout ? kRan : kOutputFailed;
}

int ConvertDataFile(const ConvertArguments& arguments) {
  RunInputs inputs;
  inputs.Add(arguments.in, "the file to read");
  inputs.Add(SchemaPathOf({arguments.in, arguments.schema, 1}), "its schema");
  if (const std::string input = inputs.ReplacedBy(arguments.out); !input.empty()) {
    Show("Writing " + arguments.out + " would replace " + input + ". Give the output another name.", true);
    return kBadCall;
  }
  const std::optional<Table> table = ReadTable(arguments.in, arguments.schema);
  if (!table) return kBadCall;
  const std::string error = WriteDataFile(arguments.out, *table);
  if (!error.empty()) Show("The data file " + error + ".", true);
  return error.empty() ? kRan : kOutputFailed;
}

}  // namespace standalone
