#include "module/input/reg_input_adapter.h"

#include <algorithm>
#include <utility>

#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::MCMV;

namespace {

OrvAdaptContVar::Kind KindOf(const OrvPlanValidSpecs& specs, int column) {
  if (specs.IsSizeColumn(column)) return OrvAdaptContVar::Kind::kPopulationSize;
  if (specs.IsRateColumn(column)) return OrvAdaptContVar::Kind::kInclusionProbability;
  return OrvAdaptContVar::Kind::kPlain;
}

}  // namespace

OrvInputAdapter::OrvInputAdapter(const OrvPlanValidSpecs& specs, const host::VORN_DataSource& source,
                                 const host::VORN_InputCaseIterator& iterator,
                                 const OrvVariableReporter& reporter, bool listwise, bool includeUserMissing)
    : fSpecs(specs), fReporter(reporter), fbListwise(listwise) {
  for (const auto& [variable, column] : specs.CategoricalRecordMap()) {
    fVariablePosition[variable] = fCategorical.size();
    fCategorical.push_back(
        {OrvAdaptCatVar(source, iterator, variable, includeUserMissing), static_cast<std::size_t>(column)});
  }
  for (const auto& [variable, column] : specs.ContinuousRecordMap()) {
    fContinuous.push_back(
        {OrvAdaptContVar(iterator, variable, KindOf(specs, column)), static_cast<std::size_t>(column)});
  }
  for (const auto& [position, column] : specs.MatrixRecordMap()) {
    const PlanStageSpec& stage = specs.Stages()[static_cast<std::size_t>(position)];
    const bool isSize = stage.stage.InclusionType() == InclProbType::kPopSizeMatrix;
    fMatrices.push_back(
        {OrvAdaptMatrixVar(iterator, *stage.matrix, stage.stage.stageNumber, isSize, includeUserMissing),
         static_cast<std::size_t>(column)});
  }
}

// Every variable is read even after a missing one, so that the code tables hold all values of the first pass.
bool OrvInputAdapter::FillCategorical(double* record) {
  bool complete = true;
  const auto store = [&](std::size_t column, double code) {
    record[column] = code > 0 ? code : MCMV::gMissingValue;
    complete = complete && code > 0;
  };
  if (fNPass == 0) {
    for (auto& [variable, column] : fCategorical)
      store(column, variable.InsertCode());
  } else {
    for (const auto& [variable, column] : fCategorical)
      store(column, variable.LookUpCode());
  }
  return complete;
}

bool OrvInputAdapter::FillContinuous(double* record) {
  for (const auto& [variable, column] : fContinuous) {
    bool invalid = false;
    bool missingAllowed = false;
    const double value = variable.GetValue(invalid, missingAllowed);
    record[column] = value;
    if (invalid) {
      ReportInvalid(variable);
      return false;
    }
    if (value != MCMV::gMissingValue) continue;
    // A missing size or probability is for the design pass to judge, which knows the stratum; a case without
    // a weight can have no part in anything.
    if (fbListwise && !missingAllowed) return false;
    if (variable.Variable() == fSpecs.WeightVariable()) return false;
  }
  return true;
}

bool OrvInputAdapter::FillMatrix(double* record) {
  bool complete = true;
  for (auto& [variable, column] : fMatrices) {
    bool notFound = false;
    record[column] = variable.GetValue(notFound);
    if (record[column] == MCMV::gMissingValue) complete = false;
    if (notFound) {
      // One message a case: the stages below would only repeat that the key is unknown.
      ReportNotInMatrix(variable);
      break;
    }
  }
  return complete;
}

void OrvInputAdapter::ReportInvalid(const OrvAdaptContVar& variable) const {
  if (variable.GetKind() == OrvAdaptContVar::Kind::kPopulationSize) {
    fReporter.InvalidPopulationSize(variable.Variable(), fCounts.casesRead);
  } else {
    fReporter.InvalidInclusionProbability(variable.Variable(), fCounts.casesRead);
  }
}

void OrvInputAdapter::ReportNotInMatrix(const OrvAdaptMatrixVar& variable) const {
  std::vector<std::pair<int, const host::OBS*>> key;
  for (std::size_t i = 0; i < variable.KeyVariables().size(); ++i) {
    key.emplace_back(variable.KeyVariables()[i], variable.KeyValues()[i].Cells());
  }
  fReporter.NotInMatrix(variable.IsSize(), variable.StageNumber(), key);
}

void OrvInputAdapter::BeginPass(const host::VORN_InputCaseIterator& iterator) {
  ++fNPass;
  fCounts = Counters();
  for (auto& filled : fCategorical)
    filled.variable.Rebind(iterator);
  for (auto& filled : fContinuous)
    filled.variable.Rebind(iterator);
  for (auto& filled : fMatrices)
    filled.variable.Rebind(iterator);
}

const OrvAdaptCatVar* OrvInputAdapter::CategoricalOf(int variable) const {
  const auto found = fVariablePosition.find(variable);
  return found == fVariablePosition.end() ? nullptr : &fCategorical[found->second].variable;
}

OrvAdaptCatVar* OrvInputAdapter::CategoricalOf(int variable) {
  return const_cast<OrvAdaptCatVar*>(std::as_const(*this).CategoricalOf(variable));
}

const host::OBS* OrvInputAdapter::ValueForCode(int variable, int code) const {
  const OrvAdaptCatVar* found = CategoricalOf(variable);
  return found == nullptr ? nullptr : found->ValueForCode(code);
}

const host::OBS* OrvInputAdapter::ValueForColumnCode(int column, int code, int& variable) const {
  const std::vector<int>& variables = fSpecs.RecordVariables();
  if (column < 0 || column >= static_cast<int>(variables.size())) return nullptr;
  variable = variables[static_cast<std::size_t>(column)];
  return ValueForCode(variable, code);
}

int OrvInputAdapter::CodeForValue(int variable, const host::OBS* cells, bool& notFound, bool insert) {
  OrvAdaptCatVar* found = CategoricalOf(variable);
  notFound = found == nullptr || found->CodeOf(cells, false) == 0;
  if (found == nullptr) return 0;
  return static_cast<int>(found->CodeOf(cells, insert));
}

int OrvRegInputAdapter::CategoryCount(int variable) const {
  const OrvAdaptCatVar* found = CategoricalOf(variable);
  return found == nullptr ? 0 : found->Count();
}

void OrvRegInputAdapter::SortCategories(int variable, bool ascending) {
  if (OrvAdaptCatVar* found = CategoricalOf(variable)) found->Sort(ascending);
}

namespace {

bool IsIn(const std::vector<int>& variables, int variable) {
  return std::find(variables.begin(), variables.end(), variable) != variables.end();
}

}  // namespace

// A variable that scoring doesn't need may hold anything: its declared missing values count as values.
void OrvRegInputAdapter::BeginPredictionPass(const host::VORN_InputCaseIterator& iterator,
                                             const std::vector<int>& requiredCategorical,
                                             const std::vector<int>& requiredContinuous) {
  ++fNPass;
  fCounts = Counters();
  fbPredictionMode = true;
  fRequiredCategorical.clear();
  fRequiredContinuous.clear();
  for (auto& filled : fCategorical) {
    const bool required = IsIn(requiredCategorical, filled.variable.Variable());
    fRequiredCategorical.push_back(required);
    filled.variable.Rebind(iterator, !required || fbIncludeUserMissing);
  }
  for (auto& filled : fContinuous) {
    const bool required = IsIn(requiredContinuous, filled.variable.Variable());
    fRequiredContinuous.push_back(required);
    filled.variable.Rebind(iterator, !required);
  }
  for (auto& filled : fMatrices)
    filled.variable.Rebind(iterator);
}

bool OrvRegInputAdapter::FillCategorical(double* record) {
  if (!fbPredictionMode) return OrvInputAdapter::FillCategorical(record);
  bool complete = true;
  for (std::size_t i = 0; i < fCategorical.size(); ++i) {
    const double code = fCategorical[i].variable.LookUpCode();
    record[fCategorical[i].column] = code > 0 ? code : MCMV::gMissingValue;
    if (!(code > 0) && fRequiredCategorical[i] != 0) complete = false;
  }
  return complete;
}

bool OrvRegInputAdapter::FillContinuous(double* record) {
  if (!fbPredictionMode) return OrvInputAdapter::FillContinuous(record);
  for (std::size_t i = 0; i < fContinuous.size(); ++i) {
    bool invalid = false;
    bool missingAllowed = false;
    const double value = fContinuous[i].variable.GetValue(invalid, missingAllowed);
    record[fContinuous[i].column] = value;
    if (value == MCMV::gMissingValue && fRequiredContinuous[i] != 0) return false;
  }
  return true;
}

bool OrvRegInputAdapter::FillMatrix(double* record) {
  // Scoring uses no design value: one that can't be had costs no case and no message.
  if (!fbPredictionMode) return OrvInputAdapter::FillMatrix(record);
  for (auto& [variable, column] : fMatrices) {
    bool notFound = false;
    record[column] = variable.GetValue(notFound);
  }
  return true;
}

}  // namespace tavo
