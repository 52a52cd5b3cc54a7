// In which state the component accepts what, and what it tells about what went wrong.
#include <gtest/gtest.h>

#include "component/run/algorithm.h"
#include "component_run.h"
#include "test_threads.h"

namespace tavo {
namespace {

using namespace tavo_test;

TEST(ComponentStates, InvalidSettingsAnswerEveryCallWithTheStoredError) {
  const TavoCompSettings settings;
  TavoComponent component(settings);
  EXPECT_EQ(component.Status().Code(), StatusCode::kNoStage);
  MemoryRecordIterator iterator(RowsOf(SampleSurvey(20)));
  EXPECT_EQ(component.BuildModel(iterator).Code(), StatusCode::kNoStage);
  const TavoOutputStats* statistics = nullptr;
  EXPECT_EQ(component.OutputStatistics(statistics).Code(), StatusCode::kNoStage);
  EXPECT_EQ(statistics, nullptr);
  std::vector<int> categories;
  std::vector<double> probabilities;
  int category = 0;
  EXPECT_EQ(component.Predict(MCCommon::Record(12), categories, probabilities, category).Code(),
            StatusCode::kNoStage);
  EXPECT_FALSE(component.IsModelBuilt());
  EXPECT_TRUE(component.WarningList().empty());
  int stage = 0;
  EXPECT_FALSE(
      component.WarningDetail(OrvStatus::Error(StatusCode::kPopulationBelowSample), stage, categories));
}

TEST(ComponentStates, BeforeTheModelIsBuiltResultsAreRefused) {
  const SurveySettings settings = FullModel();
  TavoComponent component(settings.Get());
  EXPECT_TRUE(component.Status().IsOK());
  const TavoOutputStats* statistics = nullptr;
  EXPECT_EQ(component.OutputStatistics(statistics).Code(), StatusCode::kModelNotBuilt);
  std::vector<int> categories;
  std::vector<double> probabilities;
  int category = 0;
  EXPECT_EQ(component.Predict(MCCommon::Record(12), categories, probabilities, category).Code(),
            StatusCode::kModelNotBuilt);
  EXPECT_FALSE(component.IsModelBuilt());
}

TEST(ComponentStates, BuildModelTwiceIsRefusedAndLeavesTheResults) {
  const SurveySettings settings = FullModel();
  ComponentRun run(settings, SampleSurvey(200));
  ASSERT_TRUE(run.status.IsOK());
  const double estimate = run.Estimate(1);
  run.iterator.Reset();
  EXPECT_EQ(run.component.BuildModel(run.iterator).Code(), StatusCode::kModelBuiltTwice);
  EXPECT_TRUE(run.component.IsModelBuilt());
  EXPECT_TRUE(run.component.Status().IsOK());
  const TavoOutputStats* again = nullptr;
  EXPECT_TRUE(run.component.OutputStatistics(again).IsOK());
  EXPECT_EQ(again, run.statistics);
  EXPECT_EQ(run.Estimate(1), estimate);
}

TEST(ComponentStates, DataAreProcessedOnce) {
  const SurveySettings settings = FullModel();
  MemoryRecordIterator iterator(RowsOf(SampleSurvey(50)));
  TavoAlgorithm algorithm(settings.Get());
  EXPECT_TRUE(algorithm.ProcessData(iterator).IsOK());
  EXPECT_FALSE(algorithm.IsModelBuilt());
  iterator.Reset();
  EXPECT_EQ(algorithm.ProcessData(iterator).Code(), StatusCode::kDataProcessedTwice);
  EXPECT_EQ(algorithm.BuildModel(iterator).Code(), StatusCode::kDataProcessedTwice);
}

TEST(ComponentStates, WithoutRecordsThereIsNoModel) {
  const ComponentRun run(FullModel(), {});
  EXPECT_TRUE(run.status.IsError());
  EXPECT_EQ(run.status.Code(), StatusCode::kNoRecords);
  EXPECT_FALSE(run.component.IsModelBuilt());
}

TEST(ComponentStates, AFailedRunStaysFailed) {
  ComponentRun run(FullModel(), {});
  MemoryRecordIterator good(RowsOf(SampleSurvey(50)));
  EXPECT_EQ(run.component.BuildModel(good).Code(), StatusCode::kNoRecords);
  EXPECT_EQ(run.component.StatusText(), "Orv Logistic status: Error No records found in the data source.");
}

TEST(ComponentStates, ACancelBetweenPassesAnswersOne) {
  for (const int pass : {1, 2}) {
    StopButton button;
    SurveySettings settings = FullModel();
    settings.Get().SetStopProcessor(&button);
    TavoComponent component(settings.Get());
    MemoryRecordIterator iterator(RowsOf(SampleSurvey(100)));
    iterator.OnReset([&](int reset) {
      if (reset == pass) button.Press();
    });
    const OrvStatus status = component.BuildModel(iterator);
    EXPECT_TRUE(status.IsError());
    EXPECT_EQ(status.Code(), StatusCode::kCancelled);
    EXPECT_EQ(iterator.ResetCount(), pass);
    EXPECT_FALSE(component.IsModelBuilt());
    EXPECT_TRUE(component.WarningList().empty());
    EXPECT_EQ(component.StatusText(), "Orv Logistic status: Error Error code not found.");
  }
}

TEST(ComponentStates, ACancelDuringTheFirstOrTheLastPassAnswersOne) {
  for (const int pass : {0, 2}) {
    StopButton button;
    SurveySettings settings = FullModel();
    settings.Get().SetStopProcessor(&button);
    TavoComponent component(settings.Get());
    MemoryRecordIterator iterator(RowsOf(SampleSurvey(100)));
    iterator.OnNext([&](std::size_t record) {
      if (record == 99 && iterator.ResetCount() == pass) button.Press();
    });
    EXPECT_EQ(component.BuildModel(iterator).Code(), StatusCode::kCancelled) << pass;
    EXPECT_FALSE(component.IsModelBuilt());
  }
}

TEST(ComponentStates, AStreamThatFailsInALaterPassEndsTheRun) {
  for (const int pass : {1, 2}) {
    const SurveySettings settings = FullModel();
    TavoComponent component(settings.Get());
    MemoryRecordIterator iterator(RowsOf(SampleSurvey(100)));
    iterator.OnReset([&](int reset) {
      if (reset == pass) iterator.FailAt(60);
    });
    EXPECT_EQ(component.BuildModel(iterator).Code(), StatusCode::kUserError);
    EXPECT_FALSE(component.IsModelBuilt());
  }
}

TEST(ComponentStates, AModelWhoseParametersAreAllRedundantIsBuiltWithoutDesignStage) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}).Covariate(kX).Effect({}, {kX});
  settings.Get().SetIntercept(false);
  ComponentRun run(settings, {Case{.y = 1}, Case{.y = 2}, Case{.cluster = 2, .y = 1}});
  EXPECT_FALSE(run.status.IsError());
  EXPECT_TRUE(run.component.IsModelBuilt());
  EXPECT_EQ(run.iterator.ResetCount(), 1);  // no third pass
  ASSERT_NE(run.statistics, nullptr);
  EXPECT_TRUE(run.Parameter(0).redundant);
  EXPECT_EQ(run.statistics->Covariance(), nullptr);
  EXPECT_EQ(run.statistics->UnitCount(), 0);
}

TEST(ComponentStates, EqualWarningsAreListedOnceAndTheLastIsReturned) {
  SurveySettings settings(3, 2);  // reference 2 doesn't occur
  settings.Stage({kStratum}, {kCluster}, StageEstimator::kEqualWor).Factor(kB, 2).Effect({kB});
  settings.Get().AddDesignContinuous(kSize, InclProbType::kPopSizeVariable, 1);
  std::vector<Case> cases = SampleSurvey(100);
  for (std::size_t i = 0; i < cases.size(); ++i) {
    if (cases[i].y == 2) cases[i].y = 3;
    cases[i].size = 1000.0 + static_cast<double>(i % 3);
  }
  const ComponentRun run(settings, cases);
  EXPECT_TRUE(run.status.IsWarning());
  EXPECT_TRUE(run.component.IsModelBuilt());
  const std::vector<OrvStatus> expected = {
      OrvStatus::Warning(StatusCode::kReferenceNotInUse),
      OrvStatus::Warning(StatusCode::kInconsistentDesignValue).SetInteger(1, 0)};
  EXPECT_EQ(run.component.WarningList(), expected);
  EXPECT_EQ(run.status, expected.back());
  EXPECT_EQ(run.component.StatusText(), "Orv Logistic status: Warning Inconsistent inclusion probabilities.");
}

TEST(ComponentStates, AResponseWithOneValueIsAnError) {
  std::vector<Case> cases = SampleSurvey(50);
  for (Case& each : cases)
    each.y = 2;
  EXPECT_EQ(ComponentRun(FullModel(), cases).status.Code(), StatusCode::kOneDependentValue);
}

TEST(ComponentStates, AnEffectOverAColumnThatIsNoPredictorIsRefused) {
  const std::vector<int> predictors = {kA, kX};
  for (const int unknown : {0, 1}) {
    SurveySettings settings;
    settings.Stage({kStratum}, {kCluster});
    OrvModelEffect effect(1, 1, &predictors);
    unknown == 0 ? static_cast<void>(effect.AddFactor(kA, false))
                 : static_cast<void>(effect.AddCovariate(kX));
    settings.Get().AddEffect(effect);
    EXPECT_EQ(ComponentRun(settings, SampleSurvey(50)).status.Code(), StatusCode::kUserError);
  }
}

TEST(ComponentStates, UnequalProbabilitiesWithoutReplacementNeedJointProbabilities) {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}, StageEstimator::kUnequalWor).Factor(kB, 2).Effect({kB});
  const ComponentRun run(settings, SampleSurvey(50));
  EXPECT_TRUE(run.status.IsError());
  EXPECT_EQ(run.status.Code(), StatusCode::kUserError);
}

/// Two stages with population sizes in both: strata and clusters in the first, clusters in the second.
SurveySettings TwoStages() {
  SurveySettings settings;
  settings.Stage({kStratum}, {kCluster}, StageEstimator::kEqualWor, 1);
  settings.Stage({}, {kSecondCluster}, StageEstimator::kEqualWor, 2);
  settings.Get().AddDesignContinuous(kSize, InclProbType::kPopSizeVariable, 1);
  settings.Get().AddDesignContinuous(kSecondSize, InclProbType::kPopSizeVariable, 2);
  return settings;
}

std::vector<Case> TwoStageCases() {
  std::vector<Case> cases;
  for (int i = 0; i < 32; ++i) {
    cases.push_back(Case{.stratum = 1.0 + i / 16,
                         .cluster = 1.0 + i / 4 % 4,
                         .secondCluster = 1.0 + i % 4,
                         .weight = 25,
                         .y = i % 3 == 0 ? 1.0 : 2.0,
                         .size = 100,
                         .secondSize = 50});
  }
  return cases;
}

struct Detail {
  bool found = false;
  int stage = 0;
  std::vector<int> key;
};

Detail DetailOf(const TavoComponent& component, const OrvStatus& status) {
  Detail detail;
  detail.found = component.WarningDetail(status, detail.stage, detail.key);
  return detail;
}

TEST(WarningDetail, APopulationBelowItsSampleNamesStageAndStratum) {
  std::vector<Case> cases = TwoStageCases();
  for (Case& each : cases) {
    if (each.stratum == 2) each.size = 3;
  }
  const ComponentRun firstStage(TwoStages(), cases);
  EXPECT_EQ(firstStage.status.Code(), StatusCode::kPopulationBelowSample);
  Detail detail = DetailOf(firstStage.component, firstStage.status);
  EXPECT_TRUE(detail.found);
  EXPECT_EQ(detail.stage, 1);
  EXPECT_EQ(detail.key, (std::vector<int>{2}));

  cases = TwoStageCases();
  for (Case& each : cases) {
    if (each.stratum == 2 && each.cluster == 3) each.secondSize = 3;
  }
  const ComponentRun secondStage(TwoStages(), cases);
  EXPECT_EQ(secondStage.status.Code(), StatusCode::kPopulationBelowSample);
  detail = DetailOf(secondStage.component, secondStage.status);
  EXPECT_TRUE(detail.found);
  EXPECT_EQ(detail.stage, 2);
  EXPECT_EQ(detail.key, (std::vector<int>{2, 3}));
}

TEST(WarningDetail, AMissingValueNamesStageAndStratum) {
  std::vector<Case> cases = TwoStageCases();
  for (Case& each : cases) {
    if (each.stratum == 1 && each.cluster == 4) each.secondSize = kMissing;
  }
  const ComponentRun run(TwoStages(), cases);
  EXPECT_EQ(run.status.Code(), StatusCode::kMissingInclusionProb);
  const Detail detail = DetailOf(run.component, run.status);
  EXPECT_TRUE(detail.found);
  EXPECT_EQ(detail.stage, 2);
  EXPECT_EQ(detail.key, (std::vector<int>{1, 4}));
}

TEST(WarningDetail, AnInconsistentValueNamesStageAndStratum) {
  std::vector<Case> cases = TwoStageCases();
  cases[20].size = 101;
  const ComponentRun run(TwoStages(), cases);
  ASSERT_EQ(run.status.Code(), StatusCode::kInconsistentDesignValue);
  EXPECT_TRUE(run.component.IsModelBuilt());
  const Detail detail = DetailOf(run.component, run.status);
  EXPECT_TRUE(detail.found);
  EXPECT_EQ(detail.stage, 1);
  EXPECT_EQ(detail.key, (std::vector<int>{2}));
}

TEST(WarningDetail, OtherCodesHaveNone) {
  const ComponentRun run(TwoStages(), TwoStageCases());
  EXPECT_TRUE(run.status.IsOK());
  EXPECT_FALSE(DetailOf(run.component, OrvStatus::Warning(StatusCode::kReferenceNotInUse)).found);
  EXPECT_FALSE(
      DetailOf(run.component, OrvStatus::Warning(StatusCode::kInconsistentDesignValue).SetInteger(1, 2))
          .found);
  EXPECT_FALSE(
      DetailOf(run.component, OrvStatus::Error(StatusCode::kPopulationBelowSample).SetInteger(1, 9)).found);
}

}  // namespace
}  // namespace tavo
