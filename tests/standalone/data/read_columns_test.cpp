// Reading in slices: the same columns come out for any cut and any number of threads.
#include "standalone/data/read_columns.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "standalone/data/parallel.h"
#include "standalone/data/row_slices.h"

namespace {

using namespace standalone;

/// Reads a text without header under rules of one guessed column per name.
ReadColumns Read(const std::string& body, std::size_t columns, int threads, std::size_t leastSlice) {
  const FileText text("test.csv", body);
  const CellScanner scanner(',', text.End());
  ReadRules rules;
  rules.columns.resize(columns);
  for (std::size_t i = 0; i < columns; ++i)
    rules.columns[i].name = "v" + std::to_string(i);
  return ReadRows(text, text.Begin(), scanner, rules, {threads, leastSlice});
}

void ExpectSame(const ReadColumns& a, const ReadColumns& b) {
  ASSERT_EQ(a.fault.offset, b.fault.offset);
  ASSERT_EQ(a.fault.message, b.fault.message);
  ASSERT_EQ(a.rows, b.rows);
  ASSERT_EQ(a.columns.size(), b.columns.size());
  for (std::size_t i = 0; i < a.columns.size(); ++i) {
    ASSERT_EQ(a.columns[i].width, b.columns[i].width);
    ASSERT_EQ(a.columns[i].decimals, b.columns[i].decimals);
    ASSERT_EQ(a.columns[i].longest, b.columns[i].longest);
    ASSERT_EQ(a.columns[i].cells.size(), b.columns[i].cells.size());
    if (a.columns[i].cells.empty()) continue;
    ASSERT_EQ(
        std::memcmp(a.columns[i].cells.data(), b.columns[i].cells.data(), a.columns[i].cells.size() * 8), 0);
  }
}

/// Rows of four columns: numbers, texts with quoted delimiters and line ends, numbers with a late text,
/// sparse numbers.
std::string RandomBody(std::mt19937& random, int rows, bool isLate) {
  const std::vector<std::string> texts = {
      "a", "", "\"x,y\"", "\"two\nlines\"", "\"he said \"\"no\"\"\"", "plain text", "\"\""};
  const std::vector<std::string> numbers = {"1", "-2.5", "", "NA", "1e3", "\"4\"", "1234567.125"};
  std::string body;
  for (int i = 0; i < rows; ++i) {
    body += std::to_string(i) + "," + texts[random() % texts.size()] + ",";
    body += isLate && i == rows - 2 ? "late" : numbers[random() % numbers.size()];
    body += "," + numbers[random() % 4] + (random() % 2 == 0 ? "\n" : "\r\n");
  }
  return body;
}

TEST(ReadColumns, GivesTheSameColumnsForAnyCut) {
  std::mt19937 random(11);
  for (int trial = 0; trial < 60; ++trial) {
    const std::string body = RandomBody(random, 1 + static_cast<int>(random() % 40), trial % 2 == 0);
    const ReadColumns whole = Read(body, 4, 1, 1u << 20);
    ASSERT_FALSE(whole.fault) << whole.fault.message;
    for (const int threads : {2, 3, 8, 50})
      ExpectSame(whole, Read(body, 4, threads, 1));
  }
}

TEST(ReadColumns, GivesTheSameFaultForAnyCut) {
  std::mt19937 random(12);
  for (int trial = 0; trial < 200; ++trial) {
    std::string body = RandomBody(random, 20, false);
    for (int i = 0; i < 2; ++i)
      body.insert(random() % body.size(), 1, "\",\n\rx"[random() % 5]);
    const ReadColumns whole = Read(body, 4, 1, 1u << 20);
    for (const int threads : {2, 5, 30})
      ExpectSame(whole, Read(body, 4, threads, 1));
  }
}

TEST(ReadColumns, ALateTextKeepsWhatWasWrittenInEarlierRows) {
  std::string body;
  for (int i = 0; i < 100; ++i)
    body += "1.50,7\n";
  body += "x,7\n";
  const ReadColumns read = Read(body, 2, 3, 1);
  ASSERT_EQ(read.columns[0].width, 4);
  for (std::size_t i = 0; i < 100; ++i)
    ASSERT_EQ(std::string(read.columns[0].cells[i].text, 8), "1.50    ");
  EXPECT_EQ(std::string(read.columns[0].cells[100].text, 8), "x       ");
  EXPECT_EQ(read.columns[1].width, 0);
}

TEST(ReadColumns, OfManyQuotedLineEndsTakesNoMoreRoomThanTheTextCanFill) {
  const std::string body = "\"" + std::string(20000, '\n') + "\",2\n";
  const ReadColumns read = Read(body, 2, 1, 1);
  ASSERT_EQ(read.rows, 1u);
  EXPECT_EQ(read.columns[0].width, 20000);
}

TEST(RowSlices, CutOnlyAtLineEndsOutsideQuotes) {
  const std::string text = "1,\"a\nb\"\n2,\"\"\"\n\"\n3,c\n4,d";
  for (std::size_t count = 1; count <= text.size(); ++count) {
    const std::vector<RowSlice> slices = CutIntoSlices(text, count, 2, 2);
    const char* place = text.data();
    for (const RowSlice& slice : slices) {
      ASSERT_EQ(slice.begin, place);
      ASSERT_GT(slice.end, slice.begin);
      ASSERT_NE(std::string("1234").find(*slice.begin), std::string::npos) << slice.begin;
      place = slice.end;
    }
    ASSERT_EQ(place, text.data() + text.size());
  }
}

TEST(RunParts, RunsEachPartOnceAndHandsOnTheFirstFailure) {
  for (const int threads : {0, 1, 4}) {
    std::vector<int> runs(100, 0);
    RunParts(runs.size(), threads, [&runs](std::size_t i) { ++runs[i]; });
    EXPECT_EQ(runs, std::vector<int>(100, 1));
    try {
      RunParts(50, threads, [](std::size_t i) {
        if (i % 20 == 7) throw static_cast<int>(i);
      });
      FAIL() << "no exception";
    } catch (int part) {
      EXPECT_EQ(part, 7);
    }
  }
}

}  // namespace
