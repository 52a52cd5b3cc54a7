#include "standalone/cli/convert_command.h"

#include <iostream>

#include "standalone/files/data_reader.h"
#include "standalone/files/data_writer.h"
#include "standalone/output/message.h"

namespace standalone {

namespace {

void Show(const std::string& text, bool isError) {
  WriteMessage(std::cerr, {isError, {}, text, {}, {}});
}

}  // namespace

int ConvertDataFile(const ConvertArguments& arguments) {
  const ReadResult read = ReadDataFile({arguments.in, arguments.schema, 1});
  for (const std::string& warning : read.warnings)
    Show(warning, false);
  if (!read.ok) {
    Show(read.error, true);
    return kBadCall;
  }
  const std::string error = WriteDataFile(arguments.out, read.table);
  if (!error.empty()) Show("The data file " + error + ".", true);
  return error.empty() ? kRan : kOutputFailed;
}

}  // namespace standalone
