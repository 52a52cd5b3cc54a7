// Trees of XML elements, written and read back.
#include "module/saved/xml_element.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <sstream>

#include "xml_document.h"

namespace MCCommonXML {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string Written(const XMLElement& root, bool isUTF8 = true) {
  std::ostringstream out;
  EXPECT_TRUE(isUTF8 ? WriteTreeUTF8(out, root) : WriteTree(out, root));
  return out.str();
}

/// The text of an attribute after it has been written and read.
std::string RoundTrip(std::string_view text, bool isUTF8 = true) {
  XMLElement root("R");
  root.AddAttribute("a", text);
  return test_support::ParseXml(Written(root, isUTF8)).At("a");
}

TEST(XMLElement, IsWrittenIndentedWithAttributesAndChildrenInTheirOrder) {
  const auto root = XMLElement::Create("R");
  root->AddAttribute("z", "1").AddAttribute("a", 2);
  root->AddChild("B").AddAttribute("k", 0.5);
  root->AddChild(XMLElement::Create("A")).AddChild("C");
  EXPECT_EQ(Written(*root),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<R z=\"1\" a=\"2\">\n  <B k=\"0.5\"/>\n  <A>\n    <C/>\n  </A>\n</R>\n");
}

TEST(XMLElement, TextsComeBackAsTheyWereWhateverTheyHold) {
  for (const bool isUTF8 : {true, false}) {
    for (const std::string text : {"a<b>&\"'", "two\nlines\r\tand a tab", " blanks  ", "gr\xC3\xBC\xC3\x9F",
                                   "", "\xE2\x82\xAC \xF0\x9D\x84\x9E", "]]>", "&amp;"}) {
      EXPECT_EQ(RoundTrip(text, isUTF8), text);
    }
  }
}

TEST(XMLElement, WhatXmlCannotHoldBecomesTheReplacementCharacter) {
  const std::string mark = "\xEF\xBF\xBD";
  const std::pair<std::string, std::string> cases[] = {
      {std::string("a\0b", 3), "a" + mark + "b"},  // control characters, not even as references
      {"\x1B[1m", mark + "[1m"},
      {"\xFF", mark},             // starts no sequence
      {"\xC3", mark},             // cut off
      {"\xC3x", mark + "x"},      // not continued
      {"\xC0\xAF", mark + mark},  // longer than need be
      {"\xE0\x80\xAF", mark + mark + mark},
      {"\xED\xA0\x80", mark},      // a surrogate
      {"\xEF\xBF\xBF", mark},      // no character
      {"\xF4\x90\x80\x80", mark},  // beyond Unicode
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(RoundTrip(text), expected);
    EXPECT_EQ(RoundTrip(text, false), expected);
  }
}

TEST(XMLElement, WithoutUTF8TheDocumentIsAscii) {
  XMLElement root("R");
  root.AddAttribute("a", "gr\xC3\xBC\xC3\x9F");
  EXPECT_THAT(Written(root, false), HasSubstr("gr&#252;&#223;"));
  EXPECT_THAT(Written(root, true), HasSubstr("gr\xC3\xBC\xC3\x9F"));
}

TEST(XMLElement, NumbersAreWrittenAsTheShortestTextThatReadsBack) {
  XMLElement root("R");
  root.AddAttribute("third", 1.0 / 3)
      .AddAttribute("tenth", 0.1)
      .AddAttribute("two", 2)
      .AddAttribute("tiny", 5e-324);
  const test_support::XmlNode read = test_support::ParseXml(Written(root));
  EXPECT_EQ(std::strtod(read.At("third").c_str(), nullptr), 1.0 / 3);
  EXPECT_EQ(read.At("tenth"), "0.1");
  EXPECT_EQ(read.At("two"), "2");
  EXPECT_EQ(read.At("tiny"), "5e-324");
}

TEST(XMLElement, NumbersThatAreNotFiniteHaveTheWordsOfXmlSchema) {
  XMLElement root("R");
  const double infinity = std::numeric_limits<double>::infinity();
  root.AddAttribute("n", std::numeric_limits<double>::quiet_NaN());
  root.AddAttribute("p", infinity).AddAttribute("m", -infinity);
  const test_support::XmlNode read = test_support::ParseXml(Written(root));
  EXPECT_EQ(read.At("n"), "NaN");
  EXPECT_EQ(read.At("p"), "INF");
  EXPECT_EQ(read.At("m"), "-INF");
}

TEST(XMLElement, AStreamThatFailsIsReported) {
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  EXPECT_FALSE(WriteTreeUTF8(out, XMLElement("R")));
}

/// Takes what is written and keeps only how much came at once.
class PieceCounter final : public std::streambuf {
 public:
  std::size_t total = 0;
  std::size_t largest = 0;

 protected:
  std::streamsize xsputn(const char*, std::streamsize count) override {
    total += static_cast<std::size_t>(count);
    largest = std::max(largest, static_cast<std::size_t>(count));
    return count;
  }
  int overflow(int c) override {
    ++total;
    return c;
  }
};

TEST(XMLElement, AMillionElementsAreWrittenInPiecesNotAsASecondCopy) {
  constexpr std::size_t kCount = 1000000;
  XMLElement root("R");
  root.ReserveChildren(kCount);
  for (std::size_t i = 0; i < kCount; ++i)
    root.AddChild("E").AddAttribute("v", static_cast<double>(i));
  PieceCounter pieces;
  std::ostream out(&pieces);
  EXPECT_TRUE(WriteTreeUTF8(out, root));
  EXPECT_GT(pieces.total, kCount * std::string("  <E v=\"\"/>\n").size());
  EXPECT_LT(pieces.largest, std::size_t{1} << 18U);
}

}  // namespace
}  // namespace MCCommonXML
