// A schema for data that stay the same: numbers, texts, blanks and texts that a schema may declare missing.
#include "standalone/files/data_reader.h"
#include "table_checks.h"
#include "target.h"

namespace {

constexpr std::string_view kData =
    "id,y,region,income,note,1st\n"
    "1,0,north,1200.5,plain,1\n"
    "2,1,south,NA,\"with, comma\",2\n"
    "3,1, ,-99,,3\n"
    "4,0,North,1e3,\"two\nlines\",\n"
    "5,,west,0,\xC3\xA4\xE2\x82\xAC,-1\n";

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const TestFolder folder;
  static const std::string data = folder.Write("data.csv", kData);
  const std::string schema = folder.Write("schema.json", fuzz::TextOf(bytes, size));
  fuzz::CheckReading(standalone::ReadDataFile({data, schema, 1}), folder);
  return 0;
}
