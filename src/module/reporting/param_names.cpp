#include "module/reporting/param_names.h"

#include <unordered_map>

#include "host/output.h"
#include "module/reporting/term_text.h"

namespace tavo {

namespace {

std::string VariableName(const host::VORN_DataSource& source, int variable) {
  return source.GetVariable(static_cast<unsigned>(variable))->GetName();
}

std::string EffectName(const OrvModelEffect& effect, const host::VORN_DataSource& source) {
  std::vector<int> variables;
  std::vector<int> numbers;
  effect.Factors(variables, numbers);
  std::vector<FactorTerm> factors;
  for (std::size_t i = 0; i < variables.size(); ++i) {
    factors.push_back({VariableName(source, variables[i]), numbers[i]});
  }
  effect.Covariates(variables, numbers);
  std::vector<std::string> covariates;
  for (const int variable : variables)
    covariates.push_back(VariableName(source, variable));
  return TermText(factors, RepeatedTexts(covariates, numbers), effect.IsFactorAfterCovariates());
}

/// Writes the names of parameters.
class ParameterNamer {
 public:
  ParameterNamer(const TavoValidSpecs& specs, const host::VORN_DataSource& source,
                 const OrvCategoryTexts& categories)
      : fSpecs(specs), fSource(source), fCategories(categories) {}

  /// `inFull`: the values are written in full even where none reads like another.
  std::string Name(const OrvRegrParameter& parameter, bool inFull) const {
    if (parameter.IsIntercept()) return host::FacSTDictionaryLookUp("(Intercept)");
    std::vector<FactorTerm> factors;
    for (std::size_t i = 0; i < parameter.factors.size(); ++i) {
      factors.push_back(
          {FactorValue(parameter.factors[i], parameter.levels[i], inFull), parameter.nestingLevels[i]});
    }
    std::vector<std::string> covariates;
    for (const int column : parameter.covariates)
      covariates.push_back(VariableName(fSource, VariableOf(column)));
    const OrvModelEffect& effect = fSpecs.Effects()[static_cast<std::size_t>(parameter.effectIndex)];
    return TermText(factors, RepeatedTexts(covariates, parameter.multiplicities),
                    effect.IsFactorAfterCovariates());
  }

 private:
  int VariableOf(int column) const { return fSpecs.RecordVariables()[static_cast<std::size_t>(column)]; }

  /// Writes "[A=1]" for a factor's column and code.
  std::string FactorValue(int column, int code, bool inFull) const {
    const int variable = VariableOf(column);
    const std::string value =
        inFull ? fCategories.InFull(variable, code) : fCategories.Printed(variable, code);
    return "[" + VariableName(fSource, variable) + "=" + value + "]";
  }

  const TavoValidSpecs& fSpecs;
  const host::VORN_DataSource& fSource;
  const OrvCategoryTexts& fCategories;
};

}  // namespace

TavoParamNames::TavoParamNames(const TavoValidSpecs& specs, const host::VORN_DataSource& source,
                               const OrvCategoryTexts& categories,
                               const std::vector<OrvRegrParameter>& parameters) {
  for (const OrvModelEffect& effect : specs.Effects())
    fEffects.push_back(EffectName(effect, source));
  const ParameterNamer namer(specs, source, categories);
  std::unordered_map<std::string, int> uses;
  for (const OrvRegrParameter& parameter : parameters) {
    fParameters.push_back(namer.Name(parameter, false));
    ++uses[fParameters.back()];
  }
  // Values that differ can still make one name of two, when a value itself reads like the end of a factor and
  // the begin of another, as "1] * [B=2" does.
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (uses[fParameters[i]] > 1) fParameters[i] = namer.Name(parameters[i], true);
  }
}

}  // namespace tavo
