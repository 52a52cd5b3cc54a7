// Parameters, predictors and how the two belong together.
#include "module/reporting/term_text.h"
#include "module/saved/pmml_sections.h"

namespace tavo {

namespace {

using MCCommonXML::XMLElement;

// Labels follow the parameter names of the tables, but with variables and values as a scoring program knows
// them, and an intercept in plain English: a document is read by programs, whatever the language of the
// output.
std::vector<FactorTerm> FactorTerms(const PMMLSource& source, const OrvRegrParameter& parameter) {
  std::vector<FactorTerm> terms;
  for (std::size_t i = 0; i < parameter.factors.size(); ++i) {
    const int factor = parameter.factors[i];
    terms.push_back(
        {"[" + source.Variable(factor).name + "=" + source.Category(factor, parameter.levels[i]) + "]",
         parameter.nestingLevels[i]});
  }
  return terms;
}

std::string Label(const PMMLSource& source, const OrvRegrParameter& parameter) {
  if (parameter.IsIntercept()) return "Intercept";
  std::vector<std::string> covariates;
  for (const int covariate : parameter.covariates)
    covariates.push_back(source.Variable(covariate).name);
  const auto effect = static_cast<std::size_t>(parameter.effectIndex);
  const bool inParentheses = parameter.effectIndex >= 0 && effect < source.model.effects->size() &&
                             (*source.model.effects)[effect].IsFactorAfterCovariates();
  return TermText(FactorTerms(source, parameter), RepeatedTexts(covariates, parameter.multiplicities),
                  inParentheses);
}

void AddPredictor(XMLElement& list, const PMMLSource& source, int variable) {
  list.AddChild("Predictor").AddAttribute("name", source.Variable(variable).name);
}

XMLElement& StartPPCell(XMLElement& matrix) {
  XMLElement& cell = matrix.AddChild("PPCell");
  cell.ReserveAttributes(3);
  return cell;
}

void EndPPCell(XMLElement& cell, const PMMLSource& source, int variable, const std::string& parameter) {
  cell.AddAttribute("predictorName", source.Variable(variable).name);
  cell.AddAttribute("parameterName", parameter);
}

/// The positions of predictors that stand in an effect, in the first effect's list of predictors.
void FillUsed(PMMLSource& source) {
  const std::vector<OrvModelEffect>& effects = *source.model.effects;
  if (effects.empty() || effects.front().Predictors() == nullptr) return;
  const std::vector<int>& predictors = *effects.front().Predictors();
  const MCCommonMath::MCBitSet used = OrvModelEffect::UsedPositions(effects);
  for (int i = 0; i < static_cast<int>(predictors.size()); ++i) {
    if (!used.IsIn(i)) continue;
    const bool isFactor = i < effects.front().FactorsInModel();
    (isFactor ? source.usedFactors : source.usedCovariates)
        .push_back(predictors[static_cast<std::size_t>(i)]);
  }
}

}  // namespace

std::string PMMLParameterName(std::size_t number) {
  const std::string digits = std::to_string(number);
  const std::size_t zeros = digits.size() < 5 ? 7 - digits.size() : 2;
  return "P" + std::string(zeros, '0') + digits;
}

PMMLSource MakePMMLSource(const OrvPMMLMetadata& metadata, const OrvPMMLModel& model,
                          const OrvCancelInfo& cancel, const std::vector<int>& targets, int reference) {
  PMMLSource source{metadata, model, cancel, targets, reference, {}, {}, {}};
  FillUsed(source);
  for (std::size_t i = 1; i <= model.targetParameters->size(); ++i)
    source.names.push_back(PMMLParameterName(i));
  return source;
}

void AddParameterList(XMLElement& parent, const PMMLSource& source) {
  const std::vector<double>& references = source.model.cox.referencePoints;
  XMLElement& list = parent.AddChild("ParameterList");
  for (std::size_t i = 0; i < source.names.size(); ++i) {
    if (source.cancel.IsCancelled()) return;
    XMLElement& parameter = list.AddChild("Parameter");
    parameter.AddAttribute("name", source.names[i]);
    parameter.AddAttribute("label", Label(source, (*source.model.targetParameters)[i]));
    if (source.model.kind == ModelKind::kCox) parameter.AddAttribute("referencePoint", references[i]);
  }
}

void AddPredictorLists(XMLElement& parent, const PMMLSource& source) {
  if (!source.model.factors->empty() || source.model.subpopulation >= 0) {
    XMLElement& list = parent.AddChild("FactorList");
    for (const int factor : source.usedFactors)
      AddPredictor(list, source, factor);
    // No parameter refers to it, but a scoring program must ask whom the model speaks of.
    if (source.model.subpopulation >= 0) AddPredictor(list, source, source.model.subpopulation);
  }
  if (source.usedCovariates.empty()) return;
  XMLElement& list = parent.AddChild("CovariateList");
  for (const int covariate : source.usedCovariates)
    AddPredictor(list, source, covariate);
}

// A cell ties a parameter to one of its predictors: to a factor by the category, to a covariate by its power.
// A parameter with several cells stands for their product; one without any is the intercept.
void AddPPMatrix(XMLElement& parent, const PMMLSource& source) {
  XMLElement& matrix = parent.AddChild("PPMatrix");
  for (std::size_t p = 0; p < source.names.size(); ++p) {
    if (source.cancel.IsCancelled()) return;
    const OrvRegrParameter& parameter = (*source.model.targetParameters)[p];
    for (std::size_t i = 0; i < parameter.factors.size(); ++i) {
      XMLElement& cell = StartPPCell(matrix);
      cell.AddAttribute("value", source.Category(parameter.factors[i], parameter.levels[i]));
      EndPPCell(cell, source, parameter.factors[i], source.names[p]);
    }
    for (std::size_t i = 0; i < parameter.covariates.size(); ++i) {
      XMLElement& cell = StartPPCell(matrix);
      cell.AddAttribute("value", static_cast<double>(parameter.multiplicities[i]));
      EndPPCell(cell, source, parameter.covariates[i], source.names[p]);
    }
  }
}

}  // namespace tavo
