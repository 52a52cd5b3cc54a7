#include "module/saved/pmml_exporter.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "module/saved/pmml_sections.h"

namespace tavo {

namespace {

using MCCommonMath::MCSymMatrix;
using MCCommonXML::XMLElement;

struct KindTexts {
  const char* modelType;
  const char* name;  // of model and algorithm
  const char* function;
};

KindTexts TextsOf(ModelKind kind) {
  switch (kind) {
    case ModelKind::kGeneralLinear:
      return {"generalLinear", "OrvGLM", "regression"};
    case ModelKind::kOrdinal:
      return {"ordinalMultinomial", "OrvOrdinal", "classification"};
    case ModelKind::kCox:
      return {"CoxRegression", "OrvCox", "regression"};
    default:
      return {"multinomialLogistic", "TavoReg", "classification"};
  }
}

const char* LinkText(CumulativeLink link) {
  constexpr const char* kTexts[] = {"logit", "cauchit", "cloglog", "loglog", "probit"};
  return kTexts[static_cast<std::size_t>(link)];
}

bool HasTargets(ModelKind kind) {
  return kind == ModelKind::kMultinomialLogistic || kind == ModelKind::kOrdinal;
}

bool HasLists(const OrvPMMLModel& model) {
  return model.factors != nullptr && model.covariates != nullptr && model.targetParameters != nullptr &&
         model.estimates != nullptr && model.nonRedundant != nullptr && model.effects != nullptr;
}

bool ListsAgree(const OrvPMMLModel& model) {
  if (model.kind == ModelKind::kCox || model.parameterCount == 0) return true;
  const auto count = static_cast<std::size_t>(std::max(model.parameterCount, 0));
  return model.estimates->size() == count && model.targetParameters->size() <= count;
}

XMLElement& AddRoot(XMLElement& root) {
  root.AddAttribute("version", "4.3");
  root.AddAttribute("xmlns", "http://www.dmg.org/PMML-4_3");
  root.AddAttribute("xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance");
  root.AddAttribute("xsi:schemaLocation", "http://www.dmg.org/PMML-4_3 pmml-4-3.xsd");
  return root;
}

void AddVariableAttribute(XMLElement& element, const char* name, const PMMLSource& source, int variable) {
  if (variable >= 0) element.AddAttribute(name, source.Variable(variable).name);
}

void AddCoxAttributes(XMLElement& element, const PMMLSource& source) {
  const OrvPMMLCox& cox = source.model.cox;
  AddVariableAttribute(element, "subjectIDVariable", source, cox.subject);
  AddVariableAttribute(element, "startTimeVariable", source, cox.startTime);
  AddVariableAttribute(element, "endTimeVariable", source, source.model.dependent);
  AddVariableAttribute(element, "statusVariable", source, source.metadata.events.statusVariable);
  AddVariableAttribute(element, "baselineStrataVariable", source, cox.strata);
}

void AddModelAttributes(XMLElement& element, const PMMLSource& source) {
  const OrvPMMLVariable& dependent = source.Variable(source.model.dependent);
  element.AddAttribute("targetVariableName", dependent.name);
  const int reference = source.reference;
  if (reference >= 1 && reference <= static_cast<int>(dependent.categoryValues.size())) {
    element.AddAttribute("targetReferenceCategory", source.Category(source.model.dependent, reference));
  }
  const KindTexts texts = TextsOf(source.model.kind);
  element.AddAttribute("modelType", texts.modelType);
  element.AddAttribute("modelName", texts.name);
  element.AddAttribute("algorithmName", texts.name);
  element.AddAttribute("functionName", texts.function);
  if (source.model.kind == ModelKind::kOrdinal) {
    element.AddAttribute("cumulativeLink", LinkText(source.model.link));
  }
  if (source.model.kind == ModelKind::kCox) AddCoxAttributes(element, source);
  element.AddAttribute("modelDF", source.model.degreesOfFreedom);
}

void AddModel(XMLElement& root, const PMMLSource& source, const MCSymMatrix* covariance) {
  const OrvPMMLModel& model = source.model;
  XMLElement& element = root.AddChild("GeneralRegressionModel");
  AddModelAttributes(element, source);
  AddExtension(element, "numberParameters", std::to_string(model.parameterCount));
  if (model.subpopulation >= 0) {
    AddExtension(element, "subpopulationVariable", source.Variable(model.subpopulation).name);
  }
  AddMiningSchema(element, source);
  if (model.kind == ModelKind::kMultinomialLogistic) AddOutput(element, source);
  AddParameterList(element, source);
  AddPredictorLists(element, source);
  AddPPMatrix(element, source);
  if (covariance != nullptr) AddPCovMatrix(element, source, *covariance);
  AddParamMatrix(element, source);
  if (model.kind != ModelKind::kCox) return;
  AddEventValues(element, source.metadata.events);
  AddBaselineHazards(element, model.cox);
}

}  // namespace

OrvPMMLExporter::OrvPMMLExporter(const OrvPMMLMetadata& metadata, const OrvPMMLModel& model,
                                 const OrvCancelInfo& cancel)
    : fMetadata(metadata), fModel(model), fCancel(cancel) {
  if (model.dependent < 0) {
    fStatus = OrvStatus::Error(StatusCode::kNoDependent);
  } else if (!HasLists(model) || !ListsAgree(model)) {
    fStatus = OrvStatus::Error(StatusCode::kUserError);
  }
}

void OrvPMMLExporter::SetTargets(std::vector<int> categories, int reference) {
  fTargets = std::move(categories);
  fReference = reference < 0 && !fTargets.empty() ? fTargets.back() : reference;
  fbConsistencyChecked = false;
}

bool OrvPMMLExporter::Fail(std::uint32_t code, int index) {
  fStatus = OrvStatus::Error(code);
  fStatus.SetInteger(0, index);
  return false;
}

bool OrvPMMLExporter::IsKnown(int variable) {
  return fMetadata.Find(variable) != nullptr || Fail(PMMLStatusCode::kUnknownVariable, variable);
}

bool OrvPMMLExporter::CheckFactors() {
  for (const int factor : *fModel.factors) {
    if (!IsKnown(factor)) return false;
    const OrvPMMLVariable& variable = *fMetadata.Find(factor);
    if (!variable.IsCategorical() || variable.categoryValues.empty()) {
      return Fail(PMMLStatusCode::kBadFactor, factor);
    }
  }
  return true;
}

bool OrvPMMLExporter::CheckCovariates() {
  return std::all_of(fModel.covariates->begin(), fModel.covariates->end(),
                     [this](int covariate) { return IsKnown(covariate); });
}

bool OrvPMMLExporter::CheckDependent() {
  if (!IsKnown(fModel.dependent)) return false;
  if (!HasTargets(fModel.kind)) return true;
  const OrvPMMLVariable& variable = *fMetadata.Find(fModel.dependent);
  const int count = static_cast<int>(variable.categoryValues.size());
  const bool areCategories =
      !fTargets.empty() && std::all_of(fTargets.begin(), fTargets.end(),
                                       [&](int target) { return target >= 1 && target <= count; });
  if (variable.IsCategorical() && areCategories) return true;
  return Fail(PMMLStatusCode::kBadDependent, fModel.dependent);
}

bool OrvPMMLExporter::CheckSubpopulation() {
  if (fModel.subpopulation < 0) return true;
  if (!IsKnown(fModel.subpopulation)) return false;
  const OrvPMMLVariable& variable = *fMetadata.Find(fModel.subpopulation);
  if (variable.IsCategorical() && variable.categoryValues.size() == 1) return true;
  return Fail(PMMLStatusCode::kBadSubpopulation, fModel.subpopulation);
}

bool OrvPMMLExporter::CheckCox() {
  if (fModel.kind != ModelKind::kCox) return true;
  if (!IsKnown(fMetadata.events.statusVariable)) return false;
  const OrvPMMLCox& cox = fModel.cox;
  for (const int variable : {cox.startTime, cox.strata, cox.subject}) {
    if (variable >= 0 && !IsKnown(variable)) return false;
  }
  const std::size_t tables = cox.baselineTimes.size();
  bool fits = cox.referencePoints.size() == fModel.targetParameters->size() &&
              cox.baselineStrata.size() == tables && cox.baselineMaximumTimes.size() == tables &&
              cox.baselineHazards.size() == tables && (cox.strata >= 0 || tables <= 1);
  for (std::size_t i = 0; fits && i < tables; ++i)
    fits = cox.baselineTimes[i].size() == cox.baselineHazards[i].size();
  return fits || Fail(PMMLStatusCode::kSizesDiffer);
}

bool OrvPMMLExporter::CheckParameters() {
  for (const OrvRegrParameter& parameter : *fModel.targetParameters) {
    const std::size_t factors = parameter.factors.size();
    if (parameter.levels.size() != factors || parameter.nestingLevels.size() != factors ||
        parameter.multiplicities.size() != parameter.covariates.size()) {
      return Fail(PMMLStatusCode::kSizesDiffer);
    }
    for (std::size_t i = 0; i < factors; ++i) {
      if (!IsKnown(parameter.factors[i])) return false;
      const auto& values = fMetadata.Find(parameter.factors[i])->categoryValues;
      const int level = parameter.levels[i];
      if (level < 1 || level > static_cast<int>(values.size())) {
        return Fail(PMMLStatusCode::kBadFactor, parameter.factors[i]);
      }
    }
    for (const int covariate : parameter.covariates) {
      if (!IsKnown(covariate)) return false;
    }
  }
  return true;
}

/// The estimates must be those that the kind of model has.
bool OrvPMMLExporter::CheckEstimates() {
  const std::size_t parameters = fModel.targetParameters->size();
  const std::size_t equations = fTargets.empty() ? 0 : fTargets.size() - 1;
  std::size_t expected = parameters;
  if (fModel.kind == ModelKind::kMultinomialLogistic) expected = equations * parameters;
  if (fModel.kind == ModelKind::kOrdinal) expected = parameters == 0 ? 0 : equations + parameters - 1;
  return fModel.estimates->size() == expected || Fail(PMMLStatusCode::kSizesDiffer);
}

/// A row for each estimate; with a block for each target where targets have parameters of their own.
bool OrvPMMLExporter::Fits(const MCSymMatrix& covariance) const {
  if (covariance.GetNRows() != fModel.parameterCount) return false;
  return fModel.kind != ModelKind::kMultinomialLogistic ||
         covariance.GetNBlocks() + 1 == static_cast<int>(fTargets.size());
}

const OrvStatus& OrvPMMLExporter::CheckConsistency() {
  if (fStatus.IsError()) return fStatus;
  // In this order: a check may rely on what those before it found sound, such as the categories that levels
  // number.
  const bool isFine = CheckFactors() && CheckCovariates() && CheckDependent() && CheckSubpopulation() &&
                      CheckCox() && CheckParameters() && CheckEstimates();
  if (!isFine) return fStatus;
  fbConsistencyChecked = !fCancel.IsCancelled();
  if (!fbConsistencyChecked) Fail(StatusCode::kCancelled);
  return fStatus;
}

std::unique_ptr<XMLElement> OrvPMMLExporter::BuildTree(const std::vector<std::vector<double>>& categoryCounts,
                                                       const MCSymMatrix* covariance) const {
  const PMMLSource source = MakePMMLSource(fMetadata, fModel, fCancel, fTargets, fReference);
  std::unique_ptr<XMLElement> root = XMLElement::Create("PMML");
  AddRoot(*root);
  AddHeader(*root, fMetadata);
  AddDataDictionary(*root, source, categoryCounts);
  AddModel(*root, source, covariance);
  return root;
}

const OrvStatus& OrvPMMLExporter::Write(std::ostream& out,
                                        const std::vector<std::vector<double>>& categoryCounts,
                                        const MCSymMatrix* covariance) {
  if (fStatus.IsError()) return fStatus;
  if (covariance != nullptr && !Fits(*covariance)) {
    Fail(PMMLStatusCode::kSizesDiffer);
    return fStatus;
  }
  if (!fbConsistencyChecked && CheckConsistency().IsError()) return fStatus;
  // The whole tree before the first byte: a run that is stopped on the way leaves nothing half-written.
  const std::unique_ptr<XMLElement> root = BuildTree(categoryCounts, covariance);
  if (fCancel.IsCancelled()) {
    Fail(StatusCode::kCancelled);
  } else if (fMetadata.isUTF8) {
    WriteTreeUTF8(out, *root);
  } else {
    WriteTree(out, *root);
  }
  return fStatus;
}

}  // namespace tavo
