#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"

namespace command_parser_test {

namespace {

using tavo::TavoValidSpecs;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(VariableList, WithoutAValueTheHighestCategoryIsTheReference) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y"));
  EXPECT_EQ(run.Specs().DependentVariable(), run.IndexOf("y"));
  EXPECT_TRUE(run.Specs().IsHighReference());
  EXPECT_TRUE(run.Specs().ReferenceValue().Empty());
}

struct ReferenceCase {
  const char* command;
  bool high;
  const char* value;  // empty: none
};

class Reference : public testing::TestWithParam<ReferenceCase> {};

TEST_P(Reference, IsReadAsWritten) {
  CommandRun run;
  ASSERT_TRUE(run.Parse(GetParam().command));
  EXPECT_EQ(run.Specs().IsHighReference(), GetParam().high);
  EXPECT_EQ(TavoValidSpecs::ValueText(run.Specs().ReferenceValue(), true), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Forms, Reference,
                         testing::Values(ReferenceCase{"TAVOREG g (HIGH)", true, ""},
                                         ReferenceCase{"TAVOREG g (low)", false, ""},
                                         ReferenceCase{"TAVOREG g (red) BY a", false, "red"},
                                         ReferenceCase{"TAVOREG wide ('dark red')", false, "dark red"},
                                         ReferenceCase{"TAVOREG y (3)", false, "3.00"},
                                         ReferenceCase{"TAVOREG y ('3')", false, "3.00"},
                                         ReferenceCase{"TAVOREG y (-2.5)", false, "-2.50"},
                                         ReferenceCase{"TAVOREG y (1e3)", false, "1000.00"},
                                         ReferenceCase{"TAVOREG g (12)", false, "12"}));

TEST(VariableList, HighAsALiteralIsAValue) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG g ('HIGH')"));
  EXPECT_FALSE(run.Specs().IsHighReference());
  EXPECT_EQ(TavoValidSpecs::ValueText(run.Specs().ReferenceValue(), true), "HIGH");
}

TEST(VariableList, AStringValueFillsAllCellsWithBlanks) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG wide (ab)"));
  const tavo::CategoryValue& value = run.Specs().ReferenceValue();
  ASSERT_EQ(value.cells.size(), 2U);  // 12 bytes
  EXPECT_EQ(std::string(value.cells[0].text, 8), "ab      ");
  EXPECT_EQ(std::string(value.cells[1].text, 4), "    ");
  EXPECT_EQ(TavoValidSpecs::ValueText(value, false), "ab          ");
}

TEST(VariableList, FactorsAndCovariatesComeInEitherOrder) {
  for (const char* command : {"TAVOREG y BY a g WITH x z", "TAVOREG y WITH x z BY a g"}) {
    CommandRun run;
    ASSERT_TRUE(run.Parse(command));
    EXPECT_THAT(run.Specs().Factors(), ElementsAre(run.IndexOf("a"), run.IndexOf("g")));
    EXPECT_THAT(run.Specs().Covariates(), ElementsAre(run.IndexOf("x"), run.IndexOf("z")));
  }
}

TEST(VariableList, ARangeHoldsAllVariablesBetweenItsEndsInDictionaryOrder) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a TO g WITH x TO z"));
  EXPECT_THAT(run.Specs().Factors(),
              ElementsAre(run.IndexOf("a"), run.IndexOf("b"), run.IndexOf("c"), run.IndexOf("g")));
  EXPECT_THAT(run.Specs().Covariates(), ElementsAre(run.IndexOf("x"), run.IndexOf("z")));
}

TEST(VariableList, ARangeMayFollowARangeWhenItHasItsOwnFirstVariable) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a TO b c TO g"));
  EXPECT_EQ(run.Specs().Factors().size(), 4U);
}

TEST(VariableList, EveryCovariateOfARangeMustBeNumeric) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y WITH c TO x"));
  EXPECT_THAT(run.Keys(), ElementsAre("Variable ^1 for variable list ^2 is not numeric..."));
}

TEST(VariableList, AnUnknownNameIsShownWithItsPlaceAndTheNearestName) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y BY a\n WITH wids"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("Did you mean wide?"));
  EXPECT_EQ(run.Messages()[0].location, "test.tvs:2:7");
}

TEST(VariableList, NamesAreComparedWithoutCase) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG Y BY A /MODEL a"));
  EXPECT_THAT(run.Specs().UsedFactors(), ElementsAre(run.IndexOf("a")));
  EXPECT_THAT(run.Keys(), IsEmpty());
}

}  // namespace

}  // namespace command_parser_test
