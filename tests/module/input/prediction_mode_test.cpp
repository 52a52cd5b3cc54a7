// The pass that scores cases: what a case needs, and what it may lack.
#include "adapter_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Factor a and covariate x are required; the stratum h, the weight w and the covariate z are not.
class PredictionMode : public AdapterTest {
 protected:
  PredictionMode() {
    fA = Add("a");
    fX = Add("x");
    fH = Add("h");
    fW = Add("w");
    fZ = Add("z");
    fColumnA = fSpecs.AddCategorical(fA);
    fColumnH = fSpecs.AddCategorical(fH);
    fColumnX = fSpecs.AddContinuous(fX);
    fSpecs.SetWeightVariable(fW);
    fSpecs.NumberColumns();
    fColumnZ = fSpecs.AddContinuous(fZ);
  }
  /// The codes: 1 and 2 of a, 1 of h.
  void FirstPass(bool includeUserMissing = false) {
    fSource.AddCase({10, 0.5, 7, 1, 3});
    fSource.AddCase({20, 1.5, 7, 1, 3});
    Start(includeUserMissing);
    ReadAll();
    fSource.ClearCases();
  }
  void BeginScoring() {
    auto cases = fSource.NewPass();
    fAdapter->BeginPredictionPass(*cases, {fA}, {fX});
    fIterator.emplace(fSource, std::move(cases), *fAdapter);
  }

  int fA, fX, fH, fW, fZ;
  int fColumnA, fColumnX, fColumnH, fColumnZ;
};

TEST_F(PredictionMode, StaysOnOnceAPredictionPassHasBegun) {
  FirstPass();
  EXPECT_FALSE(fAdapter->IsPredictionMode());
  const int passes = fAdapter->PassCounter();
  BeginScoring();
  EXPECT_TRUE(fAdapter->IsPredictionMode());
  EXPECT_EQ(fAdapter->PassCounter(), passes + 1);
  EXPECT_EQ(fAdapter->Counts().valid, 0) << "the counters start again";
}

TEST_F(PredictionMode, ACaseThatLacksWhatIsNotRequiredIsScored) {
  FirstPass();
  fSource.AddCase({20, 0.25, kMissing, kMissing, kMissing});
  BeginScoring();
  const auto records = ReadAll();
  ASSERT_EQ(records.size(), 1U);
  const auto at = [&](int column) { return records[0][static_cast<std::size_t>(column)]; };
  EXPECT_EQ(at(fColumnA), 2);
  EXPECT_EQ(at(fColumnX), 0.25);
  EXPECT_EQ(at(fColumnH), kMarker);
  EXPECT_EQ(at(fColumnZ), kMarker);
  EXPECT_EQ(fAdapter->Counts().valid, 1);
}

TEST_F(PredictionMode, ACaseThatLacksARequiredVariableIsLeftOut) {
  FirstPass();
  fSource.AddCase({kMissing, 0.25, 7, 1, 3});
  fSource.AddCase({10, kMissing, 7, 1, 3});
  fSource.AddCase({10, 4, 7, 1, 3});
  BeginScoring();
  EXPECT_THAT(ReadColumn(fColumnX), ElementsAre(4));
  EXPECT_EQ(fAdapter->Counts().invalid, 2);
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(PredictionMode, AFactorValueUnseenInTheFitIsNotInsertedAndTheCaseIsLeftOut) {
  FirstPass();
  fSource.AddCase({30, 1, 7, 1, 3});
  fSource.AddCase({10, 2, 8, 1, 3});  // the stratum is new
  BeginScoring();
  const auto records = ReadAll();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0][static_cast<std::size_t>(fColumnX)], 2);
  EXPECT_EQ(records[0][static_cast<std::size_t>(fColumnH)], kMarker);
  EXPECT_EQ(fAdapter->CategoryCount(fA), 2);
  EXPECT_EQ(fAdapter->CategoryCount(fH), 1);
}

TEST_F(PredictionMode, AWeightOfAnyKindLetsTheCasePass) {
  FirstPass();
  for (const Value& weight : {Value(0), Value(-3), kMissing})
    fSource.AddCase({10, 1, 7, weight, 3});
  BeginScoring();
  EXPECT_EQ(ReadAll().size(), 3U);
}

TEST_F(PredictionMode, DeclaredMissingValuesCountAsMissingInRequiredVariablesOnly) {
  DeclareMissing(fA, Number(10));
  DeclareMissing(fX, Number(99));
  DeclareMissing(fH, Number(7));
  DeclareMissing(fZ, Number(99));
  FirstPass(true);  // with them the tables hold 10 and 7
  fIterator.reset();
  // an adapter that takes declared missing values as missing, over the same source
  fSource.AddCase({20, 5, 8, 1, 99});
  Start(false);
  ReadAll();
  fSource.ClearCases();
  fSource.AddCase({10, 5, 8, 1, 3});
  fSource.AddCase({20, 99, 8, 1, 3});
  fSource.AddCase({20, 6, 8, 1, 99});
  BeginScoring();
  const auto records = ReadAll();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0][static_cast<std::size_t>(fColumnX)], 6);
  EXPECT_EQ(records[0][static_cast<std::size_t>(fColumnZ)], 99) << "a value like any other";
}

TEST_F(PredictionMode, WithClassMissingIncludeADeclaredMissingFactorValueIsScored) {
  DeclareMissing(fA, Number(10));
  FirstPass(true);
  fSource.AddCase({10, 5, 7, 1, 3});
  BeginScoring();
  EXPECT_THAT(ReadColumn(fColumnA), ElementsAre(1));
}

TEST_F(AdapterTest, InPredictionModeBadDesignValuesSendNoMessageAndKeepTheCase) {
  const int x = Add("x");
  const int n = Add("n");
  const int p = Add("p");
  const int key = Add("key");
  AddStage(true, n);
  AddStage(false, p);
  AddMatrixStage(true, {key}, {{Number(1), 40}});
  fSpecs.NumberColumns();
  const int column = fSpecs.AddContinuous(x);
  fSource.AddCase({0.5, 100, 0.5, 1});
  Start();
  ReadAll();
  fSource.ClearCases();
  fSource.AddCase({1, 100.5, 7, 1});
  fSource.AddCase({2, -1, 0, 2});
  fSource.AddCase({3, kMissing, kMissing, kMissing});
  auto cases = fSource.NewPass();
  fAdapter->BeginPredictionPass(*cases, {}, {x});
  fIterator.emplace(fSource, std::move(cases), *fAdapter);
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2, 3));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(fSession.Common().errorFlag, 0);
}

}  // namespace
}  // namespace tavo
