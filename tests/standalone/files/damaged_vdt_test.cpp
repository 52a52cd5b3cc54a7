// Case files that are none, or no longer: each is refused with a reason, none does harm.
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

#include "sample_tables.h"
#include "standalone/files/data_reader.h"
#include "standalone/files/data_writer.h"
#include "test_folder.h"

namespace {

using standalone::ReadDataFile;
using standalone::ReadResult;
using standalone::Table;

std::string Bytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class DamagedVdt : public testing::Test {
 protected:
  DamagedVdt() : fPath(fFolder.Path("a.vdt")) {
    sample::AddNumbers(fTable, "x", {1, 2, 3});
    sample::AddTexts(fTable, "s", 4, {"a", "b", "c"});
    EXPECT_EQ(standalone::WriteDataFile(fPath, fTable), "");
  }

  /// Changes the file with SQL, as any other program can.
  void Run(const std::string& sql) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(fPath.c_str(), &database), SQLITE_OK);
    char* error = nullptr;
    const int status = sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &error);
    EXPECT_EQ(status, SQLITE_OK) << sql << ": " << (error != nullptr ? error : "");
    sqlite3_free(error);
    sqlite3_close(database);
  }

  /// The rows that a query gives, "a|b" each, null as "null".
  std::vector<std::string> Ask(const std::string& sql) const {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open(fPath.c_str(), &database), SQLITE_OK);
    std::vector<std::string> rows;
    const auto take = [](void* to, int count, char** values, char**) {
      std::string row;
      for (int i = 0; i < count; ++i)
        row += std::string(i == 0 ? "" : "|") + (values[i] == nullptr ? "null" : values[i]);
      static_cast<std::vector<std::string>*>(to)->push_back(row);
      return 0;
    };
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), take, &rows, nullptr), SQLITE_OK) << sql;
    sqlite3_close(database);
    return rows;
  }

  /// What reading the file says; "fine" when it can be read.
  std::string Answer() const {
    const ReadResult read = ReadDataFile({fPath, "", 1});
    EXPECT_TRUE(read.ok || read.table.ColumnCount() == 0);
    return read.ok ? "fine" : read.error;
  }

  TestFolder fFolder;
  std::string fPath;
  Table fTable;
};

struct Change {
  const char* sql;
  const char* answer;  // part of it
};

TEST_F(DamagedVdt, WhatSqlCanSpoilIsToldWithItsPlace) {
  const std::string whole = Bytes(fPath);
  const Change changes[] = {
      {"PRAGMA application_id=7", "it is no case file"},
      {"PRAGMA user_version=2", "it has version 2 of the form, and this program reads version 1"},
      {"DROP TABLE variables", "its table variables is not laid out as in a case file"},
      {"DROP TABLE value_labels", "its table value_labels is not laid out"},
      {"DROP TABLE missing_values", "its table missing_values is not laid out"},
      {"DROP TABLE documents", "its table documents is not laid out"},
      {"DROP TABLE cases", "its table cases is not laid out"},
      {"ALTER TABLE cases ADD COLUMN more REAL", "its table cases is not laid out"},
      {"ALTER TABLE cases RENAME COLUMN x TO y", "its table cases is not laid out"},
      {"DELETE FROM variables", "there are no variables"},
      {"UPDATE variables SET position=9 WHERE position=1", "variable 1: its position is not the next one"},
      {"UPDATE variables SET name='1x' WHERE position=1", "variable 1: its name is not legal"},
      {"UPDATE variables SET name=x'41ff' WHERE position=1", "variable 1: its name is not legal"},
      {"UPDATE variables SET name=CAST(x'41ff' AS TEXT) WHERE position=1",
       "variable 1, \"A?\", has no legal name"},
      {"UPDATE variables SET name='X' WHERE position=2",
       "variable 2, \"X\", has the name of another variable"},
      {"UPDATE variables SET width=32768 WHERE position=2", "variable 2: its width is not legal"},
      {"UPDATE variables SET width=-1 WHERE position=2", "variable 2: its width is not legal"},
      {"UPDATE variables SET width='wide' WHERE position=2", "variable 2: its width is not legal"},
      {"UPDATE variables SET width=5 WHERE position=2",
       "the format A4, which doesn't fit a string of 5 bytes"},
      {"UPDATE variables SET format='Q8' WHERE position=1", "variable 1: its format is not known"},
      {"UPDATE variables SET format='A4' WHERE position=1", "the format A4, which doesn't fit a number"},
      {"UPDATE variables SET measure='ratio' WHERE position=1", "variable 1: its measure is not known"},
      {"UPDATE variables SET label=CAST(x'ff' AS TEXT) WHERE position=1", "a label that is no text in UTF-8"},
      {"UPDATE variables SET label=NULL WHERE position=1", "variable 1: its label is no text"},
      {"INSERT INTO value_labels VALUES ('z', 1, 'l')",
       "table value_labels speaks of a variable z, which there isn't"},
      {"INSERT INTO value_labels VALUES (1, 1, 'l')", "table value_labels speaks of a variable 1"},
      {"INSERT INTO value_labels VALUES (NULL, 1, 'l')", "table value_labels speaks of a variable "},
      {"INSERT INTO value_labels VALUES ('x', 'one', 'l')",
       "table value_labels has a value that variable x can't have"},
      {"INSERT INTO value_labels VALUES ('x', 9007199254740993, 'l')", "a value that variable x can't have"},
      {"INSERT INTO value_labels VALUES ('x', 9e999, 'l')",
       "a value label of a value that the variable can't have"},
      {"INSERT INTO value_labels VALUES ('s', 'fiver', 'l')",
       "table value_labels has a value that variable s can't"},
      {"INSERT INTO value_labels VALUES ('s', 1, 'l')",
       "table value_labels has a value that variable s can't have"},
      {"INSERT INTO missing_values VALUES ('x', NULL, NULL, NULL)",
       "must have a value, or one range, for variable x"},
      {"INSERT INTO missing_values VALUES ('x', NULL, 2, 1)",
       "a range of missing values without a low and a high end"},
      {"INSERT INTO missing_values VALUES ('s', NULL, 1, 2)",
       "a range of missing values, which only numbers can have"},
      {"INSERT INTO missing_values VALUES ('x', NULL, 1, 2), ('x', NULL, 3, 4)",
       "must have a value, or one range"},
      {"INSERT INTO documents VALUES (1, CAST(x'ff' AS TEXT))",
       "a line of the documents is no text in UTF-8"},
      {"UPDATE cases SET x='two' WHERE x=2", "the value of variable x in case 2 is no number"},
      {"UPDATE cases SET x=9e999 WHERE x=2", "the number of variable x in case 2 is not finite"},
      {"UPDATE cases SET x=x'00' WHERE x=2", "the value of variable x in case 2 is no number"},
      {"UPDATE cases SET s='fiver' WHERE x=3",
       "the text of variable s in case 3 has 5 bytes, and the variable 4"},
      {"UPDATE cases SET s=x'00' WHERE x=3", "the value of variable s in case 3 is no text"},
      {"UPDATE cases SET s=CAST(x'ff' AS TEXT) WHERE x=3", "the text of variable s in case 3 is not UTF-8"},
      {"UPDATE cases SET s=CAST(x'410042' AS TEXT) WHERE x=3",
       "variable s in case 3 is not UTF-8 or holds a NUL"},
      {"ALTER TABLE documents RENAME TO d; CREATE VIEW documents AS SELECT * FROM d",
       "its table documents is not laid out"},
      {"DROP TABLE documents; CREATE TABLE documents (line INTEGER PRIMARY KEY, text TEXT AS (hex(line)))",
       "its table documents is not laid out"},
      {"DROP TABLE documents; CREATE VIRTUAL TABLE documents USING fts5(text)",
       "its table documents is not laid out"},
      {"DROP TABLE cases; CREATE TABLE cases (x REAL PRIMARY KEY, s TEXT) WITHOUT ROWID",
       "its table cases is not laid out"},
  };
  for (const Change& change : changes) {
    fFolder.Write("a.vdt", whole);
    Run(change.sql);
    const std::string answer = Answer();
    EXPECT_NE(answer.find(change.answer), std::string::npos) << change.sql << "\n" << answer;
    EXPECT_EQ(answer.find(fPath + ": the case file can't be read: "), 0u) << answer;
  }
}

TEST_F(DamagedVdt, HarmlessAdditionsOfAnotherProgramAreIgnored) {
  Run("CREATE TABLE notes (t); CREATE INDEX i ON cases (x, s); CREATE VIEW v AS SELECT * FROM cases; "
      "CREATE TRIGGER t AFTER INSERT ON notes BEGIN DELETE FROM cases; END; ANALYZE");
  const ReadResult read = ReadDataFile({fPath, "", 1});
  EXPECT_EQ(read.ok ? sample::Dump(read.table) : read.error, sample::Dump(fTable));
}

TEST_F(DamagedVdt, CasesAndLabelsThatAnotherProgramHasChangedAreRead) {
  Run("DELETE FROM cases WHERE x=1; INSERT INTO cases VALUES (7, 'new'), (NULL, NULL); "
      "INSERT INTO value_labels VALUES ('x', 7, 'seven')");
  const ReadResult read = ReadDataFile({fPath, "", 1});
  ASSERT_TRUE(read.ok) << read.error;
  Table expected;
  sample::AddNumbers(expected, "x", {2, 3, 7, host::kSystemMissing});
  sample::AddTexts(expected, "s", 4, {"b", "c", "new", ""});
  host::VORN_ValueLabelMap labels;
  labels.AddPair(std::vector<host::OBS>{expected.At(0).cells[2]}, "seven");
  expected.At(0).variable.SetValueLabels(labels);
  EXPECT_EQ(sample::Dump(read.table), sample::Dump(expected));
}

TEST_F(DamagedVdt, AnyClientCanJoinLabelsByTheNameOfTheirVariable) {
  host::VORN_ValueLabelMap labels;
  labels.AddPair({fTable.At(0).cells[1]}, "two");
  fTable.At(0).variable.SetValueLabels(labels);
  ASSERT_EQ(standalone::WriteDataFile(fPath, fTable), "");
  EXPECT_EQ(Ask("SELECT s, l.label FROM cases c JOIN value_labels l ON l.variable='x' AND l.value=c.x"),
            std::vector<std::string>{"b|two"});
  EXPECT_EQ(Ask("SELECT name, l.label FROM variables JOIN value_labels l ON l.variable=name"),
            std::vector<std::string>{"x|two"});
}

TEST_F(DamagedVdt, AnOpenEndOfARangeIsNull) {
  constexpr double kLargest = std::numeric_limits<double>::max();
  struct Range {
    double low, high;
    const char* row;
  };
  for (const Range& range :
       {Range{-kLargest, 9, "null|9.0"}, Range{-9, kLargest, "-9.0|null"}, Range{1, 2, "1.0|2.0"}}) {
    host::VORN_MissingValues missing;
    missing.hasRange = true;
    missing.rangeLow = range.low;
    missing.rangeHigh = range.high;
    fTable.At(0).variable.SetMissingValues(missing);
    ASSERT_EQ(standalone::WriteDataFile(fPath, fTable), "");
    EXPECT_EQ(Ask("SELECT low, high FROM missing_values WHERE variable='x'"),
              std::vector<std::string>{range.row});
    const ReadResult read = ReadDataFile({fPath, "", 1});
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_EQ(read.table.At(0).variable.GetMissingValues().rangeLow, range.low);
    EXPECT_EQ(read.table.At(0).variable.GetMissingValues().rangeHigh, range.high);
  }
}

TEST_F(DamagedVdt, VariablesMayHaveTheNamesOfRowNumbers) {
  Table table;
  sample::AddNumbers(table, "rowid", {3, 1, 2});
  sample::AddNumbers(table, "oid", {6, 4, 5});
  ASSERT_EQ(standalone::WriteDataFile(fPath, table), "");
  const ReadResult read = ReadDataFile({fPath, "", 1});
  EXPECT_EQ(read.ok ? sample::Dump(read.table) : read.error, sample::Dump(table));
}

TEST_F(DamagedVdt, ASmallFileThatAsksForMuchMemoryIsRefused) {
  Table wide;
  for (int i = 0; i < 100; ++i)
    sample::AddTexts(wide, "s" + std::to_string(i), 32767, {""});
  ASSERT_EQ(standalone::WriteDataFile(fPath, wide), "");
  // 2000 cases of 100 blank strings would take 6.5 GB.
  Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<2000) "
      "INSERT INTO cases (s0) SELECT NULL FROM n");
  EXPECT_NE(Answer().find("its cases would fill the memory"), std::string::npos) << Answer();
}

TEST_F(DamagedVdt, ValueLabelsThatAskForMuchMemoryAreRefused) {
  Table wide;
  sample::AddTexts(wide, "s", 32767, {""});
  ASSERT_EQ(standalone::WriteDataFile(fPath, wide), "");
  Run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<9000) "
      "INSERT INTO value_labels SELECT 's', 'v', 'l' FROM n");
  EXPECT_NE(Answer().find("its value labels would fill the memory"), std::string::npos) << Answer();
}

TEST_F(DamagedVdt, AFarRowNumberIsNoReasonToTakeMemory) {
  Run("INSERT INTO cases (_rowid_, x) VALUES (9223372036854775807, 4)");
  const ReadResult read = ReadDataFile({fPath, "", 1});
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.table.CaseCount(), 4u);
}

TEST_F(DamagedVdt, FlippedBitsNeverDoHarm) {
  ASSERT_EQ(standalone::WriteDataFile(fPath, sample::EveryAttribute()), "");
  const std::string whole = Bytes(fPath);
  std::mt19937_64 random(42);
  int refused = 0;
  for (int i = 0; i < 600; ++i) {
    std::string bytes = whole;
    // Half of the flips go into the first page and what lies at pages' ends and beginnings, where the
    // structure is.
    for (std::size_t flips = 1 + random() % 3; flips > 0; --flips) {
      std::size_t at = random() % bytes.size();
      if (random() % 2 == 0) at = std::min(at / 4096 * 4096 + random() % 120, bytes.size() - 1);
      bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ (1u << (random() % 8)));
    }
    fFolder.Write("a.vdt", bytes);
    if (Answer() != "fine") ++refused;
  }
  EXPECT_GT(refused, 100);  // flips in texts and free space go unnoticed
}

TEST_F(DamagedVdt, ACutFileIsRefused) {
  ASSERT_EQ(standalone::WriteDataFile(fPath, sample::EveryAttribute()), "");
  const std::string whole = Bytes(fPath);
  for (std::size_t part = 1; part < 40; ++part) {
    fFolder.Write("a.vdt", whole.substr(0, whole.size() * part / 40));
    EXPECT_NE(Answer(), "fine") << part;
  }
}

TEST_F(DamagedVdt, FilesOfAnotherKindAreRefused) {
  fFolder.Write("a.vdt", "");
  EXPECT_NE(Answer().find("it is empty"), std::string::npos);
  fFolder.Write("a.vdt", "x,y\n1,2\n");
  EXPECT_NE(Answer().find("it is no case file"), std::string::npos);
  fFolder.Write("a.vdt", std::string(100000, 'x'));
  EXPECT_NE(Answer().find("it is no case file"), std::string::npos);
  std::filesystem::remove(fPath);
  EXPECT_NE(Answer().find("No such file"), std::string::npos);
  std::filesystem::create_directory(fPath);
  EXPECT_NE(Answer().find("it is no regular file"), std::string::npos);
  std::filesystem::remove(fPath);
  ASSERT_EQ(::mkfifo(fPath.c_str(), 0600), 0);
  EXPECT_NE(Answer().find("it is no regular file"), std::string::npos);
}

TEST_F(DamagedVdt, ADatabaseOfAnotherProgramIsRefused) {
  std::filesystem::remove(fPath);
  Run("CREATE TABLE variables (position, name); INSERT INTO variables VALUES (1, 'x')");
  EXPECT_NE(Answer().find("a database of another program can't be read"), std::string::npos);
}

TEST_F(DamagedVdt, ASchemaHasNoBusinessWithACaseFile) {
  const ReadResult read = ReadDataFile({fPath, fFolder.Write("s.json", "{\"fields\": []}"), 1});
  EXPECT_FALSE(read.ok);
  EXPECT_NE(read.error.find("has a dictionary of its own"), std::string::npos);
}

}  // namespace
