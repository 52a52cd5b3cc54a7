#include "adapter_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using InputAdapter = AdapterTest;

TEST_F(InputAdapter, CodesFollowFirstAppearanceUntilTheyAreSortedByValue) {
  const int a = Add("a");
  const int column = fSpecs.AddCategorical(a);
  for (const int value : {7, 3, 7, -2, 3})
    fSource.AddCase({value});
  Start();
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2, 1, 3, 2));
  EXPECT_EQ(fAdapter->CategoryCount(a), 3);
  fAdapter->SortCategories(a, true);
  fIterator->Reset();
  EXPECT_THAT(ReadColumn(column), ElementsAre(3, 2, 3, 1, 2));
  fAdapter->SortCategories(a, false);
  fIterator->Reset();
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2, 1, 3, 2));
  EXPECT_EQ(fAdapter->ValueForCode(a, 3)->number, -2);
}

TEST_F(InputAdapter, UnsortedVariablesKeepTheirCodesInLaterPasses) {
  const int a = Add("a");
  const int column = fSpecs.AddCategorical(a);
  for (const int value : {9, 1, 5})
    fSource.AddCase({value});
  Start();
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2, 3));
  fIterator->Reset();
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2, 3));
}

TEST_F(InputAdapter, StringsOfWidth8TakeOneCellAndThoseOfWidth9Two) {
  const int narrow = Add("narrow", 8);
  const int wide = Add("wide", 9);
  const int narrowColumn = fSpecs.AddCategorical(narrow);
  const int wideColumn = fSpecs.AddCategorical(wide);
  fSource.AddCase({"abcdefgh", "abcdefgh2"});
  fSource.AddCase({"abcdefgi", "abcdefgh1"});
  fSource.AddCase({"abcdefgh", "abcdefgh"});
  Start();
  const auto records = ReadAll();
  ASSERT_EQ(records.size(), 3U);
  const auto codes = [&](int column) {
    return std::vector<double>{records[0][static_cast<std::size_t>(column)],
                               records[1][static_cast<std::size_t>(column)],
                               records[2][static_cast<std::size_t>(column)]};
  };
  EXPECT_THAT(codes(narrowColumn), ElementsAre(1, 2, 1));
  EXPECT_THAT(codes(wideColumn), ElementsAre(1, 2, 3)) << "the ninth character tells them apart";
  fAdapter->SortCategories(wide, true);
  fIterator->Reset();
  EXPECT_THAT(ReadColumn(wideColumn), ElementsAre(3, 2, 1)) << "bytes, blank first";
}

TEST_F(InputAdapter, AValueFirstSeenInALaterPassDropsTheCase) {
  const int a = Add("a");
  const int column = fSpecs.AddCategorical(a);
  fSource.AddCase({1});
  Start();
  ReadAll();
  fSource.AddCase({2});
  fSource.AddCase({1});
  fIterator->Reset();
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 1));
  EXPECT_EQ(fAdapter->CategoryCount(a), 1);
  EXPECT_EQ(fAdapter->Counts().invalid, 1);
  EXPECT_EQ(fAdapter->Counts().valid, 2);
}

TEST_F(InputAdapter, AWeightOfZeroOrLessPassesAndAMissingOneDropsTheCase) {
  const int w = Add("w");
  fSpecs.SetWeightVariable(w);
  fSpecs.NumberColumns();
  for (const double value : {0.0, 2.0, -1.0})
    fSource.AddCase({value});
  fSource.AddCase({kMissing});
  Start();
  EXPECT_THAT(ReadColumn(0), ElementsAre(0, 2, -1));
  EXPECT_EQ(fAdapter->Counts().invalid, 1);
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(InputAdapter, AnInclusionProbabilityOf1IsValidAnd1_0000001IsReported) {
  const int p = Add("p");
  AddStage(false, p);
  fSpecs.NumberColumns();
  for (const double value : {1.0, 1e-300, 1.0000001, 0.0, -0.5})
    fSource.AddCase({value});
  Start();
  EXPECT_THAT(ReadColumn(0), ElementsAre(1, 1e-300));
  ASSERT_EQ(Messages().size(), 3U);
  for (const standalone::Message& message : Messages()) {
    EXPECT_EQ(message.key, "Invalid value in incl. prob. variable ^1 ...");
    EXPECT_TRUE(message.isError);
    EXPECT_THAT(message.text, HasSubstr("p"));
  }
  EXPECT_THAT(Messages()[0].text, HasSubstr("3")) << "the case's number";
  EXPECT_EQ(fAdapter->Counts().invalid, 3);
  EXPECT_NE(fSession.Common().errorFlag, 0);
}

TEST_F(InputAdapter, APopulationSizeThatIsWholeToWithinTheFuzzIsRounded) {
  const int n = Add("n");
  AddStage(true, n);
  fSpecs.NumberColumns();
  for (const double value : {100.0000000001, 99.9999999999, 1.0, 4e9})
    fSource.AddCase({value});
  Start();
  EXPECT_THAT(ReadColumn(0), ElementsAre(100, 100, 1, 4e9));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(InputAdapter, APopulationSizeThatIsNoPositiveWholeNumberIsReported) {
  const int n = Add("n");
  AddStage(true, n);
  fSpecs.NumberColumns();
  for (const double value : {100.5, 0.0, -3.0, 1e-12})
    fSource.AddCase({value});
  Start();
  EXPECT_THAT(ReadAll(), IsEmpty());
  ASSERT_EQ(Messages().size(), 4U);
  EXPECT_EQ(Messages()[0].key, "Invalid value in pop. size variable ^1 ...");
  EXPECT_TRUE(Messages()[0].isError);
}

TEST_F(InputAdapter, AMissingDesignValueDoesNotFailTheCase) {
  const int n = Add("n");
  const int p = Add("p");
  DeclareMissing(n, Number(99));
  AddStage(true, n);
  AddStage(false, p);
  fSpecs.NumberColumns();
  fSource.AddCase({kMissing, kMissing});
  fSource.AddCase({99, 0.5});
  Start(true);
  const auto records = ReadAll();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_THAT(records[0], ElementsAre(kMarker, kMarker));
  EXPECT_THAT(records[1], ElementsAre(kMarker, 0.5)) << "declared missing is missing in continuous columns";
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(InputAdapter, UserMissingStrataGetACodeWhenTheyAreIncluded) {
  const int h = Add("h");
  DeclareMissing(h, Number(9));
  const int column = fSpecs.AddCategorical(h);
  for (const double value : {1.0, 9.0, 1.0})
    fSource.AddCase({value});
  fSource.AddCase({kMissing});
  Start(true);
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2, 1)) << "system-missing is missing all the same";
}

TEST_F(InputAdapter, UserMissingStrataDropTheCaseWhenTheyAreExcluded) {
  const int h = Add("h");
  DeclareMissing(h, Number(9));
  const int column = fSpecs.AddCategorical(h);
  for (const double value : {9.0, 1.0, 9.0, 2.0})
    fSource.AddCase({value});
  Start(false);
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2));
  EXPECT_EQ(fAdapter->CategoryCount(h), 2);
  EXPECT_EQ(fAdapter->Counts().invalid, 2);
}

TEST_F(InputAdapter, ABlankStringIsACategoryWhenUserMissingIsIncluded) {
  const int g = Add("g", 4);
  DeclareMissing(g, Text("", 4));
  const int column = fSpecs.AddCategorical(g);
  for (const char* value : {"a", "", "a"})
    fSource.AddCase({value});
  Start(true);
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2, 1));
  fIterator->Reset();
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 2, 1));
  Start(false);
  EXPECT_THAT(ReadColumn(column), ElementsAre(1, 1));
}

TEST_F(InputAdapter, UserMissingCovariatesAreMissingEvenWhenTheyAreIncluded) {
  const int x = Add("x");
  DeclareMissing(x, Number(-1));
  const int column = fSpecs.AddContinuous(x);
  for (const double value : {-1.0, 5.0})
    fSource.AddCase({value});
  fSource.AddCase({kMissing});
  Start(true);
  EXPECT_THAT(ReadColumn(column), ElementsAre(5));
  EXPECT_EQ(fAdapter->Counts().invalid, 2);
}

TEST_F(InputAdapter, WithoutListwiseDeletionOnlyAMissingWeightDropsTheCase) {
  const int x = Add("x");
  const int w = Add("w");
  fSpecs.AddContinuous(x);
  fSpecs.SetWeightVariable(w);
  fSpecs.NumberColumns();
  fSource.AddCase({kMissing, 1});
  fSource.AddCase({1, kMissing});
  const OrvVariableReporter reporter(fSource);
  const auto cases = fSource.NewPass();
  OrvInputAdapter adapter(fSpecs, fSource, *cases, reporter, false, false);
  double record[2] = {0, 0};
  ASSERT_EQ(cases->NextCase(), 1);
  EXPECT_TRUE(adapter.FillContinuous(record));
  EXPECT_EQ(record[0], kMarker);
  ASSERT_EQ(cases->NextCase(), 1);
  EXPECT_FALSE(adapter.FillContinuous(record));
}

TEST_F(InputAdapter, AllCategoricalVariablesAreReadAfterAMissingOne) {
  const int a = Add("a");
  const int b = Add("b");
  fSpecs.AddCategorical(a);
  fSpecs.AddCategorical(b);
  fSource.AddCase({kMissing, 4});
  fSource.AddCase({1, 5});
  Start();
  ReadAll();
  EXPECT_EQ(fAdapter->CategoryCount(b), 2) << "the value of the dropped case has a code";
  EXPECT_EQ(fAdapter->ValueForCode(b, 1)->number, 4);
}

TEST_F(InputAdapter, ACodeOf0WritesTheMissingMarker) {
  const int a = Add("a");
  fSpecs.AddCategorical(a);
  fSource.AddCase({kMissing});
  const OrvVariableReporter reporter(fSource);
  const auto cases = fSource.NewPass();
  OrvInputAdapter adapter(fSpecs, fSource, *cases, reporter, true, false);
  ASSERT_EQ(cases->NextCase(), 1);
  double record = 0;
  EXPECT_FALSE(adapter.FillCategorical(&record));
  EXPECT_EQ(record, kMarker);
}

TEST_F(InputAdapter, ValuesAndCodesAreFoundOnlyWhereTheyAre) {
  const int a = Add("a");
  const int x = Add("x");
  const int column = fSpecs.AddCategorical(a);
  const int covariate = fSpecs.AddContinuous(x);
  fSource.AddCase({4, 1});
  Start();
  for (const int code : {0, -1, 2})
    EXPECT_EQ(fAdapter->ValueForCode(a, code), nullptr) << code;
  EXPECT_EQ(fAdapter->ValueForCode(x, 1), nullptr) << "no categorical variable";
  int variable = -7;
  ASSERT_NE(fAdapter->ValueForColumnCode(column, 1, variable), nullptr);
  EXPECT_EQ(variable, a);
  EXPECT_EQ(fAdapter->ValueForColumnCode(covariate, 1, variable), nullptr);
  EXPECT_EQ(fAdapter->ValueForColumnCode(-1, 1, variable), nullptr);
  EXPECT_EQ(fAdapter->ValueForColumnCode(99, 1, variable), nullptr);
  bool notFound = true;
  EXPECT_EQ(fAdapter->CodeForValue(a, Number(4).data(), notFound, false), 1);
  EXPECT_FALSE(notFound);
  EXPECT_EQ(fAdapter->CodeForValue(a, Number(5).data(), notFound, false), 0);
  EXPECT_TRUE(notFound);
  EXPECT_EQ(fAdapter->CategoryCount(a), 1) << "looking up enters nothing";
  EXPECT_EQ(fAdapter->CodeForValue(a, Number(5).data(), notFound, true), 2);
  EXPECT_TRUE(notFound);
  EXPECT_EQ(fAdapter->CodeForValue(x, Number(5).data(), notFound, true), 0);
  EXPECT_TRUE(notFound);
  EXPECT_EQ(fAdapter->CategoryCount(x), 0);
  fAdapter->SortCategories(x, true);  // nothing to sort
}

TEST_F(InputAdapter, AMatrixGivesTheValueOfTheKey) {
  const int h = Add("h");
  const int g = Add("g", 10);
  const auto key = [](double number, const char* text) {
    Cells cells = Number(number);
    const Cells tail = Text(text, 10);
    cells.insert(cells.end(), tail.begin(), tail.end());
    return cells;
  };
  AddMatrixStage(true, {h, g}, {{key(1, "north east"), 40}, {key(1, "north"), 50}, {key(2, "north"), 60}});
  fSpecs.NumberColumns();
  fSource.AddCase({1, "north"});
  fSource.AddCase({2, "north"});
  fSource.AddCase({1, "north east"});
  Start();
  EXPECT_THAT(ReadColumn(fSpecs.MatrixRecordMap().at(0)), ElementsAre(50, 60, 40));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(InputAdapter, AKeyThatAMatrixLacksIsReportedWithStageVariablesAndValues) {
  const int h = Add("h");
  const int k = Add("k");
  AddMatrixStage(true, {h, k}, {});
  fSpecs.NumberColumns();
  fSource.AddCase({17, 23});
  Start();
  EXPECT_THAT(ReadAll(), IsEmpty());
  ASSERT_EQ(Messages().size(), 1U);
  EXPECT_EQ(Messages()[0].key, "No population size ^1 [%1 = %2:, ^1 = ^2:]2 ...");
  EXPECT_TRUE(Messages()[0].isError);
  for (const char* part : {"1", "h = 17", "k = 23"})
    EXPECT_THAT(Messages()[0].text, HasSubstr(part));
}

TEST_F(InputAdapter, AKeyThatAProbabilityMatrixLacksHasItsOwnMessage) {
  const int h = Add("h");
  AddStage(true, Add("n"));
  AddMatrixStage(false, {h}, {{Number(1), 0.5}});
  fSpecs.NumberColumns();
  fSource.AddCase({1, 10});
  fSource.AddCase({2, 10});
  Start();
  EXPECT_THAT(ReadColumn(fSpecs.MatrixRecordMap().at(1)), ElementsAre(0.5));
  ASSERT_EQ(Messages().size(), 1U);
  EXPECT_EQ(Messages()[0].key, "No inclusion prob ^1 [%1 = %2:, ^1 = ^2:]2 ...");
  EXPECT_THAT(Messages()[0].text, HasSubstr("2")) << "stage 2";
}

TEST_F(InputAdapter, AMissingKeyDropsTheCaseWithoutAMessage) {
  const int h = Add("h");
  DeclareMissing(h, Number(9));
  AddMatrixStage(false, {h}, {{Number(9), 0.5}, {Number(1), 0.25}});
  fSpecs.NumberColumns();
  fSource.AddCase({kMissing});
  fSource.AddCase({9});
  fSource.AddCase({1});
  Start(false);
  EXPECT_THAT(ReadColumn(0), ElementsAre(0.25));
  EXPECT_THAT(Messages(), IsEmpty());
  Start(true);
  EXPECT_THAT(ReadColumn(0), ElementsAre(0.5, 0.25)) << "declared missing keys count as values when included";
}

TEST_F(InputAdapter, TheFirstUnknownMatrixKeyEndsTheCase) {
  const int h = Add("h");
  AddMatrixStage(true, {h}, {});
  AddMatrixStage(false, {h}, {});
  fSpecs.NumberColumns();
  fSource.AddCase({1});
  Start();
  EXPECT_EQ(Messages().size(), 1U);
}

TEST_F(InputAdapter, RecordLengthIsTheNumberOfColumns) {
  const int h = Add("h");
  const int x = Add("x");
  AddMatrixStage(true, {h}, {{Number(1), 4}});
  fSpecs.NumberColumns();
  fSpecs.AddCategorical(h);
  fSpecs.AddContinuous(x);
  fSpecs.AddContinuous(x);
  fSource.AddCase({1, 2});
  Start();
  EXPECT_EQ(fAdapter->RecordLength(), 3);
}

TEST_F(InputAdapter, EachPassCountsAnew) {
  const int a = Add("a");
  fSpecs.AddCategorical(a);
  fSource.AddCase({1});
  fSource.AddCase({kMissing});
  fSource.AddCase({2});
  Start();
  EXPECT_EQ(fAdapter->PassCounter(), 0);
  ReadAll();
  for (int pass = 1; pass <= 2; ++pass) {
    fIterator->Reset();
    ReadAll();
    EXPECT_EQ(fAdapter->PassCounter(), pass);
    EXPECT_EQ(fAdapter->Counts().casesRead, 3);
    EXPECT_EQ(fAdapter->Counts().valid, 2);
    EXPECT_EQ(fAdapter->Counts().invalid, 1);
    EXPECT_EQ(fAdapter->Counts().recordsPassed, 2);
  }
}

}  // namespace
}  // namespace tavo
