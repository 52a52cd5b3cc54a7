#include <array>

#include "module/reporting/estimation_tables.h"
#include "module/reporting/termination_texts.h"

namespace tavo {

namespace {

using host::BpNumber;
using host::BpPlace;
using host::BpProcedure;
using host::Key;

constexpr std::array<TerminationTexts, 10> kTerminationTexts = {{
    {nullptr, false, nullptr},
    {"Log-likelihood value converges ^1 ^2 ^3 ^4", true, nullptr},
    {"Parameter estimates converge ^1 ^2 ^3 ^4", true, nullptr},
    {"Both converge ^1 ^2 ^3 ^4", true, nullptr},
    {"Unexpected singularities in Hessian matrix are encountered ^1 ^2 ^3 ^4", true,
     "Unexpected singularities in Hessian matrix are encountered"},
    {"Cannot increase log-likelihood", false, "Log-likelihood value cannot be increased"},
    {"Maximum iterations was reached ^1 ^2 ^3 ^4", true, "Maximum iterations was reached"},
    {"Log-likelihood value is zero ^1 ^2 ^3 ^4", true, "Log-likelihood value is zero"},
    {"Quasi complete separation exists ^1 ^2 ^3 ^4", true, "Quasi-complete separation may exist in data"},
    {"No iterations are necessary", false, nullptr},
}};

}  // namespace

const TerminationTexts& TextsOf(TerminationState state) {
  const auto index = static_cast<std::size_t>(state);
  return kTerminationTexts[index < kTerminationTexts.size() ? index : 0];
}

namespace {

void WarnAboutTermination(TerminationState state) {
  const char* warning = TextsOf(state).warning;
  if (warning == nullptr) return;
  host::BpError(Key(warning), host::BpErrorLevel::kWarning);
  host::BpError(Key("Tavoreg continues despite warnings"), host::BpErrorLevel::kWarning);
}

host::BpComposite NoteWithChanges(const char* key, const TavoOutputFrame& frame) {
  const TavoOutputStats::Convergence convergence = frame.Stats()->ConvergenceValues();
  const auto kind = [](bool relative) { return Key(relative ? "relative" : "absolute"); };
  host::BpComposite note(key);
  note.Add(kind(frame.Specs().IsLogLikRelative()));
  note.Add(BpNumber{convergence.logLikelihoodChange, BpProcedure::GeneralStat()});
  note.Add(kind(frame.Specs().IsParamRelative()));
  note.Add(BpNumber{convergence.parameterChange, BpProcedure::GeneralStat()});
  return note;
}

void NoteConvergence(const TavoOutputFrame& frame, host::BpCategory& lastIteration) {
  if (frame.Specs().MaximumIterations() == 0) {
    lastIteration.Note(Key("Number of iterations is zero"));
    return;
  }
  const TerminationTexts& texts = TextsOf(frame.Stats()->TerminationCode());
  if (texts.note == nullptr) return;
  if (texts.hasChanges) {
    lastIteration.Note(NoteWithChanges(texts.note, frame));
  } else {
    lastIteration.Note(Key(texts.note));
  }
}

/// The estimates of one iteration: those of the non-redundant parameters, logit by logit.
void FillEstimates(const TavoOutputFrame& frame, host::BpDimension& statistics,
                   const std::vector<double>& estimates) {
  host::BpGroup& dependent = statistics.Group(frame.Dependent());
  const std::size_t perEquation = frame.ParameterNames().size();
  std::size_t next = 0;
  for (std::size_t i = 0; i < frame.Stats()->Parameters().size(); ++i) {
    // The history holds estimates of non-redundant parameters alone, and hidden ones among them: both are
    // passed over here, in step.
    if (frame.Stats()->RedundancyBits()[i]) continue;
    if (next >= estimates.size()) return;
    const double estimate = estimates[next++];
    if (frame.IsHidden(i)) continue;
    dependent.Group(frame.DependentValue(static_cast<int>(i / perEquation)))
        .Category(TavoOutputFrame::LongTextCell(frame.ParameterNames()[i % perEquation]))
        .Cell(BpNumber{estimate, BpProcedure::Coefficient()});
  }
}

}  // namespace

void OutputIterationHistory(const TavoOutputFrame& frame) {
  if (frame.Stats() == nullptr) return;
  WarnAboutTermination(frame.Stats()->TerminationCode());
  const std::vector<OrvIterationData::Row>& rows = frame.Iterations().Rows();
  if (frame.Specs().HistoryStep() < 1 || rows.empty()) return;

  const auto table = frame.Heading().PivotTable(Key("Iteration History"), "IterationHistory");
  frame.IterationCaption(*table);
  host::BpDimension& iterations = table->Dimension(Key("Iteration Number"));
  iterations.Position(BpPlace::kRow, 1, false, false);
  host::BpDimension& statistics = table->Dimension(Key("Statistics"));
  statistics.Position(BpPlace::kColumn, 1, true, false);
  const auto count = [](int n) { return BpNumber{static_cast<double>(n), BpProcedure::Count()}; };
  for (const OrvIterationData::Row& row : rows) {
    host::BpCategory& iteration = iterations.Category(count(row.iteration));
    statistics.Category(Key("N Step-halving")).Cell(count(row.stepHalvings));
    statistics.Category(Key("Pseudo -2 Log Likelihood"))
        .Cell(BpNumber{row.minusTwoLogLikelihood, BpProcedure::GeneralStat()});
    FillEstimates(frame, statistics, row.estimates);
    if (&row == &rows.back()) NoteConvergence(frame, iteration);
  }
}

}  // namespace tavo
