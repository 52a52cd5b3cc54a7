// CUSTOM: from the text of a hypothesis to its rows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"

namespace command_parser_test {

namespace {

using tavo::MatrixRowType;
using tavo::OrvCustomTest;
using tavo::TavoMatrixRow;
using testing::ElementsAre;
using testing::IsEmpty;

/// Parses a command over a model of X, A, B and A*B (effects 0 to 3) with one or more CUSTOM; gives the last.
const OrvCustomTest& Custom(CommandRun& run, const std::string& keywords) {
  EXPECT_TRUE(run.Parse("TAVOREG y BY a b WITH x /MODEL x a b a*b /CUSTOM " + keywords))
      << testing::PrintToString(run.Keys());
  static const OrvCustomTest none;
  return run.Specs().CustomTests().empty() ? none : run.Specs().CustomTests().back();
}

/// The key of the message that refuses the command.
std::string Refusal(const std::string& command) {
  CommandRun run;
  EXPECT_FALSE(run.Parse(command));
  return run.Keys().empty() ? "" : run.Keys().back();
}

TEST(Custom, WithOnlyALabelAsksForAMatrixWithTheLabelUnread) {
  EXPECT_EQ(Refusal("TAVOREG y /CUSTOM LABEL=''"), "Either ^1 or ^2, or both, required for ^3...");
}

TEST(Custom, LMatrixOneWithAnInterceptIsOneRowWithoutEffectsAndAFirstValueOfOne) {
  CommandRun run;
  const OrvCustomTest& test = Custom(run, "LMATRIX=1");
  ASSERT_EQ(test.RowCount(), 1);
  EXPECT_EQ(test.Row(0)->Type(), MatrixRowType::kValueEffectList);
  EXPECT_EQ(test.Row(0)->FirstValue(), 1.0);
  EXPECT_EQ(test.Row(0)->EffectCount(), 0);
  EXPECT_EQ(test.Row(0)->ModelEffectCount(), 4);
  EXPECT_TRUE(test.IsValid());
  EXPECT_FALSE(test.IsKSet());
  EXPECT_THAT(test.K(), ElementsAre(0));
}

TEST(Custom, AnInterceptNumberTakesNoFraction) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y BY a /CUSTOM LMATRIX=1/3"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_EQ(run.Messages()[0].key, "Model effect is opening with ^1, subcommand ^2 ...");
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("/"));
}

TEST(Custom, AnEffectRowAndAnAllRowDoNotMix) {
  EXPECT_EQ(Refusal("TAVOREG y BY a /CUSTOM LMATRIX=a 1 -1; ALL 1"),
            "Model effect was expected in ^2 row but ^1 was found, subcommand ^3 ...");
}

TEST(Custom, ADenominatorOfZeroIsNotPositiveAndASlashAtTheEndHasNoDenominator) {
  EXPECT_EQ(Refusal("TAVOREG y BY a /CUSTOM LMATRIX=a 1/0"),
            "Not positive denominator ^1 in fraction for ^2, subcommand ^3 ...");
  EXPECT_EQ(Refusal("TAVOREG y BY a /CUSTOM LMATRIX=a 1/"),
            "No denominator for numerator ^1 in fraction for ^2, subcommand ^3 ...");
}

TEST(Custom, AnEffectHasTheSameNumberOfValuesInAllRows) {
  EXPECT_EQ(Refusal("TAVOREG y BY a /CUSTOM LMATRIX=a 1 2; a 1 2 3"),
            "Different number of values in ^1 for the same effect, subcommand ^2 ...");
}

TEST(Custom, AnEffectTwiceInOneRowIsADuplicateAndInSeparateRowsIsAllowed) {
  EXPECT_EQ(Refusal("TAVOREG y BY a /CUSTOM LMATRIX=a 1 2 a 1 2"),
            "Duplicate effect ^1 in ^2 row, subcommand ^3 ...");
  CommandRun run;
  EXPECT_EQ(Custom(run, "LMATRIX=a 1 2; a 3 4").RowCount(), 2);
}

TEST(Custom, AKRowOfTwoNumbersIsRefusedOnlyAfterAllRowsHaveBeenRead) {
  EXPECT_EQ(Refusal("TAVOREG y BY a /CUSTOM LMATRIX=a 1 2 KMATRIX=1 2; 3 4"),
            "^2 row should contain ^1 value, subcommand ^3 ...");
  EXPECT_EQ(Refusal("TAVOREG y BY a /CUSTOM LMATRIX=a 1 2 KMATRIX=1 2; x"),
            "Symbol ^1 in parameter ^2 is not a number, subcommand ^3 ...");
}

TEST(Custom, KAloneIsAboutTheInterceptWhichTheModelMustHave) {
  CommandRun run;
  const OrvCustomTest& test = Custom(run, "KMATRIX=3");
  EXPECT_EQ(test.RowCount(), 0);
  EXPECT_THAT(test.K(), ElementsAre(3));
  EXPECT_TRUE(test.IsKSet());
  EXPECT_EQ(Refusal("TAVOREG y BY a /INTERCEPT INCLUDE=NO /CUSTOM KMATRIX=3"),
            "Parameter ^1 is required when parameter ^2 takes value ^4, subcommand ^3...");
}

TEST(Custom, RowsHoldEffectsInTheOrderWrittenWithTheirFractions) {
  CommandRun run;
  const OrvCustomTest& test =
      Custom(run, "LABEL='A against B' LMATRIX=2 b*a 1/4 -1/4 .5 1e1/4 x -2; -1 a 1 2/3 KMATRIX=0.5; -2");
  ASSERT_EQ(test.RowCount(), 2);
  const TavoMatrixRow& first = *test.Row(0);
  EXPECT_EQ(first.FirstValue(), 2.0);
  ASSERT_EQ(first.EffectCount(), 2);
  EXPECT_EQ(first.EffectIndex(0), 3);
  EXPECT_EQ(first.EffectIndex(1), 0);
  EXPECT_THAT(*first.Values(0), ElementsAre(0.25, -0.25, 0.5, 2.5));
  EXPECT_THAT(*first.Values(1), ElementsAre(-2));
  const TavoMatrixRow& second = *test.Row(1);
  EXPECT_EQ(second.FirstValue(), -1.0);
  EXPECT_EQ(second.EffectIndex(0), 1);
  EXPECT_THAT(*second.Values(0), ElementsAre(1, 2.0 / 3.0));
  EXPECT_THAT(test.K(), ElementsAre(0.5, -2));
  EXPECT_THAT(run.Specs().CustomTestLabels(), ElementsAre("A against B"));
  EXPECT_TRUE(test.IsValid());
}

TEST(Custom, AllRowsHoldOneListEach) {
  CommandRun run;
  const OrvCustomTest& test = Custom(run, "LMATRIX=ALL 1 0 -1/2; all 0 1 1");
  ASSERT_EQ(test.RowCount(), 2);
  EXPECT_EQ(test.Row(0)->Type(), MatrixRowType::kAll);
  EXPECT_THAT(*test.Row(0)->AllValues(), ElementsAre(1, 0, -0.5));
  EXPECT_THAT(*test.Row(1)->AllValues(), ElementsAre(0, 1, 1));
  EXPECT_THAT(test.K(), ElementsAre(0, 0));
}

TEST(Custom, AnAllRowOfAModelWithoutEffectsTakesOneValue) {
  CommandRun run;
  EXPECT_TRUE(run.Parse("TAVOREG y /CUSTOM LMATRIX=ALL 1"));
  EXPECT_EQ(Refusal("TAVOREG y /CUSTOM LMATRIX=ALL 1 1"),
            "Only intercept can be used in ^1, subcommand ^2 ...");
}

TEST(Custom, ARowMayMixInterceptOnlyAndInterceptWithEffects) {
  CommandRun run;
  const OrvCustomTest& test = Custom(run, "LMATRIX=1; 0 a 1 -1; 2");
  ASSERT_EQ(test.RowCount(), 3);
  EXPECT_EQ(test.Row(1)->EffectCount(), 1);
  EXPECT_EQ(test.Row(2)->EffectCount(), 0);
}

TEST(Custom, EachSubcommandIsATestOfItsOwnInTheOrderOfTheCommand) {
  CommandRun run;
  // A width learnt in one subcommand doesn't bind the next.
  Custom(run, "LABEL='p' LMATRIX=a 1 /CUSTOM KMATRIX=2 /CUSTOM LABEL='r' LMATRIX=a 1 2");
  ASSERT_EQ(run.Specs().CustomTests().size(), 3U);
  EXPECT_THAT(run.Specs().CustomTestLabels(), ElementsAre("p", "", "r"));
  EXPECT_EQ(run.Specs().CustomTests()[0].Row(0)->ValueCount(), 1);
  EXPECT_THAT(run.Specs().CustomTests()[1].K(), ElementsAre(2));
  EXPECT_EQ(run.Specs().CustomTests()[2].Row(0)->ValueCount(), 2);
}

TEST(Custom, ABadLabelIsReportedBeforeABadMatrix) {
  EXPECT_EQ(Refusal("TAVOREG y /CUSTOM LMATRIX=* LABEL=''"), "Empty label in subcommand ^1 ...");
}

TEST(Custom, IsReadAfterTheInterceptWhereverItStands) {
  EXPECT_EQ(Refusal("TAVOREG y BY a /CUSTOM LMATRIX=1 /INTERCEPT INCLUDE=NO"),
            "Intercept cannot be used in ^1, subcommand ^2 ...");
}

TEST(Custom, AFaultyTestLeavesTheSpecificationWithoutTests) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y BY a /CUSTOM LMATRIX=a 1 /CUSTOM LMATRIX=a"));
  EXPECT_THAT(run.Specs().CustomTests(), IsEmpty());
}

TEST(Custom, TestsAndLabelsOfDifferentNumbersAreIgnored) {
  tavo::TavoValidSpecs specs;
  specs.SetCustomTests({OrvCustomTest(), OrvCustomTest()}, {"one"});
  EXPECT_THAT(specs.CustomTests(), IsEmpty());
  EXPECT_THAT(specs.CustomTestLabels(), IsEmpty());
}

}  // namespace

}  // namespace command_parser_test
