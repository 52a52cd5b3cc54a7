#include "standalone/data/names.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "host/data.h"

namespace {

using standalone::MakeNames;

std::vector<std::string> Names(const std::vector<std::string>& headers) {
  return MakeNames(headers).names;
}

TEST(VariableName, MayHoldLettersDigitsAndAFewSigns) {
  for (const char* name : {"x", "X1", "@a", "#a", "$a", "a.b", "a_b", "a@#$_.1",
                           "gr\xC3\xBC\xC3\x9F"
                           "e",
                           "\xE2\x82\xAC", "to1", "weight"}) {
    EXPECT_TRUE(host::ValidateVORNName(name)) << name;
  }
  for (const char* name : {"", "1a", "_a", ".a", "a.", "a b", "a-b", "a\tb", "a,b", "a'b", "(a)", "a\nb"}) {
    EXPECT_FALSE(host::ValidateVORNName(name)) << name;
  }
}

TEST(VariableName, IsNoReservedWord) {
  for (const char* name : {"TO", "to", "By", "WITH", "with", "all"})
    EXPECT_FALSE(host::ValidateVORNName(name)) << name;
}

TEST(VariableName, HasAtMost64Bytes) {
  EXPECT_TRUE(host::ValidateVORNName(std::string(64, 'a')));
  EXPECT_FALSE(host::ValidateVORNName(std::string(65, 'a')));
}

TEST(VariableName, IsComparedWithoutCase) {
  EXPECT_TRUE(host::VornVarName("AbC1") == host::VornVarName("aBc1"));
  EXPECT_FALSE(host::VornVarName("abc") == host::VornVarName("abcd"));
  EXPECT_EQ(host::GetUpperVarName("a_\xC3\xA4z9"), "A_\xC3\xA4Z9");
  EXPECT_EQ(host::VORN_Variable("aGe", 0).GetUpperCaseName(), "AGE");
}

TEST(MakeNames, KeepsLegalNames) {
  const auto made = MakeNames({"a", "B", "c.1"});
  EXPECT_EQ(made.names, (std::vector<std::string>{"a", "B", "c.1"}));
  EXPECT_TRUE(made.renamed.empty());
}

TEST(MakeNames, MakesIllegalOnesLegal) {
  EXPECT_EQ(Names({"my age", "2000pop", "_x", "by", "", "end.", "a-b(c)"}),
            (std::vector<std::string>{"my_age", "V2000pop", "V_x", "by_", "V5", "end_", "a_b_c_"}));
}

TEST(MakeNames, MakesDuplicatesThatDifferOnlyInCaseUnique) {
  const auto made = MakeNames({"age", "AGE", "Age"});
  EXPECT_EQ(made.names, (std::vector<std::string>{"age", "AGE_1", "Age_2"}));
  EXPECT_EQ(made.renamed, (std::vector<std::size_t>{1, 2}));
}

TEST(MakeNames, AMadeUpNameNeverTakesALegalOneFurtherOn) {
  EXPECT_EQ(Names({"a b", "a_b", "a_b_1", "A-B"}),
            (std::vector<std::string>{"a_b_2", "a_b", "a_b_1", "A_B_3"}));
}

TEST(MakeNames, CutsLongNamesBetweenCharacters) {
  const std::string umlauts = [] {
    std::string text = "a";
    for (int i = 0; i < 40; ++i)
      text += "\xC3\xA4";
    return text;
  }();
  const auto names = Names({umlauts, umlauts, std::string(100, 'x')});
  EXPECT_EQ(names[0], umlauts.substr(0, 63));
  EXPECT_EQ(names[1], umlauts.substr(0, 61) + "_1");
  EXPECT_EQ(names[2], std::string(64, 'x'));
}

TEST(MakeNames, OfManyEqualTextsAreAllLegalAndUnique) {
  std::vector<std::string> headers(3000, "a b");
  headers.insert(headers.end(), 3000, "");
  headers.insert(headers.end(), 3000, std::string(70, 'q'));
  std::set<std::string> seen;
  for (const std::string& name : Names(headers)) {
    EXPECT_TRUE(host::ValidateVORNName(name)) << name;
    EXPECT_TRUE(seen.insert(host::GetUpperVarName(name)).second) << name;
  }
}

}  // namespace
