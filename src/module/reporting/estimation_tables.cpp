#include "module/reporting/estimation_tables.h"

#include "component/numerics/missing_value.h"

namespace tavo {

namespace {

using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;
using MCCommonMath::MCMV;

}  // namespace

void OutputPseudoRSquares(const TavoOutputFrame& frame) {
  const TavoOutputStats* stats = frame.Stats();
  if (stats == nullptr) return;
  const auto table = frame.Heading().PivotTable(Key("Pseudo R Squares"), "PseudoRSquares");
  frame.ModelCaption(*table);
  host::BpDimension& statistics = table->Dimension(Key("Statistics"));
  statistics.Position(BpPlace::kRow, 1, true, false);
  const auto add = [&](const char* label, double value) {
    statistics.Category(Key(label)).Cell(BpNumber{value, BpProcedure::Correlation()});
  };
  add("Cox and Snell", stats->CoxSnell());
  add("Nagelkerke", stats->Nagelkerke());
  add("McFadden", stats->McFadden());
}

namespace {

/// The share of `part` in `whole` in percent; 0 of nothing.
BpNumber PercentOf(double part, double whole) {
  return {whole == 0 ? 0.0 : part / whole * 100, BpProcedure::Percent()};
}

struct ClassificationSums {
  std::vector<double> rows;
  std::vector<double> columns;
  double diagonal = 0;
  double total = 0;

  explicit ClassificationSums(const MCCommonMath::MCRectMatrix& counts)
      : rows(static_cast<std::size_t>(counts.GetNRows())),
        columns(static_cast<std::size_t>(counts.GetNCols())) {
    for (int r = 0; r < counts.GetNRows(); ++r) {
      for (int c = 0; c < counts.GetNCols(); ++c) {
        const double count = counts.GetElem(r, c);
        rows[static_cast<std::size_t>(r)] += count;
        columns[static_cast<std::size_t>(c)] += count;
        total += count;
        if (r == c) diagonal += count;
      }
    }
  }
};

}  // namespace

void OutputClassification(const TavoOutputFrame& frame) {
  if (frame.Stats() == nullptr) return;
  const MCCommonMath::MCRectMatrix& counts = frame.Stats()->ClassificationMatrix();
  if (counts.GetNRows() == 0) return;
  const auto table = frame.Heading().PivotTable(Key("Classification"), "Classification");
  frame.ModelCaption(*table);
  host::BpDimension& observed = table->Dimension(Key("Observed"));
  observed.Position(BpPlace::kRow, 1, false, false);
  host::BpDimension& predicted = table->Dimension(Key("Predicted"));
  predicted.Position(BpPlace::kColumn, 1, false, false);
  host::BpGroup& observedValues = observed.Group(Key("Values"));
  host::BpGroup& predictedValues = predicted.Group(Key("Values"));

  const ClassificationSums sums(counts);
  for (int r = 0; r < counts.GetNRows(); ++r) {
    observedValues.Category(frame.DependentValue(r));
    for (int c = 0; c < counts.GetNCols(); ++c) {
      predictedValues.Category(frame.DependentValue(c))
          .Cell(BpNumber{counts.GetElem(r, c), BpProcedure::GeneralStat()});
    }
    predicted.Category(Key("Percent Correct"))
        .Cell(PercentOf(counts.GetElem(r, r), sums.rows[static_cast<std::size_t>(r)]));
  }
  observed.Category(Key("Overall Percent"));
  for (int c = 0; c < counts.GetNCols(); ++c) {
    predictedValues.Category(frame.DependentValue(c))
        .Cell(PercentOf(sums.columns[static_cast<std::size_t>(c)], sums.total));
  }
  predicted.Category(Key("Percent Correct")).Cell(PercentOf(sums.diagonal, sums.total));
}

}  // namespace tavo
