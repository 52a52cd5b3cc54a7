#include "problem_files.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace reference {

namespace {

std::string NumberText(double value) {
  char text[40];
  const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
  return {text, end.ptr};
}

std::string CellText(const Categorical& variable, std::size_t c) {
  return variable.codes[c] < 0 ? "" : variable.labels[static_cast<std::size_t>(variable.codes[c])];
}
std::string CellText(const Numeric& variable, std::size_t c) {
  return std::isnan(variable.values[c]) ? "" : NumberText(variable.values[c]);
}

bool HasSizeVariable(const Stage& stage) {
  return stage.sizeKind == SizeKind::kRateVariable || stage.sizeKind == SizeKind::kCountVariable;
}

/// Calls `visit` with each variable of the problem, in the order of the data file.
template <class Visit>
void EachVariable(const Problem& problem, const Visit& visit) {
  visit(problem.dependent);
  for (const Categorical& factor : problem.factors)
    visit(factor);
  for (const Numeric& covariate : problem.covariates)
    visit(covariate);
  visit(problem.weight);
  for (const Categorical& domain : problem.domain)
    visit(domain);
  for (const Stage& stage : problem.stages) {
    for (const Categorical& variable : stage.strata)
      visit(variable);
    for (const Categorical& variable : stage.clusters)
      visit(variable);
    if (HasSizeVariable(stage)) visit(stage.size);
  }
}

std::string DataText(const Problem& problem) {
  std::string text;
  const auto finishLine = [&text] { text.back() = '\n'; };
  EachVariable(problem, [&](const auto& variable) { text += variable.name + ","; });
  finishLine();
  for (std::size_t c = 0; c < problem.cases; ++c) {
    EachVariable(problem, [&](const auto& variable) { text += CellText(variable, c) + ","; });
    finishLine();
  }
  return text;
}

std::string VariableList(const std::string& element, const std::vector<Categorical>& variables) {
  if (variables.empty()) return "";
  std::string text = "      <" + element + ">";
  for (const Categorical& variable : variables)
    text += "<Variable name=\"" + variable.name + "\"/>";
  return text + "</" + element + ">\n";
}

std::string SizeText(const Stage& stage) {
  if (stage.estimator != Estimator::kEqualWithoutReplacement) return "";
  const bool isRate = stage.sizeKind == SizeKind::kRateValue || stage.sizeKind == SizeKind::kRateVariable;
  const std::string element = isRate ? "IncProb" : "PopulationSize";
  const std::string inside = HasSizeVariable(stage)
                                 ? "<Variable name=\"" + stage.size.name + "\"/>"
                                 : "<SingleValue value=\"" + NumberText(stage.sizeValue) + "\"/>";
  return "      <" + element + ">" + inside + "</" + element + ">\n";
}

std::string PlanText(const Problem& problem) {
  std::string text = "<VORNTessel version=\"12.0\">\n  <AnalysisDesign SRSestimator=\"";
  text += problem.isSrsWithReplacement ? "wr" : "wor";
  text += "\">\n";
  for (std::size_t s = 0; s < problem.stages.size(); ++s) {
    const Stage& stage = problem.stages[s];
    static const char* const kMethods[] = {"wr", "equal_wor", "unequal_wor"};
    text += "    <AnalysisStage label=\"\" stageNumber=\"" + std::to_string(s + 1) +
            "\" estimationMethod=\"" + kMethods[static_cast<int>(stage.estimator)] + "\">\n";
    text += VariableList("StrataVarList", stage.strata) + VariableList("ClusterVarList", stage.clusters);
    text += SizeText(stage) + "    </AnalysisStage>\n";
  }
  return text + "    <Weight><Variable name=\"" + problem.weight.name +
         "\"/></Weight>\n  </AnalysisDesign>\n</VORNTessel>\n";
}

std::string JointText(const Problem& problem) {
  const Stage& stage = problem.stages[0];
  std::size_t most = 0;
  for (const JointStratum& stratum : problem.joint)
    most = std::max(most, stratum.units.size());
  std::string text;
  for (const Categorical& variable : stage.strata)
    text += variable.name + ",";
  for (const Categorical& variable : stage.clusters)
    text += variable.name + ",";
  text += "Unit_No_";
  for (std::size_t u = 1; u <= most; ++u)
    text += ",p" + std::to_string(u);
  text += "\n";
  for (const JointStratum& stratum : problem.joint) {
    for (std::size_t u = 0; u < stratum.units.size(); ++u) {
      for (std::size_t v = 0; v < stage.strata.size(); ++v)
        text += stage.strata[v].labels[static_cast<std::size_t>(stratum.strata[v])] + ",";
      for (std::size_t v = 0; v < stage.clusters.size(); ++v)
        text += stage.clusters[v].labels[static_cast<std::size_t>(stratum.units[u][v])] + ",";
      text += std::to_string(u + 1);
      for (std::size_t other = 0; other < most; ++other)
        text += "," +
                (other < stratum.units.size() ? NumberText(stratum.probabilities[u][other]) : std::string());
      text += "\n";
    }
  }
  return text;
}

std::string CategoryText(const Categorical& variable, const CategoryRequest& request) {
  if (request.kind == Extreme::kHigh) return "HIGH";
  if (request.kind == Extreme::kLow) return "LOW";
  const std::string& label = variable.labels[static_cast<std::size_t>(request.code)];
  return variable.isText ? "'" + label + "'" : label;
}

std::string EffectText(const Problem& problem, const Effect& effect) {
  std::string text;
  const auto cross = [&text](const std::string& name) { text += (text.empty() ? "" : "*") + name; };
  for (std::size_t v = 0; v < effect.powers.size(); ++v) {
    for (int power = 0; power < effect.powers[v]; ++power)
      cross(problem.covariates[v].name);
  }
  std::string close;
  for (const std::size_t factor : effect.factors) {
    const std::string& name = problem.factors[factor].name;
    if (effect.isNested && !text.empty()) {
      text += "(" + name;
      close += ")";
    } else {
      cross(name);
    }
  }
  return text + close;
}

std::string FractionText(const Fraction& fraction) {
  const std::string numerator = std::to_string(fraction.numerator);
  return fraction.denominator == 1 ? numerator : numerator + "/" + std::to_string(fraction.denominator);
}

std::string RowText(const Problem& problem, const HypothesisRow& row) {
  std::string text = row.isAll ? "ALL" : "";
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : " ") + part; };
  if (row.intercept) add(FractionText(*row.intercept));
  for (std::size_t t = 0; t < row.coefficients.size(); ++t) {
    if (!row.isAll) add(EffectText(problem, problem.effects[row.effects[t]]));
    for (const Fraction& fraction : row.coefficients[t])
      add(FractionText(fraction));
  }
  return text;
}

std::string HypothesisText(const Problem& problem, const Hypothesis& hypothesis) {
  std::string text = "\n  /CUSTOM";
  for (std::size_t i = 0; i < hypothesis.rows.size(); ++i)
    text += (i == 0 ? " LMATRIX=" : ";\n    ") + RowText(problem, hypothesis.rows[i]);
  for (std::size_t i = 0; i < hypothesis.values.size(); ++i)
    text += (i == 0 ? " KMATRIX=" : "; ") + NumberText(hypothesis.values[i]);
  return text;
}

std::string OddsRatioText(const Problem& problem, const OddsRatioRequest& request) {
  std::string compared, controls;
  for (const auto& one : request.factors) {
    const Categorical& variable = problem.factors[one.factor];
    compared += " " + variable.name + "(" + CategoryText(variable, one.reference) + ")";
  }
  for (const auto& one : request.covariates) {
    std::string changes;
    for (const double change : one.changes)
      changes += (changes.empty() ? "" : " ") + NumberText(change);
    compared += " " + problem.covariates[one.covariate].name + "(" + changes + ")";
  }
  for (const auto& control : request.factorControls) {
    const Categorical& variable = problem.factors[control.factor];
    controls += " " + variable.name + "(" + CategoryText(variable, control.category) + ")";
  }
  for (const auto& control : request.covariateControls) {
    controls += " " + problem.covariates[control.covariate].name + "(" +
                (control.value ? NumberText(*control.value) : "MEAN") + ")";
  }
  std::string text = "\n  /ODDSRATIOS ";
  text += request.factors.empty() ? "COVARIATE=[" : "FACTOR=[";
  text += compared.substr(1) + "]";
  if (!controls.empty()) text += " CONTROL=[" + controls.substr(1) + "]";
  return text;
}

std::string CriteriaText(const Criteria& criteria) {
  std::string text = "\n  /CRITERIA MXITER=" + std::to_string(criteria.maxIterations) + " PCONVERGE=[" +
                     NumberText(criteria.parameterChange) +
                     (criteria.isAbsolute ? " ABSOLUTE]" : " RELATIVE]") +
                     " CILEVEL=" + NumberText(criteria.level);
  if (criteria.degreesOfFreedom) text += " DF=" + NumberText(*criteria.degreesOfFreedom);
  return text;
}

std::string CommandText(const Problem& problem) {
  static const char* const kTypes[] = {"F", "ADJF", "CHISQUARE", "ADJCHISQUARE"};
  static const char* const kAdjustments[] = {"LSD", "BONFERRONI", "SEQBONFERRONI", "SIDAK", "SEQSIDAK"};
  std::string text =
      "TAVOREG " + problem.dependent.name + " (" + CategoryText(problem.dependent, problem.reference) + ")";
  for (std::size_t f = 0; f < problem.factors.size(); ++f)
    text += (f == 0 ? " BY " : " ") + problem.factors[f].name;
  for (std::size_t v = 0; v < problem.covariates.size(); ++v)
    text += (v == 0 ? " WITH " : " ") + problem.covariates[v].name;
  text += "\n  /PLAN FILE='plan.xml'";
  if (!problem.joint.empty()) text += "\n  /JOINTPROB FILE='joint.csv'";
  for (std::size_t e = 0; e < problem.effects.size(); ++e)
    text += (e == 0 ? "\n  /MODEL " : " ") + EffectText(problem, problem.effects[e]);
  if (problem.effects.empty()) text += "\n  /INTERCEPT INCLUDE=ONLY";
  if (!problem.hasIntercept) text += "\n  /INTERCEPT INCLUDE=NO";
  if (!problem.domain.empty()) {
    text += "\n  /DOMAIN VARIABLE=" + problem.domain[0].name + "(" +
            CategoryText(problem.domain[0], {Extreme::kValue, problem.domainCode}) + ")";
  }
  text += CriteriaText(problem.criteria);
  text += std::string("\n  /TEST TYPE=") + kTypes[static_cast<int>(problem.testType)] +
          " PADJUST=" + kAdjustments[static_cast<int>(problem.adjustment)];
  for (const Hypothesis& hypothesis : problem.hypotheses)
    text += HypothesisText(problem, hypothesis);
  for (const OddsRatioRequest& request : problem.oddsRatios)
    text += OddsRatioText(problem, request);
  return text +
         "\n  /STATISTICS PARAMETER EXP SE TTEST CINTERVAL DEFF DEFFSQRT"
         "\n  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY HISTORY(1) COVB CORB CLASSTABLE GEF LMATRIX.\n";
}

}  // namespace

std::map<std::string, std::string> FilesOf(const Problem& problem) {
  std::map<std::string, std::string> files = {{"data.csv", DataText(problem)},
                                              {"plan.xml", PlanText(problem)},
                                              {"command.tvs", CommandText(problem)}};
  if (!problem.joint.empty()) files["joint.csv"] = JointText(problem);
  return files;
}

}  // namespace reference
