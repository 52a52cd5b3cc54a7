// What every table needs, and the texts that tables share.
#pragma once

#include <string>
#include <vector>

#include "host/output.h"
#include "module/input/category_texts.h"
#include "module/reporting/finished_run.h"
#include "module/reporting/param_names.h"

namespace tavo {

/// A finished run as the tables write it: its variables, values, names and captions. Lives while they are
/// built.
class TavoOutputFrame {
 public:
  /// The heading, which takes the tables, is not owned.
  TavoOutputFrame(host::BpHeading& heading, const FinishedRun& run);

  host::BpHeading& Heading() const { return fHeading; }
  const TavoValidSpecs& Specs() const { return fRun.specs; }
  const FirstPassFindings& Found() const { return fRun.found; }
  const host::ProcedureDataSource& Source() const { return fRun.source; }
  const OrvRegInputAdapter& Adapter() const { return fRun.adapter; }
  const OrvIterationData& Iterations() const { return fRun.iterations; }
  host::MCStopProcessor* StopProcessor() const { return fRun.stop; }
  /// Null when the run stopped before there were results.
  const TavoOutputStats* Stats() const { return fRun.stats; }
  const std::vector<std::string>& ParameterNames() const { return fNames.Parameters(); }
  const std::vector<std::string>& EffectNames() const { return fNames.Effects(); }
  /// Logits: response categories but the reference.
  int EquationCount() const;

  bool HasSubpopulation() const { return Specs().DomainVariable() >= 0; }
  host::BpVariable Variable(int variable) const;
  host::BpVariable Dependent() const { return Variable(Specs().DependentVariable()); }
  /// The texts of categories; all that is written about the run takes them from here.
  const OrvCategoryTexts& Categories() const { return fCategories; }
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
  FinishedRun fRun;
  OrvCategoryTexts fCategories;
  TavoParamNames fNames;
};

}  // namespace tavo
