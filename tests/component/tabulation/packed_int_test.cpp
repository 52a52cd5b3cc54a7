#include "component/tabulation/packed_int.h"

#include <gtest/gtest.h>

namespace tavo {
namespace {

void ExpectRoundTrip(const OrvPackedInt& packer, const std::vector<int>& values) {
  std::vector<int> units;
  std::vector<int> unpacked;
  ASSERT_TRUE(packer.Pack(values, units, true));
  EXPECT_EQ(static_cast<int>(units.size()), packer.UnitCount());
  ASSERT_TRUE(packer.Unpack(unpacked, units));
  EXPECT_EQ(unpacked, values);
}

TEST(OrvPackedInt, CountsTwoThreeFourPackIntoOneUnit) {
  OrvPackedInt packer;
  ASSERT_TRUE(packer.SetBounds(3, 0, {2, 3, 4}));
  EXPECT_EQ(packer.UnitCount(), 1);
  std::vector<int> units;
  ASSERT_TRUE(packer.Pack({1, 2, 3}, units, true));
  EXPECT_EQ(units, (std::vector<int>{1 + 2 * 2 + 3 * 6}));
  ExpectRoundTrip(packer, {1, 2, 3});
}

TEST(OrvPackedInt, AProductOfExactlyTheLimitStaysInOneUnit) {
  ASSERT_EQ(1663 * 5639, OrvPackedInt::UnitLimit());
  OrvPackedInt packer;
  for (const std::vector<int>& counts : {std::vector<int>{1663, 5639, 1}, std::vector<int>{5639, 1, 1663}}) {
    ASSERT_TRUE(packer.SetBounds(3, 0, counts));
    EXPECT_EQ(packer.UnitCount(), 1);
    ExpectRoundTrip(packer, {counts[0] - 1, counts[1] - 1, counts[2] - 1});
  }
  ASSERT_TRUE(packer.SetBounds(3, 0, {1663, 5639, 2}));
  EXPECT_EQ(packer.UnitCount(), 2);
  ExpectRoundTrip(packer, {1662, 5638, 1});
  ASSERT_TRUE(packer.SetBounds(2, 0, {OrvPackedInt::UnitLimit(), 2}));
  EXPECT_EQ(packer.UnitCount(), 2);
  ExpectRoundTrip(packer, {OrvPackedInt::UnitLimit() - 1, 1});
}

TEST(OrvPackedInt, CountsOfOnePackIntoOneUnitHoldingZero) {
  OrvPackedInt packer;
  ASSERT_TRUE(packer.SetBounds(4, 0, {1, 1, 1, 1}));
  std::vector<int> units;
  ASSERT_TRUE(packer.Pack({0, 0, 0, 0}, units, true));
  EXPECT_EQ(units, (std::vector<int>{0}));
  ExpectRoundTrip(packer, {0, 0, 0, 0});
}

TEST(OrvPackedInt, WithoutCheckAValueOutOfRangeGivesAWrongKeySilently) {
  OrvPackedInt packer;
  ASSERT_TRUE(packer.SetBounds(2, 0, {2, 3}));
  std::vector<int> wrong;
  std::vector<int> right;
  EXPECT_FALSE(packer.Pack({2, 0}, wrong, true));
  EXPECT_TRUE(packer.Pack({2, 0}, wrong, false));
  EXPECT_TRUE(packer.Pack({0, 1}, right, true));
  EXPECT_EQ(wrong, right);
}

TEST(OrvPackedInt, ACountAboveTheLimitTakesAUnitOfItsOwn) {
  OrvPackedInt packer;
  ASSERT_TRUE(packer.SetBounds(3, 0, {10, 2000000000, 10}));
  EXPECT_EQ(packer.UnitCount(), 3);
  ExpectRoundTrip(packer, {9, 1999999999, 9});
}

TEST(OrvPackedInt, ManyValuesSpreadOverUnitsAndComeBack) {
  const std::vector<int> counts = {300, 300, 100, 7, 1, 5000, 5000, 2};
  OrvPackedInt packer;
  ASSERT_TRUE(packer.SetBounds(8, 0, counts));
  EXPECT_EQ(packer.UnitCount(), 3);  // 300 * 300 * 100, 7 * 1 * 5000, 5000 * 2
  for (const std::vector<int>& values :
       {std::vector<int>{299, 299, 99, 6, 0, 4999, 4999, 1}, std::vector<int>{0, 0, 0, 0, 0, 0, 0, 0},
        std::vector<int>{17, 0, 31, 2, 0, 4000, 1, 1}}) {
    ExpectRoundTrip(packer, values);
  }
}

TEST(OrvPackedInt, ALowerBoundIsSubtracted) {
  OrvPackedInt packer;
  ASSERT_TRUE(packer.SetBounds(2, 5, {3, 3}));
  std::vector<int> units;
  ASSERT_TRUE(packer.Pack({5, 7}, units, true));
  EXPECT_EQ(units, (std::vector<int>{6}));
  EXPECT_FALSE(packer.Pack({4, 7}, units, true));
  EXPECT_FALSE(packer.Pack({8, 7}, units, true));
  ExpectRoundTrip(packer, {6, 6});
}

TEST(OrvPackedInt, ImpossibleBoundsLeaveAnEmptyLayout) {
  OrvPackedInt packer;
  packer.SetBounds(2, 0, {2, 3});
  EXPECT_FALSE(packer.SetBounds(0, 0, {2, 3}));
  EXPECT_EQ(packer.Size(), 0);
  EXPECT_FALSE(packer.SetBounds(3, 0, {2, 3}));
  EXPECT_FALSE(packer.SetBounds(2, 0, {2, 0}));
  EXPECT_EQ(packer.UnitCount(), 0);
  EXPECT_EQ(packer.CountOf(0), -1);
}

TEST(OrvPackedInt, TooFewValuesOrUnitsAreRefused) {
  OrvPackedInt packer;
  packer.SetBounds(2, 0, {2, 3});
  std::vector<int> units;
  std::vector<int> values;
  EXPECT_FALSE(packer.Pack({1}, units, true));
  EXPECT_FALSE(packer.Unpack(values, {}));
  EXPECT_EQ(packer.CountOf(1), 3);
  EXPECT_EQ(packer.CountOf(2), -1);
}

}  // namespace
}  // namespace tavo
