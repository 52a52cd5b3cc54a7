#include <string>
#include <utility>
#include <vector>

#include "component/inference/inference.h"
#include "module/reporting/status_messages.h"
#include "module/reporting/test_tables.h"

namespace tavo {

namespace {

using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;

/// The hypothesis of an effect, which waits until its coefficients are printed.
struct EffectHypothesis {
  host::BpCellText title;
  MCCommonMath::MCRectMatrix L;
  std::vector<int> columns;  // numbers of the contrasts of one logit
};

/// Runs the tests of the table's rows, in order.
class EffectTestRows {
 public:
  EffectTestRows(const TavoOutputFrame& frame, host::BpPivotTable& table)
      : fFrame(frame),
        fRows(table.Dimension(Key("Source"))),
        fStatistics(table.Dimension(Key("Statistics"))) {
    fRows.Position(BpPlace::kRow, 1, false, false);
    fStatistics.Position(BpPlace::kColumn, 1, true, false);
  }

  /// A test that can't be done leaves a row of empty cells.
  EffectHypothesis Run(int effect, const host::BpCellText& label, bool show) {
    EffectHypothesis hypothesis;
    hypothesis.title = label;
    OrvTestStats overall;
    const OrvStatus status = fFrame.Stats()->TestEffect(effect, hypothesis.L, hypothesis.columns, overall);
    ReportLackOfMemory(status, "Test of effect ^1 not done for lack of memory...", label);
    if (show) {
      fRows.Category(label);
      FillTestColumns(fFrame.Specs(), fStatistics, overall, false);
    }
    return hypothesis;
  }

 private:
  const TavoOutputFrame& fFrame;
  host::BpDimension& fRows;
  host::BpDimension& fStatistics;
};

std::vector<EffectHypothesis> TestAllEffects(const TavoOutputFrame& frame, host::BpPivotTable& table) {
  EffectTestRows rows(frame, table);
  std::vector<EffectHypothesis> hypotheses;
  const bool hasIntercept = frame.Specs().UsesIntercept();
  rows.Run(TavoInference::kWholeModel, Key(hasIntercept ? "(Corrected Model)" : "(Model)"), true);
  if (hasIntercept) {
    // A hidden intercept is tested all the same: its coefficients are shown.
    hypotheses.push_back(
        rows.Run(TavoInference::kIntercept, Key("(Intercept)"), frame.Specs().ShowsIntercept()));
  }
  for (std::size_t i = 0; i < frame.EffectNames().size(); ++i) {
    hypotheses.push_back(rows.Run(static_cast<int>(i), host::Plain(frame.EffectNames()[i]), true));
  }
  return hypotheses;
}

void OutputContrasts(const TavoOutputFrame& frame, host::BpHeading& heading,
                     const EffectHypothesis& hypothesis) {
  const auto table = heading.PivotTable(hypothesis.title, "EffectsContrast");
  frame.ModelCaption(*table);
  host::BpDimension& parameters = table->Dimension(Key("Parameter"));
  parameters.Position(BpPlace::kRow, 1, false, false);
  host::BpDimension& contrasts = table->Dimension(Key("Contrast"));
  contrasts.Position(BpPlace::kColumn, 1, true, false);
  LogitDimensions logits(frame, *table, true);

  const int perEquation = static_cast<int>(frame.ParameterNames().size());
  for (int parameter = 0; parameter < hypothesis.L.GetNCols(); ++parameter) {
    logits.SelectRow(parameter / perEquation);
    parameters.Category(TavoOutputFrame::LongTextCell(
        frame.ParameterNames()[static_cast<std::size_t>(parameter % perEquation)]));
    int row = 0;
    for (int equation = 0; equation < frame.EquationCount(); ++equation) {
      logits.SelectColumn(equation);
      for (const int column : hypothesis.columns) {
        contrasts.Category(ContrastLabel(column))
            .Cell(BpNumber{hypothesis.L.GetElem(row++, parameter), BpProcedure::Coefficient()});
      }
    }
  }
}

}  // namespace

void OutputEffectTests(const TavoOutputFrame& frame) {
  if (frame.Stats() == nullptr) return;
  std::vector<EffectHypothesis> hypotheses;
  // This table is released before the coefficients open a heading of their own: tables appear in the order in
  // which they end.
  {
    const auto table = frame.Heading().PivotTable(Key("Tests of Model Effects"), "TestsOfModelEffects");
    frame.ModelCaption(*table);
    hypotheses = TestAllEffects(frame, *table);
  }
  if (!frame.Specs().Has(PrintOption::LMATRIX)) return;
  const auto heading = frame.Heading().Heading(Key("Effect Contrast Coefficients"));
  for (const EffectHypothesis& hypothesis : hypotheses) {
    if (hypothesis.L.GetNRows() > 0) OutputContrasts(frame, *heading, hypothesis);
  }
}

void OutputGeneralEstimableFunction(const TavoOutputFrame& frame) {
  if (frame.Stats() == nullptr) return;
  MCCommonMath::MCRectMatrix L;
  std::vector<int> columns;
  if (frame.Stats()->GeneralEstimableFunction(L, columns).IsError()) return;
  const auto table =
      frame.Heading().PivotTable(Key("General Estimable Function"), "GeneralEstimableFunction");
  frame.ModelCaption(*table);
  if (frame.EquationCount() > 1) table->Note(Key("Coefficients used across logits"));
  host::BpDimension& parameters = table->Dimension(Key("Parameter"));
  parameters.Position(BpPlace::kRow, 1, false, false);
  host::BpDimension& contrasts = table->Dimension(Key("Contrast"));
  contrasts.Position(BpPlace::kColumn, 1, false, false);
  for (std::size_t parameter = 0; parameter < frame.ParameterNames().size(); ++parameter) {
    parameters.Category(TavoOutputFrame::LongTextCell(frame.ParameterNames()[parameter]));
    for (std::size_t i = 0; i < columns.size(); ++i) {
      contrasts.Category(ContrastLabel(columns[i]))
          .Cell(BpNumber{L.GetElem(static_cast<int>(i), static_cast<int>(parameter)),
                         BpProcedure::Coefficient()});
    }
  }
}

}  // namespace tavo
