#include "standalone/cli/describe_command.h"

#include <iostream>

#include "standalone/files/data_reader.h"
#include "standalone/output/message.h"
#include "standalone/output/data_description.h"

namespace standalone {

namespace {

void Show(const std::string& text, bool isError) {
  WriteMessage(std::cerr, {isError, {}, text, {}, {}});
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
  const char* gap = "";
  for (const auto& part : output.tables) {
    std::cout << gap;
    RenderTextTable(std::cout, *part);
    gap = "\n";
  }
}

}  // namespace

int DescribeDataFile(const DescribeArguments& arguments) {
  const ReadResult result = ReadDataFile({arguments.file, arguments.schema, 1});
  for (const std::string& warning : result.warnings)
    Show(warning, false);
  if (!result.ok) {
    Show(result.error, true);
    return kBadCall;
  }
  WriteDescription(arguments, result.table);
  std::cout.flush();
  return std::cout ? kRan : kOutputFailed;
}

}  // namespace standalone
