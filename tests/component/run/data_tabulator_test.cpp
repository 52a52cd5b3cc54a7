#include "component/run/data_tabulator.h"

#include <gtest/gtest.h>

#include "component/design/sample_design.h"
#include "tabulation_bench.h"

namespace tavo {
namespace {

using namespace tavo_test;

/// A third pass over plain settings: no model is needed for it.
struct ThirdPass {
  explicit ThirdPass(const SurveySettings& settings, const std::vector<Case>& cases)
      : iterator(RowsOf(cases)), tabulator(settings.Get(), extractor, cancel) {}
  OrvStatus Run() { return tabulator.TabulateDesign(iterator); }

  static OrvRecordExtractor MakeExtractor() {
    OrvRecordExtractor made;
    made.Set(kY, {}, {}, kWeight);
    return made;
  }
  MemoryRecordIterator iterator;
  OrvRecordExtractor extractor = MakeExtractor();
  OrvCancelInfo cancel;
  TavoDataTabulator tabulator;
};

SurveySettings WithInclusionProbabilities() {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}, StageEstimator::kEqualWor);
  settings.Get().AddDesignContinuous(kSize, InclProbType::kInclProbVariable, 1);
  return settings;
}

TEST(TavoDataTabulator, WithoutStrataAndClustersAllRecordsShareOneUnit) {
  SurveySettings settings;
  settings.Stage({}, {});
  ThirdPass pass(settings, {Case{}, Case{.stratum = 2}, Case{.cluster = 3}});
  EXPECT_TRUE(pass.Run().IsOK());
  EXPECT_EQ(pass.tabulator.UnitCount(), 1);
}

TEST(TavoDataTabulator, EachCombinationOfStrataAndClustersIsAUnit) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster, kSecondCluster});
  ThirdPass pass(settings, {Case{}, Case{.cluster = 2}, Case{}, Case{.secondCluster = 2}, Case{.stratum = 2},
                            Case{.cluster = 2, .domain = 5}, Case{.stratum = 3, .weight = 0}});
  EXPECT_TRUE(pass.Run().IsOK());
  EXPECT_EQ(pass.tabulator.UnitCount(), 4);
}

TEST(TavoDataTabulator, TheSameKeyWithTwoProbabilitiesWarnsOnceWithTheFirstKey) {
  const SurveySettings settings = WithInclusionProbabilities();
  ThirdPass pass(settings, {Case{.stratum = 1, .size = 0.5}, Case{.stratum = 2, .cluster = 7, .size = 0.25},
                            Case{.stratum = 2, .cluster = 7, .size = 0.3}, Case{.stratum = 1, .size = 0.7}});
  const OrvStatus status = pass.Run();
  EXPECT_TRUE(status.IsWarning());
  ASSERT_EQ(pass.tabulator.StatusList().size(), 1u);
  EXPECT_EQ(pass.tabulator.StatusList()[0],
            OrvStatus::Warning(StatusCode::kInconsistentDesignValue).SetInteger(1, 0));
  ASSERT_EQ(pass.tabulator.ConstFindings().size(), 1u);
  EXPECT_TRUE(pass.tabulator.ConstFindings()[0].reported);
  EXPECT_EQ(pass.tabulator.ConstFindings()[0].key.Values(), (std::vector<std::int32_t>{2, 7}));
  EXPECT_EQ(pass.tabulator.UnitCount(), 2);
}

TEST(TavoDataTabulator, ProbabilitiesThatDifferByRoundingAreEqual) {
  const SurveySettings settings = WithInclusionProbabilities();
  ThirdPass pass(settings, {Case{.size = 0.1 + 0.2}, Case{.size = 0.3}});
  EXPECT_TRUE(pass.Run().IsOK());
  EXPECT_FALSE(pass.tabulator.ConstFindings()[0].reported);
}

TEST(TavoDataTabulator, AProbabilityThatComesLaterIsReportedAsADifference) {
  const SurveySettings settings = WithInclusionProbabilities();
  ThirdPass pass(settings, {Case{.size = kMissing}, Case{.size = 0.3}});
  EXPECT_EQ(pass.Run(), OrvStatus::Warning(StatusCode::kInconsistentDesignValue).SetInteger(1, 0));
}

TEST(TavoDataTabulator, ASecondPassAndAFeedWithoutPassAreRefused) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster});
  ThirdPass pass(settings, {Case{}});
  TabulationBench bench(settings, RowsOf({Case{}}));
  SampleDesign design;
  EXPECT_EQ(pass.tabulator.FeedDesignByUnit(bench.model, design).Code(), StatusCode::kUserError);
  EXPECT_EQ(pass.tabulator.FeedDesignByRecord(bench.model, design).Code(), StatusCode::kUserError);
  EXPECT_TRUE(pass.Run().IsOK());
  EXPECT_EQ(pass.Run().Code(), StatusCode::kUserError);
}

TEST(TavoDataTabulator, AnEmptyOrBrokenStreamIsAnError) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster});
  ThirdPass empty(settings, {});
  EXPECT_EQ(empty.Run().Code(), StatusCode::kNoRecords);
  ThirdPass broken(settings, {Case{}, Case{}});
  broken.iterator.FailAt(1);
  EXPECT_EQ(broken.Run().Code(), StatusCode::kUserError);
  ThirdPass cancelled(settings, {Case{}, Case{}});
  cancelled.cancel.Cancel();
  EXPECT_EQ(cancelled.Run().Code(), StatusCode::kCancelled);
}

/// Feeds a model of the intercept alone, with weights 1: each case scores 0.5 for response 1, -0.5 for
/// response 2.
struct Fed {
  Fed(const SurveySettings& settings, const std::vector<Case>& cases) : bench(settings, RowsOf(cases)) {
    bench.Prepare();
    MCSymMatrix information(1);
    information.SetElem(0, 0, 1.0);
    bench.model.SetEstimates({0.0}, information);
    tabulator = std::make_unique<TavoDataTabulator>(settings.Get(), bench.dataExtractor, bench.cancel);
    bench.iterator.Reset();
    tabulated = tabulator->TabulateDesign(bench.iterator);
    design.BuildTree(settings.Get().Stages(), 1);
    design.SetMatrixBlocks({1}, {0});
    const bool byUnit = settings.Get().HasClustersInLastStage();
    fed = byUnit ? tabulator->FeedDesignByUnit(bench.model, design)
                 : tabulator->FeedDesignByRecord(bench.model, design);
  }
  double Variance() const { return (*design.Root()->Covariances()->Block(0))[0]; }

  TabulationBench bench;
  std::unique_ptr<TavoDataTabulator> tabulator;
  SampleDesign design;
  OrvStatus tabulated;
  OrvStatus fed;
};

TEST(TavoDataTabulator, UnitsAreTheSumsOfTheirRecords) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster});
  // Cluster totals 1, -1 and 0 in one stratum: variance 3/2 * (1 + 1 + 0).
  Fed run(settings, {Case{.cluster = 1, .y = 1}, Case{.cluster = 2, .y = 2}, Case{.cluster = 3, .y = 1},
                     Case{.cluster = 1, .y = 1}, Case{.cluster = 2, .y = 2}, Case{.cluster = 3, .y = 2}});
  EXPECT_TRUE(run.fed.IsOK());
  EXPECT_EQ(run.design.UnitCount(0), 3);
  EXPECT_DOUBLE_EQ(run.Variance(), 3.0);
}

TEST(TavoDataTabulator, RecordsOutsideTheSubpopulationAreUnitsOfZero) {
  SurveySettings settings;
  settings.Stage({kStratum}, {});
  settings.Get().SetSubpop(kDomain, 1);
  // Units 0.5, -0.5, 0, 0: variance 4/3 * 0.5.
  Fed run(settings, {Case{.y = 1}, Case{.y = 2}, Case{.y = 1, .domain = 2}, Case{.y = 2, .domain = 2}});
  EXPECT_TRUE(run.fed.IsOK());
  EXPECT_EQ(run.design.UnitCount(0), 4);
  EXPECT_DOUBLE_EQ(run.Variance(), 2.0 / 3);
}

TEST(TavoDataTabulator, AClusterOutsideTheSubpopulationIsAUnitOfZero) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster});
  settings.Get().SetSubpop(kDomain, 1);
  Fed run(settings,
          {Case{.cluster = 1, .y = 1}, Case{.cluster = 2, .y = 2}, Case{.cluster = 3, .y = 1, .domain = 2}});
  EXPECT_EQ(run.design.UnitCount(0), 3);
  EXPECT_DOUBLE_EQ(run.Variance(), 3.0 / 2 * 0.5);
}

TEST(TavoDataTabulator, TheOrderOfRecordsDoesNotMatter) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster});
  std::vector<Case> cases;
  for (int i = 0; i < 12; ++i) {
    cases.push_back(Case{.stratum = 1.0 + i % 2, .cluster = 1.0 + i % 3, .y = i % 5 < 2 ? 1.0 : 2.0});
  }
  const Fed forward(settings, cases);
  const Fed backward(settings, std::vector<Case>(cases.rbegin(), cases.rend()));
  EXPECT_EQ(forward.design.StrataCount(0), 2);
  EXPECT_EQ(forward.design.UnitCount(0), 6);
  EXPECT_DOUBLE_EQ(forward.Variance(), backward.Variance());
  EXPECT_GT(forward.Variance(), 0);
}

TEST(TavoDataTabulator, AUnitWithoutInclusionProbabilityIsAnErrorThatNamesItsKey) {
  const SurveySettings settings = WithInclusionProbabilities();
  const Fed run(settings, {Case{.stratum = 1, .cluster = 1, .y = 1, .size = 0.5},
                           Case{.stratum = 1, .cluster = 2, .y = 2, .size = 0.5},
                           Case{.stratum = 4, .cluster = 5, .y = 2, .size = kMissing}});
  EXPECT_TRUE(run.fed.IsError());
  EXPECT_EQ(run.fed.Code(), StatusCode::kMissingInclusionProb);
  EXPECT_EQ(run.fed.Integer(1), 0);
  EXPECT_EQ(run.tabulator->ConstFindings()[0].key.Values(), (std::vector<std::int32_t>{4, 5}));
}

TEST(TavoDataTabulator, APopulationBelowItsSampleIsAnErrorThatNamesItsKey) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}, StageEstimator::kEqualWor);
  settings.Get().AddDesignContinuous(kSize, InclProbType::kPopSizeVariable, 1);
  const Fed run(settings, {Case{.stratum = 1, .cluster = 1, .y = 1, .size = 2},
                           Case{.stratum = 1, .cluster = 2, .y = 2, .size = 2},
                           Case{.stratum = 3, .cluster = 1, .y = 2, .size = 1},
                           Case{.stratum = 3, .cluster = 2, .y = 1, .size = 1},
                           Case{.stratum = 5, .cluster = 1, .y = 1, .size = 9}});
  EXPECT_EQ(run.fed.Code(), StatusCode::kPopulationBelowSample);
  EXPECT_EQ(run.fed.Integer(1), 1);  // strata are node 0, clusters node 1
  ASSERT_EQ(run.tabulator->PopulationKeys().size(), 1u);
  EXPECT_EQ(run.tabulator->PopulationKeys()[0].Values(), (std::vector<std::int32_t>{3, 2}));
}

TEST(TavoDataTabulator, UnequalSizesWithinAStratumWarnWhenTheUnitsAreFed) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}, StageEstimator::kEqualWor);
  settings.Get().AddDesignContinuous(kSize, InclProbType::kPopSizeVariable, 1);
  const Fed run(settings, {Case{.stratum = 2, .cluster = 1, .y = 1, .size = 20},
                           Case{.stratum = 2, .cluster = 2, .y = 2, .size = 30},
                           Case{.stratum = 3, .cluster = 1, .y = 2, .size = 10},
                           Case{.stratum = 3, .cluster = 2, .y = 1, .size = 11}});
  EXPECT_TRUE(run.tabulated.IsOK());
  EXPECT_EQ(run.fed, OrvStatus::Warning(StatusCode::kInconsistentDesignValue).SetInteger(1, 0));
  EXPECT_EQ(run.tabulator->StatusList().size(), 1u);
  EXPECT_EQ(run.tabulator->ConstFindings()[0].key.Values(), (std::vector<std::int32_t>{2, 2}));
}

}  // namespace
}  // namespace tavo
