// A whole run of the component over a small survey.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "component/run/component.h"
#include "component/run/output_stats.h"
#include "survey.h"

namespace tavo_test {

struct ComponentRun {
  ComponentRun(const SurveySettings& settings, const std::vector<Case>& cases)
      : iterator(RowsOf(cases)), component(settings.Get()), status(component.BuildModel(iterator)) {
    component.OutputStatistics(statistics);
  }

  const tavo::OrvParamStats& Parameter(std::size_t i) const { return statistics->ParamStats()[i]; }
  double Estimate(std::size_t i) const { return Parameter(i).estimate; }
  double StandardError(std::size_t i) const { return Parameter(i).standardError; }

  MemoryRecordIterator iterator;
  tavo::TavoComponent component;
  tavo::OrvStatus status;
  const tavo::TavoOutputStats* statistics = nullptr;  // null when the run failed
};

/// Main effects of two factors and two covariates, one of them crossed with a factor; strata and clusters.
inline SurveySettings FullModel(int categories = 2) {
  SurveySettings settings(categories);
  settings.Stage({kStratum}, {kCluster}).Factor(kA, 3).Factor(kB, 2).Covariate(kX).Covariate(kZ);
  settings.Effect({kA}).Effect({kB}).Effect({}, {kX}).Effect({kB}, {kZ});
  settings.Get().SetParamCriterion(1e-12);
  return settings;
}

/// All estimates, and all standard errors of non-redundant parameters, agree relative to the larger of their
/// size and 1e-3.
inline void ExpectSameResults(const ComponentRun& a, const ComponentRun& b, double tolerance,
                              bool withStandardErrors = true) {
  ASSERT_NE(a.statistics, nullptr);
  ASSERT_NE(b.statistics, nullptr);
  ASSERT_EQ(a.statistics->ParamStats().size(), b.statistics->ParamStats().size());
  const auto expectNear = [&](double x, double y, std::size_t i) {
    EXPECT_NEAR(x, y, tolerance * std::max(std::abs(y), 1e-3)) << "parameter " << i;
  };
  for (std::size_t i = 0; i < a.statistics->ParamStats().size(); ++i) {
    EXPECT_EQ(a.Parameter(i).redundant, b.Parameter(i).redundant) << i;
    expectNear(a.Estimate(i), b.Estimate(i), i);
    if (withStandardErrors && !b.Parameter(i).redundant)
      expectNear(a.StandardError(i), b.StandardError(i), i);
  }
}

}  // namespace tavo_test
