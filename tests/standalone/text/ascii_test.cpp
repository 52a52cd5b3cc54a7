#include "standalone/text/ascii.h"

#include <gtest/gtest.h>

namespace {

using standalone::IsSameWord;
using standalone::Trimmed;
using standalone::UpperOf;
using standalone::WithoutTrailingBlanks;

TEST(Ascii, UpperCaseLeavesAllButAsciiLettersAlone) {
  EXPECT_EQ(UpperOf("age_1 @Gr\xC3\xB6\xC3\x9F"
                    "e"),
            "AGE_1 @GR\xC3\xB6\xC3\x9F"
            "E");
}

TEST(Ascii, WordsAreTheSameWithoutRegardToCaseOnly) {
  EXPECT_TRUE(IsSameWord("Plan", "pLAN"));
  EXPECT_TRUE(IsSameWord("", ""));
  EXPECT_FALSE(IsSameWord("plan", "plans"));
  EXPECT_FALSE(IsSameWord("[", "{"));  // as far apart as a letter's two cases
}

TEST(Ascii, TrimmingTakesBlanksAndTabsFromBothEndsOnly) {
  EXPECT_EQ(Trimmed(" \t a b\t "), "a b");
  EXPECT_EQ(Trimmed(" \t "), "");
  EXPECT_EQ(Trimmed("\ta ", " "), "\ta");
  EXPECT_EQ(WithoutTrailingBlanks(" a  "), " a");
  EXPECT_EQ(WithoutTrailingBlanks("a\t "), "a\t");
}

}  // namespace
