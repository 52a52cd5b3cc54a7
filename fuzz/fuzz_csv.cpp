// Delimited text, with a schema behind the first byte 0xFF (which no text in UTF-8 holds).
#include "standalone/files/data_reader.h"
#include "table_checks.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const TestFolder folder;
  const std::string_view input = fuzz::TextOf(bytes, size);
  const std::size_t split = input.find('\xFF');
  const std::string data = folder.Write("data.csv", input.substr(0, split));
  std::string schema;
  if (split != std::string_view::npos) schema = folder.Write("schema.json", input.substr(split + 1));
  fuzz::CheckReading(standalone::ReadDataFile({data, schema, 1}), folder);
  return 0;
}
