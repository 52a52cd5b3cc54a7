#include "standalone/text/terminal_text.h"

#include <gtest/gtest.h>

namespace {

using namespace standalone;
using Lines = std::vector<std::string>;

TEST(TerminalText, WidthCountsColumnsOfATerminal) {
  EXPECT_EQ(DisplayWidth("abc"), 3u);
  EXPECT_EQ(DisplayWidth("Größe"), 5u);
  EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1u);  // e and a combining accent
  EXPECT_EQ(DisplayWidth("日本"), 4u);
  EXPECT_EQ(DisplayWidth("\xff"), 1u);
}

TEST(TerminalText, PaddingReachesTheWidthAndNeverCuts) {
  EXPECT_EQ(PadLeft("ü", 3), "  ü");
  EXPECT_EQ(PadRight("ü", 3), "ü  ");
  EXPECT_EQ(PadCentre("ab", 5), " ab  ");
  EXPECT_EQ(PadLeft("abcd", 3), "abcd");
}

TEST(TerminalText, CuttingLeavesASignInThePlaceOfTheRest) {
  EXPECT_EQ(CutToWidth("abcdef", 4), "abc…");
  EXPECT_EQ(CutToWidth("abcd", 4), "abcd");
  EXPECT_EQ(CutToWidth("äöü", 1), "…");
  EXPECT_EQ(CutToWidth("a", 0), "");
}

TEST(TerminalText, WrappingBreaksAtBlanksAndLineFeeds) {
  EXPECT_EQ(Wrap("one two three", 7), (Lines{"one two", "three"}));
  EXPECT_EQ(Wrap("a\nb", 7), (Lines{"a", "b"}));
  EXPECT_EQ(Wrap("", 7), (Lines{""}));
  EXPECT_EQ(Wrap("abcdefghij", 4), (Lines{"abcd", "efgh", "ij"}));
  EXPECT_EQ(Wrap("ab cdefgh", 4), (Lines{"ab", "cdef", "gh"}));
  EXPECT_EQ(Wrap("日本語", 2), (Lines{"日", "本", "語"}));
}

TEST(TerminalText, NoLineIsWiderThanTheWidthAndNoWordIsLost) {
  const std::string text = "Difference (Estimate - Hypothesized) of a verylongwordthatmustbecut somewhere";
  for (std::size_t width = 1; width < 40; ++width) {
    std::string joined;
    for (const std::string& line : Wrap(text, width)) {
      EXPECT_LE(DisplayWidth(line), width);
      joined += line;
    }
    std::string expected = text;
    std::erase(expected, ' ');
    std::erase(joined, ' ');
    EXPECT_EQ(joined, expected);
  }
}

TEST(TerminalText, ControlCharactersCannotReachATerminal) {
  EXPECT_EQ(WithoutControls("a\x1b[2Jb\tc\nd\xff\xc2\x9b"), "a?[2Jb?c\nd??");
}

TEST(TerminalText, LinesStandAsTheyAreBrokenAndAnEmptyTextHasNone) {
  EXPECT_EQ(LinesOf("a\n\nb"), (Lines{"a", "", "b"}));
  EXPECT_EQ(LinesOf("a\n"), (Lines{"a"}));
  EXPECT_EQ(LinesOf(""), Lines{});
}

}  // namespace
