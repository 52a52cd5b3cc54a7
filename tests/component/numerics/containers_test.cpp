#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <utility>

#include "component/numerics/machine_constants.h"
#include "component/numerics/missing_value.h"
#include "component/numerics/record.h"
#include "component/numerics/rect_matrix.h"
#include "dense_reference.h"

namespace {

using MCCommonMath::IsMissing;
using MCCommonMath::MCBitSet;
using MCCommonMath::MCMV;
using MCCommonMath::MCPower;
using MCCommonMath::MCRectMatrix;
using MCCommonMath::MCSymMatrix;
using MCCommonMath::MCSymMatrixData;

constexpr int kTooLarge = std::numeric_limits<int>::max();  // a packed triangle of 2^64 bytes

TEST(MissingValue, IsTheMostNegativeFiniteDoubleAndComparedExactly) {
  EXPECT_EQ(MCMV::gMissingValue, -DBL_MAX);
  EXPECT_TRUE(IsMissing(-DBL_MAX));
  EXPECT_FALSE(IsMissing(std::nextafter(-DBL_MAX, 0.0)));
  EXPECT_FALSE(IsMissing(std::nan("")));
}

TEST(MachineConstants, AreTheLogarithmsOfTheRange) {
  EXPECT_EQ(MCPower::gMachineEpsilon, DBL_EPSILON);
  EXPECT_EQ(MCPower::gMachineMaxExp, std::log(DBL_MAX));
  EXPECT_EQ(MCPower::gMachineMinExp, std::log(DBL_MIN));
}

TEST(MachineConstants, BoundTheRangeInWhichExpIsFiniteAndNormal) {
  EXPECT_TRUE(std::isnormal(std::exp(MCPower::gMachineMaxExp)));
  EXPECT_TRUE(std::isinf(std::exp(std::nextafter(MCPower::gMachineMaxExp, 1e3))));
  EXPECT_TRUE(std::isnormal(std::exp(MCPower::gMachineMinExp)));
  EXPECT_LT(std::exp(MCPower::gMachineMinExp - 1e-9), DBL_MIN);
}

TEST(Record, HasFixedLengthAndStartsAtZero) {
  MCCommon::Record record(3);
  ASSERT_EQ(record.Size(), 3);
  EXPECT_EQ(record[2], 0.0);
  record[1] = 4.5;
  record.GetAll()[2] = -1.0;
  const MCCommon::Record copy = record;
  record[1] = 0.0;
  EXPECT_EQ(copy.GetAll()[1], 4.5);
  EXPECT_EQ(copy[2], -1.0);
  EXPECT_EQ(MCCommon::Record(-1).Size(), 0);
}

TEST(BitSet, StartsClearAndCountsWhatIsSet) {
  MCBitSet bits(130);
  EXPECT_EQ(bits.Size(), 130);
  EXPECT_EQ(bits.InSet(), 0);
  EXPECT_TRUE(bits.Set(0, true));
  EXPECT_TRUE(bits.Set(63, true));
  EXPECT_TRUE(bits.Set(64, true));
  EXPECT_TRUE(bits.Set(129, true));
  EXPECT_EQ(bits.InSet(), 4);
  EXPECT_TRUE(bits.IsIn(64));
  EXPECT_TRUE(bits.Set(64, false));
  EXPECT_FALSE(bits.IsIn(64));
  EXPECT_EQ(bits.InRange(0, 63), 2);
  EXPECT_EQ(bits.InRange(63, 63), 1);
  EXPECT_EQ(bits.InRange(-5, 1000), 3);
  EXPECT_EQ(bits.InRange(5, 4), 0);
}

TEST(BitSet, ListsItsMembersInOrder) {
  MCBitSet bits(130);
  for (const int i : {129, 0, 64, 63}) {
    bits.Set(i, true);
  }
  EXPECT_EQ(bits.Members(), (std::vector<int>{0, 63, 64, 129}));
  bits.Clear();
  EXPECT_TRUE(bits.Members().empty());
}

TEST(BitSet, RefusesIndicesOutside) {
  MCBitSet bits(4);
  EXPECT_FALSE(bits.Set(4, true));
  EXPECT_FALSE(bits.Set(-1, true));
  EXPECT_FALSE(bits.SetRange(2, 4, true));
  EXPECT_FALSE(bits.SetRange(-1, 2, true));
  EXPECT_FALSE(bits.IsIn(4));
  EXPECT_FALSE(bits.IsIn(-1));
  EXPECT_EQ(bits.InSet(), 0);
}

TEST(BitSet, ResizeFillsAndClearKeepsTheSize) {
  MCBitSet bits;
  bits.Resize(70, true);
  EXPECT_EQ(bits.InSet(), 70);
  EXPECT_TRUE(bits.SetRange(10, 69, false));
  EXPECT_EQ(bits.InSet(), 10);
  bits.Clear();
  EXPECT_EQ(bits.Size(), 70);
  EXPECT_EQ(bits.InSet(), 0);
  EXPECT_EQ(bits, MCBitSet(70));
  EXPECT_NE(bits, MCBitSet(71));
  bits.Resize(-3, true);
  EXPECT_EQ(bits.Size(), 0);
}

TEST(SymMatrixData, StoresTheLowerTriangleByRows) {
  MCSymMatrix a(3);
  EXPECT_TRUE(a.SetElem(0, 2, 7.0));
  EXPECT_TRUE(a.SetElem(1, 1, 5.0));
  const std::vector<double> expected{0, 0, 5, 7, 0, 0};
  EXPECT_EQ(a.AsVectorConst(), expected);
  EXPECT_EQ(a.GetElem(2, 0), 7.0);
  EXPECT_EQ(a.GetElem(0, 2), 7.0);
  EXPECT_FALSE(a.SetElem(3, 0, 1.0));
  EXPECT_TRUE(IsMissing(a.GetElem(0, 3)));
  std::vector<double> diagonal;
  a.GetDiagonal(diagonal);
  EXPECT_EQ(diagonal, (std::vector<double>{0, 5, 0}));
  a.Clear();
  EXPECT_EQ(a.GetNRows(), 3);
  EXPECT_EQ(a.AsVectorConst(), std::vector<double>(6, 0.0));
}

TEST(SymMatrixData, AddressesBlocksByFourIndices) {
  MCSymMatrix a(4);
  a.SetElem(2, 1, 9.0);  // block (1, 0), element (0, 1)
  EXPECT_FALSE(a.SetNBlocks(3));
  EXPECT_FALSE(a.SetNBlocks(0));
  ASSERT_TRUE(a.SetNBlocks(2));
  EXPECT_EQ(a.GetElem(1, 0, 0, 1), 9.0);
  EXPECT_EQ(a.GetElem(0, 1, 1, 0), 9.0);
  EXPECT_EQ(a.GetElem(1, 0, 1, 0), 0.0);
  EXPECT_TRUE(IsMissing(a.GetElem(2, 0, 0, 0)));
  EXPECT_TRUE(IsMissing(a.GetElem(0, 0, 0, 2)));
}

TEST(SymMatrixData, ResizeKeepsWhatFitsAndZeroReleases) {
  MCSymMatrix a = Packed(RandomCovariance(4, 6, 1));
  const MCSymMatrix before = a;
  ASSERT_TRUE(a.Resize(6));
  EXPECT_EQ(a.GetElem(3, 2), before.GetElem(3, 2));
  EXPECT_EQ(a.GetElem(5, 3), 0.0);
  ASSERT_TRUE(a.Resize(2));
  EXPECT_EQ(a.GetElem(1, 0), before.GetElem(1, 0));
  ASSERT_TRUE(a.Resize(0));
  EXPECT_EQ(a.AsVectorConst().capacity(), 0U);
  ASSERT_TRUE(a.SetNRows(2));
  EXPECT_EQ(a.AsVectorConst(), std::vector<double>(3, 0.0));
}

TEST(SymMatrixData, AFailedAllocationLeavesTheMatrixInvalid) {
  MCSymMatrix a(kTooLarge);
  EXPECT_FALSE(a.IsValidMatrix());
  EXPECT_EQ(a.GetNRows(), 0);
  EXPECT_FALSE(a.Resize(kTooLarge));
  EXPECT_FALSE(a.SetNRows(-1));
  const MCSymMatrix copy = a;
  EXPECT_FALSE(copy.IsValidMatrix());
  EXPECT_TRUE(a.SetNRows(2));
  EXPECT_TRUE(a.IsValidMatrix());
}

TEST(SymMatrixData, CopiesAreDeepAndMovesEmptyTheSource) {
  MCSymMatrix a(2);
  a.SetElem(1, 0, 3.0);
  a.SetNBlocks(2);
  MCSymMatrixData copy;
  copy = a;
  const MCSymMatrix fromData(copy);
  a.SetElem(1, 0, 4.0);
  EXPECT_EQ(copy.GetElem(1, 0), 3.0);
  EXPECT_EQ(fromData.GetElem(0, 1), 3.0);
  EXPECT_EQ(fromData.GetNBlocks(), 2);
  const MCSymMatrix moved = std::move(a);
  EXPECT_EQ(moved.GetElem(1, 0), 4.0);
  // NOLINTBEGIN(bugprone-use-after-move,clang-analyzer-cplusplus.Move): what is left behind is a contract
  EXPECT_EQ(a.GetNRows(), 0);
  EXPECT_TRUE(a.AsVectorConst().empty());
  // NOLINTEND(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
}

MCRectMatrix TwoByThree() {
  MCRectMatrix r(2, 3);
  for (int i = 0; i < 2; ++i) {
    for (int j = 0; j < 3; ++j) {
      r.SetElem(i, j, 10.0 * i + j);
    }
  }
  return r;
}

TEST(RectMatrix, StoresByRowsAndStartsAtZero) {
  EXPECT_EQ(TwoByThree().AsVectorConst(), (std::vector<double>{0, 1, 2, 10, 11, 12}));
  MCRectMatrix r = TwoByThree();
  std::vector<double> row;
  EXPECT_TRUE(r.GetRow(1, row));
  EXPECT_EQ(row, (std::vector<double>{10, 11, 12}));
  EXPECT_FALSE(r.GetRow(2, row));
  EXPECT_TRUE(row.empty());
  EXPECT_FALSE(r.SetElem(2, 0, 1.0));
  EXPECT_TRUE(IsMissing(r.GetElem(0, 3)));
  EXPECT_TRUE(r.SetNRowsCols(1, 2));
  EXPECT_EQ(r.AsVectorConst(), std::vector<double>(2, 0.0));
}

TEST(RectMatrix, TransposesInPlace) {
  MCRectMatrix r = TwoByThree();
  const MCRectMatrix before = r;
  ASSERT_TRUE(r.Transpose());
  EXPECT_EQ(r.GetNRows(), 3);
  EXPECT_EQ(r.AsVectorConst(), (std::vector<double>{0, 10, 1, 11, 2, 12}));
  ASSERT_TRUE(r.Transpose());
  EXPECT_EQ(r.AsVectorConst(), before.AsVectorConst());
}

TEST(RectMatrix, MultipliesAVectorAndDotsARowWithAColumn) {
  const MCRectMatrix r = TwoByThree();
  std::vector<double> product{1.0, -1.0, 2.0};
  EXPECT_TRUE(r.ComputeRV(product, product));  // 0 - 1 + 4, 10 - 11 + 24
  EXPECT_EQ(product, (std::vector<double>{3, 23}));
  EXPECT_FALSE(r.ComputeRV({1.0}, product));
  EXPECT_TRUE(product.empty());
  MCRectMatrix turned = r;
  turned.Transpose();
  EXPECT_EQ(r.DotProductRowCol(1, turned, 0), 11.0 + 24.0);
  EXPECT_TRUE(IsMissing(r.DotProductRowCol(1, r, 0)));
  EXPECT_TRUE(IsMissing(r.DotProductRowCol(2, turned, 0)));
}

TEST(RectMatrix, TellsAZeroRow) {
  MCRectMatrix r(2, 3);
  r.SetElem(1, 2, 1e-300);
  EXPECT_TRUE(r.IsRowZero(0));
  EXPECT_FALSE(r.IsRowZero(1));
  EXPECT_FALSE(r.IsRowZero(2));
}

TEST(RectMatrix, AFailedAllocationLeavesTheMatrixInvalid) {
  MCRectMatrix r(kTooLarge, kTooLarge);
  EXPECT_FALSE(r.IsValidMatrix());
  EXPECT_EQ(r.GetNRows(), 0);
  EXPECT_FALSE(r.SetNRowsCols(-1, 2));
  const MCRectMatrix moved = std::move(r);
  EXPECT_FALSE(moved.IsValidMatrix());
}

}  // namespace
