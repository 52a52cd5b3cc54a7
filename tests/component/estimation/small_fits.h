// Small fits on which the optimizer shows how it ends.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "fit_bench.h"

namespace tavo_test {

/// A likelihood that a test bends.
class BentStats : public tavo::TavoAccumStats {
 public:
  using TavoAccumStats::TavoAccumStats;
  std::unique_ptr<tavo::TavoAccumStats> CloneEmpty() const override {
    return std::make_unique<BentStats>(fSettings, fNParameters, fNCategories, fEstimates);
  }
  void Reset(tavo::EstimationMethod method, bool check) override {
    tavo::TavoAccumStats::Reset(method, check);
    ++fNPasses;
    fLogLikelihood = fbTrialsAreWorse && fNPasses > 1 ? -1e6 : offset - fNPasses * drift;
  }
  int UpdateForRow(const std::vector<int>& indices, const std::vector<double>& values, int category,
                   double weight, bool likelihoodOnly) override {
    if (fbTrialsAreWorse && !likelihoodOnly && fNPasses > 1 && fNValidRows == 0) fLogLikelihood = offset;
    return tavo::TavoAccumStats::UpdateForRow(indices, values, category, weight, likelihoodOnly);
  }
  void MakeTrialsWorse() { fbTrialsAreWorse = true; }
  double offset = 0;
  double drift = 0;  // what the sum loses from pass to pass

 private:
  bool fbTrialsAreWorse = false;
  int fNPasses = 0;
};

/// x = 1 .. 8; categories change sides between 4 and 5, with the two middle cases swapped when `overlap`.
inline void AddOrdered(FitBench& bench, bool overlap) {
  bench.Effect({}, {0});
  for (int i = 1; i <= 8; ++i) {
    const bool isSecond = overlap ? (i > 5 || i == 4) : i > 4;
    bench.Case(isSecond ? 2 : 1, {}, {static_cast<double>(i)});
  }
}

/// Separated but for x = 4, where both categories occur.
inline void AddQuasiSeparated(FitBench& bench) {
  AddOrdered(bench, false);
  bench.Case(2, {}, {4});
}

/// Prepares and fits.
inline tavo::TavoOptimizer& FitAll(FitBench& bench) {
  EXPECT_TRUE(bench.PrepareModel());
  bench.PrepareFit();
  EXPECT_FALSE(bench.RunFit().IsError());
  return *bench.optimizer;
}

}  // namespace tavo_test
