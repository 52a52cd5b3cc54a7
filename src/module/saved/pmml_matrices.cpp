// The estimates and their covariance.
#include <cmath>

#include "module/saved/pmml_sections.h"

namespace tavo {

namespace {

using MCCommonMath::MCSymMatrix;
using MCCommonXML::XMLElement;

/// What an estimate of an ordinal model stands for. The fitted predictor is threshold minus x'b, the
/// document's one is threshold plus x'b.
class OrdinalEstimates {
 public:
  explicit OrdinalEstimates(const PMMLSource& source) : fSource(source) {}

  bool IsThreshold(std::size_t estimate) const { return estimate < fSource.EquationCount(); }
  /// All thresholds belong to the first parameter, the intercept.
  const std::string& Name(std::size_t estimate) const {
    return fSource.names[IsThreshold(estimate) ? 0 : estimate - fSource.EquationCount() + 1];
  }
  double Beta(std::size_t estimate) const {
    const double beta = (*fSource.model.estimates)[estimate];
    return IsThreshold(estimate) ? beta : 0.0 - beta;  // a difference, so that 0 keeps its sign
  }
  double Covariance(const MCSymMatrix& covariance, std::size_t row, std::size_t column) const {
    const double value = covariance.GetElem(static_cast<int>(row), static_cast<int>(column));
    return IsThreshold(row) == IsThreshold(column) ? value : 0.0 - value;
  }

 private:
  const PMMLSource& fSource;
};

// The lower triangle of the covariance, block by block. A block of two different targets is not symmetric
// itself and is written whole; a block on the diagonal is, and its lower triangle says everything. The last
// target is the reference and has no parameters, so no block either. The number of cells grows with the
// square of the parameters: they are counted before, and a wish to stop is asked for once a row.
void AddMultinomialCells(XMLElement& matrix, const PMMLSource& source, const MCSymMatrix& covariance) {
  const std::size_t equations = source.EquationCount();
  const std::size_t parameters = source.names.size();
  const std::size_t all = equations * parameters;
  matrix.ReserveChildren(all * (all + 1) / 2);
  for (std::size_t r = 0; r < equations; ++r) {
    for (std::size_t s = 0; s <= r; ++s) {
      for (std::size_t i = 0; i < parameters; ++i) {
        if (source.cancel.IsCancelled()) return;
        const std::size_t end = s == r ? i + 1 : parameters;
        for (std::size_t j = 0; j < end; ++j) {
          XMLElement& cell = matrix.AddChild("PCovCell");
          cell.ReserveAttributes(5);
          cell.AddAttribute("tRow", source.TargetValue(r));
          cell.AddAttribute("tCol", source.TargetValue(s));
          cell.AddAttribute("pRow", source.names[i]);
          cell.AddAttribute("pCol", source.names[j]);
          cell.AddAttribute("value", covariance.GetElem(static_cast<int>(r), static_cast<int>(s),
                                                        static_cast<int>(i), static_cast<int>(j)));
        }
      }
    }
  }
}

// A cell says which target it belongs to only for thresholds: the other parameters are the same for all
// targets, and the scoring program tells the two by that.
void AddOrdinalCells(XMLElement& matrix, const PMMLSource& source, const MCSymMatrix& covariance) {
  const OrdinalEstimates estimates(source);
  for (std::size_t row = 0; row < source.model.estimates->size(); ++row) {
    if (source.cancel.IsCancelled()) return;
    for (std::size_t column = 0; column <= row; ++column) {
      XMLElement& cell = matrix.AddChild("PCovCell");
      if (estimates.IsThreshold(row)) cell.AddAttribute("tRow", source.TargetValue(row));
      if (estimates.IsThreshold(column)) cell.AddAttribute("tCol", source.TargetValue(column));
      cell.AddAttribute("pRow", estimates.Name(row));
      cell.AddAttribute("pCol", estimates.Name(column));
      cell.AddAttribute("value", estimates.Covariance(covariance, row, column));
    }
  }
}

void AddPlainCells(XMLElement& matrix, const PMMLSource& source, const MCSymMatrix& covariance) {
  for (std::size_t row = 0; row < source.names.size(); ++row) {
    if (source.cancel.IsCancelled()) return;
    for (std::size_t column = 0; column <= row; ++column) {
      XMLElement& cell = matrix.AddChild("PCovCell");
      cell.AddAttribute("pRow", source.names[row]);
      cell.AddAttribute("pCol", source.names[column]);
      cell.AddAttribute("value", covariance.GetElem(static_cast<int>(row), static_cast<int>(column)));
    }
  }
}

/// Redundant parameters stay in the matrix, with 0 as their estimate, so that it has a cell for each
/// parameter of the list. The document type has no word for redundancy; "df" tells the two apart, 1 for an
/// estimated parameter, 0 for one that is held at zero.
/// `target`: null for an estimate that belongs to none.
void AddPCell(XMLElement& matrix, const PMMLSource& source, const std::string* target,
              const std::string& name, double beta, std::size_t estimate) {
  XMLElement& cell = matrix.AddChild("PCell");
  cell.ReserveAttributes(4);
  if (target != nullptr) cell.AddAttribute("targetCategory", *target);
  cell.AddAttribute("parameterName", name);
  cell.AddAttribute("beta", beta);
  cell.AddAttribute("df", source.model.nonRedundant->IsIn(static_cast<int>(estimate)) ? 1.0 : 0.0);
}

}  // namespace

void AddPCovMatrix(XMLElement& parent, const PMMLSource& source, const MCSymMatrix& covariance) {
  XMLElement& matrix = parent.AddChild("PCovMatrix");
  switch (source.model.kind) {
    case ModelKind::kMultinomialLogistic:
      return AddMultinomialCells(matrix, source, covariance);
    case ModelKind::kOrdinal:
      return AddOrdinalCells(matrix, source, covariance);
    default:
      return AddPlainCells(matrix, source, covariance);
  }
}

void AddParamMatrix(XMLElement& parent, const PMMLSource& source) {
  XMLElement& matrix = parent.AddChild("ParamMatrix");
  const std::vector<double>& estimates = *source.model.estimates;
  const OrdinalEstimates ordinal(source);
  for (std::size_t i = 0; i < estimates.size(); ++i) {
    switch (source.model.kind) {
      case ModelKind::kMultinomialLogistic:
        AddPCell(matrix, source, &source.TargetValue(i / source.names.size()),
                 source.names[i % source.names.size()], estimates[i], i);
        break;
      case ModelKind::kOrdinal:
        AddPCell(matrix, source, ordinal.IsThreshold(i) ? &source.TargetValue(i) : nullptr, ordinal.Name(i),
                 ordinal.Beta(i), i);
        break;
      default:
        AddPCell(matrix, source, nullptr, source.names[i], estimates[i], i);
    }
  }
}

void AddEventValues(XMLElement& parent, const OrvPMMLEvents& events) {
  XMLElement& element = parent.AddChild("EventValues");
  for (const std::string& value : events.values)
    element.AddChild("Value").AddAttribute("value", value);
  for (const OrvPMMLEvents::Interval& interval : events.intervals) {
    XMLElement& range = element.AddChild("Interval");
    range.AddAttribute("closure", "closedClosed");
    range.AddAttribute("leftMargin", interval.low);
    range.AddAttribute("rightMargin", interval.high);
  }
}

void AddBaselineHazards(XMLElement& parent, const OrvPMMLCox& cox) {
  XMLElement& tables = parent.AddChild("BaseCumHazardTables");
  for (std::size_t i = 0; i < cox.baselineTimes.size(); ++i) {
    XMLElement& table = cox.strata >= 0 ? tables.AddChild("BaselineStratum") : tables;
    if (cox.strata >= 0) table.AddAttribute("value", cox.baselineStrata[i]);
    table.AddAttribute("maxTime", cox.baselineMaximumTimes[i]);
    for (std::size_t j = 0; j < cox.baselineTimes[i].size(); ++j) {
      XMLElement& cell = table.AddChild("BaselineCell");
      cell.AddAttribute("time", cox.baselineTimes[i][j]);
      cell.AddAttribute("cumHazard", cox.baselineHazards[i][j]);
    }
  }
}

}  // namespace tavo
