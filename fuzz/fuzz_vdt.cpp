// Case files.
#include "standalone/files/data_reader.h"
#include "table_checks.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const TestFolder folder;
  const std::string data = folder.Write("data.vdt", fuzz::TextOf(bytes, size));
  fuzz::CheckReading(standalone::ReadDataFile({data, "", 1}), folder);
  return 0;
}
