#include <algorithm>
#include <vector>

#include "module/reporting/status_messages.h"
#include "module/reporting/test_tables.h"

namespace tavo {

namespace {

using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;
using FixedPair = TavoOddsRatioEstimator::FixedPair;

/// One request with what came of it. Variables are record columns.
struct OddsResult {
  OrvStatus status;
  std::vector<TavoOddsRatioStats> ratios;
  std::vector<FixedPair> fixedPairs;
  std::vector<OrvStatus> warnings;
};

int VariableOf(const TavoOutputFrame& frame, int column) {
  return frame.Specs().RecordVariables()[static_cast<std::size_t>(column)];
}

bool IsFactorColumn(const TavoOutputFrame& frame, int column) {
  const std::vector<int>& columns = frame.Specs().FactorColumns();
  return std::find(columns.begin(), columns.end(), column) != columns.end();
}

host::BpCellText RatioLabel(const TavoOutputFrame& frame, const TavoOddsRatioStats& ratio) {
  // A ratio without a category is that of a covariate, told by the amount of its change.
  if (ratio.category < 0) return BpNumber{ratio.change, BpProcedure::GeneralStat()};
  const int variable = VariableOf(frame, ratio.variable);
  return host::BpComposite("^1 vs. ^2")
      .Add(frame.Value(variable, ratio.category))
      .Add(frame.Value(variable, ratio.reference));
}

void FillRatio(const TavoOutputFrame& frame, host::BpDimension& statistics, const TavoOddsRatioStats& ratio) {
  const auto put = [](host::BpGroup& group, const char* label, double value) {
    group.Category(Key(label)).Cell(BpNumber{value, BpProcedure::Coefficient()});
  };
  put(statistics, "Odds Ratio", ratio.oddsRatio);
  host::BpComposite level("^1 Confidence Interval");
  level.Add(BpNumber{frame.Specs().ConfidenceLevel(), BpProcedure::SigDigit()});
  host::BpGroup& interval = statistics.Group(level);
  put(interval, "Lower", ratio.confidenceLower);
  put(interval, "Upper", ratio.confidenceUpper);
}

void NoteFixedPairs(const TavoOutputFrame& frame, host::BpPivotTable& table,
                    const std::vector<FixedPair>& pairs) {
  if (pairs.empty()) return;
  host::BpComposite note("Factors and covariates [%1=%2:, ^1=^2:]1");
  note.Sublist();
  for (const FixedPair& pair : pairs) {
    const int variable = VariableOf(frame, pair.variable);
    const host::BpVariable label = frame.Variable(variable);
    note.Add(label);
    if (IsFactorColumn(frame, pair.variable)) {
      note.Add(frame.Value(variable, static_cast<int>(pair.value)));
    } else {
      note.Add(BpNumber{pair.value, BpProcedure::Mean(*label.variable)});
    }
  }
  note.EndSublist();
  table.Note(note);
}

void NoteWarnings(const TavoOutputFrame& frame, host::BpPivotTable& table,
                  const std::vector<OrvStatus>& warnings) {
  for (const OrvStatus& warning : warnings) {
    if (warning.Code() == StatusCode::kOddsFactorOneLevel) {
      host::BpVariable variable = frame.Variable(VariableOf(frame, warning.Integer(0)));
      variable.show = host::BpShow::kValue;
      table.Note(host::BpComposite("^1 has only one level.No odds ratios computed").Add(variable));
    } else if (warning.Code() == StatusCode::kOddsControlNotInUse) {
      table.Note(Key("Factor out of range on Control keyword"));
    }
  }
}

void ReportOneLevel(int number) {
  host::BpComposite message("For ^1 factor has only one level ^2");
  message.Add(BpNumber{static_cast<double>(number), BpProcedure::Count()}).Add(host::Plain("\r"));
  host::BpError(message, host::BpErrorLevel::kWarning);
}

host::BpCellText TableTitle(int number, std::size_t count) {
  if (count == 1) return Key("Odds Ratios");
  return host::BpComposite("Odds Ratios ^1").Add(BpNumber{static_cast<double>(number), BpProcedure::Count()});
}

void OutputOneRequest(const TavoOutputFrame& frame, const OrvOddsRatioSpec& request, int number,
                      std::size_t count) {
  OddsResult result;
  result.status = frame.Stats()->OddsRatios(request, result.ratios, result.fixedPairs, result.warnings);
  const auto table = frame.Heading().PivotTable(TableTitle(number, count), "OddsRatios");
  frame.ModelCaption(*table);
  const bool isFactor = request.FactorCount() > 0;
  host::BpDimension& logits = table->Dimension(frame.Dependent());
  logits.Position(BpPlace::kRow, 1, false, false);
  host::BpDimension& pairs = table->Dimension(Key(isFactor ? "Ratio Pairs" : "Units of Change"));
  pairs.Position(BpPlace::kRow, 2, isFactor, false);
  host::BpDimension& statistics = table->Dimension(Key("Statistics"));
  statistics.Position(BpPlace::kColumn, 1, true, false);

  if (result.status.IsError()) {
    ReportLackOfMemory(result.status, "Odds ratios ^1 not estimated for lack of memory...",
                       BpNumber{static_cast<double>(number), BpProcedure::Count()});
    if (result.status.Code() == StatusCode::kOddsFactorOneLevel) ReportOneLevel(number);
    return;
  }
  for (const TavoOddsRatioStats& ratio : result.ratios) {
    pairs.Group(frame.Variable(VariableOf(frame, ratio.variable))).Category(RatioLabel(frame, ratio));
    logits.Category(frame.Value(frame.Specs().DependentVariable(), ratio.dependentCategory));
    FillRatio(frame, statistics, ratio);
  }
  NoteFixedPairs(frame, *table, result.fixedPairs);
  NoteWarnings(frame, *table, result.warnings);
}

}  // namespace

void OutputOddsRatios(const TavoOutputFrame& frame) {
  if (frame.Stats() == nullptr) return;
  const std::vector<OrvOddsRatioSpec>& requests = frame.Found().oddsRatios;
  for (std::size_t i = 0; i < requests.size(); ++i) {
    OutputOneRequest(frame, requests[i], static_cast<int>(i) + 1, requests.size());
  }
}

}  // namespace tavo
