#include "module/reporting/test_tables.h"

namespace tavo {

namespace {

using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;

const char* StatisticLabel(TestType type) {
  switch (type) {
    case TestType::WaldF:
      return "Wald F";
    case TestType::AdjustedWaldF:
      return "Adjusted Wald F";
    case TestType::WaldChiSquare:
      return "Wald Chi-Square";
    case TestType::AdjustedWaldChiSquare:
      return "Adjusted Wald Chi-Square";
  }
  return "";
}

/// Null when nothing is adjusted.
const char* AdjustedLabel(PAdjustMethod method) {
  switch (method) {
    case PAdjustMethod::LeastSignificanceDifference:
      return nullptr;
    case PAdjustMethod::Bonferroni:
      return "Bonferroni Sig.";
    case PAdjustMethod::SequentialBonferroni:
      return "Sequential Bonferroni Sig.";
    case PAdjustMethod::Sidak:
      return "Sidak Sig.";
    case PAdjustMethod::SequentialSidak:
      return "Sequential Sidak Sig.";
  }
  return nullptr;
}

// An F statistic has degrees of freedom of the design below those of the hypothesis, a chi-square only the
// latter.
bool HasTwoDegreesOfFreedom(TestType type) {
  return type == TestType::WaldF || type == TestType::AdjustedWaldF;
}

void Put(host::BpGroup& group, const char* label, double value, host::BpFormatSpec format) {
  group.Category(Key(label)).Cell(BpNumber{value, format});
}

}  // namespace

void FillTestColumns(const TavoValidSpecs& specs, host::BpGroup& statistics, const OrvTestStats& test,
                     bool noteCount) {
  if (HasTwoDegreesOfFreedom(specs.GetTestType())) {
    Put(statistics, "df1", test.df1, BpProcedure::GeneralStat());
    Put(statistics, "df2", test.df2, BpProcedure::GeneralStat());
  } else {
    Put(statistics, "degrees of freedom", test.df1, BpProcedure::GeneralStat());
  }
  Put(statistics, StatisticLabel(specs.GetTestType()), test.wald, BpProcedure::GeneralStat());
  Put(statistics, "Sig.", test.significance, BpProcedure::Significance());
  const char* adjusted = AdjustedLabel(specs.Adjustment());
  if (adjusted == nullptr) return;
  host::BpCategory& column = statistics.Category(Key(adjusted));
  column.Cell(BpNumber{test.adjustedSignificance, BpProcedure::Significance()});
  if (!noteCount) return;
  host::BpComposite note("Total number of contrasts used ^1");
  note.Add(BpNumber{static_cast<double>(test.contrastCount), BpProcedure::Count()});
  column.Note(note);
}

host::BpComposite ContrastLabel(int number) {
  host::BpComposite label("L^1");
  label.Add(BpNumber{static_cast<double>(number), BpProcedure::Count()});
  return label;
}

LogitDimensions::LogitDimensions(const TavoOutputFrame& frame, host::BpPivotTable& table, bool withColumns)
    : fFrame(frame) {
  if (frame.EquationCount() < 2) return;
  const auto add = [&](const char* key, BpPlace place) {
    host::BpComposite label(key);
    label.Add(frame.Dependent());
    host::BpDimension& dimension = table.Dimension(label);
    dimension.Position(place, 2, false, false);
    return &dimension;
  };
  fpRows = add("^1 row dimension", BpPlace::kRow);
  if (withColumns) fpColumns = add("^1 col dimension", BpPlace::kColumn);
}

void LogitDimensions::SelectRow(int equation) {
  if (fpRows != nullptr) fpRows->Category(fFrame.DependentValue(equation));
}

void LogitDimensions::SelectColumn(int equation) {
  if (fpColumns != nullptr) fpColumns->Category(fFrame.DependentValue(equation));
}

}  // namespace tavo
