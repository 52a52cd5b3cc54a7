// Rows of custom hypotheses, and which of them make a test.

#include <gtest/gtest.h>

#include <vector>

#include "component/input/custom_test.h"

namespace tavo {
namespace {

using MCCommonMath::IsMissing;
using Values = std::vector<double>;

constexpr MatrixRowType kValueEffectList = MatrixRowType::kValueEffectList;
constexpr MatrixRowType kEffectList = MatrixRowType::kEffectList;
constexpr MatrixRowType kAll = MatrixRowType::kAll;
constexpr MatrixRowType kInvalid = MatrixRowType::kInvalid;

TavoMatrixRow EffectRow(int modelEffects = 2) {
  TavoMatrixRow row(kEffectList, modelEffects);
  row.AddEffect(0, {1, -1});
  return row;
}

TavoMatrixRow AllRow(Values values) {
  TavoMatrixRow row(kAll, 2);
  row.SetAllValues(std::move(values));
  return row;
}

TEST(MatrixRow, StartsWithoutTypeAndIsInvalid) {
  const TavoMatrixRow row;
  EXPECT_EQ(row.Type(), kInvalid);
  EXPECT_EQ(row.ModelEffectCount(), -1);
  EXPECT_TRUE(IsMissing(row.FirstValue()));
  EXPECT_FALSE(row.IsValid());
  EXPECT_EQ(row.ValueCount(), 0);
}

TEST(MatrixRow, SetTypeStoresBothInEveryCase) {
  struct {
    MatrixRowType type;
    int effects;
    bool isGood;
  } const cases[] = {{kValueEffectList, 0, true}, {kEffectList, 3, true},
                     {kEffectList, -1, false},    {kAll, -1, true},
                     {kInvalid, 3, false},        {kValueEffectList, -2, false}};
  for (const auto& c : cases) {
    TavoMatrixRow row;
    EXPECT_EQ(row.SetType(c.type, c.effects), c.isGood);
    EXPECT_EQ(row.Type(), c.type);
    EXPECT_EQ(row.ModelEffectCount(), c.effects);
  }
}

TEST(MatrixRow, TakesAFirstValueOnlyWithTheInterceptType) {
  for (const MatrixRowType type : {kValueEffectList, kEffectList, kAll, kInvalid}) {
    TavoMatrixRow row(type, 2);
    EXPECT_EQ(row.SetFirstValue(3), type == kValueEffectList);
    EXPECT_EQ(IsMissing(row.FirstValue()), type != kValueEffectList);
  }
}

TEST(MatrixRow, AddEffectRefusesWhatNamesNoEffectOrHasNoValues) {
  for (const MatrixRowType type : {kValueEffectList, kEffectList, kAll, kInvalid}) {
    TavoMatrixRow row(type, 2);
    EXPECT_EQ(row.AddEffect(1, {1, 2}), type == kValueEffectList || type == kEffectList);
  }
  TavoMatrixRow row(kEffectList, 2);
  EXPECT_FALSE(row.AddEffect(-1, {1}));
  EXPECT_FALSE(row.AddEffect(2, {1}));
  EXPECT_FALSE(row.AddEffect(0, {}));
  EXPECT_EQ(row.EffectCount(), 0);
  EXPECT_TRUE(row.AddEffect(TavoMatrixRow::kNoFirstValue, {1})) << "while the row holds no effect";
  EXPECT_FALSE(row.AddEffect(TavoMatrixRow::kNoFirstValue, {1}));
  EXPECT_TRUE(row.AddEffect(0, {1})) << "an effect may be named twice here; the parser forbids it";
}

TEST(MatrixRow, AllValuesAreOneListOfAnAllRowOnly) {
  TavoMatrixRow row(kAll, 2);
  EXPECT_FALSE(row.SetAllValues({}));
  EXPECT_EQ(row.AllValues(), nullptr);
  EXPECT_TRUE(row.SetAllValues({1, 2}));
  EXPECT_TRUE(row.SetAllValues({4, 5, 6}));
  EXPECT_EQ(*row.AllValues(), (Values{4, 5, 6})) << "exactly one list, the last";
  EXPECT_EQ(row.ValueCount(), 3);
  TavoMatrixRow other = EffectRow();
  EXPECT_FALSE(other.SetAllValues({1}));
  EXPECT_EQ(other.AllValues(), nullptr);
}

TEST(MatrixRow, AccessOutOfRangeGivesMinusOneAndNull) {
  const TavoMatrixRow row = EffectRow();
  EXPECT_EQ(row.EffectIndex(0), 0);
  EXPECT_EQ(*row.Values(0), (Values{1, -1}));
  for (const int i : {-1, 1}) {
    EXPECT_EQ(row.EffectIndex(i), -1);
    EXPECT_EQ(row.Values(i), nullptr);
  }
}

TEST(MatrixRow, CountsTheFirstValueWithTheLists) {
  TavoMatrixRow row(kValueEffectList, 2);
  EXPECT_EQ(row.ValueCount(), 0);
  row.SetFirstValue(1);
  row.AddEffect(0, {1, 2, 3});
  row.AddEffect(1, {4});
  EXPECT_EQ(row.ValueCount(), 5);
  EXPECT_EQ(EffectRow().ValueCount(), 2);
}

TEST(MatrixRow, ResetTakesTheTypeAndDropsTheRest) {
  TavoMatrixRow row(kValueEffectList, 2);
  row.SetFirstValue(1);
  row.AddEffect(0, {1});
  row.Reset(kEffectList);
  EXPECT_EQ(row.Type(), kEffectList);
  EXPECT_TRUE(IsMissing(row.FirstValue()));
  EXPECT_EQ(row.EffectCount(), 0);
  EXPECT_EQ(row.Values(0), nullptr);
  EXPECT_EQ(row.ModelEffectCount(), 2);
}

TEST(MatrixRow, IsValidFollowsTheType) {
  EXPECT_TRUE(EffectRow().IsValid());
  EXPECT_FALSE(TavoMatrixRow(kEffectList, 2).IsValid()) << "at least one effect";
  EXPECT_TRUE(AllRow({1}).IsValid());
  EXPECT_FALSE(TavoMatrixRow(kAll, 2).IsValid());
  TavoMatrixRow intercept(kValueEffectList, 2);
  EXPECT_FALSE(intercept.IsValid()) << "no first value";
  intercept.SetFirstValue(1);
  EXPECT_TRUE(intercept.IsValid()) << "the intercept alone";
  intercept.SetType(kEffectList, 2);
  intercept.AddEffect(0, {1});
  EXPECT_FALSE(intercept.IsValid()) << "an effect row with a first value";
  TavoMatrixRow all = AllRow({1});
  all.SetType(kInvalid, 2);
  EXPECT_FALSE(all.IsValid());
}

TEST(MatrixRow, AValueEffectListRowWithFirstValueMissingAndEffectIndexMinusTenIsValid) {
  TavoMatrixRow row(kValueEffectList, 2);
  ASSERT_TRUE(row.AddEffect(-10, {1}));
  EXPECT_TRUE(row.IsValid());
  TavoMatrixRow other(kValueEffectList, 2);
  other.AddEffect(0, {1});
  EXPECT_FALSE(other.IsValid()) << "another first effect needs a first value";
}

// ---- tests ----

TEST(CustomTest, EachRowAddedPutsAZeroIntoK) {
  OrvCustomTest test;
  EXPECT_TRUE(test.AddRow(EffectRow()));
  EXPECT_TRUE(test.AddRow(EffectRow()));
  EXPECT_EQ(test.K(), (Values{0, 0}));
  EXPECT_FALSE(test.IsKSet());
  EXPECT_EQ(test.RowCount(), 2);
  EXPECT_EQ(test.Row(1)->ValueCount(), 2);
  EXPECT_EQ(test.Row(2), nullptr);
  EXPECT_EQ(test.Row(-1), nullptr);
  EXPECT_TRUE(test.IsValid());
}

TEST(CustomTest, RefusesInvalidRowsAndRowsAfterK) {
  OrvCustomTest test;
  EXPECT_FALSE(test.AddRow(TavoMatrixRow()));
  EXPECT_EQ(test.RowCount(), 0);
  ASSERT_TRUE(test.AddRow(EffectRow()));
  ASSERT_TRUE(test.SetK({0.5}));
  EXPECT_TRUE(test.IsKSet());
  EXPECT_FALSE(test.AddRow(EffectRow()));
  EXPECT_EQ(test.K(), (Values{0.5}));
}

TEST(CustomTest, TakesKOfTheRightLengthOrWithoutRowsAny) {
  OrvCustomTest test;
  EXPECT_TRUE(test.SetK({3})) << "the intercept against 3";
  EXPECT_FALSE(test.IsValid()) << "no rows";
  test.Clear();
  EXPECT_FALSE(test.IsKSet());
  EXPECT_TRUE(test.K().empty());
  ASSERT_TRUE(test.AddRow(EffectRow()));
  EXPECT_FALSE(test.SetK({1, 2}));
  EXPECT_EQ(test.K(), (Values{0}));
  EXPECT_FALSE(test.IsKSet());
}

TEST(CustomTest, IsValidWhenRowsOfOneKindAgree) {
  const auto isValid = [](const std::vector<TavoMatrixRow>& rows) {
    OrvCustomTest test;
    for (const TavoMatrixRow& row : rows)
      test.AddRow(row);
    return test.IsValid();
  };
  EXPECT_TRUE(isValid({AllRow({1, 2}), AllRow({3, 4})}));
  EXPECT_FALSE(isValid({AllRow({1, 2}), AllRow({3})}));
  EXPECT_FALSE(isValid({EffectRow(2), EffectRow(3)}));
  EXPECT_FALSE(isValid({EffectRow(2), AllRow({1}), EffectRow(3)}));
  EXPECT_TRUE(isValid({EffectRow(2), AllRow({1}), EffectRow(2)}))
      << "mixing kinds is for the model to refuse";
}

TEST(CustomTest, ClearDropsRowsAndK) {
  OrvCustomTest test;
  test.AddRow(EffectRow());
  test.SetK({1});
  test.Clear();
  EXPECT_EQ(test.RowCount(), 0);
  EXPECT_TRUE(test.K().empty());
  EXPECT_TRUE(test.AddRow(EffectRow()));
}

}  // namespace
}  // namespace tavo
