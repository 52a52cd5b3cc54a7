#include <gtest/gtest.h>

#include <string>

#include "host/text.h"

namespace {

TEST(Utf16, TurnsIntoUtf8AndBack) {
  const std::string utf8 = "a\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E z";
  const std::u16string utf16 = u"a\u00E4\u20AC\U0001D11E z";
  EXPECT_EQ(host::VORNMBGenericToU16(utf8), utf16);
  EXPECT_EQ(host::VORNMBU16ToGeneric(utf16), utf8);
  EXPECT_TRUE(host::VORNMBGenericToU16("").empty());
  EXPECT_TRUE(host::VORNMBU16ToGeneric(u"").empty());
}

TEST(Utf16, EveryCharacterSurvivesTheRoundTrip) {
  std::u16string all;
  for (char32_t code = 1; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 97) {
    if (code >= 0xD800 && code <= 0xDFFF) continue;
    if (code < 0x10000) {
      all += static_cast<char16_t>(code);
    } else {
      all += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      all += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
  }
  EXPECT_EQ(host::VORNMBGenericToU16(host::VORNMBU16ToGeneric(all)), all);
}

TEST(Utf16, AnInvalidByteAndAnUnpairedSurrogateBecomeTheReplacementCharacter) {
  EXPECT_EQ(host::VORNMBGenericToU16("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(host::VORNMBGenericToU16("\xC0\x80"), u"\uFFFD\uFFFD");            // overlong
  EXPECT_EQ(host::VORNMBGenericToU16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");  // a surrogate
  EXPECT_EQ(host::VORNMBGenericToU16("\xE2\x82"), u"\uFFFD\uFFFD");            // cut off
  const std::u16string lone = {u'a', char16_t{0xD800}, u'b', char16_t{0xDC00}};
  EXPECT_EQ(host::VORNMBU16ToGeneric(lone),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
  EXPECT_EQ(host::VORNMBU16ToGeneric(std::u16string(1, char16_t{0xDBFF})), "\xEF\xBF\xBD");
}

}  // namespace
