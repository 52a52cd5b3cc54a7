#include "module/command/valid_specs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"

namespace command_parser_test {

namespace {

using tavo::FirstPassFindings;
using tavo::InclProbType;
using tavo::TavoCompSettings;
using tavo::TavoValidSpecs;
using tavo::VariableRole;
using testing::ElementsAre;

/// The settings of a command, as if the first pass had found a dependent variable and factors of two
/// categories.
TavoCompSettings Build(CommandRun& run, const std::string& command) {
  EXPECT_TRUE(run.Parse(command)) << testing::PrintToString(run.Keys());
  FirstPassFindings found;
  found.dependentCategories = 2;
  found.factorLevels.assign(run.Specs().Factors().size(), 2);
  return run.Specs().BuildSettings(found);
}

TEST(ValidSpecs, WithoutCriteriaTheSettingsGetTheDefaults) {
  CommandRun run;
  const TavoCompSettings settings = Build(run, "TAVOREG y");
  EXPECT_EQ(settings.StartingIteration(), 20);
  EXPECT_EQ(settings.Confidence(), 0.95);
  EXPECT_EQ(settings.LogLikCriterion(), 0.0);
  EXPECT_FALSE(settings.IsLogLikAbsolute());
  EXPECT_EQ(settings.MaxIterations(), 100);
  EXPECT_EQ(settings.MaxStepHalving(), 5);
  EXPECT_EQ(settings.ParamCriterion(), 1e-6);
  EXPECT_FALSE(settings.IsParamAbsolute());
  EXPECT_EQ(settings.Tolerance(), 1e-12);
  EXPECT_EQ(settings.DegreesOfFreedom(12, 4), 8.0) << "those of the design";
  EXPECT_EQ(settings.HistoryFrequency(), TavoCompSettings().HistoryFrequency());
}

TEST(ValidSpecs, CriteriaReachTheSettings) {
  CommandRun run;
  const TavoCompSettings settings =
      Build(run,
            "TAVOREG y /CRITERIA CHKSEP=0 CILEVEL=90 DF=12.5 LCONVERGE=[1e-4 ABSOLUTE] MXITER=0 MXSTEP=9 "
            "PCONVERGE=[0 ABSOLUTE] SINGULAR=1e-9 /TEST TYPE=ADJCHISQUARE PADJUST=SIDAK /PRINT HISTORY(4)");
  EXPECT_EQ(settings.StartingIteration(), 0);
  EXPECT_EQ(settings.Confidence(), 0.9);
  EXPECT_EQ(settings.DegreesOfFreedom(12, 4), 12.5);
  EXPECT_EQ(settings.LogLikCriterion(), 1e-4);
  EXPECT_TRUE(settings.IsLogLikAbsolute());
  EXPECT_EQ(settings.MaxIterations(), 0);
  EXPECT_EQ(settings.MaxStepHalving(), 9);
  EXPECT_EQ(settings.ParamCriterion(), 0.0);
  EXPECT_TRUE(settings.IsParamAbsolute());
  EXPECT_EQ(settings.Tolerance(), 1e-9);
  EXPECT_EQ(settings.GetTestType(), tavo::TestType::AdjustedWaldChiSquare);
  EXPECT_EQ(settings.Adjustment(), tavo::PAdjustMethod::Sidak);
  EXPECT_EQ(settings.HistoryFrequency(), 4);
}

TEST(ValidSpecs, CiLevelZeroPassesZero) {
  CommandRun run;
  EXPECT_EQ(Build(run, "TAVOREG y /CRITERIA CILEVEL=0").Confidence(), 0.0);
}

struct SRSCase {
  const char* options;
  bool isNeeded;
};

class NeedSRS : public testing::TestWithParam<SRSCase> {};

TEST_P(NeedSRS, FollowsFromTestTypeAndStatistics) {
  CommandRun run;
  EXPECT_EQ(Build(run, std::string("TAVOREG y ") + GetParam().options).NeedsSRS(), GetParam().isNeeded);
}

INSTANTIATE_TEST_SUITE_P(
    Options, NeedSRS,
    testing::Values(SRSCase{"", false}, SRSCase{"/TEST TYPE=F", false},
                    SRSCase{"/TEST TYPE=CHISQUARE", false}, SRSCase{"/TEST TYPE=ADJF", true},
                    SRSCase{"/TEST TYPE=ADJCHISQUARE", true}, SRSCase{"/TEST TYPE=F /STATISTICS DEFF", true},
                    SRSCase{"/STATISTICS DEFFSQRT", true}, SRSCase{"/STATISTICS PARAMETER SE", false}));

TEST(ValidSpecs, ColumnsAreNumberedPlanFirstThenDependentFactorsCovariatesDomain) {
  CommandRun run;
  const TavoCompSettings settings = Build(run, "TAVOREG y BY a WITH x /DOMAIN VARIABLE=d(1)");
  EXPECT_THAT(run.Specs().RecordVariables(),
              ElementsAre(run.IndexOf("st"), run.IndexOf("psu"), run.IndexOf("w"), run.IndexOf("y"),
                          run.IndexOf("a"), run.IndexOf("x"), run.IndexOf("d")));
  EXPECT_EQ(run.Specs().DependentColumn(), 3);
  EXPECT_THAT(run.Specs().FactorColumns(), ElementsAre(4));
  EXPECT_THAT(run.Specs().CovariateColumns(), ElementsAre(5));
  EXPECT_EQ(settings.WeightVar(), 2);
  EXPECT_THAT(settings.CatDesignVars(), ElementsAre(0, 1));
}

TEST(ValidSpecs, UnusedPredictorsStillEnterTheRecord) {
  CommandRun run;
  Build(run, "TAVOREG y BY a b WITH x /MODEL b");
  EXPECT_EQ(run.Specs().FactorColumns().size(), 2U);
  EXPECT_EQ(run.Specs().CovariateColumns().size(), 1U);
}

TEST(ValidSpecs, EffectsInRecordFormReferToRecordColumns) {
  CommandRun run;
  Build(run, "TAVOREG y BY a b WITH x /MODEL x b*a");
  ASSERT_EQ(run.Specs().RecordEffects().size(), 2U);
  const std::vector<int>& columns = run.Specs().FactorColumns();
  const tavo::OrvModelEffect& crossing = run.Specs().RecordEffects()[1];
  EXPECT_EQ(crossing.FactorLevel(columns[0]), 0);
  EXPECT_EQ(crossing.FactorLevel(columns[1]), 0);
  EXPECT_EQ(run.Specs().RecordEffects()[0].CovariatePower(run.Specs().CovariateColumns()[0]), 1);
  EXPECT_EQ(run.Specs().RecordEffects()[0].Predictors(), crossing.Predictors());
}

/// A variable that is stratum and factor at once can't come from a command, so the specs are filled by
/// hand.
TEST(ValidSpecs, AVariableThatIsStratumAndFactorTakesOneColumn) {
  standalone::Session session;
  const standalone::SessionScope scope(session);
  TavoValidSpecs specs;
  tavo::PlanStageSpec stage;
  stage.stage.stageNumber = 1;
  stage.stage.strata = {4};
  specs.AddStage(std::move(stage));
  specs.SetWeightVariable(2);
  specs.SetDependent(0, true, {});
  specs.SetFactors({4});
  specs.NumberColumns();
  EXPECT_EQ(specs.RecordLength(), 3);
  EXPECT_EQ(specs.CategoricalRecordMap().at(4), 0);
  EXPECT_THAT(specs.FactorColumns(), ElementsAre(0));
}

TEST(ValidSpecs, AVariableThatIsStratumAndSubpopulationTakesOneColumn) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y /DOMAIN VARIABLE=st(1)"));
  EXPECT_EQ(run.Specs().RecordLength(), 4);
  FirstPassFindings found;
  found.dependentCategories = 2;
  found.domainCode = 3;
  const TavoCompSettings settings = run.Specs().BuildSettings(found);
  EXPECT_EQ(settings.SubpopVar(), run.Specs().CategoricalRecordMap().at(run.IndexOf("st")));
  EXPECT_EQ(settings.SubpopValue(), 3);
}

TEST(ValidSpecs, SizesProbabilitiesAndMatricesGetColumnsOfTheirKind) {
  CommandRun run;
  run.WritePlan(Plan(
      Stage(1, "equal_wor", {"st"}, {"psu"},
            "<PopulationSize><Matrix numberOfValues='1'><MatrixVarList><Variable name='st'/></MatrixVarList>"
            "<MatrixValue sizeValue='9'><Category value='1'/></MatrixValue></Matrix></PopulationSize>") +
      Stage(2, "equal_wor", {}, {"psu2"}, "<IncProb><Variable name='p'/></IncProb>") +
      Stage(3, "equal_wor", {}, {}, "<PopulationSize><SingleValue value='30'/></PopulationSize>")));
  const TavoCompSettings settings = Build(run, "TAVOREG y");
  const TavoValidSpecs& specs = run.Specs();
  EXPECT_THAT(specs.RecordVariables(),
              ElementsAre(run.IndexOf("st"), run.IndexOf("psu"), -1, run.IndexOf("psu2"), run.IndexOf("p"),
                          run.IndexOf("w"), run.IndexOf("y")));
  EXPECT_EQ(specs.MatrixRecordMap().at(0), 2);
  EXPECT_TRUE(specs.IsSizeColumn(2));
  EXPECT_FALSE(specs.IsRateColumn(2));
  EXPECT_TRUE(specs.IsRateColumn(4));
  EXPECT_THAT(
      settings.VariableTypes(),
      ElementsAre(VariableRole::kDesignCategory, VariableRole::kDesignCategory, VariableRole::kPopulationSize,
                  VariableRole::kDesignCategory, VariableRole::kInclusionProbability, VariableRole::kWeight,
                  VariableRole::kDependent));
  ASSERT_EQ(settings.StageCount(), 3);
  EXPECT_EQ(settings.InclusionTypeOfStage(3), InclProbType::kPopSizeValue);
  EXPECT_EQ(settings.Stages()[2].PopulationSize(), 30);
  EXPECT_EQ(settings.Stages()[1].estimator, tavo::StageEstimator::kEqualWor);
}

TEST(ValidSpecs, ThreadsAndSRSEstimatorReachTheSettings) {
  CommandRun run;
  run.Options().threads = 3;
  run.WritePlan(Plan(Stage(1, "wr", {}, {"psu"}), "w", "wr"));
  const TavoCompSettings settings = Build(run, "TAVOREG y");
  EXPECT_EQ(settings.Threads(), 3);
  EXPECT_EQ(settings.ThreadService(), &run.Host().Threads());
  EXPECT_EQ(settings.GetSRSEstimator(), tavo::SRSEstimator::kWithReplacement);
}

TEST(ValidSpecs, SettingsHoldWhatTheFirstPassFoundAndPassTheirCheck) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y BY a b WITH x /MODEL a x"));
  const TavoValidSpecs& specs = run.Specs();
  FirstPassFindings found;
  found.dependentCategories = 3;
  found.referenceCode = -1;
  found.factorLevels = {4, 2};
  const TavoCompSettings settings = specs.BuildSettings(found);
  EXPECT_EQ(settings.Dependent(), specs.DependentColumn());
  EXPECT_EQ(settings.DependentCategories(), 3);
  EXPECT_EQ(settings.DependentReference(), -1);
  EXPECT_EQ(settings.Factors(), specs.FactorColumns());
  EXPECT_THAT(settings.FactorSizes(), ElementsAre(4, 2));
  EXPECT_EQ(settings.Covariates(), specs.CovariateColumns());
  EXPECT_EQ(settings.Effects().size(), 2U);
  EXPECT_TRUE(settings.Validate().IsOK()) << settings.Validate().Code();
}

TEST(ValidSpecs, ConfidenceLevelsOutOfRangeAreIgnored) {
  TavoValidSpecs specs;
  for (const double level : {100.0, -1.0})
    specs.SetConfidenceLevel(level);
  EXPECT_EQ(specs.ConfidenceLevel(), 95.0);
}

TEST(ValidSpecs, AConvergenceBelowZeroLeavesTheParameterCriterionButSetsItsFlag) {
  TavoValidSpecs specs;
  specs.SetParamConvergence(-1, false);
  EXPECT_EQ(specs.ParamConvergence(), 1e-6);
  EXPECT_FALSE(specs.IsParamRelative());
}

TEST(ValidSpecs, ThreeSettersLookAtThePresentValue) {
  TavoValidSpecs specs;
  specs.SetLogLikConvergence(-1, false);
  EXPECT_EQ(specs.LogLikConvergence(), -1);
  specs.SetLogLikConvergence(0.5, true);
  EXPECT_EQ(specs.LogLikConvergence(), -1);
  EXPECT_TRUE(specs.IsLogLikRelative());
  specs.SetMaximumIterations(-1);
  specs.SetMaximumIterations(10);
  EXPECT_EQ(specs.MaximumIterations(), -1);
  specs.SetMaximumStepHalving(0);
  specs.SetMaximumStepHalving(10);
  EXPECT_EQ(specs.MaximumStepHalving(), 0);
}

TEST(ValidSpecs, AStatisticOrPrintOptionIsAddedOnce) {
  TavoValidSpecs specs;
  EXPECT_TRUE(specs.AddStatistic(tavo::Statistic::SE));
  EXPECT_FALSE(specs.AddStatistic(tavo::Statistic::SE));
  EXPECT_TRUE(specs.AddPrintOption(tavo::PrintOption::GEF));
  EXPECT_FALSE(specs.AddPrintOption(tavo::PrintOption::GEF));
  EXPECT_TRUE(specs.Has(tavo::Statistic::SE));
  EXPECT_FALSE(specs.Has(tavo::PrintOption::COVB));
}

TEST(ValidSpecs, AWeightBelowZeroIsIgnored) {
  TavoValidSpecs specs;
  EXPECT_EQ(specs.WeightVariable(), -1);
  specs.SetWeightVariable(5);
  specs.SetWeightVariable(-1);
  EXPECT_EQ(specs.WeightVariable(), 5);
}

TEST(ValidSpecs, NoValueHasNoText) {
  EXPECT_EQ(TavoValidSpecs::ValueText({}, true), "");
}

}  // namespace

}  // namespace command_parser_test
