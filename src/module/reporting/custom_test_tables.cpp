#include <algorithm>
#include <string>
#include <vector>

#include "module/reporting/status_messages.h"
#include "module/reporting/test_tables.h"

namespace tavo {

namespace {

using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;

/// One custom test with what came of it.
struct CustomResult {
  const OrvCustomTest& test;
  OrvStatus status;
  MCCommonMath::MCRectMatrix L;
  std::vector<OrvTestStats> rows;
  OrvTestStats overall;

  /// Its rows give the values of all parameters of all logits.
  bool IsAll() const { return test.RowCount() > 0 && test.Row(0)->Type() == MatrixRowType::kAll; }
  /// Contrasts belong to a logit.
  bool IsPerLogit(const TavoOutputFrame& frame) const { return !IsAll() && frame.EquationCount() > 1; }
  /// Contrasts of one logit, or of all when they don't belong to one.
  int ContrastCount(const TavoOutputFrame& frame) const {
    const int count = static_cast<int>(rows.size());
    return IsPerLogit(frame) ? count / frame.EquationCount() : count;
  }
};

host::BpComposite TestLabel(const char* key, int number) {
  host::BpComposite label(key);
  label.Add(BpNumber{static_cast<double>(number), BpProcedure::Count()});
  return label;
}

host::BpCellText HeadingText(int number, std::size_t count, const std::string& label) {
  if (count == 1) {
    if (label.empty()) return Key("Custom Hypothesis Tests");
    return host::BpComposite("Custom Hypothesis Tests ^1 label").Add(host::Plain(label));
  }
  if (label.empty()) return TestLabel("Custom Hypothesis Tests ^1", number);
  return TestLabel("Custom Hypothesis Tests ^1 ^2", number).Add(host::Plain(label));
}

/// Null for a status that has no message.
const char* FailureMessage(std::uint32_t code) {
  switch (code) {
    case StatusCode::kWrongLMatrixWidth:
      return "For ^1 no of values after ALL must be equal to no of parameters ^2";
    case StatusCode::kNoColumns:
      return "For ^1 matrix cannot be constructed because zero DF ^2";
    case StatusCode::kNotEstimable:
      return "For ^1 L matrix is not estimable ^2";
    case StatusCode::kWrongCoefficientCount:
      return "For ^1 number of values must be equal to number of parameters ^2";
    case StatusCode::kMoreThanOneRow:
      return "For ^1 K matrix is invalid ^2";
    default:
      return nullptr;
  }
}

void ReportFailure(const OrvStatus& status, int number) {
  ReportLackOfMemory(status, "Custom test ^1 not done for lack of memory...",
                     BpNumber{static_cast<double>(number), BpProcedure::Count()});
  const char* key = FailureMessage(status.Code());
  if (key == nullptr) return;
  host::BpError(TestLabel(key, number).Add(host::Plain("\r")), host::BpErrorLevel::kWarning);
}

void NoteStatus(host::BpPivotTable& table, const CustomResult& result) {
  const auto withL = [](const char* key) { return host::BpComposite(key).Add(host::Plain("L")); };
  if (!result.status.IsError()) {
    if (result.IsAll()) table.Note(withL("Display matrix is transpose of the ^1 matrix"));
    return;
  }
  switch (result.status.Code()) {
    case StatusCode::kWrongLMatrixWidth:
      table.Note(Key("Number of values is not equal to the number of parameters"));
      break;
    case StatusCode::kNoColumns:
      table.Note(Key("Matrix not constructed due to zero DF"));
      break;
    case StatusCode::kNotEstimable:
      table.Note(withL("This ^1 matrix is not estimable"));
      break;
    case StatusCode::kWrongCoefficientCount:
      table.Note(Key("Number of values is not equal to number of parameters for that effect"));
      break;
    default:
      break;
  }
}

void CaptionSubpopulation(const TavoOutputFrame& frame, host::BpPivotTable& table) {
  if (frame.HasSubpopulation()) table.Caption(frame.SubpopComposite());
}

void OutputCoefficients(const TavoOutputFrame& frame, host::BpHeading& heading, const CustomResult& result) {
  const auto table = heading.PivotTable(Key("Contrast Coefficients"), "ContrastCoefficients");
  CaptionSubpopulation(frame, *table);
  NoteStatus(*table, result);
  host::BpDimension& parameters = table->Dimension(Key("Parameter"));
  parameters.Position(BpPlace::kRow, 1, false, false);
  host::BpDimension& contrasts = table->Dimension(Key("Contrast"));
  contrasts.Position(BpPlace::kColumn, 1, true, false);
  // A test that failed shows its table without cells, under the note that says why.
  if (result.status.IsError()) return;

  LogitDimensions logits(frame, *table, result.IsPerLogit(frame));
  const int perEquation = static_cast<int>(frame.ParameterNames().size());
  const int columnLogits = result.IsPerLogit(frame) ? frame.EquationCount() : 1;
  const int count = result.ContrastCount(frame);
  for (int parameter = 0; parameter < result.L.GetNCols(); ++parameter) {
    logits.SelectRow(parameter / perEquation);
    parameters.Category(TavoOutputFrame::LongTextCell(
        frame.ParameterNames()[static_cast<std::size_t>(parameter % perEquation)]));
    for (int row = 0; row < columnLogits * count; ++row) {
      logits.SelectColumn(row / count);
      contrasts.Category(ContrastLabel(row % count + 1))
          .Cell(BpNumber{result.L.GetElem(row, parameter), BpProcedure::Coefficient()});
    }
  }
}

void FillIndividualRow(const TavoValidSpecs& specs, host::BpDimension& statistics, const OrvTestStats& test,
                       double hypothesized, bool noteCount) {
  const auto put = [&](const char* label, double value, host::BpFormatSpec format) {
    statistics.Category(Key(label)).Cell(BpNumber{value, format});
  };
  const bool isMissing = MCCommonMath::IsMissing(test.contrastEstimate);
  put("Contrast Estimate", test.contrastEstimate, BpProcedure::Coefficient());
  put("Hypothesized Value", hypothesized, BpProcedure::Coefficient());
  put("Difference (Estimate - Hypothesized)",
      isMissing ? test.contrastEstimate : test.contrastEstimate - hypothesized, BpProcedure::Coefficient());
  put("Std. Error", test.standardError, BpProcedure::GeneralStat());
  FillTestColumns(specs, statistics, test, noteCount);
}

void OutputIndividualTests(const TavoOutputFrame& frame, host::BpHeading& heading,
                           const CustomResult& result) {
  const auto table = heading.PivotTable(Key("Individual Test Results"), "IndividualTestResults");
  CaptionSubpopulation(frame, *table);
  host::BpDimension& contrasts = table->Dimension(Key("Contrast"));
  contrasts.Position(BpPlace::kRow, 1, false, false);
  if (result.test.RowCount() == 0) contrasts.Note(Key("Estimable Function for Intercept"));
  host::BpDimension& statistics = table->Dimension(Key("Statistics"));
  statistics.Position(BpPlace::kColumn, 1, true, false);
  host::BpDimension* logits = nullptr;
  if (result.IsPerLogit(frame)) {
    logits = &table->Dimension(frame.Dependent());
    logits->Position(BpPlace::kRow, 2, false, false);
  }

  const int count = result.ContrastCount(frame);
  for (std::size_t i = 0; i < result.rows.size(); ++i) {
    const int contrast = static_cast<int>(i) % count;
    if (logits != nullptr) logits->Category(frame.DependentValue(static_cast<int>(i) / count));
    contrasts.Category(ContrastLabel(contrast + 1));
    FillIndividualRow(frame.Specs(), statistics, result.rows[i],
                      result.test.K()[static_cast<std::size_t>(contrast)],
                      result.rows[i].contrastCount != static_cast<int>(result.rows.size()));
  }
}

host::BpComposite UsedContrasts(const TavoOutputFrame& frame, const CustomResult& result) {
  const bool perLogit = result.IsPerLogit(frame);
  const int count = result.ContrastCount(frame);
  host::BpComposite note(perLogit ? "Contrasts used [%1%2(%3=%4):, ^1^2(^3=^4):]1"
                                  : "The following contrasts are used [%1%2:, ^1^2:]1");
  note.Sublist();
  for (std::size_t i = 0; i < result.rows.size(); ++i) {
    if (!result.rows[i].usedInOverall) continue;
    const int row = static_cast<int>(i);
    note.Add(host::Plain("L"));
    note.Add(BpNumber{static_cast<double>(row % count + 1), BpProcedure::Count()});
    if (!perLogit) continue;
    note.Add(frame.Dependent());
    note.Add(frame.DependentValue(row / count));
  }
  note.EndSublist();
  return note;
}

void OutputOverallTest(const TavoOutputFrame& frame, host::BpHeading& heading, const CustomResult& result) {
  const auto table = heading.PivotTable(Key("Overall Test Results"), "OverallTestResults");
  CaptionSubpopulation(frame, *table);
  host::BpDimension& statistics = table->Dimension(Key("Statistics"));
  statistics.Position(BpPlace::kColumn, 1, true, false);
  FillTestColumns(frame.Specs(), statistics, result.overall, false);
  if (!result.overall.usedInOverall) table->Note(UsedContrasts(frame, result));
}

/// A warning of the run stops the test: each contrast has a row of empty cells.
void LeaveUntested(const TavoOutputFrame& frame, CustomResult& result) {
  const auto contrasts = static_cast<std::size_t>(std::max(1, result.test.RowCount()));
  const auto logits = static_cast<std::size_t>(result.IsPerLogit(frame) ? frame.EquationCount() : 1);
  result.rows.assign(contrasts * logits, OrvTestStats());
  for (OrvTestStats& row : result.rows)
    row.contrastCount = static_cast<int>(result.rows.size());
}

void OutputCustomTest(const TavoOutputFrame& frame, host::BpHeading& heading, const OrvCustomTest& test,
                      int number) {
  const TestType type = frame.Specs().GetTestType();
  const PAdjustMethod method = frame.Specs().Adjustment();
  CustomResult result{test, {}, {}, {}, {}};
  result.status = frame.Stats()->TestCustom(test, type, method, result.L, result.rows, result.overall);
  if (result.status.IsError()) ReportFailure(result.status, number);
  if (result.L.GetNRows() == 0) LeaveUntested(frame, result);
  OutputCoefficients(frame, heading, result);
  if (result.status.IsError()) return;
  OutputIndividualTests(frame, heading, result);
  OutputOverallTest(frame, heading, result);
}

}  // namespace

void OutputCustomTests(const TavoOutputFrame& frame) {
  if (frame.Stats() == nullptr) return;
  const std::vector<OrvCustomTest>& tests = frame.Specs().CustomTests();
  for (std::size_t i = 0; i < tests.size(); ++i) {
    const int number = static_cast<int>(i) + 1;
    const auto heading =
        frame.Heading().Heading(HeadingText(number, tests.size(), frame.Specs().CustomTestLabels()[i]));
    OutputCustomTest(frame, *heading, tests[i], number);
  }
}

}  // namespace tavo
