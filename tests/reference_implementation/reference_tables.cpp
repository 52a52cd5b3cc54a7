#include "reference_tables.h"

#include <algorithm>
#include <cmath>

#include "reference_contrasts.h"
#include "reference_odds_ratios.h"
#include "reference_tests.h"

namespace reference {

std::string CellName(const std::string& table, const std::vector<std::string>& row,
                     const std::vector<std::string>& column) {
  std::string name = table;
  for (const auto* path : {&row, &column}) {
    for (const std::string& label : *path) {
      const std::size_t level = label.find("% Confidence Interval");
      name += "|" + (level == std::string::npos ? label : label.substr(level + 2));
    }
  }
  return name;
}

namespace {

using Path = std::vector<std::string>;

/// The parts of a run that the tables are filled from.
struct Run {
  const Problem& problem;
  AnalysedCases cases;
  Columns columns;
  Independence independence;
  Fit fit;
  Estimates estimates;

  std::size_t Parameters() const { return columns.parameters.size(); }
  std::size_t Index(std::size_t logit, std::size_t k) const { return logit * Parameters() + k; }
  const std::string& CategoryLabel(std::size_t position) const {
    return problem.dependent.labels[static_cast<std::size_t>(fit.categories.codes[position])];
  }
  const std::string& LogitLabel(std::size_t logit) const { return CategoryLabel(fit.logits[logit]); }
  const std::string& Label(std::size_t k) const { return columns.parameters[k].label; }
  bool HasSeveralLogits() const { return fit.Equations() > 1; }
};

class Tables {
 public:
  explicit Tables(const Run& run) : fRun(run) {}

  void Fill() {
    FillSample();
    FillVariables();
    FillHistory();
    FillPseudoRSquares();
    FillEstimates();
    FillCovariances();
    FillClassification();
    FillEstimableFunctions();
    FillEffects();
    for (std::size_t i = 0; i < fRun.problem.hypotheses.size(); ++i)
      FillHypothesis(i);
    for (std::size_t i = 0; i < fRun.problem.oddsRatios.size(); ++i)
      FillOddsRatios(i);
  }
  std::map<std::string, Value> cells;

 private:
  void Put(const std::string& table, const Path& row, const Path& column, const Value& value) {
    cells[CellName(table, row, column)] = value;
  }
  void PutCount(const std::string& table, const Path& row, const Path& column, Real count) {
    Put(table, row, column, Value::Exactly(count));
  }
  /// A sum of weights.
  void PutSum(const std::string& table, const Path& row, const Path& column, Real sum) {
    Put(table, row, column, Value::Of(sum, 1e-12L * sum));
  }

  void FillSample() {
    const std::string table = "SampleDesignInformation";
    const auto valid = static_cast<Real>(fRun.problem.cases - fRun.cases.invalid);
    PutCount(table, {"Unweighted Cases", "Valid"}, {"N"}, valid);
    PutCount(table, {"Unweighted Cases", "Invalid"}, {"N"}, static_cast<Real>(fRun.cases.invalid));
    PutCount(table, {"Unweighted Cases", "Total"}, {"N"}, static_cast<Real>(fRun.problem.cases));
    PutSum(table, {"Population Size"}, {"N"}, fRun.cases.totalWeight);
    if (!fRun.problem.domain.empty()) PutSum(table, {"Subpopulation Size"}, {"N"}, fRun.cases.domainWeight);
    PutCount(table, {"Stage 1", "Strata"}, {"N"}, fRun.estimates.strata);
    PutCount(table, {"Stage 1", "Units"}, {"N"}, fRun.estimates.units);
    PutCount(table, {"Sampling Design DF"}, {"N"}, fRun.estimates.degreesOfFreedom);
  }

  void FillVariables() {
    const std::string table = "CategoricalVariableInformation";
    const auto put = [&](const Path& row, Real weight) {
      PutSum(table, row, {"Weighted Count"}, weight);
      PutSum(table, row, {"Weighted Percent"}, 100 * weight / fRun.cases.domainWeight);
    };
    const auto putVariable = [&](const Categorical& variable) {
      const CategoryCounts counts = CountCategories(fRun.problem, fRun.cases, variable);
      for (std::size_t c = 0; c < counts.codes.size(); ++c)
        put({variable.name, variable.labels[static_cast<std::size_t>(counts.codes[c])]}, counts.weights[c]);
    };
    putVariable(fRun.problem.dependent);
    for (const Categorical& factor : fRun.problem.factors)
      putVariable(factor);
    put({fRun.problem.domain.empty() ? "Population Size" : "Subpopulation Size"}, fRun.cases.domainWeight);
    const std::vector<Value> means = CovariateMeans(fRun.problem, fRun.cases);
    for (std::size_t v = 0; v < means.size(); ++v)
      Put("CovariateInformation", {fRun.problem.covariates[v].name}, {"Mean"}, means[v]);
  }

  void FillHistory() {
    const std::string table = "IterationHistory";
    for (std::size_t i = 0; i < fRun.fit.history.size(); ++i) {
      const Iteration& iteration = fRun.fit.history[i];
      // A step far from the maximum passes an error on larger than it was; the last ones take it back.
      const Real loss = fRun.estimates.loss * (i + 1 < fRun.fit.history.size() ? 100 : 1);
      const Path row = {std::to_string(i)};
      PutCount(table, row, {"N Step-halving"}, iteration.halvings);
      const Real deviance = -2 * iteration.logLikelihood;
      Put(table, row, {"Pseudo -2 Log Likelihood"}, Value::Of(deviance, 1e-11L * loss * deviance));
      for (std::size_t j = 0; j < fRun.fit.Equations(); ++j) {
        for (const std::size_t k : fRun.fit.kept) {
          const std::size_t place = fRun.Index(j, k);
          const Real estimate = iteration.estimates[place];
          const Value final = fRun.estimates.Contrast(fRun.estimates.Unit(place));
          Put(table, row, {fRun.problem.dependent.name, fRun.LogitLabel(j), fRun.Label(k)},
              Value::Of(estimate, 1e-9L * loss * std::abs(estimate) + final.tolerance));
        }
      }
    }
  }

  /// Cox and Snell (1989), Nagelkerke (1991) and McFadden (1974), with the weight for the number of cases.
  void FillPseudoRSquares() {
    const std::string table = "PseudoRSquares";
    const Fit& fit = fRun.fit;
    const Real w = fRun.cases.domainWeight;
    const Real initial = fit.initialLogLikelihood, last = fit.finalLogLikelihood;
    const auto put = [&](const std::string& name, Real value) {
      Put(table, {name}, {},
          Value::Of(fit.iterations > 0 ? value : 0,
                    1e-11L * fRun.estimates.loss * (1 + std::abs(initial) / w)));
    };
    const Real coxSnell = -std::expm1(2 * (initial - last) / w);
    put("Cox and Snell", coxSnell);
    put("Nagelkerke", coxSnell / -std::expm1(2 * initial / w));
    put("McFadden", 1 - last / initial);
  }

  void FillEstimates() {
    for (std::size_t j = 0; j < fRun.fit.Equations(); ++j) {
      for (std::size_t k = 0; k < fRun.Parameters(); ++k)
        FillEstimate({fRun.LogitLabel(j), fRun.Label(k)}, fRun.Index(j, k));
    }
  }

  void FillEstimate(const Path& row, std::size_t place) {
    const std::string table = "ParameterEstimates";
    const Estimates& estimates = fRun.estimates;
    const Path lower = {"% Confidence Interval", "Lower"}, upper = {"% Confidence Interval", "Upper"};
    const Path expLower = {"% Confidence Interval for Exp(B)", "Lower"};
    const Path expUpper = {"% Confidence Interval for Exp(B)", "Upper"};
    const Path t = {"Hypothesis Test", "t"}, df = {"Hypothesis Test", "degrees of freedom"};
    const Path significance = {"Hypothesis Test", "Significance"};
    const Path effect = {"Design Effect"}, root = {"Square Root Design Effect"};
    for (const Path& column :
         {Path{"Std. Error"}, lower, upper, expLower, expUpper, t, df, significance, effect, root})
      Put(table, row, column, Value::Missing());
    if (!estimates.isKept[place]) {
      PutCount(table, row, {"B"}, 0);
      PutCount(table, row, {"Exp(B)"}, 1);
      return;
    }
    const Vector unit = estimates.Unit(place);
    const Value b = estimates.Contrast(unit), se = estimates.StandardError(unit);
    const Real d = estimates.degreesOfFreedom;
    Put(table, row, {"B"}, b);
    Put(table, row, {"Exp(B)"}, Exponential(b));
    Put(table, row, {"Std. Error"}, se);
    PutCount(table, row, df, d);
    const Value c = TPercentile(fRun.problem.criteria.level / 100, d);
    if (!c.isMissing) {
      const Real off = b.tolerance + c.number * se.tolerance + c.tolerance * se.number;
      const Value low = Value::Of(b.number - c.number * se.number, off);
      const Value high = Value::Of(b.number + c.number * se.number, off);
      Put(table, row, lower, low);
      Put(table, row, upper, high);
      Put(table, row, expLower, Exponential(low));
      Put(table, row, expUpper, Exponential(high));
    }
    Matrix l;
    l.Append(unit);
    const TestResult test = TestLinearHypothesis(estimates, l, {0}, TestType::kF, Adjustment::kNone).rows[0];
    Put(table, row, significance, test.significance);
    if (se.number > 0) {
      const Real ratio = b.number / se.number;
      Put(table, row, t,
          Value::Of(ratio, b.tolerance / se.number + std::abs(ratio) * se.tolerance / se.number));
    }
    const Real srs = estimates.srsCovariance(place, place);
    if (srs > 0) {
      const Real deff = se.number * se.number / srs;
      const Real relative = (se.number > 0 ? 2 * se.tolerance / se.number : 0) + 1e-9L * estimates.loss;
      Put(table, row, effect, Value::Of(deff, deff * relative));
      Put(table, row, root, Value::Of(std::sqrt(deff), std::sqrt(deff) * relative));
    }
  }

  void FillCovariances() {
    const Estimates& estimates = fRun.estimates;
    for (std::size_t a = 0; a < estimates.b.size(); ++a) {
      const Path row = {fRun.LogitLabel(a / fRun.Parameters()), fRun.Label(a % fRun.Parameters())};
      for (std::size_t c = 0; c < estimates.b.size(); ++c) {
        const Path column = {fRun.LogitLabel(c / fRun.Parameters()), fRun.Label(c % fRun.Parameters())};
        Value covariance, correlation;
        if (estimates.isKept[a] && estimates.isKept[c]) {
          const Value sa = StandardErrorOf(a), sc = StandardErrorOf(c);
          const Real element = estimates.covariance(a, c);
          const Real off = sa.number * sc.tolerance + sc.number * sa.tolerance;
          covariance = Value::Of(element, off);
          const Real product = sa.number * sc.number;
          if (product > 0) correlation = Value::Of(element / product, 2 * off / product);
        }
        Put("CovariancesOfParameterEstimates", row, column, covariance);
        Put("CorrelationsOfParameterEstimates", row, column, correlation);
      }
    }
  }
  const Value& StandardErrorOf(std::size_t place) {
    for (std::size_t i = fStandardErrors.size(); i < fRun.estimates.b.size(); ++i)
      fStandardErrors.push_back(fRun.estimates.StandardError(fRun.estimates.Unit(i)));
    return fStandardErrors[place];
  }

  void FillClassification() {
    const std::size_t n = fRun.fit.categories.codes.size();
    Matrix counts(n, n);
    bool isDecided = true;
    for (std::size_t i = 0; i < fRun.cases.inDomain.size(); ++i) {
      const std::size_t c = fRun.cases.inDomain[i];
      const auto& codes = fRun.fit.categories.codes;
      const auto observed =
          std::find(codes.begin(), codes.end(), fRun.problem.dependent.codes[c]) - codes.begin();
      const int predicted = PredictedCategory(fRun.fit, i);
      if (predicted < 0) {
        isDecided = false;
        break;
      }
      counts(static_cast<std::size_t>(observed), static_cast<std::size_t>(predicted)) +=
          fRun.problem.weight.values[c];
    }
    Real total = 0, correct = 0;
    Vector rows(n, 0.0L), columns(n, 0.0L);
    for (std::size_t r = 0; r < n; ++r) {
      correct += counts(r, r);
      for (std::size_t c = 0; c < n; ++c) {
        total += counts(r, c);
        rows[r] += counts(r, c);
        columns[c] += counts(r, c);
      }
    }
    const auto put = [&](const std::string& row, const std::string& column, Real value) {
      Put("Classification", {row}, {column},
          isDecided ? Value::Of(value, 1e-11L * value) : Value::Undecided());
    };
    for (std::size_t r = 0; r < n; ++r) {
      for (std::size_t c = 0; c < n; ++c)
        put(fRun.CategoryLabel(r), fRun.CategoryLabel(c), counts(r, c));
      put(fRun.CategoryLabel(r), "Percent Correct", 100 * counts(r, r) / rows[r]);
      put("Overall Percent", fRun.CategoryLabel(r), 100 * columns[r] / total);
    }
    put("Overall Percent", "Percent Correct", 100 * correct / total);
  }

  /// A coefficient of parameter `column` in the function of parameter `own`: known on the scale of the
  /// column's size over that of the own one, as centres cancel in it.
  Value Coefficient(Real x, std::size_t own, std::size_t column) const {
    const Real scale = std::max(1.0L, Size(column % fRun.Parameters()) / Size(own));
    return Value::Of(x, 1e-10L * fRun.estimates.loss * std::max(scale, std::abs(x)));
  }
  /// The largest value of a column.
  Real Size(std::size_t k) const {
    Real size = 0;
    for (std::size_t i = 0; i < fRun.columns.raw.Rows(); ++i)
      size = std::max(size, std::abs(fRun.columns.raw(i, k)));
    return size;
  }

  void FillEstimableFunctions() {
    const Contrasts all = GeneralEstimableFunctions(fRun.columns, fRun.independence);
    for (std::size_t i = 0; i < all.l.Rows(); ++i) {
      for (std::size_t k = 0; k < fRun.Parameters(); ++k)
        Put("GeneralEstimableFunction", {fRun.Label(k)}, {"L" + std::to_string(all.numbers[i])},
            Coefficient(all.l(i, k), static_cast<std::size_t>(all.numbers[i] - 1), k));
    }
  }

  /// The columns of a test in a table; the adjusted one only with an adjustment.
  void PutTest(const std::string& table, const Path& row, const TestResult& test) {
    static const std::map<TestType, std::string> kStatistics = {
        {TestType::kF, "Wald F"},
        {TestType::kAdjustedF, "Adjusted Wald F"},
        {TestType::kChiSquare, "Wald Chi-Square"},
        {TestType::kAdjustedChiSquare, "Adjusted Wald Chi-Square"}};
    static const std::map<Adjustment, std::string> kAdjustments = {
        {Adjustment::kBonferroni, "Bonferroni Sig."},
        {Adjustment::kSequentialBonferroni, "Sequential Bonferroni Sig."},
        {Adjustment::kSidak, "Sidak Sig."},
        {Adjustment::kSequentialSidak, "Sequential Sidak Sig."}};
    const TestType type = fRun.problem.testType;
    const bool isF = type == TestType::kF || type == TestType::kAdjustedF;
    Put(table, row, {isF ? "df1" : "degrees of freedom"}, test.df1);
    if (isF) Put(table, row, {"df2"}, test.df2);
    Put(table, row, {kStatistics.at(type)}, test.wald);
    Put(table, row, {"Sig."}, test.significance);
    if (fRun.problem.adjustment != Adjustment::kNone)
      Put(table, row, {kAdjustments.at(fRun.problem.adjustment)}, test.adjusted);
  }

  void FillEffect(const std::string& name, const Contrasts& contrasts, bool hasContrastTable) {
    const Matrix l = Repeated(contrasts.l, fRun.fit.Equations());
    PutTest("TestsOfModelEffects", {name},
            TestEffect(fRun.estimates, l, fRun.problem.testType, fRun.problem.adjustment));
    if (!hasContrastTable) return;
    const std::string table = "EffectsContrast " + name;
    for (std::size_t g = 0; g < fRun.fit.Equations(); ++g) {
      for (std::size_t i = 0; i < contrasts.l.Rows(); ++i) {
        for (std::size_t a = 0; a < fRun.estimates.b.size(); ++a) {
          Path row = {fRun.Label(a % fRun.Parameters())};
          Path column = {"L" + std::to_string(contrasts.numbers[i])};
          if (fRun.HasSeveralLogits()) {
            row.insert(row.begin(), fRun.LogitLabel(a / fRun.Parameters()));
            column.insert(column.begin(), fRun.LogitLabel(g));
          }
          Put(table, row, column,
              Coefficient(l(g * contrasts.l.Rows() + i, a),
                          static_cast<std::size_t>(contrasts.numbers[i] - 1), a));
        }
      }
    }
  }

  void FillEffects() {
    const Problem& problem = fRun.problem;
    const Contrasts model = ModelContrasts(problem, fRun.columns, fRun.independence);
    FillEffect(problem.hasIntercept ? "(Corrected Model)" : "(Model)", model, false);
    for (std::size_t e = 0; e < fRun.columns.effects.size(); ++e)
      FillEffect(EffectName(problem, fRun.columns.effects[e]), EffectContrasts(fRun.columns, e), true);
  }

  void FillHypothesis(std::size_t number) {
    const NumericHypothesis hypothesis = NumbersOf(fRun.problem, fRun.columns, fRun.independence,
                                                   fRun.fit.Equations(), fRun.problem.hypotheses[number]);
    if (!hypothesis.isValid) return;
    const std::string heading = fRun.problem.hypotheses.size() == 1
                                    ? " Custom Hypothesis Tests"
                                    : " Custom Hypothesis Tests " + std::to_string(number + 1);
    const HypothesisResult result = TestLinearHypothesis(fRun.estimates, hypothesis.l, hypothesis.values,
                                                         fRun.problem.testType, fRun.problem.adjustment);
    const bool isByLogit = fRun.HasSeveralLogits() && !hypothesis.isAll;
    for (std::size_t i = 0; i < hypothesis.l.Rows(); ++i) {
      const std::string contrast = "L" + std::to_string(i % hypothesis.rows + 1);
      const Path logit = isByLogit ? Path{fRun.LogitLabel(i / hypothesis.rows)} : Path{};
      for (std::size_t a = 0; a < fRun.estimates.b.size(); ++a) {
        Path row = {fRun.Label(a % fRun.Parameters())};
        if (fRun.HasSeveralLogits()) row.insert(row.begin(), fRun.LogitLabel(a / fRun.Parameters()));
        Path column = logit;
        column.push_back(contrast);
        Put("ContrastCoefficients" + heading, row, column,
            Coefficient(hypothesis.l(i, a), fRun.independence.kept[0], a));
      }
      Path row = logit;
      row.push_back(contrast);
      const std::string table = "IndividualTestResults" + heading;
      const TestResult& test = result.rows[i];
      Put(table, row, {"Contrast Estimate"}, test.estimate);
      PutCount(table, row, {"Hypothesized Value"}, hypothesis.values[i]);
      Put(table, row, {"Difference (Estimate - Hypothesized)"},
          Value::Of(test.estimate.number - hypothesis.values[i], test.estimate.tolerance));
      Put(table, row, {"Std. Error"}, test.standardError);
      PutTest(table, row, test);
    }
    PutTest("OverallTestResults" + heading, {}, result.overall);
  }

  void FillOddsRatios(std::size_t number) {
    const std::string title =
        fRun.problem.oddsRatios.size() == 1 ? " Odds Ratios" : " Odds Ratios " + std::to_string(number + 1);
    for (const OddsRatio& ratio : EstimateOddsRatios(fRun.problem, fRun.cases, fRun.columns, fRun.fit,
                                                     fRun.estimates, fRun.problem.oddsRatios[number])) {
      const Path row = {ratio.variable, ratio.comparison, fRun.LogitLabel(ratio.logit)};
      const std::string table = "OddsRatios" + title;
      Put(table, row, {"Odds Ratio"}, ratio.ratio);
      Put(table, row, {"% Confidence Interval", "Lower"}, ratio.lower);
      Put(table, row, {"% Confidence Interval", "Upper"}, ratio.upper);
    }
  }

  const Run& fRun;
  std::vector<Value> fStandardErrors;
};

}  // namespace

Answers Answer(const Problem& problem) {
  Answers answers;
  Run run{problem, SelectCases(problem), {}, {}, {}, {}};
  if (CountCategories(problem, run.cases, problem.dependent).codes.size() < 2) {
    answers.whyNot = "one response";
    return answers;
  }
  run.columns = BuildColumns(problem, run.cases);
  run.independence = FindRedundant(run.columns);
  if (run.independence.kept.empty()) {
    answers.whyNot = "no parameter";
    return answers;
  }
  if (problem.criteria.maxIterations < 20) {  // what stops early must be on its way to something
    Problem unlimited = problem;
    unlimited.criteria.maxIterations = 100;
    if (!FitModel(unlimited, run.cases, run.columns, run.independence).isWellPosed) {
      answers.whyNot = "fit not well posed";
      return answers;
    }
  }
  run.fit = FitModel(problem, run.cases, run.columns, run.independence);
  if (!run.fit.isWellPosed) {
    answers.whyNot = "fit not well posed";
    return answers;
  }
  run.estimates = Estimate(problem, run.cases, run.columns, run.fit);
  if (run.estimates.isNegative) answers.whyNot = "negative variance";
  if (run.estimates.isZero) answers.whyNot = "no variance";
  if (!run.estimates.isDecided) answers.whyNot = "variance within rounding of 0";
  if (!answers.whyNot.empty()) return answers;
  for (std::size_t e = 0; e < run.columns.effects.size(); ++e) {
    if (!EffectContrasts(run.columns, e).isDecided) answers.whyNot = "contrasts within rounding";
  }
  if (!answers.whyNot.empty()) return answers;
  Tables tables(run);
  tables.Fill();
  answers.cells = std::move(tables.cells);
  return answers;
}

}  // namespace reference
