// The matrix form of a stage's sizes or probabilities.
#include <cassert>

#include "module/command/category_value.h"
#include "module/command/plan/plan_reader.h"
#include "module/command/plan_checks.h"

namespace tavo {

namespace {

constexpr int kValueCells = 1;

bool FindKeyVariables(ParseContext& context, const std::vector<std::string>& names,
                      std::vector<int>& variables) {
  context.messages.SetParameter("MATRIX");
  for (const std::string& name : names) {
    const int index = context.FindVariable(name);
    if (index < 0) return false;
    variables.push_back(index);
  }
  if (!variables.empty()) return true;
  OrvPlanMessages::Report(PlanStatus::kMatrixVariableInvalid, {});
  return false;
}

/// Lays the row's values end to end into `key`. `rowNumber` counts from 1.
bool ReadKey(ParseContext& context, const std::vector<int>& variables,
             const std::vector<std::string>& categories, int rowNumber, std::vector<host::OBS>& key) {
  assert(categories.size() == variables.size());  // the reader of plans lets no other row pass
  key.clear();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const host::VORN_Variable& variable = *context.data.GetVariable(static_cast<unsigned>(variables[i]));
    const std::optional<CategoryValue> value = ReadCategoryValue(variable, categories[i]);
    if (!value) {
      const int column = static_cast<int>(i) + 1;
      return context.messages.InvalidMatrixValue(variable.GetName(), categories[i], rowNumber, column);
    }
    key.insert(key.end(), value->cells.begin(), value->cells.end());
  }
  return true;
}

}  // namespace

std::unique_ptr<StageMatrix> ReadStageMatrix(ParseContext& context, const host::VarCatList& matrix) {
  auto table = std::make_unique<StageMatrix>();
  if (!FindKeyVariables(context, matrix.copyVarList(), table->variables)) return nullptr;
  table->values = std::make_unique<host::ObsVecMap>(
      host::ObsVecMap::MakeKeySpec(context.data, table->variables), kValueCells);
  std::vector<host::OBS> key;
  int rowNumber = 0;
  for (const host::VarCatList::Row& row : matrix.copyMapKeyVal()) {
    if (!ReadKey(context, table->variables, row.categories, ++rowNumber, key)) return nullptr;
    table->values->Insert(key.data())->number = row.value;
  }
  return table;
}

}  // namespace tavo
