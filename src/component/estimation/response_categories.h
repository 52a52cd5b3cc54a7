// The categories of the response that are in use.
#pragma once

#include <cstddef>
#include <vector>

#include "component/frame/orv_status.h"
#include "component/tabulation/factor_tables.h"

namespace tavo {

/// The categories with weight, in the order in which the model numbers them: ascending by code, with the
/// reference moved to the end. That position is a category's local index, 0 .. K-1; K-1 is the reference, and
/// logit j compares category j with it. Codes are 1-based. Empty until `Set` succeeds.
class OrvResponseCategories {
 public:
  /// `counts` by category code - 1, null without a categorical response. `reference`: 0 the highest category
  /// in use, negative the lowest, otherwise that category. Errors leave the object empty:
  /// StatusCode::kOneDependentValue when fewer than two categories have weight. A warning,
  /// StatusCode::kReferenceNotInUse, when the category asked for isn't in use and the highest was taken.
  OrvStatus Set(const std::vector<OrvFactorCounts::CountPair>* counts, int reference);

  /// K; 0 while empty.
  int Count() const { return static_cast<int>(fCodes.size()); }
  int LogitCount() const { return fCodes.empty() ? 0 : Count() - 1; }
  /// By local index.
  const std::vector<int>& Codes() const { return fCodes; }
  const std::vector<double>& WeightedCounts() const { return fWeightedCounts; }
  const std::vector<double>& UnweightedCounts() const { return fUnweightedCounts; }
  /// By code - 1: the local index, -1 for a category that isn't in use.
  const std::vector<int>& LocalIndices() const { return fLocalIndices; }
  /// Of the category in a cell of a record, which holds a code within half; -1 when it isn't in use.
  int LocalIndexOf(double cell) const;
  /// Decides between categories (local indices, at least one) that are equally probable: the largest weighted
  /// count, then the largest unweighted count, then the smallest code. Counts are compared exactly. Shortens
  /// the list.
  int BreakTie(std::vector<int>& tied) const;

 private:
  std::vector<int> fCodes;
  std::vector<int> fLocalIndices;
  std::vector<double> fWeightedCounts;
  std::vector<double> fUnweightedCounts;
};

}  // namespace tavo
