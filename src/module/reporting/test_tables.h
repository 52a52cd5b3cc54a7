// The tables of hypothesis tests, contrasts and odds ratios. The tests run here, when they are printed.
#pragma once

#include "component/inference/test_stats.h"
#include "module/reporting/table_frame.h"

namespace tavo {

/// Tests of all model effects; with LMATRIX also the contrast coefficients of each, under a heading of their
/// own.
void OutputEffectTests(const TavoOutputFrame& frame);
void OutputGeneralEstimableFunction(const TavoOutputFrame& frame);
/// Each custom test under a heading of its own. A test that fails says why and shows its empty contrast
/// table.
void OutputCustomTests(const TavoOutputFrame& frame);
/// One table for each request.
void OutputOddsRatios(const TavoOutputFrame& frame);

/// Writes the columns of a test into the current row: degrees of freedom, statistic, significance and, unless
/// nothing is adjusted, the adjusted significance. Which they are is the command's choice, also for a test
/// that was not done. `noteCount`: the adjusted column says how many contrasts were counted.
void FillTestColumns(const TavoValidSpecs& specs, host::BpGroup& statistics, const OrvTestStats& test,
                     bool noteCount);

/// "L" and a number from 1.
host::BpComposite ContrastLabel(int number);

/// Two dimensions of logits around a table of contrasts, present with more than two response categories.
class LogitDimensions {
 public:
  /// `withColumns`: contrasts belong to a logit too.
  LogitDimensions(const TavoOutputFrame& frame, host::BpPivotTable& table, bool withColumns);
  void SelectRow(int equation);
  void SelectColumn(int equation);

 private:
  const TavoOutputFrame& fFrame;
  host::BpDimension* fpRows = nullptr;
  host::BpDimension* fpColumns = nullptr;
};

}  // namespace tavo
