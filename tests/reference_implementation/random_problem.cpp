#include "random_problem.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>

#include "reference_columns.h"

namespace reference {

std::uint64_t Random::Next() {
  fState += 0x9E3779B97F4A7C15ULL;
  std::uint64_t z = fState;
  z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27U)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31U);
}

int Random::Below(int count) {
  return static_cast<int>(Next() % static_cast<std::uint64_t>(count));
}

double Random::Uniform(double low, double high) {
  return low + (high - low) * static_cast<double>(Next() >> 11U) * 0x1.0p-53;
}

double Random::Normal() {
  const double r = std::sqrt(-2 * std::log(1 - Uniform(0, 1)));
  return r * std::cos(Uniform(0, 6.283185307179586));
}

namespace {

Categorical MakeVariable(const std::string& name, std::vector<int> codes, bool isText) {
  Categorical variable{name, isText, {}, std::move(codes)};
  const int highest = *std::max_element(variable.codes.begin(), variable.codes.end());
  for (int code = 0; code <= highest; ++code) {
    const std::string number = std::to_string(code + 1);
    const char* const lead = code < 9 ? "c0" : "c";  // texts sort by their bytes
    variable.labels.push_back(isText ? lead + number : number);
  }
  return variable;
}

/// Lays out the cases: which strata and clusters of each stage each one is in.
class SampleMaker {
 public:
  SampleMaker(Random& random, Problem& problem) : fRandom(random), fProblem(problem) {}

  void Make() {
    const int stages = fRandom.OneOf({1, 1, 1, 1, 2, 2, 3});
    for (int s = 0; s < stages; ++s)
      fShapes.push_back(ShapeOf(s, stages));
    std::vector<int> path;
    AddStage(0, path);
    fProblem.cases = fPaths.size();
    for (std::size_t s = 0; s < fShapes.size(); ++s)
      AddStageVariables(s);
    for (std::size_t s = 0; s < fShapes.size(); ++s)
      AddSize(s);
    if (fProblem.stages[0].estimator == Estimator::kUnequalWithoutReplacement) AddJointProbabilities();
  }

 private:
  struct Shape {
    bool hasStrata = false, hasClusters = true, areClustersUnique = false;
    int strata = 1;
    int fewestUnits = 1, mostUnits = 1;
  };

  Shape ShapeOf(int s, int stages) {
    Shape shape;
    const bool isLast = s == stages - 1;
    shape.hasStrata = fRandom.Chance(s == 0 ? 0.75 : 0.2);
    shape.hasClusters = !isLast || fRandom.Chance(stages == 1 ? 0.7 : 0.4);
    shape.areClustersUnique = fRandom.Chance(0.3);
    if (shape.hasStrata) shape.strata = s == 0 ? fRandom.OneOf({2, 3, 3, 4, 5, 8}) : 2;
    if (!shape.hasClusters) {
      shape.fewestUnits = s == 0 ? 8 : 1;
      shape.mostUnits = s == 0 ? 25 : 5;
    } else if (s == 0) {
      shape.fewestUnits = fRandom.OneOf({1, 2, 2, 2, 3});
      shape.mostUnits = shape.fewestUnits + fRandom.OneOf({0, 1, 3, 5});
      if (shape.strata == 1) shape.fewestUnits += 4, shape.mostUnits += 8;
    } else {
      shape.mostUnits = fRandom.OneOf({2, 3});
    }
    return shape;
  }

  void AddStage(std::size_t s, std::vector<int>& path) {
    if (s == fShapes.size()) {
      const int cases = fShapes.back().hasClusters ? fRandom.Between(1, fShapes.size() == 1 ? 9 : 5) : 1;
      fPaths.insert(fPaths.end(), static_cast<std::size_t>(cases), path);
      return;
    }
    const Shape& shape = fShapes[s];
    for (int h = 0; h < shape.strata; ++h) {
      const int units = fRandom.Between(shape.fewestUnits, shape.mostUnits);
      for (int u = 0; u < units; ++u) {
        path.push_back(h);
        path.push_back(shape.areClustersUnique ? fNextUnit++ : u);
        AddStage(s + 1, path);
        path.resize(path.size() - 2);
      }
    }
  }

  std::vector<int> Along(std::size_t place) const {
    std::vector<int> codes;
    for (const std::vector<int>& path : fPaths)
      codes.push_back(path[place]);
    return codes;
  }

  void AddStageVariables(std::size_t s) {
    const std::string number = std::to_string(s + 1);
    Stage stage;
    if (fShapes[s].hasStrata) {
      const std::vector<int> codes = Along(2 * s);
      if (fShapes[s].strata > 3 && fRandom.Chance(0.5)) {  // two variables span the strata
        std::vector<int> high = codes, low = codes;
        for (int& code : high)
          code /= 2;
        for (int& code : low)
          code %= 2;
        stage.strata.push_back(MakeVariable("ha" + number, high, fRandom.Chance(0.3)));
        stage.strata.push_back(MakeVariable("hb" + number, low, false));
      } else {
        stage.strata.push_back(MakeVariable("h" + number, codes, fRandom.Chance(0.3)));
      }
    }
    if (fShapes[s].hasClusters) {
      std::vector<int> codes = Along(2 * s + 1);
      // Numbers in use only: a unique number above 99 would not sort as a text.
      std::vector<int> inUse = codes;
      std::sort(inUse.begin(), inUse.end());
      inUse.erase(std::unique(inUse.begin(), inUse.end()), inUse.end());
      for (int& code : codes)
        code = static_cast<int>(std::lower_bound(inUse.begin(), inUse.end(), code) - inUse.begin());
      stage.clusters.push_back(MakeVariable("u" + number, codes, inUse.size() < 90 && fRandom.Chance(0.3)));
    }
    const double kind = fRandom.Uniform(0, 1);
    stage.estimator = kind < 0.45 ? Estimator::kWithReplacement : Estimator::kEqualWithoutReplacement;
    if (s == 0 && kind > 0.85 && fShapes[s].hasClusters)
      stage.estimator = Estimator::kUnequalWithoutReplacement;
    fProblem.stages.push_back(stage);
  }

  /// The units of each stratum of a stage, by the path to the stratum.
  std::map<std::vector<int>, std::vector<std::vector<int>>> UnitsOf(std::size_t s) const {
    std::map<std::vector<int>, std::vector<std::vector<int>>> units;
    for (std::size_t c = 0; c < fPaths.size(); ++c) {
      std::vector<int> stratum(fPaths[c].begin(), fPaths[c].begin() + static_cast<std::ptrdiff_t>(2 * s + 1));
      const std::vector<int> unit = {fShapes[s].hasClusters ? fPaths[c][2 * s + 1] : static_cast<int>(c)};
      auto& known = units[stratum];
      if (std::find(known.begin(), known.end(), unit) == known.end()) known.push_back(unit);
    }
    return units;
  }

  void AddSize(std::size_t s) {
    Stage& stage = fProblem.stages[s];
    if (stage.estimator != Estimator::kEqualWithoutReplacement) return;
    stage.sizeKind = fRandom.OneOf(
        {SizeKind::kRateValue, SizeKind::kRateVariable, SizeKind::kCountValue, SizeKind::kCountVariable});
    const bool hasCertainty = fRandom.Chance(0.25);
    const auto rate = [&] { return hasCertainty && fRandom.Chance(0.4) ? 1.0 : fRandom.Uniform(0.02, 0.95); };
    const auto surplus = [&] {
      return hasCertainty && fRandom.Chance(0.4) ? 0 : fRandom.OneOf({1, 3, 20, 1000});
    };
    const auto units = UnitsOf(s);
    std::size_t most = 0;
    for (const auto& [stratum, members] : units)
      most = std::max(most, members.size());
    if (stage.sizeKind == SizeKind::kRateValue) stage.sizeValue = rate();
    if (stage.sizeKind == SizeKind::kCountValue) stage.sizeValue = static_cast<double>(most) + surplus();
    stage.size.name = "n" + std::to_string(s + 1);
    std::map<std::vector<int>, double> sizes;
    for (const auto& [stratum, members] : units) {
      sizes[stratum] = stage.sizeKind == SizeKind::kRateVariable
                           ? rate()
                           : static_cast<double>(members.size()) + surplus();
    }
    for (const std::vector<int>& path : fPaths) {
      const std::vector<int> stratum(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(2 * s + 1));
      stage.size.values.push_back(sizes[stratum]);
    }
  }

  void AddJointProbabilities() {
    const Stage& stage = fProblem.stages[0];
    // Some designs have pairs that come together more often than independently, which lowers the variance.
    const double highest = fRandom.Chance(0.25) ? 1.3 : 1.0;
    std::map<std::vector<int>, std::vector<std::vector<int>>> strata;
    for (std::size_t c = 0; c < fProblem.cases; ++c) {
      std::vector<int> key;
      for (const Categorical& variable : stage.strata)
        key.push_back(variable.codes[c]);
      const std::vector<int> unit = {stage.clusters[0].codes[c]};
      auto& known = strata[key];
      if (std::find(known.begin(), known.end(), unit) == known.end()) known.push_back(unit);
    }
    for (const auto& [key, units] : strata) {
      JointStratum joint{key, units, {}};
      const std::size_t n = units.size();
      std::vector<double> first(n);
      for (double& pi : first)
        pi = fRandom.Uniform(0.05, 0.95);
      joint.probabilities.assign(n, std::vector<double>(n));
      for (std::size_t a = 0; a < n; ++a) {
        joint.probabilities[a][a] = first[a];
        for (std::size_t b = 0; b < a; ++b) {
          const double together = first[a] * first[b] * fRandom.Uniform(0.6, highest);
          joint.probabilities[a][b] = joint.probabilities[b][a] =
              std::min(together, 0.99 * std::min(first[a], first[b]));
        }
      }
      fProblem.joint.push_back(joint);
    }
  }

  Random& fRandom;
  Problem& fProblem;
  std::vector<Shape> fShapes;
  std::vector<std::vector<int>> fPaths;  // stratum and unit of each stage, by case
  int fNextUnit = 0;
};

/// Factors, covariates, weights, domain and the effects of the model.
class ModelMaker {
 public:
  ModelMaker(Random& random, Problem& problem) : fRandom(random), fProblem(problem) {}

  void Make() {
    AddWeights();
    const int factors = fRandom.OneOf({0, 1, 1, 2, 2, 2, 3});
    for (int f = 0; f < factors; ++f)
      AddFactor(f);
    const int covariates = fRandom.OneOf({0, 1, 1, 2, 2, 3});
    for (int v = 0; v < covariates; ++v)
      AddCovariate(v);
    AddResponse();
    if (fRandom.Chance(0.3)) {
      fProblem.domain.push_back(MakeVariable("d", Codes(2, 0.35), fRandom.Chance(0.3)));
      fProblem.domainCode = 0;
    }
    AddEffects();
    if (fRandom.Chance(0.3)) AddMissingValues();
    LimitParameters();
    fProblem.isSrsWithReplacement = fRandom.Chance(0.3);
    fProblem.reference.kind = fRandom.OneOf({Extreme::kHigh, Extreme::kLow, Extreme::kValue});
    fProblem.reference.code = fRandom.Below(static_cast<int>(fProblem.dependent.labels.size()));
  }

 private:
  std::vector<int> Codes(int categories, double skew) {
    std::vector<int> codes;
    for (std::size_t c = 0; c < fProblem.cases; ++c) {
      int code = fRandom.Below(categories);
      if (code > 0 && fRandom.Chance(skew)) code = 0;
      codes.push_back(code);
    }
    return codes;
  }

  void AddWeights() {
    const double spread = fRandom.OneOf({0.0, 0.2, 0.5, 1.0, 2.0});
    const double level = fRandom.OneOf({0.9, 2.0, 30.0, 1e3, 1e6});
    fProblem.weight.name = "w";
    for (std::size_t c = 0; c < fProblem.cases; ++c)
      fProblem.weight.values.push_back(level * std::exp(spread * fRandom.Normal()));
  }

  void AddFactor(int f) {
    const std::string name(1, static_cast<char>('a' + f));
    std::vector<int> codes;
    if (f > 0 && fRandom.Chance(0.1)) {
      codes = fProblem.factors[0].codes;  // the same in other words: all of its parameters are redundant
    } else {
      codes = Codes(fRandom.OneOf({2, 2, 2, 3, 3, 4, 5}), fRandom.OneOf({0.0, 0.3}));
    }
    if (f > 0 && fRandom.Chance(0.2)) {  // empty cells
      for (std::size_t c = 0; c < codes.size(); ++c) {
        if (fProblem.factors[0].codes[c] == 0) codes[c] = 0;
      }
    }
    fProblem.factors.push_back(MakeVariable(name, codes, fRandom.Chance(0.4)));
  }

  void AddCovariate(int v) {
    Numeric covariate{std::string(1, static_cast<char>('x' + v)), {}};
    const double share = fRandom.Uniform(0, 1), shift = fRandom.OneOf({0.0, 0.0, 1.0});
    const double mean = fRandom.OneOf({0.0, 0.0, 3.0, 50.0}), spread = fRandom.OneOf({0.1, 1.0, 1.0, 20.0});
    for (std::size_t c = 0; c < fProblem.cases; ++c) {
      double value = mean + spread * fRandom.Normal();
      if (share < 0.2) value = std::round(value);
      if (share > 0.9 && v > 0) value = 2 * fProblem.covariates[0].values[c] + shift;  // redundant
      if (share > 0.85 && share < 0.9 && !fProblem.factors.empty())
        value = fProblem.factors[0].codes[c] == 0 ? 1 : 0;  // redundant beside the factor
      covariate.values.push_back(value);
    }
    fProblem.covariates.push_back(covariate);
  }

  void AddResponse() {
    const int categories = fRandom.OneOf({2, 2, 2, 3, 3, 4});
    std::vector<std::vector<double>> slopes(static_cast<std::size_t>(categories));
    for (auto& own : slopes) {
      for (int i = 0; i < 12; ++i)
        own.push_back(0.5 * fRandom.Normal());
    }
    std::vector<int> codes;
    for (std::size_t c = 0; c < fProblem.cases; ++c) {
      std::vector<double> chances;
      for (const auto& own : slopes) {
        double eta = own[0];
        for (std::size_t f = 0; f < fProblem.factors.size(); ++f)
          eta += own[1 + static_cast<std::size_t>(fProblem.factors[f].codes[c])];
        for (std::size_t v = 0; v < fProblem.covariates.size(); ++v)
          eta += own[8 + v] * std::tanh(fProblem.covariates[v].values[c] / 10);
        chances.push_back(std::exp(eta));
      }
      double draw = fRandom.Uniform(0, std::accumulate(chances.begin(), chances.end(), 0.0));
      int code = 0;
      while (code + 1 < categories && draw > chances[static_cast<std::size_t>(code)])
        draw -= chances[static_cast<std::size_t>(code++)];
      codes.push_back(code);
    }
    fProblem.dependent = MakeVariable("resp", codes, fRandom.Chance(0.4));
  }

  Effect Empty() const { return {{}, false, std::vector<int>(fProblem.covariates.size(), 0)}; }

  void AddEffect(const Effect& effect) {
    const auto isSame = [&](const Effect& known) {
      return known.powers == effect.powers && FactorsOf(known) == FactorsOf(effect);
    };
    if (std::none_of(fProblem.effects.begin(), fProblem.effects.end(), isSame))
      fProblem.effects.push_back(effect);
  }

  void AddEffects() {
    for (std::size_t f = 0; f < fProblem.factors.size(); ++f) {
      Effect effect = Empty();
      effect.factors = {f};
      if (fRandom.Chance(0.85)) AddEffect(effect);
    }
    for (std::size_t v = 0; v < fProblem.covariates.size(); ++v) {
      Effect effect = Empty();
      effect.powers[v] = 1;
      if (fRandom.Chance(0.85)) AddEffect(effect);
    }
    const int more = fRandom.OneOf({0, 0, 1, 1, 2, 3});
    for (int i = 0; i < more; ++i)
      AddInteraction();
    if (fRandom.Chance(0.3)) {
      for (std::size_t i = fProblem.effects.size(); i > 1; --i)
        std::swap(fProblem.effects[i - 1],
                  fProblem.effects[static_cast<std::size_t>(fRandom.Below(static_cast<int>(i)))]);
    }
    fProblem.hasIntercept = fProblem.effects.empty() || fRandom.Chance(0.85);
  }

  void AddInteraction() {
    Effect effect = Empty();
    const auto factors = static_cast<int>(fProblem.factors.size());
    const auto covariates = static_cast<int>(fProblem.covariates.size());
    const auto anyFactor = [&] { return static_cast<std::size_t>(fRandom.Below(factors)); };
    const auto anyCovariate = [&] { return static_cast<std::size_t>(fRandom.Below(covariates)); };
    const int form = fRandom.Below(5);
    if (form <= 1 && factors > 1) {
      const std::size_t first = anyFactor();
      effect.factors = {first, (first + 1) % static_cast<std::size_t>(factors)};
      if (form == 0 && factors > 2 && fRandom.Chance(0.3)) effect.factors = {0, 1, 2};
      effect.isNested = fRandom.Chance(0.3);
    } else if (form == 2 && factors > 0 && covariates > 0) {
      effect.factors = {anyFactor()};
      ++effect.powers[anyCovariate()];
      effect.isNested = fRandom.Chance(0.3);
    } else if (form >= 3 && covariates > 0) {
      ++effect.powers[anyCovariate()];
      ++effect.powers[anyCovariate()];
      if (form == 4 && factors > 0 && fRandom.Chance(0.3)) effect.factors = {anyFactor()};
    } else {
      return;
    }
    AddEffect(effect);
  }

  void AddMissingValues() {
    const double missing = std::numeric_limits<double>::quiet_NaN();
    const auto strike = [&](Categorical& variable) {
      for (int& code : variable.codes)
        code = fRandom.Chance(0.03) ? -1 : code;
    };
    const auto blank = [&](Numeric& variable) {
      for (double& value : variable.values)
        value = fRandom.Chance(0.03) ? missing : value;
    };
    strike(fProblem.dependent);
    if (!fProblem.factors.empty()) strike(fProblem.factors[0]);
    if (!fProblem.covariates.empty()) blank(fProblem.covariates[0]);
    if (!fProblem.domain.empty()) strike(fProblem.domain[0]);
    if (fRandom.Chance(0.3)) blank(fProblem.weight);
    if (fRandom.Chance(0.3) && !fProblem.stages[0].strata.empty()) strike(fProblem.stages[0].strata[0]);
    for (double& weight : fProblem.weight.values)
      weight = fRandom.Chance(0.02) ? 0 : weight;
  }

  /// Drops effects until there are cases enough for the parameters.
  void LimitParameters() {
    for (;;) {
      const AnalysedCases cases = SelectCases(fProblem);
      const std::size_t parameters = BuildColumns(fProblem, cases).parameters.size();
      const std::size_t logits = fProblem.dependent.labels.size() - 1;
      if (fProblem.effects.empty()) fProblem.hasIntercept = true;
      if (fProblem.effects.size() < 2 ||
          (parameters * logits * 4 < cases.inDomain.size() && parameters * logits <= 36))
        return;
      fProblem.effects.pop_back();
    }
  }

  Random& fRandom;
  Problem& fProblem;
};

/// Criteria, tests, hypotheses and odds ratios.
class RequestMaker {
 public:
  RequestMaker(Random& random, Problem& problem)
      : fRandom(random), fProblem(problem), fColumns(BuildColumns(problem, SelectCases(problem))) {}

  void Make() {
    Criteria& criteria = fProblem.criteria;
    if (fRandom.Chance(0.4)) criteria = {100, 1e-8, true, 95, {}};
    if (fRandom.Chance(0.05)) criteria.maxIterations = fRandom.Between(1, 3);
    criteria.level = fRandom.OneOf({95.0, 95.0, 90.0, 99.0, 50.0});
    if (fRandom.Chance(0.15)) criteria.degreesOfFreedom = fRandom.OneOf({3.0, 17.0, 2.5, 1000.0});
    fProblem.testType = static_cast<TestType>(fRandom.Below(4));
    fProblem.adjustment = static_cast<Adjustment>(fRandom.Below(5));
    if (!fColumns.parameters.empty() && !SelectCases(fProblem).inDomain.empty()) {
      const int hypotheses = fRandom.OneOf({0, 1, 1, 2});
      for (int i = 0; i < hypotheses; ++i)
        AddHypothesis();
      const int oddsRatios = fRandom.OneOf({0, 1, 1, 2});
      for (int i = 0; i < oddsRatios; ++i)
        AddOddsRatios();
    }
    fProblem.threads = fRandom.OneOf({1, 1, 2});
  }

 private:
  std::size_t EffectIndex(std::size_t e) const { return e + (fProblem.hasIntercept ? 1 : 0); }

  std::vector<Fraction> Coefficients(std::size_t count) {
    std::vector<Fraction> result(count);
    if (count > 1 && fRandom.Chance(0.8)) {  // a comparison
      const int first = fRandom.Below(static_cast<int>(count));
      const int second = (first + 1 + fRandom.Below(static_cast<int>(count) - 1)) % static_cast<int>(count);
      const int scale = fRandom.OneOf({1, 1, 1, 2, -3});
      result[static_cast<std::size_t>(first)].numerator = scale;
      result[static_cast<std::size_t>(second)].numerator = -scale;
    } else {
      for (Fraction& fraction : result)
        fraction = {fRandom.Between(-2, 2), fRandom.OneOf({1, 1, 2, 3})};
    }
    return result;
  }

  HypothesisRow RowOfEffects(bool hasIntercept) {
    HypothesisRow row;
    if (hasIntercept) row.intercept = Fraction{fRandom.Between(-1, 2), 1};
    const int terms = fRandom.Between(1, 2);
    for (int t = 0; t < terms; ++t) {
      const auto e = static_cast<std::size_t>(fRandom.Below(static_cast<int>(fProblem.effects.size())));
      if (std::find(row.effects.begin(), row.effects.end(), e) != row.effects.end()) continue;
      row.effects.push_back(e);
      const std::size_t count = fColumns.countOfEffect[EffectIndex(e)];
      row.coefficients.push_back(hasIntercept
                                     ? std::vector<Fraction>(count, Fraction{1, static_cast<int>(count)})
                                     : Coefficients(count));
    }
    return row;
  }

  HypothesisRow RowOfAll() {
    HypothesisRow row;
    row.isAll = true;
    const AnalysedCases cases = SelectCases(fProblem);
    const std::size_t logits = CountCategories(fProblem, cases, fProblem.dependent).codes.size() - 1;
    row.coefficients.emplace_back(fColumns.parameters.size() * logits);
    for (int terms = 0; terms < 2; ++terms) {
      const auto e = static_cast<std::size_t>(fRandom.Below(static_cast<int>(fProblem.effects.size())));
      const auto logit =
          static_cast<std::size_t>(fRandom.Below(static_cast<int>(std::max<std::size_t>(logits, 1))));
      const std::vector<Fraction> part = Coefficients(fColumns.countOfEffect[EffectIndex(e)]);
      for (std::size_t k = 0; k < part.size() && logits > 0; ++k)
        row.coefficients[0][logit * fColumns.parameters.size() + fColumns.firstOfEffect[EffectIndex(e)] + k] =
            part[k];
    }
    return row;
  }

  void AddHypothesis() {
    Hypothesis hypothesis;
    const double form = fRandom.Uniform(0, 1);
    if (fProblem.effects.empty() || (form < 0.1 && fProblem.hasIntercept)) {
      hypothesis.values = {fRandom.OneOf({0.0, 0.5, -1.0})};
      fProblem.hypotheses.push_back(hypothesis);
      return;
    }
    const bool isAll = form > 0.75, hasIntercept = form < 0.3 && fProblem.hasIntercept;
    const int rows = fRandom.OneOf({1, 1, 2, 3});
    for (int i = 0; i < rows; ++i)
      hypothesis.rows.push_back(isAll ? RowOfAll() : RowOfEffects(hasIntercept));
    if (fRandom.Chance(0.3)) {  // a row again, or a multiple of one
      HypothesisRow row = hypothesis.rows[0];
      const int factor = fRandom.OneOf({1, 2, -1});
      if (row.intercept) row.intercept->numerator *= factor;
      for (auto& part : row.coefficients) {
        for (Fraction& fraction : part)
          fraction.numerator *= factor;
      }
      hypothesis.rows.push_back(row);
    }
    if (fRandom.Chance(0.4)) {
      for (std::size_t i = 0; i < hypothesis.rows.size(); ++i)
        hypothesis.values.push_back(fRandom.OneOf({0.0, 0.0, 0.25, -0.5, 1.0}));
    }
    fProblem.hypotheses.push_back(hypothesis);
  }

  CategoryRequest AnyCategory(const Categorical& variable) {
    return {fRandom.OneOf({Extreme::kHigh, Extreme::kLow, Extreme::kValue}),
            fRandom.Below(static_cast<int>(variable.labels.size()))};
  }

  void AddOddsRatios() {
    std::vector<std::size_t> factors, covariates;
    for (std::size_t f = 0; f < fProblem.factors.size(); ++f) {
      const auto has = [f](const Effect& e) {
        return std::find(e.factors.begin(), e.factors.end(), f) != e.factors.end();
      };
      if (std::any_of(fProblem.effects.begin(), fProblem.effects.end(), has)) factors.push_back(f);
    }
    for (std::size_t v = 0; v < fProblem.covariates.size(); ++v) {
      const auto has = [v](const Effect& e) { return e.powers[v] > 0; };
      if (std::any_of(fProblem.effects.begin(), fProblem.effects.end(), has)) covariates.push_back(v);
    }
    OddsRatioRequest request;
    if (!factors.empty() && (covariates.empty() || fRandom.Chance(0.5))) {
      const std::size_t count = fRandom.Chance(0.3) ? factors.size() : 1;
      for (std::size_t i = 0; i < count; ++i)
        request.factors.push_back({factors[i], AnyCategory(fProblem.factors[factors[i]])});
      factors.erase(factors.begin(), factors.begin() + static_cast<std::ptrdiff_t>(count));
    } else if (!covariates.empty()) {
      request.covariates.push_back({covariates[0], {1.0}});
      if (fRandom.Chance(0.5)) request.covariates[0].changes = {2.5, -1.0};
      covariates.erase(covariates.begin());
    } else {
      return;
    }
    for (const std::size_t f : factors) {
      if (fRandom.Chance(0.5)) request.factorControls.push_back({f, AnyCategory(fProblem.factors[f])});
    }
    for (const std::size_t v : covariates) {
      if (fRandom.Chance(0.5))
        request.covariateControls.push_back(
            {v, fRandom.Chance(0.3) ? std::optional<double>() : fRandom.OneOf({0.0, 1.5, 10.0})});
    }
    fProblem.oddsRatios.push_back(request);
  }

  Random& fRandom;
  Problem& fProblem;
  Columns fColumns;
};

}  // namespace

Problem MakeProblem(std::uint64_t seed) {
  Random random(seed);
  Problem problem;
  SampleMaker(random, problem).Make();
  ModelMaker(random, problem).Make();
  RequestMaker(random, problem).Make();
  return problem;
}

}  // namespace reference
