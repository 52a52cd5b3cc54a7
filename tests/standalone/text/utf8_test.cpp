#include "standalone/text/utf8.h"

#include <gtest/gtest.h>

namespace {

using standalone::CutText;
using standalone::ValidUtf8;

TEST(FindBadByte, TellsTheFirstNulOrInvalidByteWhereverItStands) {
  const std::string sound =
      "plain text, gr\xC3\xBC\xC3\x9F"
      "e, \xE2\x82\xAC 12; \xF0\x9D\x84\x9E and more plain text";
  EXPECT_EQ(standalone::FindBadByte(sound), sound.size());
  EXPECT_EQ(standalone::FindBadByte(""), 0u);
  const std::string plain(40, 'a');
  for (std::size_t at = 0; at < plain.size(); ++at) {
    for (const char bad : {'\0', '\x80', '\xFF', '\xC3'}) {
      std::string text = plain;
      text[at] = bad;
      EXPECT_EQ(standalone::FindBadByte(text), at);
    }
  }
}

TEST(CutText, CutsBetweenCharactersAndNeverInsideOne) {
  const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E";
  const std::size_t ends[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
  for (std::size_t bytes = 0; bytes < std::size(ends); ++bytes)
    EXPECT_EQ(CutText(text, bytes), text.substr(0, ends[bytes])) << bytes;
}

TEST(ValidUtf8, HasTheReplacementCharacterForEachInvalidByte) {
  EXPECT_EQ(ValidUtf8("a\xff\xc3\xa4"), "a\xEF\xBF\xBD\xc3\xa4");
  EXPECT_EQ(ValidUtf8("\xc3"), "\xEF\xBF\xBD");
}

TEST(Shortened, CountsCharactersAndShowsThatSomethingIsLeftOut) {
  EXPECT_EQ(standalone::Shortened("\xc3\xa4\xc3\xa4\xc3\xa4", 2), "\xc3\xa4\xc3\xa4...");
  EXPECT_EQ(standalone::Shortened("abc", 3), "abc");
}

}  // namespace
