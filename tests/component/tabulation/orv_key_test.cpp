#include "component/tabulation/orv_key.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavo {
namespace {

TEST(OrvKey, HashIsTheExclusiveOrOfValuesTimesOddPrimes) {
  EXPECT_EQ(OrvKey(std::vector<std::int32_t>{2, 4, 1}).Hash(), (2u * 3u) ^ (4u * 5u) ^ (1u * 7u));
  std::vector<std::int32_t> longKey(50, 0);
  longKey[48] = 1;
  longKey[49] = 10;  // the primes start again
  EXPECT_EQ(OrvKey(longKey).Hash(), 229u ^ 30u);
}

TEST(OrvKey, AnEmptyKeyHasHashZero) {
  OrvKey key(0);
  key.ComputeHash();
  EXPECT_EQ(key.Hash(), 0u);
  EXPECT_EQ(key, OrvKey());
}

TEST(OrvKey, HashWrapsAround) {
  const std::int32_t large = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(OrvKey(std::vector<std::int32_t>{large}).Hash(), 2147483645u);  // 3 * (2^31 - 1) modulo 2^32
}

TEST(OrvKey, TheShorterKeyIsLessThenTheFirstUnequalValueDecides) {
  const OrvKey shorter(std::vector<std::int32_t>{9});
  const OrvKey low(std::vector<std::int32_t>{1, -5});
  const OrvKey high(std::vector<std::int32_t>{1, 3});
  EXPECT_TRUE(shorter < low);
  EXPECT_FALSE(low < shorter);
  EXPECT_TRUE(low < high);
  EXPECT_FALSE(high < low);
  EXPECT_FALSE(low < low);
}

TEST(OrvKey, SharedPrefixCountsLeadingEqualValues) {
  const OrvKey a(std::vector<std::int32_t>{1, 2, 3});
  EXPECT_EQ(SharedPrefix(a, OrvKey(std::vector<std::int32_t>{1, 2, 4})), 2);
  EXPECT_EQ(SharedPrefix(a, OrvKey(std::vector<std::int32_t>{2, 2, 3})), 0);
  EXPECT_EQ(SharedPrefix(a, a), 3);
  EXPECT_EQ(SharedPrefix(OrvKey(), OrvKey()), 0);
}

TEST(OrvKeyTable, GrowsToTwiceItsBucketsPlusOne) {
  OrvKeyTable<int> table;
  for (int i = 1; i <= 66; ++i)
    ASSERT_NE(table.Insert(OrvKey(std::vector<std::int32_t>{i})), nullptr);
  EXPECT_EQ(table.BucketCount(), 89);
  table.Insert(OrvKey(std::vector<std::int32_t>{67}));
  EXPECT_EQ(table.BucketCount(), 179);
  for (int i = 68; i <= 134; ++i)
    table.Insert(OrvKey(std::vector<std::int32_t>{i}));
  EXPECT_EQ(table.BucketCount(), 179);
  table.Insert(OrvKey(std::vector<std::int32_t>{135}));
  EXPECT_EQ(table.BucketCount(), 359);
}

TEST(OrvKeyTable, FindsEveryKeyAfterGrowingAndKeepsItsNodes) {
  OrvKeyTable<int> table;
  std::vector<OrvKeyTable<int>::Node*> nodes;
  for (int i = 0; i < 1000; ++i) {
    // Products near 2^31 wrap around; some hashes collide.
    nodes.push_back(table.Insert(OrvKey(std::vector<std::int32_t>{1 + i % 30, 715827883 - i / 30})));
    ASSERT_NE(nodes.back(), nullptr);
    nodes.back()->payload = i;
  }
  EXPECT_EQ(table.Size(), 1000);
  for (int i = 0; i < 1000; ++i) {
    auto* const found = table.Find(OrvKey(std::vector<std::int32_t>{1 + i % 30, 715827883 - i / 30}));
    ASSERT_EQ(found, nodes[static_cast<std::size_t>(i)]);
    EXPECT_EQ(found->payload, i);
    EXPECT_EQ(&table.Nodes()[static_cast<std::size_t>(i)], found);
  }
}

TEST(OrvKeyTable, RefusesAKeyThatIsThere) {
  OrvKeyTable<int> table;
  const OrvKey key(std::vector<std::int32_t>{3, 4});
  table.Insert(key)->payload = 5;
  EXPECT_EQ(table.Insert(key), nullptr);
  EXPECT_EQ(table.Size(), 1);
  EXPECT_EQ(table.Find(key)->payload, 5);
  EXPECT_EQ(table.Find(OrvKey(std::vector<std::int32_t>{4, 3})), nullptr);
}

}  // namespace
}  // namespace tavo
