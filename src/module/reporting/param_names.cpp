#include "module/reporting/param_names.h"

#include "host/output.h"
#include "module/input/value_text.h"
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

/// Writes "[A=1]" for a factor's column and code.
std::string FactorValue(const host::VORN_DataSource& source, const OrvRegInputAdapter& adapter, int column,
                        int code) {
  int variable = -1;
  const host::OBS* cells = adapter.ValueForColumnCode(column, code, variable);
  if (cells == nullptr) return "[]";
  const host::VORN_Variable& entry = *source.GetVariable(static_cast<unsigned>(variable));
  return "[" + entry.GetName() + "=" + PrintedValue(entry, cells) + "]";
}

std::string ParameterName(const OrvRegrParameter& parameter, const TavoValidSpecs& specs,
                          const host::VORN_DataSource& source, const OrvRegInputAdapter& adapter) {
  if (parameter.IsIntercept()) return host::FacSTDictionaryLookUp("(Intercept)");
  std::vector<FactorTerm> factors;
  for (std::size_t i = 0; i < parameter.factors.size(); ++i) {
    factors.push_back({FactorValue(source, adapter, parameter.factors[i], parameter.levels[i]),
                       parameter.nestingLevels[i]});
  }
  std::vector<std::string> covariates;
  for (const int column : parameter.covariates) {
    covariates.push_back(VariableName(source, specs.RecordVariables()[static_cast<std::size_t>(column)]));
  }
  const OrvModelEffect& effect = specs.Effects()[static_cast<std::size_t>(parameter.effectIndex)];
  return TermText(factors, RepeatedTexts(covariates, parameter.multiplicities),
                  effect.IsFactorAfterCovariates());
}

}  // namespace

TavoParamNames::TavoParamNames(const TavoValidSpecs& specs, const host::VORN_DataSource& source,
                               const OrvRegInputAdapter& adapter,
                               const std::vector<OrvRegrParameter>& parameters) {
  for (const OrvModelEffect& effect : specs.Effects())
    fEffects.push_back(EffectName(effect, source));
  for (const OrvRegrParameter& parameter : parameters) {
    fParameters.push_back(ParameterName(parameter, specs, source, adapter));
  }
}

}  // namespace tavo
