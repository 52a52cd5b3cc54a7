#include "reference_columns.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <set>

namespace reference {

namespace {

bool HasMissing(const std::vector<Categorical>& variables, std::size_t c) {
  return std::any_of(variables.begin(), variables.end(), [c](const auto& v) { return v.codes[c] < 0; });
}

bool IsComplete(const Problem& problem, std::size_t c) {
  if (problem.dependent.codes[c] < 0 || HasMissing(problem.factors, c) || HasMissing(problem.domain, c))
    return false;
  if (std::isnan(problem.weight.values[c])) return false;
  for (const Numeric& covariate : problem.covariates) {
    if (std::isnan(covariate.values[c])) return false;
  }
  return std::none_of(problem.stages.begin(), problem.stages.end(), [c](const Stage& stage) {
    return HasMissing(stage.strata, c) || HasMissing(stage.clusters, c);
  });
}

}  // namespace

AnalysedCases SelectCases(const Problem& problem) {
  AnalysedCases result;
  for (std::size_t c = 0; c < problem.cases; ++c) {
    if (!IsComplete(problem, c)) {
      ++result.invalid;
      continue;
    }
    const double weight = problem.weight.values[c];
    if (weight <= 0) continue;
    const bool isInside = problem.domain.empty() || problem.domain[0].codes[c] == problem.domainCode;
    result.cases.push_back(c);
    result.isInDomain.push_back(isInside);
    result.totalWeight += weight;
    if (!isInside) continue;
    result.inDomain.push_back(c);
    result.domainWeight += weight;
  }
  return result;
}

CategoryCounts CountCategories(const Problem& problem, const AnalysedCases& cases,
                               const Categorical& variable) {
  std::map<int, std::pair<Real, int>> byCode;
  for (const std::size_t c : cases.inDomain) {
    auto& [weight, count] = byCode[variable.codes[c]];
    weight += problem.weight.values[c];
    ++count;
  }
  CategoryCounts result;
  for (const auto& [code, sums] : byCode) {
    result.codes.push_back(code);
    result.weights.push_back(sums.first);
    result.counts.push_back(sums.second);
  }
  return result;
}

std::size_t PositionOf(const CategoryCounts& counts, const CategoryRequest& request) {
  if (request.kind == Extreme::kLow) return 0;
  const auto found = std::find(counts.codes.begin(), counts.codes.end(), request.code);
  if (request.kind == Extreme::kHigh || found == counts.codes.end()) return counts.codes.size() - 1;
  return static_cast<std::size_t>(found - counts.codes.begin());
}

std::vector<Effect> EffectsWithIntercept(const Problem& problem) {
  std::vector<Effect> effects = problem.effects;
  if (problem.hasIntercept)
    effects.insert(effects.begin(), Effect{{}, false, std::vector<int>(problem.covariates.size(), 0)});
  return effects;
}

std::vector<std::size_t> FactorsOf(const Effect& effect) {
  std::vector<std::size_t> factors = effect.factors;
  std::sort(factors.begin(), factors.end());
  return factors;
}

bool HasCovariates(const Effect& effect) {
  return std::any_of(effect.powers.begin(), effect.powers.end(), [](int power) { return power > 0; });
}

namespace {

/// An effect's name with each factor as `name` gives it.
template <class Name>
std::string Spelled(const Problem& problem, const Effect& effect, const Name& name) {
  std::vector<std::string> covariates;
  for (std::size_t v = 0; v < effect.powers.size(); ++v)
    covariates.insert(covariates.end(), static_cast<std::size_t>(effect.powers[v]),
                      problem.covariates[v].name);
  std::string text;
  const auto cross = [&text](const std::string& part) { text += (text.empty() ? "" : " * ") + part; };
  if (effect.isNested) {
    for (const std::string& covariate : covariates)
      cross(covariate);
    std::string close;
    for (const std::size_t factor : effect.factors) {
      if (!text.empty()) close += ")";
      text += (text.empty() ? "" : "(") + name(factor);
    }
    return text + close;
  }
  for (const std::size_t factor : FactorsOf(effect))
    cross(name(factor));
  for (const std::string& covariate : covariates)
    cross(covariate);
  return text.empty() ? "(Intercept)" : text;
}

Real CovariatePart(const Effect& effect, const Vector& covariates) {
  Real product = 1;
  for (std::size_t v = 0; v < effect.powers.size(); ++v) {
    for (int power = 0; power < effect.powers[v]; ++power)
      product *= covariates[v];
  }
  return product;
}

std::vector<int> LevelsOf(const Effect& effect, const std::vector<int>& factorCodes) {
  std::vector<int> levels;
  for (const std::size_t factor : FactorsOf(effect))
    levels.push_back(factorCodes[factor]);
  return levels;
}

std::vector<int> FactorCodes(const Problem& problem, std::size_t c) {
  std::vector<int> codes;
  for (const Categorical& factor : problem.factors)
    codes.push_back(factor.codes[c]);
  return codes;
}

Vector CovariateValues(const Problem& problem, std::size_t c) {
  Vector values;
  for (const Numeric& covariate : problem.covariates)
    values.push_back(covariate.values[c]);
  return values;
}

/// Whether an effect of covariates alone is fitted about its mean.
bool IsCentred(const std::vector<Effect>& effects, std::size_t e) {
  if (!effects[e].factors.empty() || !HasCovariates(effects[e])) return false;
  for (std::size_t other = 0; other < effects.size(); ++other) {
    if (other != e && effects[other].powers == effects[e].powers) return false;
  }
  return true;
}

/// One basis vector after the other, each orthogonal to those before (Gram and Schmidt, twice for the
/// digits).
class OrthogonalBasis {
 public:
  explicit OrthogonalBasis(const Vector& weights)
      : fWeights(weights), fTotal(std::accumulate(weights.begin(), weights.end(), 0.0L)) {}

  Real Inner(const Vector& a, const Vector& b) const {
    Real sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
      sum += fWeights[i] * a[i] * b[i];
    return sum / fTotal;
  }
  /// Takes the basis out of `column`; the result are its coefficients.
  Vector Reduce(Vector& column) const {
    Vector coefficients(fBasis.size(), 0.0L);
    for (int round = 0; round < 2; ++round) {
      for (std::size_t k = 0; k < fBasis.size(); ++k) {
        const Real c = Inner(fBasis[k], column);
        coefficients[k] += c;
        for (std::size_t i = 0; i < column.size(); ++i)
          column[i] -= c * fBasis[k][i];
      }
    }
    return coefficients;
  }
  /// Adds a reduced column; the result is its length.
  Real Add(Vector column) {
    const Real length = std::sqrt(Inner(column, column));
    for (Real& x : column)
      x /= length;
    fBasis.push_back(std::move(column));
    return length;
  }
  const std::vector<Vector>& Vectors() const { return fBasis; }

 private:
  const Vector& fWeights;
  Real fTotal;
  std::vector<Vector> fBasis;
};

}  // namespace

std::string EffectName(const Problem& problem, const Effect& effect) {
  return Spelled(problem, effect, [&](std::size_t factor) { return problem.factors[factor].name; });
}

Columns BuildColumns(const Problem& problem, const AnalysedCases& cases) {
  Columns result;
  result.effects = EffectsWithIntercept(problem);
  for (std::size_t e = 0; e < result.effects.size(); ++e) {
    const Effect& effect = result.effects[e];
    std::set<std::vector<int>> combinations;
    for (const std::size_t c : cases.inDomain)
      combinations.insert(LevelsOf(effect, FactorCodes(problem, c)));
    result.firstOfEffect.push_back(result.parameters.size());
    result.countOfEffect.push_back(combinations.size());
    for (const std::vector<int>& levels : combinations) {
      const std::vector<std::size_t> factors = FactorsOf(effect);
      const std::string label = Spelled(problem, effect, [&](std::size_t factor) {
        const auto place = std::find(factors.begin(), factors.end(), factor) - factors.begin();
        const Categorical& variable = problem.factors[factor];
        const int code = levels[static_cast<std::size_t>(place)];
        return "[" + variable.name + "=" + variable.labels[static_cast<std::size_t>(code)] + "]";
      });
      result.parameters.push_back({e, levels, label});
    }
  }
  for (const std::size_t c : cases.inDomain) {
    result.weights.push_back(problem.weight.values[c]);
    result.raw.Append(DesignRow(result, FactorCodes(problem, c), CovariateValues(problem, c)));
  }
  result.centred = result.raw;
  if (!problem.hasIntercept) return result;
  for (std::size_t e = 0; e < result.effects.size(); ++e) {
    if (!IsCentred(result.effects, e)) continue;
    const std::size_t k = result.firstOfEffect[e];
    Real mean = 0;
    for (std::size_t i = 0; i < result.raw.Rows(); ++i)
      mean += result.weights[i] * result.raw(i, k) / cases.domainWeight;
    for (std::size_t i = 0; i < result.raw.Rows(); ++i)
      result.centred(i, k) -= mean;
  }
  return result;
}

Vector DesignRow(const Columns& columns, const std::vector<int>& factorCodes, const Vector& covariates) {
  Vector row(columns.parameters.size(), 0.0L);
  for (std::size_t k = 0; k < row.size(); ++k) {
    const Effect& effect = columns.effects[columns.parameters[k].effect];
    if (LevelsOf(effect, factorCodes) == columns.parameters[k].levels)
      row[k] = CovariatePart(effect, covariates);
  }
  return row;
}

namespace {

Independence FindIndependentOf(const Matrix& x, const Columns& columns,
                               const std::vector<std::size_t>& order) {
  Independence result;
  result.isKept.assign(columns.parameters.size(), false);
  OrthogonalBasis basis(columns.weights);
  for (const std::size_t k : order) {
    Vector column = x.Column(k);
    const Vector raw = columns.raw.Column(k);
    // What centring leaves of a column that holds one value is rounding noise.
    const Real before = std::max(basis.Inner(column, column), 1e-30L * basis.Inner(raw, raw));
    if (!(before > 0)) continue;
    basis.Reduce(column);
    const Real share = basis.Inner(column, column) / before;
    if (share > 1e-12L) {
      result.smallestKept = std::min(result.smallestKept, share);
      result.isKept[k] = true;
      result.kept.push_back(k);
      basis.Add(std::move(column));
    } else {
      result.largestDropped = std::max(result.largestDropped, share);
    }
  }
  return result;
}

}  // namespace

Independence FindIndependent(const Columns& columns, const std::vector<std::size_t>& order) {
  return FindIndependentOf(columns.raw, columns, order);
}

Independence FindRedundant(const Columns& columns) {
  std::vector<std::size_t> order(columns.parameters.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  return FindIndependentOf(columns.centred, columns, order);
}

OrthogonalColumns Orthogonalise(const Columns& columns, const std::vector<std::size_t>& kept) {
  OrthogonalBasis basis(columns.weights);
  OrthogonalColumns result;
  result.r = Matrix(kept.size(), kept.size());
  for (std::size_t k = 0; k < kept.size(); ++k) {
    Vector column = columns.raw.Column(kept[k]);
    const Vector coefficients = basis.Reduce(column);
    for (std::size_t j = 0; j < k; ++j)
      result.r(j, k) = coefficients[j];
    result.r(k, k) = basis.Add(std::move(column));
  }
  result.q = Matrix(columns.raw.Rows(), kept.size());
  for (std::size_t k = 0; k < kept.size(); ++k) {
    for (std::size_t i = 0; i < result.q.Rows(); ++i)
      result.q(i, k) = basis.Vectors()[k][i];
  }
  return result;
}

Matrix EstimableFunctions(const Columns& columns, const std::vector<std::size_t>& kept) {
  const OrthogonalColumns orthogonal = Orthogonalise(columns, kept);
  const std::size_t m = kept.size();
  Matrix result(m, columns.parameters.size());
  for (std::size_t j = 0; j < columns.parameters.size(); ++j) {
    Vector c(m, 0.0L);
    Real total = 0;
    for (std::size_t i = 0; i < orthogonal.q.Rows(); ++i) {
      total += columns.weights[i];
      for (std::size_t k = 0; k < m; ++k)
        c[k] += columns.weights[i] * orthogonal.q(i, k) * columns.raw(i, j);
    }
    for (std::size_t k = m; k-- > 0;) {
      c[k] /= total;
    }
    for (std::size_t k = m; k-- > 0;) {
      for (std::size_t l = k + 1; l < m; ++l)
        c[k] -= orthogonal.r(k, l) * c[l];
      c[k] /= orthogonal.r(k, k);
    }
    for (std::size_t k = 0; k < m; ++k)
      result(k, j) = std::abs(c[k]) < 1e-13L ? 0 : c[k];
  }
  return result;
}

}  // namespace reference
