#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"

namespace command_parser_test {

namespace {

using tavo::PrintOption;
using tavo::Statistic;
using tavo::TavoValidSpecs;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kInteger = "Parameter ^1 of subcommand ^2 does not have a valid integer value...";
constexpr const char* kNumber = "Parameter ^1 of subcommand ^2 does not have a valid numerical value...";

TEST(Options, PrintHistoryAloneGivesOneAndAbsentZero) {
  CommandRun alone;
  ASSERT_TRUE(alone.Parse("TAVOREG y /PRINT HISTORY SUMMARY"));
  EXPECT_EQ(alone.Specs().HistoryStep(), 1);
  CommandRun given;
  ASSERT_TRUE(given.Parse("TAVOREG y /PRINT HISTORY(3)"));
  EXPECT_EQ(given.Specs().HistoryStep(), 3);
  CommandRun absent;
  ASSERT_TRUE(absent.Parse("TAVOREG y /PRINT SUMMARY"));
  EXPECT_EQ(absent.Specs().HistoryStep(), 0);
}

TEST(Options, PrintHistoryZeroIsAnError) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y /PRINT HISTORY(0)"));
  EXPECT_THAT(run.Keys(), ElementsAre(kInteger));
}

TEST(Options, MxStepZeroIsAnIntegerErrorAndMxIterZeroIsAccepted) {
  CommandRun step;
  EXPECT_FALSE(step.Parse("TAVOREG y /CRITERIA MXSTEP=0"));
  EXPECT_THAT(step.Keys(), ElementsAre(kInteger));
  CommandRun iterations;
  ASSERT_TRUE(iterations.Parse("TAVOREG y /CRITERIA MXITER=0"));
  EXPECT_EQ(iterations.Specs().MaximumIterations(), 0);
}

TEST(Options, LConvergeAbsoluteClearsTheFlagAndAnotherWordIsASyntaxError) {
  CommandRun absolute;
  ASSERT_TRUE(absolute.Parse("TAVOREG y /CRITERIA LCONVERGE=[0.001 ABSOLUTE]"));
  EXPECT_EQ(absolute.Specs().LogLikConvergence(), 0.001);
  EXPECT_FALSE(absolute.Specs().IsLogLikRelative());
  CommandRun other;
  EXPECT_FALSE(other.Parse("TAVOREG y /CRITERIA LCONVERGE=[0.001 X]"));
  EXPECT_THAT(other.Keys(), ElementsAre("Invalid syntax in parameter ^2, symbol ^1, subcommand ^3 ..."));
  EXPECT_THAT(other.Messages()[0].text, testing::HasSubstr("X"));
}

TEST(Options, AQuotedWordIsNotSuggestedToItself) {
  CommandRun quoted;
  EXPECT_FALSE(quoted.Parse("TAVOREG y /CRITERIA LCONVERGE=[0.001 'ABSOLUTE']"));
  EXPECT_THAT(quoted.Messages()[0].text, testing::Not(testing::HasSubstr("Did you mean")));
  CommandRun misspelt;
  EXPECT_FALSE(misspelt.Parse("TAVOREG y /CRITERIA LCONVERGE=[0.001 ABSOLUT]"));
  EXPECT_THAT(misspelt.Messages()[0].text, testing::HasSubstr("Did you mean ABSOLUTE?"));
}

TEST(Options, CriteriaReachTheSpecification) {
  CommandRun run;
  ASSERT_TRUE(
      run.Parse("TAVOREG y /CRITERIA CHKSEP=7 CILEVEL=90 DF=12.5 LCONVERGE=[1e-4] MXITER=50 MXSTEP=9 "
                "PCONVERGE=[1e-3 absolute] SINGULAR=1e-9"));
  TavoValidSpecs& specs = run.Specs();
  EXPECT_EQ(specs.CheckSeparation(), 7);
  EXPECT_EQ(specs.ConfidenceLevel(), 90);
  EXPECT_EQ(specs.DegreesOfFreedom(), 12.5);
  EXPECT_EQ(specs.LogLikConvergence(), 1e-4);
  EXPECT_TRUE(specs.IsLogLikRelative());
  EXPECT_EQ(specs.MaximumIterations(), 50);
  EXPECT_EQ(specs.MaximumStepHalving(), 9);
  EXPECT_EQ(specs.ParamConvergence(), 1e-3);
  EXPECT_FALSE(specs.IsParamRelative());
  EXPECT_EQ(specs.Singularity(), 1e-9);
}

TEST(Options, OneRunReportsAFaultOfCriteriaAndThenOneOfMxIterAndMxStep) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y /CRITERIA CHKSEP=-1 DF=0 MXITER=0.5 MXSTEP=0 SINGULAR=0"));
  EXPECT_THAT(run.Keys(), ElementsAre(kInteger, kInteger, kInteger));
  EXPECT_THAT(run.Messages()[1].text, testing::HasSubstr("MXITER"));
  EXPECT_THAT(run.Messages()[2].text, testing::HasSubstr("MXSTEP"));
}

TEST(Options, AFaultAheadOfPConvergeHidesPConverge) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y /CRITERIA CILEVEL=100 PCONVERGE=[x] SINGULAR=0"));
  EXPECT_THAT(run.Keys(), ElementsAre(kNumber));
}

TEST(Options, ANumberThatExceedsAnIntegerIsNoInteger) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y /CRITERIA MXITER=3000000000"));
  EXPECT_THAT(run.Keys(), ElementsAre(kInteger));
}

TEST(Options, AnErrorInPrintShowsOnlyOnceCriteriaAreClean) {
  CommandRun both;
  EXPECT_FALSE(both.Parse("TAVOREG y /PRINT HISTORY(0) /CRITERIA MXSTEP=0"));
  ASSERT_EQ(both.Messages().size(), 1U);
  EXPECT_THAT(both.Messages()[0].text, testing::HasSubstr("MXSTEP"));
}

TEST(Options, ABadIncludeHidesShow) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y /INTERCEPT SHOW=X INCLUDE=Y"));
  ASSERT_EQ(run.Messages().size(), 1U);
  EXPECT_THAT(run.Messages()[0].text, testing::HasSubstr("INCLUDE"));
}

TEST(Options, ShowNoHidesAnInterceptAndIsIgnoredWhereThereIsNoneOrNothingElse) {
  CommandRun hidden;
  ASSERT_TRUE(hidden.Parse("TAVOREG y BY a /INTERCEPT SHOW=NO"));
  EXPECT_FALSE(hidden.Specs().ShowsIntercept());
  for (const char* include : {"NO", "ONLY"}) {
    CommandRun run;
    ASSERT_TRUE(run.Parse(std::string("TAVOREG y BY a /INTERCEPT SHOW=NO INCLUDE=") + include));
    EXPECT_TRUE(run.Specs().ShowsIntercept());
    EXPECT_EQ(run.Keys().front(), "Parameter ^1 of subcommand ^2 with value ^3 is ignored...");
  }
}

TEST(Options, StatisticsAndPrintOptionsAreKeptInReadingOrder) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y /STATISTICS DEFF PARAMETER CINTERVAL /PRINT CLASSTABLE COVB SAMPLEINFO"));
  EXPECT_THAT(run.Specs().Statistics(),
              ElementsAre(Statistic::PARAMETER, Statistic::CINTERVAL, Statistic::DEFF));
  EXPECT_THAT(run.Specs().PrintOptions(),
              ElementsAre(PrintOption::SAMPLEINFO, PrintOption::COVB, PrintOption::CLASSTABLE));
}

TEST(Options, WithoutPrintSampleInfoVariableInfoAndSummaryAreAskedFor) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y"));
  EXPECT_THAT(run.Specs().PrintOptions(),
              ElementsAre(PrintOption::SAMPLEINFO, PrintOption::VARIABLEINFO, PrintOption::SUMMARY));
  EXPECT_THAT(run.Specs().Statistics(), IsEmpty());
}

TEST(Options, PrintWithoutKeywordsAsksForNothing) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y /PRINT"));
  EXPECT_THAT(run.Specs().PrintOptions(), IsEmpty());
}

TEST(Options, TestTypesAndAdjustmentsHaveTheirNumbers) {
  const std::vector<std::string> types = {"F", "adjf", "CHISQUARE", "ADJCHISQUARE"};
  for (std::size_t i = 0; i < types.size(); ++i) {
    CommandRun run;
    ASSERT_TRUE(run.Parse("TAVOREG y /TEST TYPE=" + types[i]));
    EXPECT_EQ(static_cast<std::size_t>(run.Specs().GetTestType()), i);
    EXPECT_TRUE(run.Specs().IsTestSubcommandUsed());
  }
  const std::vector<std::string> methods = {"LSD", "BONFERRONI", "SEQBONFERRONI", "SIDAK", "SEQSIDAK"};
  for (std::size_t i = 0; i < methods.size(); ++i) {
    CommandRun run;
    ASSERT_TRUE(run.Parse("TAVOREG y /TEST PADJUST=" + methods[i]));
    EXPECT_EQ(static_cast<std::size_t>(run.Specs().Adjustment()), i);
  }
  CommandRun without;
  ASSERT_TRUE(without.Parse("TAVOREG y"));
  EXPECT_FALSE(without.Specs().IsTestSubcommandUsed());
}

TEST(Options, DomainKeepsVariableAndValue) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y /DOMAIN VARIABLE=ts(abc)"));
  EXPECT_EQ(run.Specs().DomainVariable(), run.IndexOf("ts"));
  EXPECT_EQ(TavoValidSpecs::ValueText(run.Specs().DomainValue(), false), "abc");
}

TEST(Options, ClassMissingSetsTheFlag) {
  CommandRun include;
  ASSERT_TRUE(include.Parse("TAVOREG y /MISSING CLASSMISSING=include"));
  EXPECT_FALSE(include.Specs().ExcludesMissing());
  CommandRun exclude;
  ASSERT_TRUE(exclude.Parse("TAVOREG y /MISSING CLASSMISSING=EXCLUDE"));
  EXPECT_TRUE(exclude.Specs().ExcludesMissing());
}

TEST(Options, AJointProbFileEqualToThePlanIsAccepted) {
  CommandRun run;
  EXPECT_TRUE(run.Parse("TAVOREG y /PLAN FILE=plan.xml /JOINTPROB FILE='plan.xml'"));
  EXPECT_EQ(run.Specs().PlanFileName(), "plan.xml");
  EXPECT_EQ(run.Specs().JointProbFile().DocumentationString(), "plan.xml");
}

TEST(Options, TheHostsThreadSettingIsTheMaximumOfProcessors) {
  CommandRun run;
  run.Options().threads = 6;
  ASSERT_TRUE(run.Parse("TAVOREG y"));
  EXPECT_EQ(run.Specs().MaximumProcessors(), 6);
  CommandRun unset;
  unset.Options().threads = 0;
  ASSERT_TRUE(unset.Parse("TAVOREG y"));
  EXPECT_EQ(unset.Specs().MaximumProcessors(), 1);
}

TEST(Options, SplitFileAndWeightOfTheHostAreSwitchedOffWithAWarningEach) {
  CommandRun run;
  run.initial.splitFileCount = 2;
  run.initial.weightVariable = 1;
  ASSERT_TRUE(run.Parse("TAVOREG y"));
  EXPECT_THAT(run.Keys(), ElementsAre("No split file ...", "No VORN weight ..."));
  EXPECT_EQ(run.Host().Common().splitFileCount, 0);
  EXPECT_EQ(run.Host().Common().weightVariable, 0);
  EXPECT_EQ(run.Host().Common().errorFlag, 0);
}

TEST(Options, SplitFileAndWeightStayAfterACommandWithAnError) {
  CommandRun run;
  run.initial.splitFileCount = 2;
  run.initial.weightVariable = 1;
  EXPECT_FALSE(run.Parse("TAVOREG y /CRITERIA MXSTEP=0"));
  EXPECT_EQ(run.Host().Common().splitFileCount, 2);
  EXPECT_EQ(run.Host().Common().weightVariable, 1);
}

}  // namespace

}  // namespace command_parser_test
