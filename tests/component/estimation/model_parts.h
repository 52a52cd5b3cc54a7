// The parts of a model made one from the other, without a model.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "component/estimation/design_columns.h"
#include "component/estimation/parameter_list.h"
#include "component/estimation/redundancy.h"
#include "component/estimation/response_categories.h"
#include "design_bench.h"

namespace tavo_test {

/// Over a bench with its effects and cases.
class ModelParts {
 public:
  explicit ModelParts(DesignBench& design) : bench(design) {
    bench.FillTables();
    EXPECT_FALSE(
        response.Set(bench.tables->DependentCounts(), bench.settings.DependentReference()).IsError());
    bench.tables->AssignParameters();
    parameters = tavo::OrvParameterList(bench.settings.Effects(), bench.settings.HasIntercept(), response,
                                        *bench.tables, bench.cancel);
    columns = tavo::OrvDesignColumns(parameters, bench.settings.Effects(), bench.settings.Covariates(),
                                     bench.patternExtractor, bench.dataExtractor);
  }
  void FindRedundancies() {
    redundancy = tavo::OrvRedundancy(parameters.BasicCount());
    for (const MCCommon::Record& record : bench.records) {
      const std::vector<double> row = bench.PatternRow(record);
      std::vector<double> values;
      for (std::size_t e = 0; e < static_cast<std::size_t>(parameters.EffectCount()); ++e)
        values.push_back(columns.Value(row.data(), e, tavo::RowKind::kPattern));
      EXPECT_TRUE(redundancy.AddRow(bench.ParametersOf(record), values, row.back()));
    }
    redundancy.Find(bench.settings.Tolerance(), bench.cancel);
  }

  DesignBench& bench;
  tavo::OrvResponseCategories response;
  tavo::OrvParameterList parameters;
  tavo::OrvDesignColumns columns;
  tavo::OrvRedundancy redundancy;
};

}  // namespace tavo_test
