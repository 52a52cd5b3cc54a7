#include "module/reporting/design_tables.h"

namespace tavo {

namespace {

using host::BpFormatSpec;
using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;

void AddUnweightedCases(host::BpDimension& content, const OrvInputAdapter::Counters& counts) {
  host::BpGroup& cases = content.Group(Key("Unweighted Cases"));
  const auto add = [&](const char* label, long count) {
    cases.Category(Key(label)).Cell(BpNumber{static_cast<double>(count), BpProcedure::Count()});
  };
  add("Valid", counts.valid);
  add("Invalid", counts.invalid);
  add("Total", counts.valid + counts.invalid);
}

host::BpComposite StageLabel(const TavoOutputFrame& frame) {
  const std::string& label = frame.Specs().Stages().front().label;
  host::BpComposite text(label.empty() ? "Stage ^1" : "Stage ^1 label ^2");
  text.Add(BpNumber{1, BpProcedure::Count()});
  if (!label.empty()) text.Add(host::Plain(label));
  return text;
}

void AddDegreesOfFreedom(host::BpDimension& content, const TavoOutputFrame& frame) {
  host::BpCategory& row = content.Category(Key("Sampling Design DF"));
  row.Cell(BpNumber{frame.Stats()->DegreesOfFreedom(), BpProcedure::SigDigit()});
  if (frame.Specs().DegreesOfFreedom() > -1) row.CellNote(Key("User specified"));
}

/// Writes the counts and percents of the categorical table.
class CountColumns {
 public:
  CountColumns(host::BpPivotTable& table, double total)
      : fRows(table.Dimension(Key("Variables"))),
        fStatistics(table.Dimension(Key("Statistics"))),
        fTotal(total) {
    fRows.Position(BpPlace::kRow, 1, true, false);
    fStatistics.Position(BpPlace::kColumn, 1, true, false);
  }
  host::BpDimension& Rows() { return fRows; }
  /// Fills the row that became the current one last.
  void Fill(double count) {
    fStatistics.Category(Key("Weighted Count")).Cell(BpNumber{count, BpProcedure::GeneralStat()});
    fStatistics.Category(Key("Weighted Percent"))
        .Cell(BpNumber{count / fTotal * 100, BpProcedure::Percent()});
  }

 private:
  host::BpDimension& fRows;
  host::BpDimension& fStatistics;
  double fTotal;
};

void AddDependentCounts(CountColumns& columns, const TavoOutputFrame& frame) {
  host::BpGroup& group = columns.Rows().Group(frame.Dependent());
  group.Note(Key("Dependent Variable"));
  const std::vector<double>& counts = frame.Stats()->DependentWeightedCounts();
  for (std::size_t i = 0; i < counts.size(); ++i) {
    host::BpCategory& row = group.Category(frame.DependentValue(static_cast<int>(i)));
    if (i + 1 == counts.size()) row.Note(Key("Reference Category"));
    columns.Fill(counts[i]);
  }
}

void AddFactorCounts(CountColumns& columns, const TavoOutputFrame& frame, std::size_t factor) {
  const int variable = frame.Specs().Factors()[factor];
  host::BpGroup& group = columns.Rows().Group(frame.Variable(variable));
  const std::vector<double>& counts = frame.Stats()->FactorCounts().FactorCounts(static_cast<int>(factor));
  for (std::size_t k = 0; k < counts.size(); ++k) {
    // Met in the data, but not with a weight or not in the subpopulation: no part of the model.
    if (counts[k] <= 0) continue;
    group.Category(frame.Value(variable, static_cast<int>(k) + 1));
    columns.Fill(counts[k]);
  }
}

}  // namespace

void OutputSampleDesign(const TavoOutputFrame& frame) {
  const auto table = frame.Heading().PivotTable(Key("Sample Design Information"), "SampleDesignInformation");
  host::BpDimension& content = table->Dimension(Key("Content"));
  content.Position(BpPlace::kRow, 1, true, false);
  host::BpDimension& number = table->Dimension(Key("Number"));
  number.Position(BpPlace::kColumn, 1, true, false);
  number.Category(Key("N"));

  AddUnweightedCases(content, frame.Adapter().Counts());
  const TavoOutputStats* stats = frame.Stats();
  if (stats == nullptr) return;
  content.Category(Key("Population Size"))
      .Cell(BpNumber{stats->PopulationSize(), BpProcedure::GeneralStat()});
  if (frame.HasSubpopulation()) {
    host::BpCategory& row = content.Category(Key("Subpopulation Size"));
    row.Cell(BpNumber{stats->SubpopulationSize(), BpProcedure::GeneralStat()});
    row.Note(frame.SubpopComposite());
  }
  host::BpGroup& stage = content.Group(StageLabel(frame));
  const auto count = [](int n) { return BpNumber{static_cast<double>(n), BpProcedure::Count()}; };
  stage.Category(Key("Strata")).Cell(count(stats->StrataCount()));
  stage.Category(Key("Units")).Cell(count(stats->UnitCount()));
  AddDegreesOfFreedom(content, frame);
}

void OutputCategoricalVariables(const TavoOutputFrame& frame) {
  const TavoOutputStats* stats = frame.Stats();
  if (stats == nullptr) return;
  const auto table =
      frame.Heading().PivotTable(Key("Categorical Variable Information"), "CategoricalVariableInformation");
  if (frame.HasSubpopulation()) table->Caption(frame.SubpopComposite());
  const double total = frame.HasSubpopulation() ? stats->SubpopulationSize() : stats->PopulationSize();
  CountColumns columns(*table, total);
  if (frame.Specs().DependentVariable() >= 0) AddDependentCounts(columns, frame);
  for (std::size_t factor = 0; factor < frame.Specs().Factors().size(); ++factor) {
    AddFactorCounts(columns, frame, factor);
  }
  columns.Rows().Category(Key(frame.HasSubpopulation() ? "Subpopulation Size" : "Population Size"));
  columns.Fill(total);
}

void OutputCovariates(const TavoOutputFrame& frame) {
  const std::vector<int>& covariates = frame.Specs().Covariates();
  if (frame.Stats() == nullptr || covariates.empty()) return;
  const auto table = frame.Heading().PivotTable(Key("Covariate Information"), "CovariateInformation");
  if (frame.HasSubpopulation()) table->Caption(frame.SubpopComposite());
  host::BpDimension& rows = table->Dimension(Key("Covariate"));
  rows.Position(BpPlace::kRow, 1, true, false);
  host::BpDimension& statistics = table->Dimension(Key("Statistics"));
  statistics.Position(BpPlace::kColumn, 1, true, false);
  statistics.Category(Key("Mean"));
  for (std::size_t i = 0; i < covariates.size(); ++i) {
    const host::BpVariable variable = frame.Variable(covariates[i]);
    rows.Category(variable).Cell(
        BpNumber{frame.Stats()->MeanValues()[i], BpProcedure::Mean(*variable.variable)});
  }
}

}  // namespace tavo
