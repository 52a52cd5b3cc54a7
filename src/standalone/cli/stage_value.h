// The population size or inclusion probability that a plan gives the units of a stage.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/data.h"
#include "module/command/plan/plan_data.h"
#include "standalone/cli/plan_check.h"

namespace standalone {

/// Reads the value case by case, and collects what is wrong with it. Cases are numbered from 1.
class StageValue {
 public:
  /// The stage and the data are not owned. `variable` and `matrix` are the places of the value's variable and
  /// of the matrix variables in the data. Only equal probabilities without replacement have a value.
  StageValue(const tavo::OrvPlanStage& stage, int variable, const std::vector<int>& matrix,
             const host::VORN_DataSource& source, const host::VORN_InputCaseIterator& iterator);

  /// True for population sizes, false for probabilities.
  static bool IsSize(const tavo::OrvPlanStage& stage);
  /// "population size" or "inclusion probability".
  static const char* Name(const tavo::OrvPlanStage& stage);

  /// True when the value is a matter of the cases.
  bool Varies() const { return fValue.has_value() || fMatrix.has_value(); }
  /// The value for all units; missing when there is none, or when it varies.
  double Constant() const { return fConstant; }
  /// The value of the current case, missing when it has none or one that can't be. `caseNumber` counts
  /// from 1.
  double Current(std::size_t caseNumber);
  /// What was wrong with the matrix and the values; `stageName` is put in front.
  void AddFindings(const std::string& stageName, std::vector<PlanFinding>& findings) const;

 private:
  bool IsPossible(double value) const;
  void FillMatrix(const std::vector<int>& variables, const host::VORN_DataSource& source,
                  const host::VORN_InputCaseIterator& iterator);
  void EnterRow(const host::VarCatList::Row& row, std::size_t number);
  double InMatrix();
  std::string MatrixKey() const;

  const tavo::OrvPlanStage& fStage;
  double fConstant = host::kSystemMissing;
  std::optional<host::CaseValue> fValue;
  std::optional<host::ObsVecMap> fMatrix;
  std::vector<const host::VORN_Variable*> fMatrixVariables;
  std::vector<host::CaseValue> fMatrixValues;
  std::vector<host::OBS> fKey;
  PlanFinding fUnreadable, fNotInMatrix, fImpossible;
};

}  // namespace standalone
