#include "module/saved/predicted_pass.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "component/run/output_stats.h"
#include "module/input/proc_ds_multi_iter.h"
#include "module/saved/predicted_variables.h"

namespace tavo {

namespace {

/// Writes the predictions of one case after the other.
class PredictionWriter {
 public:
  PredictionWriter(const OrvRegInputAdapter& adapter, int dependent, const host::VORN_DataSource& source,
                   const PredictedVariables& variables)
      : fAdapter(adapter),
        fVariables(variables),
        fDependent(dependent),
        fType(source.GetVariable(static_cast<unsigned>(fDependent))->GetType()) {}

  void Write(host::VORN_InputCaseIterator& cases, int category, const std::vector<double>& probabilities) {
    if (fVariables.valueColumn >= 0) WriteCategory(cases, category);
    for (std::size_t i = 0; i < fVariables.probabilityColumns.size(); ++i) {
      cases.SetColumnValue(static_cast<unsigned>(fVariables.probabilityColumns[i]),
                           probabilities[fVariables.categories[i]]);
    }
  }

 private:
  void WriteCategory(host::VORN_InputCaseIterator& cases, int category) const {
    const host::OBS* cells = fAdapter.ValueForCode(fDependent, category);
    if (cells == nullptr) return;
    const auto column = static_cast<unsigned>(fVariables.valueColumn);
    if (fType == 0) {
      cases.SetColumnValue(column, cells->number);
    } else {
      cases.SetColumnValue(column, reinterpret_cast<const char*>(cells), static_cast<std::size_t>(fType));
    }
  }

  const OrvRegInputAdapter& fAdapter;
  const PredictedVariables& fVariables;
  int fDependent;
  int fType;
};

/// False for a case so far out that its linear predictor leaves the range of doubles: what comes out then is no
/// number, and no file could hold it.
bool AreNumbers(const std::vector<double>& probabilities) {
  return std::all_of(probabilities.begin(), probabilities.end(), [](double p) { return std::isfinite(p); });
}

std::vector<int> RequiredCategorical(const TavoValidSpecs& specs) {
  std::vector<int> variables = specs.UsedFactors();
  if (specs.DomainVariable() >= 0) variables.push_back(specs.DomainVariable());
  return variables;
}

}  // namespace

// The record iterator reads one case ahead of what it hands out, so the record is looked at while the case
// still stands.
bool SavePredictions(const TavoValidSpecs& specs, TavoComponent& component, OrvRegInputAdapter& adapter,
                     host::ProcedureDataSource& source) {
  const TavoOutputStats* stats = nullptr;
  if (component.OutputStatistics(stats).IsError()) return false;
  PredictedVariables variables;
  if (!MakePredictedVariables(specs, source, adapter, stats->DependentCategories(), variables)) return false;
  std::unique_ptr<host::ProcDSIterator> cases = AsProcDSIterator(source.NewInputIterator(0));
  if (cases == nullptr) return false;
  host::ProcDSIterator& current = *cases;
  adapter.BeginPredictionPass(current, RequiredCategorical(specs), specs.UsedCovariates());
  source.SetLastPass();
  OrvProcDSMultiIter records(source, std::move(cases), adapter);
  PredictionWriter writer(adapter, specs.DependentVariable(), source, variables);
  std::vector<int> categories;
  std::vector<double> probabilities;
  while (const MCCommon::Record* record = records.Peek()) {
    int category = 0;
    const bool isPredicted = !component.Predict(*record, categories, probabilities, category).IsError();
    if (isPredicted && AreNumbers(probabilities)) {
      writer.Write(current, category, probabilities);
    }
    records.Next();
  }
  return records.IteratorStatus() != MCCommon::kFailed;
}

}  // namespace tavo
