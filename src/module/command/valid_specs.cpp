#include "module/command/valid_specs.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace tavo {

namespace {

template <class Element>
bool Contains(const std::vector<Element>& list, Element element) {
  return std::find(list.begin(), list.end(), element) != list.end();
}

template <class Element>
bool AddOnce(std::vector<Element>& list, Element element) {
  if (Contains(list, element)) return false;
  list.push_back(element);
  return true;
}

bool IsAdjusted(TestType type) {
  return type == TestType::AdjustedWaldF || type == TestType::AdjustedWaldChiSquare;
}

/// -1 for a variable that has no column.
int ColumnOf(const std::map<int, int>& columns, int variable) {
  const auto found = columns.find(variable);
  return found == columns.end() ? -1 : found->second;
}

/// The element at an index that may lie outside; null then.
template <class Element>
const Element* ElementAt(const std::vector<Element>& list, int i) {
  return i >= 0 && i < static_cast<int>(list.size()) ? &list[static_cast<std::size_t>(i)] : nullptr;
}

std::string ItemText(const FactorSpec* item) {
  if (item == nullptr || item->variable < 0) return {};
  return TavoValidSpecs::ValueText(item->value, true);
}

std::string Trimmed(const std::string& text) {
  const std::size_t last = text.find_last_not_of(' ');
  return last == std::string::npos ? std::string() : text.substr(0, last + 1);
}

}  // namespace

void TavoValidSpecs::SetDependent(int variable, bool highReference, CategoryValue reference) {
  fDependent = variable;
  fbHighReference = highReference;
  fReference = std::move(reference);
}

void TavoValidSpecs::SetDomain(int variable, CategoryValue value) {
  fDomain = variable;
  fDomainValue = std::move(value);
}

void TavoValidSpecs::SetCustomTests(std::vector<OrvCustomTest> tests, std::vector<std::string> labels) {
  if (tests.size() != labels.size()) return;
  fCustomTests = std::move(tests);
  fCustomTestLabels = std::move(labels);
}

void TavoValidSpecs::SetOddsRatios(std::vector<OrvOddsRatioSpec> requests,
                                   std::vector<OddsRatioItems> items) {
  if (requests.size() != items.size()) return;
  fOddsRatios = std::move(requests);
  fOddsRatioItems = std::move(items);
}

OrvOddsRatioSpec TavoValidSpecs::RecordOddsRatio(std::size_t number, const std::vector<int>& factorCodes,
                                                 const std::vector<int>& controlCodes) const {
  const OrvOddsRatioSpec& request = fOddsRatios[number];
  assert(factorCodes.size() == request.Factors().size());
  assert(controlCodes.size() == request.Controls().size());
  OrvOddsRatioSpec record;
  for (std::size_t i = 0; i < request.Factors().size(); ++i) {
    record.AddFactor(ColumnOf(CategoricalRecordMap(), request.Factors()[i].variable), factorCodes[i]);
  }
  for (std::size_t i = 0; i < request.Covariates().size(); ++i) {
    record.AddCovariate(ColumnOf(ContinuousRecordMap(), request.Covariates()[i]), request.Changes()[i]);
  }
  for (std::size_t i = 0; i < request.Controls().size(); ++i) {
    const auto& [variable, value] = request.Controls()[i];
    // Controls of both kinds stand in one list: the code tells which map the variable is in.
    if (controlCodes[i] < OrvOddsRatioSpec::kLowest) {
      record.AddControl(ColumnOf(ContinuousRecordMap(), variable), value);
    } else {
      record.AddControl(ColumnOf(CategoricalRecordMap(), variable), controlCodes[i]);
    }
  }
  return record;
}

std::string TavoValidSpecs::FactorItemText(int item, int request) const {
  const OddsRatioItems* items = ElementAt(fOddsRatioItems, request);
  return items == nullptr ? std::string() : ItemText(ElementAt(items->factors, item));
}

std::string TavoValidSpecs::ControlItemText(int item, int request) const {
  const OddsRatioItems* items = ElementAt(fOddsRatioItems, request);
  return items == nullptr ? std::string() : ItemText(ElementAt(items->controls, item));
}

void TavoValidSpecs::SetPredictedProbabilities(std::string root, int maximum) {
  fPredictedProbabilityRoot = std::move(root);
  fMaximumPredictedProbabilities = maximum;
}

void TavoValidSpecs::SetPredictedValue(std::string name, int variable) {
  fPredictedValueName = std::move(name);
  fPredictedValueVariable = variable;
}

std::int64_t TavoValidSpecs::NewVariableCount() const {
  const std::int64_t probabilities = fPredictedProbabilityRoot.empty() ? 0 : fMaximumPredictedProbabilities;
  return probabilities + (fPredictedValueName.empty() ? 0 : 1);
}

void TavoValidSpecs::SetConfidenceLevel(double percent) {
  if (percent >= 0 && percent < 100) fConfidenceLevel = percent;
}

// The next and the two limits below look at the present value. Arguments are range-checked where the command
// is read.
void TavoValidSpecs::SetLogLikConvergence(double value, bool relative) {
  fbLogLikRelative = relative;
  if (fLogLikConvergence >= 0) fLogLikConvergence = value;
}

void TavoValidSpecs::SetParamConvergence(double value, bool relative) {
  fbParamRelative = relative;
  if (value >= 0) fParamConvergence = value;
}

void TavoValidSpecs::SetMaximumIterations(int value) {
  if (fMaximumIterations >= 0) fMaximumIterations = value;
}

void TavoValidSpecs::SetMaximumStepHalving(int value) {
  if (fMaximumStepHalving > 0) fMaximumStepHalving = value;
}

bool TavoValidSpecs::AddStatistic(Statistic statistic) {
  return AddOnce(fStatistics, statistic);
}

bool TavoValidSpecs::AddPrintOption(PrintOption option) {
  return AddOnce(fPrintOptions, option);
}

bool TavoValidSpecs::Has(Statistic statistic) const {
  return Contains(fStatistics, statistic);
}

bool TavoValidSpecs::Has(PrintOption option) const {
  return Contains(fPrintOptions, option);
}

void TavoValidSpecs::NumberColumns() {
  assert(RecordLength() == 0);
  OrvPlanValidSpecs::NumberColumns();
  fDependentColumn = fDependent >= 0 ? CategoricalColumn(fDependent) : -1;
  for (const int factor : fFactors)
    fFactorColumns.push_back(CategoricalColumn(factor));
  for (const int covariate : fCovariates)
    fCovariateColumns.push_back(ContinuousColumn(covariate));
  // Complete before an effect refers to it: it must not move afterwards.
  fRecordPredictors = fFactorColumns;
  fRecordPredictors.insert(fRecordPredictors.end(), fCovariateColumns.begin(), fCovariateColumns.end());
  fRecordEffects = fEffects;
  for (OrvModelEffect& effect : fRecordEffects)
    effect.SetPredictors(&fRecordPredictors);
  // Last: a subpopulation variable that the design has too keeps the column of the design.
  fDomainColumn = fDomain >= 0 ? CategoricalColumn(fDomain) : -1;
}

TavoCompSettings TavoValidSpecs::BuildSettings(const FirstPassFindings& found) const {
  assert(found.factorLevels.size() == fFactors.size());
  TavoCompSettings settings;
  FillPlanSettings(settings);
  GiveOptions(settings);
  settings.SetDependent(fDependentColumn, found.dependentCategories, found.referenceCode);
  for (std::size_t i = 0; i < fFactors.size(); ++i)
    settings.AddFactor(fFactorColumns[i], found.factorLevels[i]);
  for (const int column : fCovariateColumns)
    settings.AddCovariate(column);
  for (const OrvModelEffect& effect : fRecordEffects)
    settings.AddEffect(effect);
  if (fDomain >= 0) settings.SetSubpop(fDomainColumn, found.domainCode);
  return settings;
}

void TavoValidSpecs::GiveOptions(TavoCompSettings& settings) const {
  settings.SetIntercept(fbUseIntercept);
  settings.SetStartingIteration(fCheckSeparation);
  // A percentage for the user, a share from here on.
  settings.SetConfidence(fConfidenceLevel / 100);
  if (fDegreesOfFreedom >= 0) settings.SetDegreesOfFreedom(fDegreesOfFreedom);
  settings.SetLogLikCriterion(fLogLikConvergence);
  settings.SetLogLikAbsolute(!fbLogLikRelative);
  settings.SetMaxIterations(fMaximumIterations);
  settings.SetMaxStepHalving(fMaximumStepHalving);
  settings.SetParamCriterion(fParamConvergence);
  settings.SetParamAbsolute(!fbParamRelative);
  if (fSingularity > 0) settings.SetTolerance(fSingularity);
  settings.SetTestType(fTestType);
  settings.SetAdjustment(fAdjustment);
  if (fHistoryStep > 0) settings.SetHistoryFrequency(fHistoryStep);
  // Adjusted tests and design effects compare with simple random sampling; nothing else does.
  settings.SetNeedSRS(IsAdjusted(fTestType) || Has(Statistic::DEFF) || Has(Statistic::DEFFSQRT));
}

std::string TavoValidSpecs::ValueText(const CategoryValue& value, bool trim) {
  if (value.Empty()) return {};
  std::string text;
  host::ToString(value.cells.data(), value.format, text);
  return trim || !value.format.IsString() ? Trimmed(text) : text;
}

}  // namespace tavo
