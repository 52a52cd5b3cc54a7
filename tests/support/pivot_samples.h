// Small tables for the tests of the model and of the renderers.
#pragma once

#include <memory>

#include "standalone/output/pivot_builder.h"

namespace test_support {

inline host::VORN_Variable Stype() {
  host::VORN_Variable variable("stype", 1);
  variable.SetLabel("School type");
  host::VORN_ValueLabelMap labels;
  host::OBS cell{};
  std::copy_n("H       ", 8, cell.text);
  labels.AddPair({cell}, "High");
  variable.SetValueLabels(labels);
  return variable;
}

inline host::OBS TextCell(const char* eightBytes) {
  host::OBS cell{};
  std::copy_n(eightBytes, 8, cell.text);
  return cell;
}

/// Two equations (E, High) with an intercept and a covariate, estimates and confidence limits. The second
/// parameter of the second equation is redundant; one number is missing.
inline void FillEstimates(standalone::CommandOutput& output, const host::VORN_Variable& dependent) {
  using host::BpNumber, host::BpProcedure, host::Key, host::Plain;
  const auto procedure = standalone::MakeProcedure(output);
  const auto table = procedure->Heading().PivotTable(Key("Parameter Estimates"), "ParameterEstimates");
  table->Caption(host::BpComposite("Dependent ^1 = ^2 ^3 Model [%1:, ^1:]4")
                     .Add(host::BpVariable{&dependent})
                     .Add(Plain("M"))
                     .Add(Plain("\r"))
                     .Sublist()
                     .Add(Key("(Intercept)"))
                     .Add(Plain("meals"))
                     .EndSublist());
  auto& parameters = table->Dimension(Key("Parameter"));
  auto& equations = table->Dimension(host::BpVariable{&dependent});
  auto& statistics = table->Dimension(Key("Statistics"));
  parameters.Position(host::BpPlace::kRow, 1, false, false);
  equations.Position(host::BpPlace::kRow, 2, false, false);
  statistics.Position(host::BpPlace::kColumn, 1, true, false);
  const double estimates[2][2] = {{1.25, -0.0314}, {12.5, 0}};
  const char* codes[2] = {"E       ", "H       "};
  for (int equation = 0; equation < 2; ++equation) {
    const host::OBS code = TextCell(codes[equation]);
    equations.Category(host::BpDataValue(&dependent, &code));
    for (int parameter = 0; parameter < 2; ++parameter) {
      parameters.Category(parameter == 0 ? Key("(Intercept)") : Plain("meals"));
      const bool isRedundant = equation == 1 && parameter == 1;
      auto& b = statistics.Category(Key("B"));
      b.Cell(BpNumber{estimates[equation][parameter], BpProcedure::Coefficient()});
      if (isRedundant) b.CellNote(Key("Parameter is redundant"));
      auto& limits = statistics.Group(
          host::BpComposite("^1 Confidence Interval").Add(BpNumber{95, BpProcedure::SigDigit()}));
      const double lower = isRedundant ? host::kSystemMissing : estimates[equation][parameter] - 1;
      limits.Category(Key("Lower")).Cell(BpNumber{lower, BpProcedure::Coefficient()});
      limits.Category(Key("Upper")).Cell(BpNumber{lower + (isRedundant ? 0 : 2), BpProcedure::Coefficient()});
    }
  }
}

}  // namespace test_support
