// Files are written whole or not at all, and what can't be kept is refused.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>

#include "sample_tables.h"
#include "standalone/data/cells.h"
#include "standalone/files/atomic_file.h"
#include "standalone/files/csv_writer.h"
#include "standalone/files/data_reader.h"
#include "standalone/files/data_writer.h"
#include "test_folder.h"

namespace {

namespace fs = std::filesystem;
using standalone::Table;
using standalone::WriteDataFile;

Table Small(double value) {
  Table table;
  sample::AddNumbers(table, "x", {value});
  return table;
}

/// Some 800 KB in any form.
Table Large() {
  Table table;
  sample::AddNumbers(table, "y", std::vector<double>(100000, 0.12345678));
  return table;
}

class WholeOrNot : public testing::TestWithParam<const char*> {
 protected:
  std::string Path() const { return fFolder.Path(std::string("data") + GetParam()); }

  /// All files of the folder with their bytes.
  std::map<std::string, std::string> Files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(fFolder.Path())) {
      std::ifstream file(entry.path(), std::ios::binary);
      files[entry.path().filename().string()] = {std::istreambuf_iterator<char>(file), {}};
    }
    return files;
  }

  /// Writes a table in a process of its own that may write files of at most `bytes` bytes, as on a disk that
  /// is full. True when writing failed with a reason.
  bool FailsWithin(rlim_t bytes, const Table& table) const {
    const pid_t child = ::fork();
    if (child == 0) {
      ::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{bytes, bytes};
      ::setrlimit(RLIMIT_FSIZE, &limit);
      const std::string error = WriteDataFile(Path(), table);
      ::_exit(error.find("cannot be written: ") != std::string::npos ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

  TestFolder fFolder;
};

INSTANTIATE_TEST_SUITE_P(Forms, WholeOrNot, testing::Values(".vdt", ".csv"),
                         [](const auto& form) { return std::string(form.param + 1); });

TEST_P(WholeOrNot, AFullDiskLeavesTheOldFilesAsTheyWere) {
  ASSERT_EQ(WriteDataFile(Path(), Small(1)), "");
  const auto before = Files();
  for (const rlim_t bytes : {0, 10, 4096, 100000, 700000}) {
    EXPECT_TRUE(FailsWithin(bytes, Large())) << bytes;
    EXPECT_TRUE(Files() == before) << bytes;
  }
}

TEST_P(WholeOrNot, AFullDiskLeavesNoNewFile) {
  EXPECT_TRUE(FailsWithin(100000, Large()));
  EXPECT_TRUE(Files().empty());
}

TEST_P(WholeOrNot, AKilledProgramLeavesTheOldFilesAsTheyWere) {
  ASSERT_EQ(WriteDataFile(Path(), Small(1)), "");
  const auto before = Files();
  const pid_t child = ::fork();
  if (child == 0) {  // the signal of the limit ends the process in the middle of writing
    const rlimit limit{300000, 300000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::signal(SIGXFSZ, SIG_DFL);
    const std::string ignored = WriteDataFile(Path(), Large());
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  const auto after = Files();
  for (const auto& [name, bytes] : before)
    EXPECT_TRUE(after.at(name) == bytes) << name;
}

TEST_P(WholeOrNot, AFolderThatIsNoneIsTold) {
  fFolder.Write("file", "");
  const std::string path = fFolder.Path("file/data") + GetParam();
  EXPECT_EQ(WriteDataFile(path, Small(1)), path + " cannot be written: Not a directory");
  const std::string nowhere = fFolder.Path("none/data") + GetParam();
  EXPECT_EQ(WriteDataFile(nowhere, Small(1)), nowhere + " cannot be written: No such file or directory");
}

TEST_P(WholeOrNot, AFolderInThePlaceOfTheFileIsTold) {
  fs::create_directory(Path());
  EXPECT_EQ(WriteDataFile(Path(), Small(1)), Path() + " cannot be written: it is a folder");
}

TEST_P(WholeOrNot, ALinkStaysAndItsFileKeepsItsPermissions) {
  fFolder.Write("real", "old");
  fs::permissions(fFolder.Path("real"), fs::perms(0640));
  fs::create_symlink("real", Path());
  ASSERT_EQ(WriteDataFile(Path(), Small(1)), "");
  EXPECT_TRUE(fs::is_symlink(Path()));
  EXPECT_EQ(fs::status(fFolder.Path("real")).permissions(), fs::perms(0640));
  EXPECT_TRUE(standalone::ReadDataFile({Path(), "", 1}).ok);
}

TEST_P(WholeOrNot, WhatNoFileCanHoldIsRefusedWithItsPlaceAndTheOldFilesStay) {
  ASSERT_EQ(WriteDataFile(Path(), Small(1)), "");
  const auto before = Files();
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(WriteDataFile(Path(), Small(infinity)),
            Path() + " cannot be written: the number of variable x in case 1 is not finite");
  Table table;
  sample::AddTexts(table, "s", 4, {"a", "b\xFF"});
  EXPECT_EQ(WriteDataFile(Path(), table),
            Path() + " cannot be written: the text of variable s in case 2 is not UTF-8 or holds a NUL");
  EXPECT_EQ(WriteDataFile(Path(), Table()), Path() + " cannot be written: there are no variables");
  EXPECT_TRUE(Files() == before);
}

TEST_P(WholeOrNot, ADictionaryThatNoFileCanHoldIsRefused) {
  using host::VORN_Variable;
  const auto answer = [this](const VORN_Variable& variable) {
    Table table;
    table.Add(variable);
    return WriteDataFile(Path(), table);
  };
  const auto says = [&](const VORN_Variable& variable, const char* reason) {
    const std::string text = answer(variable);
    EXPECT_NE(text.find(reason), std::string::npos) << text;
  };
  says(VORN_Variable("", 0), "no legal name");
  says(VORN_Variable("a b", 0), "no legal name");
  says(VORN_Variable("with", 0), "no legal name");
  says(VORN_Variable(std::string(65, 'x'), 0), "no legal name");
  says(VORN_Variable("s", 32768), "a width of 32768 bytes; a string has 1 to 32767");
  VORN_Variable variable("s", 8);
  variable.SetFormat({1, 9, 0});
  says(variable, "the format A9, which doesn't fit a string of 8 bytes");
  variable = VORN_Variable("x", 0);
  variable.SetFormat({5, 3, 3});
  says(variable, "the format F3.3, which doesn't fit a number");
  variable = VORN_Variable("x", 0);
  variable.SetLabel("\xC3");
  says(variable, "a label that is no text in UTF-8");
  variable = VORN_Variable("x", 0);
  host::VORN_ValueLabelMap labels;
  labels.AddPair(standalone::TextValue("a", 20), "l");
  variable.SetValueLabels(labels);
  says(variable, "a value label of a value that the variable can't have");
  variable = VORN_Variable("x", 0);
  host::VORN_MissingValues missing;
  missing.values = {standalone::NumberValue(std::numeric_limits<double>::quiet_NaN())};
  variable.SetMissingValues(missing);
  says(variable, "a missing value that the variable can't have");
  Table twice;
  sample::AddNumbers(twice, "x", {1});
  sample::AddNumbers(twice, "X", {1});
  EXPECT_NE(WriteDataFile(Path(), twice).find("variable 2, \"X\", has the name of another variable"),
            std::string::npos);
}

TEST(CsvPair, WhenTheDataCantFollowTheSchemaComesBack) {
  TestFolder folder;
  const std::string path = folder.Path("a.csv");
  fs::create_directory(path);  // found out only when the finished file is to take its place
  EXPECT_EQ(standalone::WriteDelimited(path, ',', Small(1)), "Is a directory");
  EXPECT_FALSE(fs::exists(folder.Path("a.schema.json")));
  folder.Write("a.schema.json", "the old schema");
  EXPECT_EQ(standalone::WriteDelimited(path, ',', Small(1)), "Is a directory");
  std::ifstream schema(folder.Path("a.schema.json"));
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(schema), {}), "the old schema");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 2);
}

TEST(CsvPair, WhenTheSchemaCantBeWrittenTheDataStay) {
  TestFolder folder;
  const std::string path = folder.Write("a.csv", "old");
  fs::create_directory(folder.Path("a.schema.json"));
  const std::string error = WriteDataFile(path, Small(1));
  EXPECT_NE(error.find("its schema " + folder.Path("a.schema.json") + ": Is a directory"), std::string::npos)
      << error;
  std::ifstream data(path);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(data), {}), "old");
}

TEST(VdtSize, MoreVariablesThanADatabaseTableHoldsAreRefusedWithAWayOut) {
  TestFolder folder;
  Table table;
  for (int i = 0; i < 2001; ++i)
    table.Add(host::VORN_Variable("v" + std::to_string(i), 0));
  const std::string error = WriteDataFile(folder.Path("a.vdt"), table);
  EXPECT_NE(error.find("at most 2000 variables, the data have 2001; write a .csv file"), std::string::npos)
      << error;
  EXPECT_EQ(WriteDataFile(folder.Path("a.csv"), table), "");
  EXPECT_EQ(standalone::ReadDataFile({folder.Path("a.csv"), "", 1}).table.ColumnCount(), 2001u);
}

TEST(VdtSize, AsManyVariablesAsADatabaseTableHoldsAreKept) {
  TestFolder folder;
  Table table;
  table.SetCaseCount(3);
  const std::string stem(55, 'v');
  for (int i = 0; i < 2000; ++i)
    table.Add(host::VORN_Variable(stem + std::to_string(i), i % 2 == 0 ? 0 : 40));
  ASSERT_EQ(WriteDataFile(folder.Path("a.vdt"), table), "");
  const standalone::ReadResult read = standalone::ReadDataFile({folder.Path("a.vdt"), "", 1});
  EXPECT_EQ(read.ok ? sample::Dump(read.table) : read.error, sample::Dump(table));
}

TEST(DataFileNames, TheEndingMustNameAForm) {
  TestFolder folder;
  EXPECT_NE(standalone::OutputNameFault("a.txt").find("must be .csv, .tsv or .vdt"), std::string::npos);
  EXPECT_NE(WriteDataFile(folder.Path("a"), Small(1)).find("must be .csv, .tsv or .vdt"), std::string::npos);
  EXPECT_EQ(standalone::OutputNameFault(folder.Path("a.CSV")), "");
}

TEST(PendingFiles, AFileThatIsNotPublishedLeavesNothing) {
  TestFolder folder;
  {
    standalone::PendingFile file(folder.Path("a"));
    EXPECT_TRUE(file.Append("text") && file.Complete());
    EXPECT_TRUE(fs::exists(file.Path()));
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 0);
}

TEST(PendingFiles, ALongNameLeavesRoomForTheTemporaryOne) {
  TestFolder folder;
  const std::string path = folder.Path(std::string(250, 'n') + ".csv");
  EXPECT_NE(WriteDataFile(path, Small(1)), "");  // the schema's name would be too long
  const std::string shorter = folder.Path(std::string(240, 'n') + ".vdt");
  EXPECT_EQ(WriteDataFile(shorter, Small(1)), "");
}

}  // namespace
