#include <gtest/gtest.h>

#include <limits>

#include "command_dump.h"

namespace {

using host::ParamObj;
using host::TokenInfoObj;

ParamObj Value(const std::string& text) {
  const standalone::SourceText source("f", "X " + text);
  ParamObj param;
  param.value = ReadCommands(source).at(0).tokens;
  param.value.erase(param.value.begin());
  return param;
}

/// Which getters accept a value: Number, Variable, Literal, Word, sTring-or-literal, File path.
std::string Accepted(const std::string& text) {
  const ParamObj param = Value(text);
  std::string out, kinds;
  double number = 0;
  if (param.getNumberValue(number)) kinds += 'N';
  if (param.getVarName(out)) kinds += 'V';
  if (param.getLiteral(out)) kinds += 'L';
  if (param.getStringGeneric(out)) kinds += 'W';
  if (param.getStringOrLiteral(out)) kinds += 'T';
  if (param.getFilePath(out)) kinds += 'F';
  return kinds;
}

TEST(ParamObj, GettersRefuseValuesOfAnotherType) {
  EXPECT_EQ(Accepted("12"), "N");
  EXPECT_EQ(Accepted("age"), "VWTF");
  EXPECT_EQ(Accepted("plan-1.xml"), "WTF");
  EXPECT_EQ(Accepted("ALL"), "WTF");
  EXPECT_EQ(Accepted("'data/plan.xml'"), "LTF");
  EXPECT_EQ(Accepted("="), "");
  EXPECT_EQ(Accepted(""), "");
  EXPECT_EQ(Accepted("a b"), "");
  EXPECT_EQ(Accepted("1 2"), "");
}

TEST(ParamObj, GivesTextsAsWrittenAndInUpperCase) {
  std::string out;
  ASSERT_TRUE(Value("Plan.xml").getStringGeneric(out));
  EXPECT_EQ(out, "Plan.xml");
  ASSERT_TRUE(Value("Plan.xml").getUpStringGeneric(out));
  EXPECT_EQ(out, "PLAN.XML");
  ASSERT_TRUE(Value("'It''s'").getLiteral(out));
  EXPECT_EQ(out, "It's");
  double number = 0;
  ASSERT_TRUE(Value("-2.5").getNumberValue(number));
  EXPECT_EQ(number, -2.5);
}

TEST(ParamObj, LeavesTheTargetAloneWhenItRefuses) {
  double number = 7;
  std::string text = "before";
  EXPECT_FALSE(Value("x").getNumberValue(number));
  EXPECT_FALSE(Value("3").getUpStringGeneric(text));
  EXPECT_EQ(number, 7);
  EXPECT_EQ(text, "before");
}

TEST(ParamObj, StandsAloneWithoutAValue) {
  EXPECT_TRUE(Value("").isLeadingToken());
  EXPECT_FALSE(Value("x").isLeadingToken());
}

TEST(TokenInfoObj, GivesItsTextInUpperCase) {
  const ParamObj param = Value("Low");
  EXPECT_EQ(param.value.at(0).getUpperString(), "LOW");
  EXPECT_EQ(param.value.at(0).getString(), "Low");
  EXPECT_EQ(host::GetUpperString("a\xC3\xA9z_1"), "A\xC3\xA9Z_1");
}

TEST(CommandSpec, FindsSubcommandsWithoutRegardToCaseAndNullWhenAbsent) {
  const command_test::Parsed parsed =
      command_test::Parse("TAVOREG y /PLAN FILE=p /CUSTOM LMATRIX=1 /CUSTOM KMATRIX=2");
  ASSERT_TRUE(parsed.succeeded);
  const host::CommandSpec& specification = parsed.specification;
  EXPECT_EQ(specification.getSubComListSize(), 4u);
  ASSERT_NE(specification.getSubComObj("plan"), nullptr);
  EXPECT_EQ(specification.getSubComObj("plan")->getSubComName(), "PLAN");
  EXPECT_EQ(specification.getSubComObj("MODEL"), nullptr);
  ASSERT_NE(specification.getSubComObj(""), nullptr);

  std::vector<const host::SubComObj*> list;
  EXPECT_EQ(specification.getSubComObj(list, "Custom"), 2u);
  ASSERT_EQ(list.size(), 2u);
  EXPECT_NE(list[0]->getParamObj("lmatrix"), nullptr);
  EXPECT_EQ(list[0]->getParamObj("KMATRIX"), nullptr);
  EXPECT_NE(list[1]->getParamObj("KMATRIX"), nullptr);
  EXPECT_EQ(specification.getSubComObj(list, "SAVE"), 0u);
  EXPECT_TRUE(list.empty());
}

TEST(SubComObj, ExportsItsNamelessParameter) {
  const command_test::Parsed parsed = command_test::Parse("TAVOREG y BY a /PLAN FILE=p");
  const host::ParamObj* list = parsed.specification.getSubComObj("")->exportParamObj();
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(command_test::Dump(list->getTokenList()), "y !BY a");
  EXPECT_EQ(host::SubComObj().exportParamObj(), nullptr);
}

TEST(IsValidInteger, IsTrueForWholeNumbersWithin32Bits) {
  for (const double value : {0.0, -0.0, 1.0, -7.0, 2147483647.0, -2147483648.0}) {
    EXPECT_TRUE(host::IsValidInteger(value)) << value;
  }
  for (const double value :
       {0.5, 1e-300, 2147483648.0, -2147483649.0, 1e300, -1.7976931348623157e308,
        std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(host::IsValidInteger(value)) << value;
  }
}

TEST(IntegerToString, WritesTheNumberWithoutSeparators) {
  EXPECT_EQ(host::IntegerToString(-1234567), "-1234567");
  EXPECT_EQ(host::IntegerToString(0), "0");
}

}  // namespace
