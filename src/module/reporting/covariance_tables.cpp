#include "module/reporting/covariance_tables.h"

#include <cmath>

#include "component/numerics/missing_value.h"

namespace tavo {

namespace {

using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;
using MCCommonMath::MCMV;

/// A parameter by its equation and its place in it.
struct Place {
  int equation = 0;
  int parameter = 0;
};

/// Rows or columns of such a matrix: the parameters within each logit.
class ParameterAxis {
 public:
  ParameterAxis(const TavoOutputFrame& frame, host::BpPivotTable& table, BpPlace place)
      : fFrame(frame),
        fParameters(table.Dimension(ParameterLabel(place))),
        fLogits(table.Dimension(LogitLabel(frame, place))) {
    fParameters.Position(place, 1, true, false);
    fLogits.Position(place, 2, false, false);
  }
  /// Makes a parameter the current one and returns its category.
  host::BpCategory& Select(const Place& at) {
    fLogits.Category(fFrame.DependentValue(at.equation));
    return fParameters.Category(
        TavoOutputFrame::LongTextCell(fFrame.ParameterNames()[static_cast<std::size_t>(at.parameter)]));
  }

 private:
  static host::BpComposite ParameterLabel(BpPlace place) {
    host::BpComposite label("Parameter ^1");
    label.Add(BpNumber{place == BpPlace::kRow ? 1.0 : 2.0, BpProcedure::Count()});
    return label;
  }
  static host::BpComposite LogitLabel(const TavoOutputFrame& frame, BpPlace place) {
    host::BpComposite label(place == BpPlace::kRow ? "^1 row dimension" : "^1 col dimension");
    label.Add(frame.Dependent());
    return label;
  }

  const TavoOutputFrame& fFrame;
  host::BpDimension& fParameters;
  host::BpDimension& fLogits;
};

using ElementRule = double (*)(const MCCommonMath::MCSymMatrix& covariance, const Place& row,
                               const Place& column);

double Element(const MCCommonMath::MCSymMatrix& covariance, const Place& row, const Place& column) {
  return covariance.GetElem(row.equation, column.equation, row.parameter, column.parameter);
}

double Correlation(const MCCommonMath::MCSymMatrix& covariance, const Place& row, const Place& column) {
  const double rowVariance = Element(covariance, row, row);
  const double columnVariance = Element(covariance, column, column);
  if (!(rowVariance > 0) || !(columnVariance > 0)) return MCMV::gMissingValue;
  if (row.equation == column.equation && row.parameter == column.parameter) return 1.0;
  return Element(covariance, row, column) / (std::sqrt(rowVariance) * std::sqrt(columnVariance));
}

std::vector<Place> ShownParameters(const TavoOutputFrame& frame) {
  std::vector<Place> places;
  const int perEquation = static_cast<int>(frame.ParameterNames().size());
  for (int equation = 0; equation < frame.EquationCount(); ++equation) {
    for (int parameter = 0; parameter < perEquation; ++parameter) {
      if (!frame.IsHidden(static_cast<std::size_t>(parameter))) places.push_back({equation, parameter});
    }
  }
  return places;
}

const OrvParamStats& StatsOf(const TavoOutputFrame& frame, const Place& at) {
  const std::size_t perEquation = frame.ParameterNames().size();
  return frame.Stats()->ParamStats()[static_cast<std::size_t>(at.equation) * perEquation +
                                     static_cast<std::size_t>(at.parameter)];
}

void FillCell(const TavoOutputFrame& frame, const Place& row, const Place& column, host::BpCategory& cell,
              ElementRule rule) {
  const OrvParamStats& a = StatsOf(frame, row);
  const OrvParamStats& b = StatsOf(frame, column);
  const bool negative = a.negativeVariance || b.negativeVariance;
  if (negative || a.redundant || b.redundant) {
    cell.Cell(BpNumber{MCMV::gMissingValue, BpProcedure::GeneralStat()});
    cell.CellNote(Key(negative ? "Variance estimate was negative" : "Parameter estimates was redundant"));
    return;
  }
  cell.Cell(BpNumber{rule(*frame.Stats()->Covariance(), row, column), BpProcedure::GeneralStat()});
}

void OutputMatrix(const TavoOutputFrame& frame, const char* title, const char* identifier, ElementRule rule) {
  if (frame.Stats() == nullptr || frame.Stats()->Covariance() == nullptr || frame.ParameterNames().empty())
    return;
  const auto table = frame.Heading().PivotTable(Key(title), identifier);
  frame.ModelCaption(*table);
  ParameterAxis rows(frame, *table, BpPlace::kRow);
  ParameterAxis columns(frame, *table, BpPlace::kColumn);
  const std::vector<Place> places = ShownParameters(frame);
  for (const Place& row : places) {
    rows.Select(row);
    for (const Place& column : places)
      FillCell(frame, row, column, columns.Select(column), rule);
  }
}

}  // namespace

void OutputCovariances(const TavoOutputFrame& frame) {
  OutputMatrix(frame, "Covariances of Parameter Estimates", "CovariancesOfParameterEstimates", &Element);
}

void OutputCorrelations(const TavoOutputFrame& frame) {
  OutputMatrix(frame, "Correlations of Parameter Estimates", "CorrelationsOfParameterEstimates",
               &Correlation);
}

}  // namespace tavo
