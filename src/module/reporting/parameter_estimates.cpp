#include <cmath>

#include "component/numerics/machine_constants.h"
#include "component/numerics/missing_value.h"
#include "module/reporting/estimation_tables.h"

namespace tavo {

namespace {

using host::BpFormatSpec;
using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;
using MCCommonMath::MCMV;
using MCCommonMath::MCPower;

host::BpComposite LevelLabel(const char* key, double level) {
  host::BpComposite label(key);
  label.Add(BpNumber{level, BpProcedure::SigDigit()});
  return label;
}

/// Writes the columns of the parameter in work.
class EstimateColumns {
 public:
  EstimateColumns(const TavoValidSpecs& specs, host::BpDimension& statistics)
      : fSpecs(specs), fStatistics(statistics) {}

  void Fill(const OrvParamStats& row) {
    if (Wants(Statistic::PARAMETER)) FillEstimate(row);
    if (Wants(Statistic::SE)) FillStandardError(row);
    if (Wants(Statistic::CINTERVAL)) FillInterval(row);
    if (Wants(Statistic::TTEST)) FillTest(row);
    if (Wants(Statistic::DEFF))
      Put(fStatistics, "Design Effect", row.designEffect, BpProcedure::Coefficient());
    if (Wants(Statistic::DEFFSQRT)) {
      Put(fStatistics, "Square Root Design Effect", row.SquareRootDesignEffect(), BpProcedure::Coefficient());
    }
    if (Wants(Statistic::EXP)) FillExponentials(row);
  }

 private:
  bool Wants(Statistic statistic) const { return fSpecs.Has(statistic); }

  static host::BpCategory& Put(host::BpGroup& group, const char* label, double value, BpFormatSpec format) {
    host::BpCategory& column = group.Category(Key(label));
    column.Cell(BpNumber{value, format});
    return column;
  }

  void FillEstimate(const OrvParamStats& row) {
    host::BpCategory& column =
        Put(fStatistics, "B", row.redundant ? 0.0 : row.estimate, BpProcedure::Coefficient());
    if (row.redundant) column.CellNote(Key("Parameter is redundant"));
  }

  void FillStandardError(const OrvParamStats& row) {
    host::BpCategory& column = Put(fStatistics, "Std. Error", row.standardError, BpProcedure::Coefficient());
    if (row.negativeVariance) column.CellNote(Key("Estimate was negative"));
  }

  void FillInterval(const OrvParamStats& row) {
    host::BpGroup& interval =
        fStatistics.Group(LevelLabel("^1 Confidence Interval", fSpecs.ConfidenceLevel()));
    Put(interval, "Lower", row.confidenceLower, BpProcedure::Coefficient());
    Put(interval, "Upper", row.confidenceUpper, BpProcedure::Coefficient());
  }

  void FillTest(const OrvParamStats& row) {
    host::BpGroup& test = fStatistics.Group(Key("Hypothesis Test"));
    Put(test, "t", row.t, BpProcedure::GeneralStat());
    Put(test, "degrees of freedom", row.df,
        row.redundant ? BpProcedure::Count() : BpProcedure::GeneralStat());
    Put(test, "Significance", row.significance, BpProcedure::Significance());
  }

  void FillExponentials(const OrvParamStats& row) {
    PutExponential(fStatistics, "Exp(B)", row.redundant ? 0.0 : row.estimate);
    if (!Wants(Statistic::CINTERVAL)) return;
    host::BpGroup& interval =
        fStatistics.Group(LevelLabel("^1 Confidence Interval for B", fSpecs.ConfidenceLevel()));
    PutExponential(interval, "Lower", row.confidenceLower);
    PutExponential(interval, "Upper", row.confidenceUpper);
  }

  static void PutExponential(host::BpGroup& group, const char* label, double exponent) {
    const bool isMissing = exponent == MCMV::gMissingValue;
    const bool overflows = !isMissing && exponent > MCPower::gMachineMaxExp;
    const double value = isMissing || overflows ? MCMV::gMissingValue : std::exp(exponent);
    host::BpCategory& column = Put(group, label, value, BpProcedure::Coefficient());
    // The estimate itself is shown beside it: an odds ratio beyond all doubles is no reason to lose the row.
    if (overflows) column.CellNote(Key("Set to system missing due to overflow"));
  }

  const TavoValidSpecs& fSpecs;
  host::BpDimension& fStatistics;
};

}  // namespace

void OutputParameterEstimates(const TavoOutputFrame& frame) {
  if (frame.ParameterNames().empty() || frame.Specs().Statistics().empty()) return;
  const auto table = frame.Heading().PivotTable(Key("Parameter Estimates"), "ParameterEstimates");
  frame.ModelCaption(*table);
  host::BpDimension& parameters = table->Dimension(Key("Parameter"));
  parameters.Position(BpPlace::kRow, 1, false, false);
  host::BpDimension& logits = table->Dimension(frame.Dependent());
  logits.Position(BpPlace::kRow, 2, false, false);
  host::BpDimension& statistics = table->Dimension(Key("Statistics"));
  statistics.Position(BpPlace::kColumn, 1, true, false);
  if (frame.Stats() == nullptr) return;

  EstimateColumns columns(frame.Specs(), statistics);
  const std::size_t perEquation = frame.ParameterNames().size();
  for (std::size_t i = 0; i < frame.Stats()->ParamStats().size(); ++i) {
    if (frame.IsHidden(i)) continue;
    logits.Category(frame.DependentValue(static_cast<int>(i / perEquation)));
    parameters.Category(TavoOutputFrame::LongTextCell(frame.ParameterNames()[i % perEquation]));
    columns.Fill(frame.Stats()->ParamStats()[i]);
  }
}

}  // namespace tavo
