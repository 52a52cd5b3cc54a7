#include "standalone/command/source_text.h"

#include <gtest/gtest.h>

namespace {

using standalone::SourceText;

TEST(SourceText, KnowsItsLinesWithAnyKindOfLineEnd) {
  const SourceText source("f", "one\r\ntwo\rthree\n\nfive");
  ASSERT_EQ(source.LineCount(), 5);
  EXPECT_EQ(source.Line(1), "one");
  EXPECT_EQ(source.Line(2), "two");
  EXPECT_EQ(source.Line(3), "three");
  EXPECT_EQ(source.Line(4), "");
  EXPECT_EQ(source.Line(5), "five");
  EXPECT_EQ(source.Line(0), "");
  EXPECT_EQ(source.Line(6), "");
}

TEST(SourceText, DropsAByteOrderMark) {
  const SourceText source("f", "\xEF\xBB\xBFone");
  EXPECT_EQ(source.Text(), "one");
  EXPECT_EQ(source.PositionOf(0, 3).column, 1);
}

TEST(SourceText, CountsColumnsInCharacters) {
  // é takes two bytes, € three, the clef four.
  const SourceText source("f", "a\n\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9Ex");
  const host::SourcePosition position = source.PositionOf(2 + 9, 1);
  EXPECT_EQ(position.line, 2);
  EXPECT_EQ(position.column, 4);
  EXPECT_EQ(position.length, 1);
  EXPECT_EQ(source.PositionOf(2, 10).length, 4);
}

TEST(SourceText, GivesTheEndOfTheTextForAnOffsetBehindIt) {
  const SourceText source("f", "ab\ncd");
  EXPECT_EQ(source.Location(source.PositionOf(99, 5)), "f:2:3");
}

TEST(SourceText, HasNoPlaceForLineZero) {
  const SourceText source("f", "ab");
  EXPECT_EQ(source.Location({}), "");
  EXPECT_EQ(source.Excerpt({}), "");
  EXPECT_EQ(source.Excerpt({9, 1, 1}), "");
  EXPECT_EQ(SourceText().Excerpt({1, 1, 1}), "");
}

TEST(SourceText, PutsTheCaretUnderTheWord) {
  const SourceText source("f", "TAVOREG y\n  /PLN FILE='p'.");
  EXPECT_EQ(source.Excerpt({2, 4, 3}), "  /PLN FILE='p'.\n   ^~~");
  EXPECT_EQ(source.Excerpt({2, 1, 1}), "  /PLN FILE='p'.\n^");
}

TEST(SourceText, ShowsTabsAsBlanksAndWhatSpoilsTheLineAsAMark) {
  EXPECT_EQ(SourceText("f", "\ta\x1B[31mb\xFFz").Excerpt({1, 9, 1}),
            " a\xEF\xBF\xBD[31mb\xEF\xBF\xBDz\n        ^");
  // A mark that turns the direction of the line.
  EXPECT_EQ(SourceText("f",
                       "a\xE2\x80\xAE"
                       "b")
                .Excerpt({1, 3, 1}),
            "a\xEF\xBF\xBD"
            "b\n  ^");
}

TEST(SourceText, KeepsTheCaretInsideTheLineWhateverThePositionSays) {
  const SourceText source("f", "abc");
  EXPECT_EQ(source.Excerpt({1, 2, 1000}), "abc\n ^~");
  EXPECT_EQ(source.Excerpt({1, 4, 1}), "abc\n   ^");
  EXPECT_EQ(source.Excerpt({1, 1000, 7}), "abc\n   ^");
  EXPECT_EQ(source.Excerpt({1, -3, -1}), "abc\n^");
}

TEST(SourceText, CutsALongLineToAWindowAroundThePlace) {
  const std::string line = std::string(500, 'a') + "WORD" + std::string(500, 'b');
  const std::string excerpt = SourceText("f", line).Excerpt({1, 501, 4});
  EXPECT_EQ(excerpt, "..." + std::string(60, 'a') + "WORD" + std::string(36, 'b') + "...\n" +
                         std::string(63, ' ') + "^~~~");
  EXPECT_EQ(SourceText("f", line).Excerpt({1, 2, 1}), std::string(100, 'a') + "...\n ^");
  EXPECT_EQ(SourceText("f", line).Excerpt({1, 1005, 1}),
            "..." + std::string(60, 'b') + "\n" + std::string(63, ' ') + "^");
}

}  // namespace
