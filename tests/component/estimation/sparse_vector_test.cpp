#include <gtest/gtest.h>

#include "component/estimation/sparse_vector.h"
#include "component/numerics/missing_value.h"

namespace {

using MCCommonMath::MCMV;
using MCCommonMath::MCSymMatrix;
using tavo::OrvSparseVector;

using Indices = std::vector<int>;
using Values = std::vector<double>;

TEST(SparseVector, IsValidOnlyWithAscendingIndicesFromZeroAndEqualLengths) {
  const struct {
    Indices indices;
    Values values;
    bool isValid;
  } cases[] = {{{0}, {1.0}, true},     {{0, 3, 7}, {1, 2, 3}, true}, {{}, {}, false},
               {{0, 1}, {1.0}, false}, {{-1, 1}, {1, 2}, false},     {{1, 1}, {1, 2}, false},
               {{2, 1}, {1, 2}, false}};
  for (const auto& c : cases)
    EXPECT_EQ(OrvSparseVector(c.indices, c.values).IsValid(), c.isValid);
}

TEST(SparseVector, SizeIsTheLastIndexPlusOne) {
  const Indices indices{1, 4};
  const Values values{2, 3};
  EXPECT_EQ(OrvSparseVector(indices, values).MaxIndexPlusOne(), 5);
}

TEST(SparseVector, LinearPredictorUsesTheBlockAtTheOffset) {
  const Indices indices{0, 2};
  const Values values{2, -1};
  const OrvSparseVector row(indices, values);
  EXPECT_EQ(row.LinearPredictor({1, 2, 3, 10, 20, 30}, 0), -1);
  EXPECT_EQ(row.LinearPredictor({1, 2, 3, 10, 20, 30}, 3), -10);
}

TEST(SparseVector, ANegativeOffsetOrAShortVectorIsMissingAndAddsNothing) {
  const Indices indices{0, 2};
  const Values values{2, -1};
  const OrvSparseVector row(indices, values);
  Values dense{1, 2, 3};
  for (const int offset : {-1, 1}) {
    EXPECT_EQ(row.LinearPredictor(dense, offset), MCMV::gMissingValue);
    EXPECT_FALSE(row.AddScaledTo(dense, offset, 1));
    EXPECT_EQ(dense, (Values{1, 2, 3}));
  }
}

TEST(SparseVector, ScaledValuesAreAddedAtTheirIndices) {
  const Indices indices{0, 2};
  const Values values{2, -1};
  Values dense{1, 1, 1, 1};
  ASSERT_TRUE(OrvSparseVector(indices, values).AddScaledTo(dense, 1, 10));
  EXPECT_EQ(dense, (Values{1, 21, 1, -9}));
}

TEST(SparseVector, OuterProductIsTheSameForGapsAndForADenseRow) {
  for (const Indices& indices : {Indices{0, 1, 2}, Indices{0, 2, 4}}) {
    const Values values{1, -2, 3};
    MCSymMatrix block(5);
    const OrvSparseVector row(indices, values);
    ASSERT_TRUE(row.AddOuterTo(block, 0.5));
    ASSERT_TRUE(row.AddOuterTo(block, 0.5));
    Values dense(5, 0.0);
    for (std::size_t e = 0; e < 3; ++e)
      dense[static_cast<std::size_t>(indices[e])] = values[e];
    for (int i = 0; i < 5; ++i) {
      for (int j = 0; j < 5; ++j) {
        EXPECT_EQ(block.GetElem(i, j),
                  dense[static_cast<std::size_t>(i)] * dense[static_cast<std::size_t>(j)]);
      }
    }
  }
}

TEST(SparseVector, OuterProductEnlargesABlockThatIsTooSmall) {
  const Indices indices{0, 3};
  const Values values{1, 2};
  MCSymMatrix block(1);
  block.SetElem(0, 0, 5);
  ASSERT_TRUE(OrvSparseVector(indices, values).AddOuterTo(block, 1));
  EXPECT_EQ(block.GetNRows(), 4);
  EXPECT_EQ(block.GetElem(0, 0), 6);
  EXPECT_EQ(block.GetElem(3, 0), 2);
  EXPECT_EQ(block.GetElem(3, 3), 4);
}

TEST(SparseVector, ExpandingFillsMissingPlacesWithZero) {
  const Indices indices{1, 3};
  const Values values{7, 8};
  Values dense{9, 9, 9, 9, 9, 9};
  OrvSparseVector(indices, values).ExpandToDense(dense);
  EXPECT_EQ(dense, (Values{0, 7, 0, 8, 0, 0}));
  dense.clear();
  OrvSparseVector(indices, values).ExpandToDense(dense);
  EXPECT_EQ(dense, (Values{0, 7, 0, 8}));
}

}  // namespace
