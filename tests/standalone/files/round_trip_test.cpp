// What goes into a data file comes out again. Tables are compared by a dump of all that they hold, numbers to
// the last bit.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "sample_tables.h"
#include "standalone/files/data_reader.h"
#include "standalone/files/data_writer.h"
#include "test_folder.h"

namespace {

using sample::Dump;
using standalone::ReadDataFile;
using standalone::ReadResult;
using standalone::Table;
using standalone::WriteDataFile;

class RoundTrip : public testing::TestWithParam<const char*> {
 protected:
  std::string Path() const { return fFolder.Path(std::string("data") + GetParam()); }

  /// The table after writing and reading; what went wrong otherwise.
  std::string ThroughFile(const Table& table) {
    const std::string error = WriteDataFile(Path(), table);
    if (!error.empty()) return error;
    const ReadResult read = ReadDataFile({Path(), "", 2});
    if (!read.ok) return read.error;
    return (read.warnings.empty() ? "" : read.warnings.front()) + Dump(read.table);
  }

  TestFolder fFolder;
};

INSTANTIATE_TEST_SUITE_P(Forms, RoundTrip, testing::Values(".vdt", ".csv", ".tsv", ".VDT"),
                         [](const auto& form) {
                           return std::string(form.param + 1) + std::to_string(form.index);
                         });

TEST_P(RoundTrip, KeepsEveryAttributeAndEveryValue) {
  const Table table = sample::EveryAttribute();
  EXPECT_EQ(ThroughFile(table), Dump(table));
}

TEST_P(RoundTrip, KeepsRandomTables) {
  std::mt19937_64 random(20240611);
  for (int i = 0; i < 40; ++i) {
    const Table table = sample::RandomTable(random);
    ASSERT_EQ(ThroughFile(table), Dump(table)) << "table " << i;
  }
}

TEST_P(RoundTrip, KeepsATableWithoutCases) {
  Table table;
  sample::AddNumbers(table, "x", {});
  sample::AddTexts(table, "s", 12, {});
  EXPECT_EQ(ThroughFile(table), Dump(table));
}

TEST_P(RoundTrip, KeepsASingleVariableWhoseCasesAreBlankOrMissing) {
  Table numbers;
  sample::AddNumbers(numbers, "x", {host::kSystemMissing, host::kSystemMissing});
  EXPECT_EQ(ThroughFile(numbers), Dump(numbers));
  Table texts;
  sample::AddTexts(texts, "s", 3, {"", "a,b", ""});
  EXPECT_EQ(ThroughFile(texts), Dump(texts));
}

TEST_P(RoundTrip, ReplacesWhatAnOlderFileSaidOfTheSameVariables) {
  ASSERT_EQ(WriteDataFile(Path(), sample::EveryAttribute()), "");
  Table table;
  sample::AddNumbers(table, "x", {1, 2});
  EXPECT_EQ(ThroughFile(table), Dump(table));
}

TEST_P(RoundTrip, LeavesNothingBesideItsFiles) {
  ASSERT_EQ(WriteDataFile(Path(), sample::EveryAttribute()), "");
  ASSERT_EQ(WriteDataFile(Path(), sample::EveryAttribute()), "");
  const auto count = std::distance(std::filesystem::directory_iterator(fFolder.Path()), {});
  EXPECT_EQ(count, Path().ends_with("sv") ? 2 : 1);
}

TEST_P(RoundTrip, WritesTheSameBytesAgain) {
  const auto bytes = [this] {
    std::ifstream file(Path(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  ASSERT_EQ(WriteDataFile(Path(), sample::EveryAttribute()), "");
  const std::string first = bytes();
  ASSERT_EQ(WriteDataFile(Path(), sample::EveryAttribute()), "");
  EXPECT_EQ(bytes(), first);
}

TEST_P(RoundTrip, GoesFromFormToFormAndBack) {
  const Table table = sample::EveryAttribute();
  ASSERT_EQ(WriteDataFile(Path(), table), "");
  for (const char* other : {"b.csv", "c.vdt", "d.tsv"}) {
    const ReadResult read = ReadDataFile({Path(), "", 1});
    ASSERT_TRUE(read.ok) << read.error;
    ASSERT_EQ(WriteDataFile(fFolder.Path(other), read.table), "");
    const ReadResult again = ReadDataFile({fFolder.Path(other), "", 1});
    EXPECT_EQ(again.ok ? Dump(again.table) : again.error, Dump(table)) << other;
  }
}

TEST_P(RoundTrip, ANegativeZeroBecomesZero) {
  Table table;
  sample::AddNumbers(table, "x", {-0.0});
  ASSERT_EQ(ThroughFile(table), Dump(table));
  const ReadResult read = ReadDataFile({Path(), "", 1});
  ASSERT_TRUE(read.ok);
  EXPECT_EQ(read.table.At(0).cells.at(0).number, 0);
}

TEST(CsvText, NumbersAreWrittenInTheFewestDigitsAndTextsQuotedWhereTheyMustBe) {
  TestFolder folder;
  Table table;
  sample::AddNumbers(table, "x", {0.1, 3, host::kSystemMissing, 1e300});
  sample::AddTexts(table, "s", 10, {"a", "b \"c\"", "", " d,e"});
  ASSERT_EQ(WriteDataFile(folder.Path("a.csv"), table), "");
  std::ifstream file(folder.Path("a.csv"));
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}),
            "x,s\n0.1,a\n3,\"b \"\"c\"\"\"\n,\n1e+300,\" d,e\"\n");
}

TEST(CsvText, ANameThatBeginsWithAByteOrderMarkKeepsIt) {
  TestFolder folder;
  Table table;
  sample::AddNumbers(table, "\xEF\xBB\xBFx", {1});
  ASSERT_EQ(WriteDataFile(folder.Path("a.csv"), table), "");
  const ReadResult read = ReadDataFile({folder.Path("a.csv"), "", 1});
  EXPECT_EQ(read.ok ? Dump(read.table) : read.error, Dump(table));
}

}  // namespace
