#include "standalone/output/template.h"

#include <gtest/gtest.h>

namespace {

using standalone::FillTemplate;
using standalone::TemplateArgument;
using List = std::vector<std::string>;

struct TemplateCase {
  const char* text;
  std::vector<TemplateArgument> arguments;
  const char* filled;
};

TEST(FillTemplate, ReplacesArgumentsAndListGroups) {
  const TemplateCase cases[] = {
      {"plain", {}, "plain"},
      {"^1 and ^2", {"a", "b"}, "a and b"},
      {"^2^1^2", {"a", "b"}, "bab"},
      {"Model [%1:, ^1:]1", {List{"a"}}, "Model a"},
      {"Model [%1:, ^1:]1", {List{"a", "b", "c"}}, "Model a, b, c"},
      {"Model [%1:, ^1:]1.", {List{}}, "Model ."},
      {"at [%1=%2:, ^1=^2:]1", {List{"x", "1", "y", "2"}}, "at x=1, y=2"},
      {"[%1%2(%3=%4):, ^1^2(^3=^4):]1", {List{"L", "1", "y", "E", "L", "2", "y", "H"}}, "L1(y=E), L2(y=H)"},
      {"[:^1:]1", {List{"long ", "name"}}, "long name"},
      {"^1 x [%1:, ^1:]2 y ^1", {"a", List{"b", "c"}}, "a x b, c y a"},
  };
  for (const TemplateCase& c : cases)
    EXPECT_EQ(FillTemplate(c.text, c.arguments), c.filled) << c.text;
}

TEST(FillTemplate, NeverReadsAnArgumentAsATemplate) {
  EXPECT_EQ(FillTemplate("^1 ^2", {"^2[%1:x:]1", "b"}), "^2[%1:x:]1 b");
  EXPECT_EQ(FillTemplate("[%1:, ^1:]1", {List{"^1", "%1"}}), "^1, %1");
}

TEST(FillTemplate, LeavesBracketsAndSignsThatOpenNothing) {
  EXPECT_EQ(FillTemplate("[a=1] * [b=2] ^ 100%", {}), "[a=1] * [b=2] ^ 100%");
  EXPECT_EQ(FillTemplate("[x:y:] no number", {"a"}), "[x:y:] no number");
  EXPECT_EQ(FillTemplate("end ^", {"a"}), "end ^");
}

TEST(FillTemplate, ArgumentsThatAreNotGivenAreEmpty) {
  EXPECT_EQ(FillTemplate("<^3>", {"a"}), "<>");
  EXPECT_EQ(FillTemplate("<[%1:, ^1:]3>", {"a"}), "<>");
}

TEST(FillTemplate, AnIncompleteLastGroupFillsWhatItHas) {
  EXPECT_EQ(FillTemplate("[%1=%2:, ^1=^2:]1", {List{"x", "1", "y"}}), "x=1, y=");
}

TEST(FillTemplate, ListsAndSingleArgumentsStandInForOneAnother) {
  EXPECT_EQ(FillTemplate("^1", {List{"a", "b"}}), "a, b");
  EXPECT_EQ(FillTemplate("[%1:, ^1:]1", {"a"}), "a");
}

TEST(FillTemplate, APatternWithoutAnIndexTakesNoElementAndEnds) {
  EXPECT_EQ(FillTemplate("[%1:x:]1", {List{"a", "b", "c"}}), "a");
}

}  // namespace
