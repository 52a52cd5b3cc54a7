// Header, data dictionary and mining schema of a model document.
#include <algorithm>

#include "module/saved/pmml_sections.h"

namespace tavo {

namespace {

using MCCommonXML::XMLElement;

const char* OperationType(OrvPMMLVariable::Level level) {
  switch (level) {
    case OrvPMMLVariable::Level::kNominal:
      return "categorical";
    case OrvPMMLVariable::Level::kOrdinal:
      return "ordinal";
    default:
      return "continuous";
  }
}

void AddValue(XMLElement& field, const std::string& value, const std::string& label, const char* property) {
  XMLElement& element = field.AddChild("Value");
  element.AddAttribute("value", value);
  if (!label.empty()) element.AddAttribute("displayValue", label);
  element.AddAttribute("property", property);
}

/// A category by its position from 0.
void AddCategory(XMLElement& field, const OrvPMMLVariable& variable, std::size_t category) {
  const std::string& label =
      category < variable.categoryLabels.size() ? variable.categoryLabels[category] : std::string();
  AddValue(field, variable.categoryValues[category], label, "valid");
}

void AddMissingValues(XMLElement& field, const OrvPMMLVariable& variable) {
  for (std::size_t i = 0; i < variable.missingValues.size(); ++i) {
    const std::string label = i < variable.missingLabels.size() ? variable.missingLabels[i] : std::string();
    AddValue(field, variable.missingValues[i], label, "missing");
  }
}

void AddInterval(XMLElement& field, const char* margin, const std::string& bound) {
  field.AddChild("Interval").AddAttribute("closure", "openOpen").AddAttribute(margin, bound);
}

/// The document type knows missing values one by one only. The bounds of a range go into extensions, which
/// stand before anything else in a field. What is left of the range is what other programs understand: the
/// valid values of a scale are those outside it, as those of a factor are its categories, and the mining
/// schema says that what is not valid is missing.
void AddMissingRange(XMLElement& field, const OrvPMMLVariable& variable) {
  if (!variable.hasMissingInterval) return;
  AddExtension(field, "invalidRangeLower", variable.missingLow);
  AddExtension(field, "invalidRangeUpper", variable.missingHigh);
  if (variable.IsCategorical()) return;
  AddInterval(field, "rightMargin", variable.missingLow);
  AddInterval(field, "leftMargin", variable.missingHigh);
}

XMLElement& StartField(XMLElement& dictionary, const OrvPMMLVariable& variable) {
  XMLElement& field = dictionary.AddChild("DataField");
  field.AddAttribute("name", variable.name);
  field.AddAttribute("displayName", variable.label);
  field.AddAttribute("optype", OperationType(variable.level));
  field.AddAttribute("dataType", variable.type == OrvPMMLVariable::DataType::kString ? "string" : "double");
  AddMissingRange(field, variable);
  return field;
}

void AddDependentField(XMLElement& dictionary, const PMMLSource& source) {
  const OrvPMMLVariable& variable = source.Variable(source.model.dependent);
  XMLElement& field = StartField(dictionary, variable);
  if (variable.IsCategorical()) {
    // In the order of the model, the reference last, as the parameters of the targets come.
    for (const int target : source.targets)
      AddCategory(field, variable, static_cast<std::size_t>(target - 1));
  }
  AddMissingValues(field, variable);
}

void AddFactorField(XMLElement& dictionary, const OrvPMMLVariable& variable,
                    const std::vector<double>& counts) {
  XMLElement& field = StartField(dictionary, variable);
  for (std::size_t i = 0; i < variable.categoryValues.size() && i < counts.size(); ++i) {
    // A category without weight had no part in the fit and has no parameter: to the model it is not a valid
    // value.
    if (counts[i] > 0) AddCategory(field, variable, i);
  }
  AddMissingValues(field, variable);
}

void AddPlainField(XMLElement& dictionary, const OrvPMMLVariable& variable) {
  AddMissingValues(StartField(dictionary, variable), variable);
}

void AddSubpopulationField(XMLElement& dictionary, const OrvPMMLVariable& variable) {
  XMLElement& field = StartField(dictionary, variable);
  // The model says nothing about other values of this variable.
  AddCategory(field, variable, 0);
  AddMissingValues(field, variable);
}

/// Variables of a Cox model besides dependent and predictors; those that there are.
std::vector<int> CoxVariables(const PMMLSource& source, bool withStatus) {
  if (source.model.kind != ModelKind::kCox) return {};
  const OrvPMMLCox& cox = source.model.cox;
  std::vector<int> variables;
  for (const int variable :
       {withStatus ? source.metadata.events.statusVariable : -1, cox.startTime, cox.strata, cox.subject}) {
    if (variable >= 0) variables.push_back(variable);
  }
  return variables;
}

void AddMiningField(XMLElement& schema, const PMMLSource& source, int variable, const char* usage) {
  XMLElement& field = schema.AddChild("MiningField");
  field.AddAttribute("name", source.Variable(variable).name);
  field.AddAttribute("usageType", usage);
  // Nothing is imputed: a case that lacks a predictor gets no prediction, as in the run itself.
  field.AddAttribute("missingValueTreatment", "asIs");
  const bool isPredictor = variable != source.model.dependent;
  if (isPredictor && source.Variable(variable).hasMissingInterval) {
    field.AddAttribute("invalidValueTreatment", "asMissing");
  }
}

/// A name that no field of the document has.
std::string OutputName(std::string name, const PMMLSource& source) {
  const auto isTaken = [&](const OrvPMMLVariable& variable) { return variable.name == name; };
  const std::vector<OrvPMMLVariable>& variables = source.metadata.Variables();
  while (std::any_of(variables.begin(), variables.end(), isTaken))
    name += "_";
  return name;
}

}  // namespace

void AddExtension(XMLElement& parent, const char* name, const std::string& value) {
  XMLElement& extension = parent.AddChild("Extension");
  extension.AddAttribute("extender", kPMMLExtender);
  extension.AddAttribute("name", name);
  extension.AddAttribute("value", value);
}

void AddHeader(XMLElement& parent, const OrvPMMLMetadata& metadata) {
  XMLElement& header = parent.AddChild("Header");
  header.AddAttribute("copyright", metadata.copyright);
  XMLElement& application = header.AddChild("Application");
  application.AddAttribute(
      "name", metadata.applicationName.empty() ? "VORN Statistics 17.0" : metadata.applicationName);
  application.AddAttribute("version",
                           metadata.applicationVersion.empty() ? "17.0" : metadata.applicationVersion);
}

void AddDataDictionary(XMLElement& parent, const PMMLSource& source,
                       const std::vector<std::vector<double>>& categoryCounts) {
  const OrvPMMLModel& model = source.model;
  const std::vector<int> others = CoxVariables(source, true);
  const std::size_t fields = model.factors->size() + model.covariates->size() + 1 +
                             (model.subpopulation >= 0 ? 1 : 0) + others.size();
  XMLElement& dictionary = parent.AddChild("DataDictionary");
  dictionary.AddAttribute("numberOfFields", static_cast<double>(fields));
  AddDependentField(dictionary, source);
  const std::vector<double> none;
  for (std::size_t i = 0; i < model.factors->size(); ++i) {
    AddFactorField(dictionary, source.Variable((*model.factors)[i]),
                   i < categoryCounts.size() ? categoryCounts[i] : none);
  }
  for (const int covariate : *model.covariates)
    AddPlainField(dictionary, source.Variable(covariate));
  if (model.subpopulation >= 0) AddSubpopulationField(dictionary, source.Variable(model.subpopulation));
  for (const int variable : others)
    AddPlainField(dictionary, source.Variable(variable));
}

void AddMiningSchema(XMLElement& parent, const PMMLSource& source) {
  const OrvPMMLModel& model = source.model;
  const bool isCox = model.kind == ModelKind::kCox;
  XMLElement& schema = parent.AddChild("MiningSchema");
  AddMiningField(schema, source, model.dependent, isCox ? "active" : "predicted");
  if (isCox) AddMiningField(schema, source, source.metadata.events.statusVariable, "predicted");
  for (const int factor : source.usedFactors)
    AddMiningField(schema, source, factor, "active");
  for (const int covariate : source.usedCovariates)
    AddMiningField(schema, source, covariate, "active");
  for (const int variable : CoxVariables(source, false))
    AddMiningField(schema, source, variable, "active");
  if (model.subpopulation >= 0) AddMiningField(schema, source, model.subpopulation, "active");
}

void AddOutput(XMLElement& parent, const PMMLSource& source) {
  const OrvPMMLVariable& dependent = source.Variable(source.model.dependent);
  XMLElement& output = parent.AddChild("Output");
  XMLElement& category = output.AddChild("OutputField");
  category.AddAttribute("name", OutputName("predicted_" + dependent.name, source));
  category.AddAttribute("optype", OperationType(dependent.level));
  category.AddAttribute("dataType",
                        dependent.type == OrvPMMLVariable::DataType::kString ? "string" : "double");
  category.AddAttribute("feature", "predictedValue");
  for (std::size_t target = 0; target < source.targets.size(); ++target) {
    const std::string& value = source.TargetValue(target);
    XMLElement& probability = output.AddChild("OutputField");
    probability.AddAttribute("name", OutputName("probability_" + value, source));
    probability.AddAttribute("optype", "continuous");
    probability.AddAttribute("dataType", "double");
    probability.AddAttribute("feature", "probability");
    probability.AddAttribute("value", value);
  }
}

}  // namespace tavo
