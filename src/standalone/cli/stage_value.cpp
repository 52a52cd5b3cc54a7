#include "standalone/cli/stage_value.h"

#include "module/command/category_value.h"
#include "standalone/output/content_text.h"
#include "standalone/output/template.h"
#include "standalone/text/numbers.h"

namespace standalone {

using host::kSystemMissing;
using tavo::OrvPlanStage;
using tavo::PlanValueWay;

// Only selection with equal probabilities without replacement takes a number by case: the other estimators
// need none, or have it in a file of joint probabilities.
StageValue::StageValue(const OrvPlanStage& stage, int variable, const std::vector<int>& matrix,
                       const host::VORN_DataSource& source, const host::VORN_InputCaseIterator& iterator)
    : fStage(stage) {
  if (stage.method != tavo::PlanMethod::EQUAL_WOR) return;
  if (stage.valueWay == PlanValueWay::BY_VALUE) fConstant = stage.value;
  if (stage.valueWay == PlanValueWay::BY_VARNAME) fValue.emplace(iterator, static_cast<unsigned>(variable));
  if (stage.valueWay == PlanValueWay::BY_VARCATLIST) FillMatrix(matrix, source, iterator);
}

bool StageValue::IsSize(const OrvPlanStage& stage) {
  return stage.valueKind == tavo::PlanValueKind::POPSIZE;
}

const char* StageValue::Name(const OrvPlanStage& stage) {
  return IsSize(stage) ? "population size" : "inclusion probability";
}

double StageValue::Current(std::size_t caseNumber) {
  if (fMatrix) return InMatrix();
  if (fValue->IsMissing()) return kSystemMissing;
  const double value = fValue->Number();
  if (IsPossible(value)) return value;
  if (fImpossible.TakesExample()) {
    fImpossible.examples.push_back("case " + std::to_string(caseNumber) + ": " + ShortestText(value));
  }
  return kSystemMissing;
}

// A population is counted in whole units; a probability may be 1, for units that are taken with certainty.
bool StageValue::IsPossible(double value) const {
  if (!(value > 0)) return false;
  return IsSize(fStage) ? host::FUZZYINTEGER(&value) : value <= 1;
}

void StageValue::FillMatrix(const std::vector<int>& variables, const host::VORN_DataSource& source,
                            const host::VORN_InputCaseIterator& iterator) {
  fMatrix.emplace(host::ObsVecMap::MakeKeySpec(source, variables), 1);
  for (const int variable : variables) {
    fMatrixVariables.push_back(source.GetVariable(static_cast<unsigned>(variable)));
    fMatrixValues.emplace_back(iterator, static_cast<unsigned>(variable));
  }
  std::size_t number = 0;
  for (const host::VarCatList::Row& row : fStage.valueMatrix.copyMapKeyVal())
    EnterRow(row, ++number);
}

// A row whose categories can't be read as values of their variables could never match a case, so it is a
// finding of its own and not one of the cases that it leaves without a row.
void StageValue::EnterRow(const host::VarCatList::Row& row, std::size_t number) {
  fKey.clear();
  for (std::size_t i = 0; i < row.categories.size(); ++i) {
    const auto value = tavo::ReadCategoryValue(*fMatrixVariables[i], row.categories[i]);
    if (!value) {
      if (!fUnreadable.TakesExample()) return;
      fUnreadable.examples.push_back("row " + std::to_string(number) + ": " +
                                     MessageArgument(row.categories[i]) + " for " +
                                     fMatrixVariables[i]->GetName());
      return;
    }
    fKey.insert(fKey.end(), value->cells.begin(), value->cells.end());
  }
  fMatrix->Insert(fKey.data())->number = row.value;
}

double StageValue::InMatrix() {
  fKey.clear();
  for (std::size_t i = 0; i < fMatrixValues.size(); ++i) {
    if (fMatrixValues[i].IsMissing()) return kSystemMissing;
    const int cells = host::CellCount(fMatrixVariables[i]->GetType());
    fKey.insert(fKey.end(), fMatrixValues[i].Cells(), fMatrixValues[i].Cells() + cells);
  }
  if (const host::OBS* found = fMatrix->Contains(fKey.data())) return found->number;
  fMatrix->Insert(fKey.data())->number = kSystemMissing;  // told once
  if (fNotInMatrix.TakesExample()) fNotInMatrix.examples.push_back(MatrixKey());
  return kSystemMissing;
}

// As a user would look for the row in the plan.
std::string StageValue::MatrixKey() const {
  std::string text;
  for (std::size_t i = 0; i < fMatrixValues.size(); ++i) {
    text += (text.empty() ? "" : ", ") + fMatrixVariables[i]->GetName() + "=" +
            MessageArgument(ValueText(*fMatrixVariables[i], fMatrixValues[i].Cells()));
  }
  return text;
}

void StageValue::AddFindings(const std::string& stageName, std::vector<PlanFinding>& findings) const {
  const auto add = [&](PlanFinding finding, const std::string& text) {
    if (finding.examples.empty()) return;
    finding.stopsRun = true;
    finding.text = stageName + ": " + text;
    findings.push_back(std::move(finding));
  };
  const std::string name = Name(fStage);
  add(fUnreadable, "rows of the matrix cannot be read as values of their variables.");
  add(fNotInMatrix, "the matrix has no row for these cases, so they have no " + name + ".");
  add(fImpossible, "the " + name + " in " + fStage.valueVariable.Text() +
                       (IsSize(fStage) ? " is not a whole number above 0 in some cases."
                                       : " is not above 0 and at most 1 in some cases."));
}

}  // namespace standalone
