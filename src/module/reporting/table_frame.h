// What every table needs, and the texts that tables share.
#pragma once

#include <memory>
#include <string>

#include "component/run/output_stats.h"
#include "host/output.h"
#include "module/command/valid_specs.h"
#include "module/frame/procedure_driver.h"
#include "module/reporting/param_names.h"

namespace tavo {

/// Lends everything of a finished run to the tables. Lives while they are built.
class TavoOutputFrame {
 public:
  TavoOutputFrame(host::BpHeading& heading, TavoProcedureDriver& driver, const TavoValidSpecs& specs,
                  const host::ProcedureDataSource& source);

  host::BpHeading& Heading() const { return fHeading; }
  const TavoProcedureDriver& Driver() const { return fDriver; }
  const TavoValidSpecs& Specs() const { return fSpecs; }
  const host::ProcedureDataSource& Source() const { return fSource; }
  /// Null when the run stopped before there were results.
  const TavoOutputStats* Stats() const { return fpStats; }
  const std::vector<std::string>& ParameterNames() const { return fpNames->Parameters(); }
  const std::vector<std::string>& EffectNames() const { return fpNames->Effects(); }
  /// Logits: response categories but the reference.
  int EquationCount() const;

  bool HasSubpopulation() const { return fSpecs.DomainVariable() >= 0; }
  host::BpVariable Variable(int variable) const;
  host::BpVariable Dependent() const { return Variable(fSpecs.DependentVariable()); }
  /// The value of a dictionary variable's code.
  host::BpDataValue Value(int variable, int code) const;
  /// The value of a response category by its place in the model's order, the reference last.
  host::BpDataValue DependentValue(int localIndex) const;
  /// "Subpopulation v = value".
  host::BpComposite SubpopComposite() const;
  /// Dependent variable, reference and model; with the subpopulation when there is one. None without results.
  void ModelCaption(host::BpPivotTable& table) const;
  /// The same for the iteration history, whose caption says that redundant parameters aren't shown.
  void IterationCaption(host::BpPivotTable& table) const;
  /// True for an intercept that the command wants hidden. Parameters are counted over all equations.
  bool IsHidden(std::size_t parameter) const;

  /// A text cell; a text above 255 bytes goes in pieces, as the host's strings are that long at most.
  static host::BpCellText LongTextCell(const std::string& text);

 private:
  void AddCaptionArguments(host::BpComposite& caption, bool lineFirst) const;

  host::BpHeading& fHeading;
  TavoProcedureDriver& fDriver;
  const TavoValidSpecs& fSpecs;
  const host::ProcedureDataSource& fSource;
  const TavoOutputStats* fpStats = nullptr;
  std::unique_ptr<TavoParamNames> fpNames;
};

}  // namespace tavo
