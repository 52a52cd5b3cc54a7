// What the user asks for with `tavoreg plan`.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "standalone/output/renderers.h"

namespace standalone {

/// One stage as the options describe it; empty texts and lists were not given.
struct PlanStageArguments {
  std::string label;
  std::vector<std::string> strata, clusters;
  std::string estimator;                // wr, equal_wor or unequal_wor
  std::string population, probability;  // a number, a variable or a file

  bool Empty() const;
};

/// `tavoreg plan create`.
struct PlanCreateArguments {
  std::vector<PlanStageArguments> stages;  // at least one
  std::string weight, srs, description;
  std::string output;  // empty: standard output
  bool overwrite = false;
};

/// `tavoreg plan show`.
struct PlanShowArguments {
  std::string plan;
  OutputFormat format = OutputFormat::kText;  // or JSON
};

/// `tavoreg plan check`.
struct PlanCheckArguments {
  std::string plan, data, schema;
  OutputFormat format = OutputFormat::kText;  // or JSON
};

using PlanArguments = std::variant<PlanCreateArguments, PlanShowArguments, PlanCheckArguments>;

/// What came of reading: a request, or an exit status when the parsing itself was the answer.
using PlanRequest = std::variant<PlanArguments, int>;

/// Reads the words behind `tavoreg plan`; help goes to standard output, mistakes to standard error.
PlanRequest ReadPlanArguments(const std::vector<std::string>& words);

}  // namespace standalone
