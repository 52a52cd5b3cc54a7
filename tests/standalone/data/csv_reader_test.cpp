// What the reader makes of sound files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "standalone/files/data_reader.h"
#include "temporary_folder.h"

namespace {

using standalone::Column;
using standalone::ReadDataFile;
using standalone::ReadResult;
using standalone::Table;

constexpr double kMissing = host::kSystemMissing;

ReadResult ReadText(const std::string& text, const std::string& name = "data.csv", int threads = 1) {
  const TemporaryFolder folder;
  return ReadDataFile({folder.Write(name, text), "", threads});
}

std::vector<double> Numbers(const Column& column) {
  std::vector<double> numbers;
  for (const host::OBS& cell : column.cells)
    numbers.push_back(cell.number);
  return numbers;
}

/// The texts without their padding, after a check that all else is blank.
std::vector<std::string> Texts(const Column& column, std::size_t rows) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < rows; ++i) {
    std::string text(column.cells[i * column.Stride()].text, column.Stride() * sizeof(host::OBS));
    EXPECT_EQ(text.find_first_not_of(' ', static_cast<std::size_t>(column.variable.GetType())),
              std::string::npos);
    texts.push_back(text.substr(0, text.find_last_not_of(' ') + 1));
  }
  return texts;
}

TEST(CsvReader, ReadsNumbersAndStringsIntoTypedColumns) {
  const ReadResult read = ReadText("id,name,weight\n1,Ann,2.50\n2,Bartholomew,3\n");
  ASSERT_TRUE(read.ok) << read.error;
  ASSERT_EQ(read.table.ColumnCount(), 3u);
  EXPECT_EQ(read.table.CaseCount(), 2u);
  EXPECT_EQ(Numbers(read.table.At(0)), (std::vector<double>{1, 2}));
  EXPECT_EQ(Texts(read.table.At(1), 2), (std::vector<std::string>{"Ann", "Bartholomew"}));
  EXPECT_EQ(read.table.At(1).variable.GetType(), 11);
  EXPECT_EQ(read.table.At(1).variable.GetFormat(), (host::VORN_Format{1, 11, 0}));
  EXPECT_EQ(Numbers(read.table.At(2)), (std::vector<double>{2.5, 3}));
  EXPECT_TRUE(read.warnings.empty());
}

TEST(CsvReader, TheFormatShowsTheDecimalsSeen) {
  const ReadResult read = ReadText("a,b,c,d\n3,1.5,1e5,44.2099990844727\n-12,2.125,1.5e-3,1\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.table.At(0).variable.GetFormat(), (host::VORN_Format{5, 8, 0}));
  EXPECT_EQ(read.table.At(1).variable.GetFormat(), (host::VORN_Format{5, 8, 3}));
  EXPECT_EQ(read.table.At(2).variable.GetFormat(), (host::VORN_Format{5, 8, 4}));
  EXPECT_EQ(read.table.At(3).variable.GetFormat(), (host::VORN_Format{5, 16, 13}));
}

TEST(CsvReader, AllWaysToWriteANumberAreRead) {
  const ReadResult read =
      ReadText("x\n1e5\n+3\n-.5\n 7 \n\"8\"\n0.7\n5.\n-0\n1E-2\n123456789012345\n1.2345678901234567890\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(Numbers(read.table.At(0)), (std::vector<double>{1e5, 3, -0.5, 7, 8, 0.7, 5, 0, 0.01,
                                                            123456789012345, 1.2345678901234567890}));
}

TEST(CsvReader, WhatLooksLikeAnIdentifierMakesAStringColumn) {
  for (const std::string cell : {"01", "00", "-01", "+007", "01.5", "\"01\"", " 01 ", "9007199254740993",
                                 "-1234567890123456", "1234567890123456.5", "00000000000000000001"}) {
    const ReadResult read = ReadText("id,x\n1," + cell + "\n2,1\n3,0\n");
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_EQ(read.table.At(0).variable.GetType(), 0);
    EXPECT_GT(read.table.At(1).variable.GetType(), 0) << cell;
    EXPECT_EQ(Texts(read.table.At(1), 3)[1], "1") << cell;
  }
}

TEST(CsvReader, AZeroAloneOrBeforeThePointAndManyDecimalsAreNumbers) {
  for (const std::string cell : {"0", "-0", "+0", "0.5", "-0.25", "0e5", "0.1234567890123456789", "1e20",
                                 "123456789012345", "123456789012345.25", "1234567890123456e2", "NA"}) {
    const ReadResult read = ReadText("x\n" + cell + "\n1\n");
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_EQ(read.table.At(0).variable.GetType(), 0) << cell;
  }
}

TEST(CsvReader, NeighboursAbove2To53StayTwo) {
  const ReadResult read = ReadText("id\n9007199254740992\n9007199254740993\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(Texts(read.table.At(0), 2), (std::vector<std::string>{"9007199254740992", "9007199254740993"}));
}

TEST(CsvReader, OneCellThatIsNoNumberMakesAStringColumn) {
  for (const std::string cell :
       {"x", "0x1F", "inf", "nan", "-inf", "1e999", "1 2", "1;2", "3..4", "--1", "N/A"}) {
    const ReadResult read = ReadText("a,b\n1.50,1\n" + cell + ",2\n03,3\n");
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_EQ(Texts(read.table.At(0), 3), (std::vector<std::string>{"1.50", cell, "03"}));
    EXPECT_EQ(Numbers(read.table.At(1)), (std::vector<double>{1, 2, 3}));
  }
}

TEST(CsvReader, EmptyCellsAreMissing) {
  const ReadResult read = ReadText("n,s\n,a\n2,\n\"\",\"\"\n  ,b\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(Numbers(read.table.At(0)), (std::vector<double>{kMissing, 2, kMissing, kMissing}));
  EXPECT_EQ(Texts(read.table.At(1), 4), (std::vector<std::string>{"a", "", "", "b"}));
  const host::VORN_MissingValues& missing = read.table.At(1).variable.GetMissingValues();
  ASSERT_EQ(missing.values.size(), 1u);
  EXPECT_EQ(std::string(missing.values[0][0].text, 8), "        ");
  EXPECT_TRUE(read.table.At(0).variable.GetMissingValues().Empty());
}

TEST(CsvReader, NaAndAPeriodCountAsEmptyInANumericColumnOnly) {
  const ReadResult read = ReadText("n,s\nNA,NA\n.,.\n3,x\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(Numbers(read.table.At(0)), (std::vector<double>{kMissing, kMissing, 3}));
  EXPECT_EQ(Texts(read.table.At(1), 3), (std::vector<std::string>{"NA", ".", "x"}));
}

TEST(CsvReader, AColumnWithoutAnyValueIsNumeric) {
  const ReadResult read = ReadText("a,b\n,1\nNA,2\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_TRUE(read.table.At(0).variable.IsNumeric());
  EXPECT_EQ(Numbers(read.table.At(0)), (std::vector<double>{kMissing, kMissing}));
}

TEST(CsvReader, QuotesMayHoldDelimitersLineEndsAndDoubledQuotes) {
  const ReadResult read =
      ReadText("\"a\",\"b \"\"x\"\"\"\n\"1,5\",\"line 1\nline 2\"\n\"say \"\"hi\"\"\",\"\"\"\"\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(Texts(read.table.At(0), 2), (std::vector<std::string>{"1,5", "say \"hi\""}));
  EXPECT_EQ(Texts(read.table.At(1), 2), (std::vector<std::string>{"line 1\nline 2", "\""}));
  EXPECT_EQ(read.table.At(0).variable.GetType(), 8);
  EXPECT_EQ(read.table.At(1).variable.GetLabel(), "b \"x\"");
}

TEST(CsvReader, LinesMayEndInCarriageReturnAndLineFeed) {
  const ReadResult read = ReadText("a,b\r\n1,x\r\n2,\"y\"\r\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(Numbers(read.table.At(0)), (std::vector<double>{1, 2}));
  EXPECT_EQ(Texts(read.table.At(1), 2), (std::vector<std::string>{"x", "y"}));
}

TEST(CsvReader, AByteOrderMarkIsNoPartOfTheFirstName) {
  const ReadResult read = ReadText(
      "\xEF\xBB\xBF"
      "a,b\n1,2\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.table.At(0).variable.GetName(), "a");
  EXPECT_TRUE(read.warnings.empty());
}

TEST(CsvReader, TheLastLineNeedsNoLineEnd) {
  for (const std::string end : {"", "\n", "\r\n", "\n\n", "\r\n\r\n\n"}) {
    const ReadResult read = ReadText("a,b\n1,2\n3,4" + end);
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_EQ(Numbers(read.table.At(1)), (std::vector<double>{2, 4}));
  }
  EXPECT_EQ(Numbers(ReadText("a,b\n1,2\n3,").table.At(1)), (std::vector<double>{2, kMissing}));
}

TEST(CsvReader, ABlankLineOfAFileWithOneColumnIsACase) {
  const ReadResult read = ReadText("a\n1\n\n3\n\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(Numbers(read.table.At(0)), (std::vector<double>{1, kMissing, 3, kMissing}));
}

TEST(CsvReader, FindsTheDelimiterFromTheHeader) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"data.csv", "a;b\n1;2\n"}, {"data.csv", "a\tb\n1\t2\n"},      {"data.csv", "a|b\n1|2\n"},
      {"data.csv", "a,b\n1,2\n"}, {"data.tsv", "a\tb\n1\t2\n"},      {"data.tsv", "a,b\n1,2\n"},
      {"DATA.CSV", "a,b\n1,2\n"}, {"data.csv", "\"a,,,\";b\n1;2\n"}, {"data.tsv", "x,,,y\tb\n\t2\n"}};
  for (const auto& [name, text] : cases) {
    const ReadResult read = ReadText(text, name);
    ASSERT_TRUE(read.ok) << read.error;
    ASSERT_EQ(read.table.ColumnCount(), 2u) << text;
    EXPECT_EQ(read.table.At(1).cells[0].number, 2) << text;
  }
}

TEST(CsvReader, AHeaderAloneGivesVariablesWithoutCases) {
  for (const std::string text : {"a,b", "a,b\n", "a,b\r\n\r\n"}) {
    const ReadResult read = ReadText(text);
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_EQ(read.table.ColumnCount(), 2u);
    EXPECT_EQ(read.table.CaseCount(), 0u);
    EXPECT_TRUE(read.table.At(0).variable.IsNumeric());
  }
}

TEST(CsvReader, OneWarningListsTheRenamedVariablesAndTheOriginalBecomesTheLabel) {
  const ReadResult read = ReadText("my age,2x,to,ok,OK,,fine\n1,2,3,4,5,6,7\n");
  ASSERT_TRUE(read.ok) << read.error;
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"my_age", "my age"}, {"V2x", "2x"}, {"to_", "to"}, {"ok", ""},
      {"OK_1", "OK"},       {"V6", ""},    {"fine", ""}};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(read.table.At(i).variable.GetName(), expected[i].first);
    EXPECT_EQ(read.table.At(i).variable.GetLabel(), expected[i].second);
  }
  ASSERT_EQ(read.warnings.size(), 1u);
  for (const char* part :
       {"\"my age\" is my_age", "\"2x\" is V2x", "\"to\" is to_", "\"OK\" is OK_1", "\"\" is V6"}) {
    EXPECT_NE(read.warnings[0].find(part), std::string::npos) << read.warnings[0];
  }
}

TEST(CsvReader, BlanksAroundANameAreDropped) {
  const ReadResult read = ReadText("a, b ,c\n1, 2 ,3\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.table.Find("b"), 1);
  EXPECT_EQ(read.table.At(1).cells[0].number, 2);
  EXPECT_TRUE(read.warnings.empty());
}

TEST(CsvReader, TextsAreUtf8AndTheirWidthIsInBytes) {
  const ReadResult read = ReadText("ort\nM\xC3\xBCnchen\n\xE2\x82\xAC\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.table.At(0).variable.GetType(), 8);
  EXPECT_EQ(Texts(read.table.At(0), 2), (std::vector<std::string>{"M\xC3\xBCnchen", "\xE2\x82\xAC"}));
}

TEST(CsvReader, TheWidestTextMayHave32767Bytes) {
  const std::string widest(32767, 'w');
  const ReadResult read = ReadText("a,b\n" + widest + ",1\nx,2\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.table.At(0).variable.GetType(), 32767);
  EXPECT_EQ(Texts(read.table.At(0), 2), (std::vector<std::string>{widest, "x"}));

  std::string doubled = "\"";  // quotes count once
  for (int i = 0; i < 32767; ++i)
    doubled += "\"\"";
  const ReadResult quotes = ReadText("a,b\n" + doubled + "\",1\n");
  ASSERT_TRUE(quotes.ok) << quotes.error;
  EXPECT_EQ(Texts(quotes.table.At(0), 1)[0], std::string(32767, '"'));
}

TEST(CsvReader, AStringVariableIsNominal) {
  const ReadResult read = ReadText("a,b\nx,1\n");
  EXPECT_EQ(read.table.At(0).variable.GetMeasurementLevel(), host::MeasurementLevel::kNominal);
  EXPECT_EQ(read.table.At(1).variable.GetMeasurementLevel(), host::MeasurementLevel::kUnknown);
}

TEST(CsvReader, ManyColumnsAreNoTrouble) {
  std::string header;
  std::string row;
  for (int i = 0; i < 20000; ++i) {
    header += (i == 0 ? "v" : ",v") + std::to_string(i);
    row += (i == 0 ? "" : ",") + std::to_string(i);
  }
  const ReadResult read = ReadText(header + "\n" + row + "\n");
  ASSERT_TRUE(read.ok) << read.error;
  EXPECT_EQ(read.table.ColumnCount(), 20000u);
  EXPECT_EQ(read.table.At(19999).cells[0].number, 19999);
}

}  // namespace
