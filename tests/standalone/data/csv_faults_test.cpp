// What the reader answers to broken and hostile files: an error with file, line and column, and no table.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "standalone/files/data_reader.h"
#include "temporary_folder.h"

namespace {

using standalone::ReadDataFile;
using standalone::ReadResult;

struct FaultCase {
  std::string text;
  std::string place;  // ":line:column: "
  std::string part;   // of the message
};

void ExpectFault(const FaultCase& fault, int threads = 1) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("data.csv", fault.text);
  const ReadResult read = ReadDataFile({path, "", threads});
  const std::string shown = fault.text.substr(0, 80);
  EXPECT_FALSE(read.ok) << shown;
  EXPECT_EQ(read.error.rfind(path + fault.place, 0), 0u) << read.error << "\nfor " << shown;
  EXPECT_NE(read.error.find(fault.part), std::string::npos) << read.error << "\nfor " << shown;
  EXPECT_EQ(read.table.ColumnCount(), 0u) << shown;
  EXPECT_EQ(read.table.CaseCount(), 0u) << shown;
}

TEST(CsvFaults, ARaggedLineIsNamed) {
  ExpectFault({"a,b\n1,2\n3\n4,5\n", ":3:1: ", "1 cell, the header has 2"});
  ExpectFault({"a,b\n1,2\n3,4,5\n", ":3:1: ", "3 cells, the header has 2"});
  ExpectFault({"a,b\n1,2,\n", ":2:1: ", "3 cells, the header has 2"});
  ExpectFault({"a\n1\n2,3\n", ":3:1: ", "2 cells, the header has 1"});
  ExpectFault({"a,b\n\"x\ny\",1\n3\n", ":4:1: ", "1 cell"});  // lines of the file, not rows
}

TEST(CsvFaults, ABlankLineBetweenTheRowsIsNamed) {
  ExpectFault({"a,b\n1,2\n\n3,4\n", ":3:1: ", "blank line"});
  ExpectFault({"a,b\n1,2\n \n", ":3:1: ", "1 cell"});
}

TEST(CsvFaults, ABadQuoteIsNamed) {
  ExpectFault({"a,b\n1,x\"y\n", ":2:4: ", "quote inside a cell"});
  ExpectFault({"a,b\n1, \"y\"\n", ":2:4: ", "quote inside a cell"});
  ExpectFault({"a,b\n1,\"x\"y\n", ":2:6: ", "behind a closing quote"});
  ExpectFault({"a,b\n1,\"xy\n2,3\n", ":2:3: ", "never closed"});
  ExpectFault({"a,b\n1,\"", ":2:3: ", "never closed"});
  ExpectFault({"a,b\n1,\"\"\"", ":2:3: ", "never closed"});
  ExpectFault({"a,\"b\n1,2\n", ":1:3: ", "never closed"});
  ExpectFault({"a,b\"c\n1,2\n", ":1:4: ", "quote inside a cell"});
}

TEST(CsvFaults, InvalidUtf8IsNamedByItsCharacterColumn) {
  ExpectFault({"a,b\n1,\xC3\xA4\xFF\n", ":2:4: ", "UTF-8"});
  ExpectFault({"\xFF,b\n1,2\n", ":1:1: ", "UTF-8"});
  ExpectFault({"a\nx\xED\xA0\x80\n", ":2:2: ", "UTF-8"});
  ExpectFault({"a\nx\xC3", ":2:2: ", "UTF-8"});
}

TEST(CsvFaults, ANulByteIsNamed) {
  ExpectFault({std::string("a,b\n1,\0002\n", 9), ":2:3: ", "NUL"});
  ExpectFault({std::string("a\0,\0b\0\n\0", 8), ":1:2: ", "NUL"});
}

TEST(CsvFaults, ALoneCarriageReturnIsNamed) {
  ExpectFault({"a,b\r1,2\r", ":1:4: ", "carriage return"});
  ExpectFault({"a,b\nx\ry,2\n", ":2:2: ", "carriage return"});
  ExpectFault({"a,b\n1\r,2\n", ":2:2: ", "carriage return"});
  ExpectFault({"a,b\n\"x\"\ry,2\n", ":2:4: ", "carriage return"});
}

TEST(CsvFaults, AnEmptyFileAndABlankFirstLineAreRefused) {
  ExpectFault({"", ": ", "empty"});
  ExpectFault({"\xEF\xBB\xBF", ": ", "empty"});
  ExpectFault({"\na,b\n", ":1:1: ", "first line is blank"});
  ExpectFault({"\r\n", ":1:1: ", "first line is blank"});
}

TEST(CsvFaults, ATextOfMoreThan32767BytesIsRefused) {
  ExpectFault({"a,b\n1," + std::string(32768, 'x') + "\n", ":2:3: ", "32768 bytes"});
  ExpectFault({"a,b\n1,\"" + std::string(500000, 'x') + "\"\n", ":2:4: ", "500000 bytes"});
  // A number may be as long as it likes, until its column turns out to be text.
  ExpectFault({"a\n" + std::string(40000, '0') + "\nx\n", ":2:1: ", "40000 bytes"});
}

TEST(CsvFaults, AMillionColumnsAreRefused) {
  ExpectFault({std::string(1000000, ','), ":1:", "more than 100000 columns"});
}

TEST(CsvFaults, AWideTextThatWouldFillTheMemoryIsRefused) {
  std::string text = "a\n" + std::string(32767, 'x') + "\n";
  for (int i = 0; i < 100000; ++i)
    text += "y\n";
  ExpectFault({text, ":2:1: ", "makes variable a too large"});
}

TEST(CsvFaults, TheEarliestFaultIsReportedForAnyNumberOfThreads) {
  std::string rows;
  for (int i = 0; i < 400000; ++i)
    rows += "1,2,3\n";
  for (const int threads : {1, 2, 7}) {
    ExpectFault({"a,b,c\n" + rows + "1,2\n" + rows + "1,\"x\n" + rows, ":400002:1: ", "2 cells"}, threads);
    ExpectFault({"a,b,c\n" + rows + "1,\"x,2\n" + rows + "1,2\n" + rows, ":400002:3: ", "never closed"},
                threads);
    ExpectFault({"a,b,c\n" + rows + "1,x\"y,2\n" + rows + "\"\n" + rows, ":400002:4: ", "quote inside"},
                threads);
  }
}

TEST(CsvFaults, AFileThatCannotBeReadIsNamed) {
  const TemporaryFolder folder;
  for (const std::string& path : {folder.Path("none.csv"), folder.Path(".") + "/.csv"}) {
    const ReadResult read = ReadDataFile({path, "", 1});
    EXPECT_FALSE(read.ok);
    EXPECT_EQ(read.error.rfind(path + ": ", 0), 0u) << read.error;
  }
  std::filesystem::create_directory(folder.Path("folder.csv"));
  EXPECT_FALSE(ReadDataFile({folder.Path("folder.csv"), "", 1}).ok);
}

TEST(CsvFaults, AnUnknownEndingIsRefused) {
  const TemporaryFolder folder;
  for (const char* name : {"data.xlsx", "data", "csv", "data.csv.gz"}) {
    const ReadResult read = ReadDataFile({folder.Write(name, "a\n1\n"), "", 1});
    EXPECT_FALSE(read.ok) << name;
    EXPECT_NE(read.error.find(".csv, .tsv or .vdt"), std::string::npos) << read.error;
  }
}

}  // namespace
