// A plan against the data that it is meant for: what would stop a run, and what would bias its results.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "module/command/plan/plan_data.h"
#include "standalone/data/table.h"

namespace standalone {

/// What speaks against running a plan on data, or against the plan file.
struct PlanFinding {
  bool stopsRun = false;  // otherwise the run goes on with results that may be wrong
  std::string text;
  std::vector<std::string> examples;  // the first ones
  std::size_t more = 0;               // examples that are left out
  bool breaksFormat = false;          // a run passes over it

  /// True when there is room for one more example; otherwise it is counted.
  bool TakesExample() {
    constexpr std::size_t kMostExamples = 20;
    if (examples.size() < kMostExamples) return true;
    ++more;
    return false;
  }
};

/// What the data have of a stage.
struct StageCounts {
  int number = 0;
  std::string label;
  tavo::PlanMethod method = tavo::PlanMethod::NO_VALUE;
  std::size_t strata = 0;
  std::size_t units = 0;
  std::size_t fewestUnits = 0;  // of a stratum
  std::size_t mostUnits = 0;
  std::size_t singleUnitStrata = 0;
};

/// What came of checking a plan: counts of the cases by what keeps them out of the sample, and findings.
struct PlanCheck {
  bool dataRead = false;  // false when the plan doesn't fit the dictionary: then there are no counts
  std::size_t cases = 0;
  std::size_t weightMissing = 0;
  std::size_t weightZero = 0;
  std::size_t weightNegative = 0;
  std::size_t designMissing = 0;  // weight sound, but a stratum or cluster is missing
  std::vector<StageCounts> stages;
  std::vector<PlanFinding> findings;

  std::size_t CasesInSample() const {
    return cases - weightMissing - weightZero - weightNegative - designMissing;
  }
};

/// Checks an analysis plan that the reader has accepted. Goes over the cases once; cases that a run would
/// leave out for the plan's sake (no positive weight, no stratum or cluster) count as not in the sample.
PlanCheck CheckPlan(const tavo::OrvPlanData& plan, Table& table);

}  // namespace standalone
