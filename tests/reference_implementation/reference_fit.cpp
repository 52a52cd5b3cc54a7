#include "reference_fit.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace reference {

namespace {

/// The likelihood in a basis of orthogonal columns. Coefficients stand logit after logit.
class Likelihood {
 public:
  Likelihood(const Matrix& q, const Vector& weights, const std::vector<int>& responses, const Fit& fit)
      : fQ(q), fWeights(weights), fResponses(responses), fFit(fit) {}

  std::size_t Columns() const { return fQ.Columns(); }
  std::size_t Size() const { return Columns() * fFit.Equations(); }

  /// The probabilities of the categories of case i.
  Vector Probabilities(std::size_t i, const Vector& coefficients) const {
    Vector eta(fFit.categories.codes.size(), 0.0L);
    for (std::size_t j = 0; j < fFit.Equations(); ++j) {
      for (std::size_t k = 0; k < Columns(); ++k)
        eta[fFit.logits[j]] += coefficients[j * Columns() + k] * fQ(i, k);
    }
    const Real largest = *std::max_element(eta.begin(), eta.end());
    Real sum = 0;
    for (Real& e : eta)
      sum += e = std::exp(e - largest);
    for (Real& e : eta)
      e /= sum;
    return eta;
  }

  Real LogLikelihood(const Vector& coefficients) const {
    Real sum = 0;
    for (std::size_t i = 0; i < fQ.Rows(); ++i)
      sum += fWeights[i] * std::log(Probabilities(i, coefficients)[static_cast<std::size_t>(fResponses[i])]);
    return std::min(sum, 0.0L);
  }

  /// The contribution of case i to the score.
  Vector Score(std::size_t i, const Vector& probabilities) const {
    Vector score(Size());
    for (std::size_t j = 0; j < fFit.Equations(); ++j) {
      const std::size_t category = fFit.logits[j];
      const Real residual =
          (static_cast<std::size_t>(fResponses[i]) == category ? 1.0L : 0.0L) - probabilities[category];
      for (std::size_t k = 0; k < Columns(); ++k)
        score[j * Columns() + k] = fWeights[i] * residual * fQ(i, k);
    }
    return score;
  }

  void ScoreAndInformation(const Vector& coefficients, Vector& score, Matrix& information) const {
    score.assign(Size(), 0.0L);
    information = Matrix(Size(), Size());
    const std::size_t m = Columns();
    for (std::size_t i = 0; i < fQ.Rows(); ++i) {
      const Vector p = Probabilities(i, coefficients);
      const Vector own = Score(i, p);
      for (std::size_t a = 0; a < Size(); ++a)
        score[a] += own[a];
      for (std::size_t j = 0; j < fFit.Equations(); ++j) {
        for (std::size_t l = 0; l < fFit.Equations(); ++l) {
          const Real pj = p[fFit.logits[j]], pl = p[fFit.logits[l]];
          const Real factor = fWeights[i] * pj * ((j == l ? 1.0L : 0.0L) - pl);
          for (std::size_t k = 0; k < m; ++k) {
            for (std::size_t n = 0; n < m; ++n)
              information(j * m + k, l * m + n) += factor * fQ(i, k) * fQ(i, n);
          }
        }
      }
    }
  }

 private:
  const Matrix& fQ;
  const Vector& fWeights;
  const std::vector<int>& fResponses;
  const Fit& fFit;
};

/// Coefficients in the orthogonal basis as estimates of all parameters: r b = c in each logit.
Vector OnDataScale(const Vector& coefficients, const Matrix& r, const std::vector<std::size_t>& kept,
                   std::size_t parameters) {
  const std::size_t m = kept.size();
  Vector result(coefficients.size() / m * parameters, 0.0L);
  for (std::size_t j = 0; j < coefficients.size() / m; ++j) {
    for (std::size_t k = m; k-- > 0;) {
      Real sum = coefficients[j * m + k];
      for (std::size_t l = k + 1; l < m; ++l)
        sum -= r(k, l) * result[j * parameters + kept[l]];
      result[j * parameters + kept[k]] = sum / r(k, k);
    }
  }
  return result;
}

Vector MatrixTimes(const Matrix& a, const Vector& x) {
  Vector result(a.Rows());
  for (std::size_t i = 0; i < a.Rows(); ++i)
    result[i] = Dot(a.Row(i), x);
  return result;
}

/// The criterion on the change of the estimates.
Real ChangeOf(const Vector& now, const Vector& before, bool isAbsolute) {
  Real change = 0;
  for (std::size_t i = 0; i < now.size(); ++i) {
    const Real difference = std::abs(now[i] - before[i]);
    if (isAbsolute) {
      change += difference;
    } else {
      change = std::max(change, difference / std::max(std::abs(before[i]), 1e-6L));
    }
  }
  return change;
}

/// How much more the inverse of the columns' mean squares varies than with orthogonal columns: the largest
/// 1 / (1 - R^2) of a column on the others (Marquardt 1970).
Real InflationOf(const Columns& columns, const std::vector<std::size_t>& kept) {
  Matrix squares(kept.size(), kept.size());
  for (std::size_t i = 0; i < columns.centred.Rows(); ++i) {
    for (std::size_t a = 0; a < kept.size(); ++a) {
      for (std::size_t b = 0; b < kept.size(); ++b)
        squares(a, b) += columns.weights[i] * columns.centred(i, kept[a]) * columns.centred(i, kept[b]);
    }
  }
  const Matrix inverse = InverseOf(squares).inverse;
  Real largest = 1;
  for (std::size_t a = 0; a < inverse.Rows(); ++a)
    largest = std::max(largest, inverse(a, a) * squares(a, a));
  return inverse.Rows() > 0 ? largest : 2 * kLargestInflation;
}

void SetUpCategories(const Problem& problem, const AnalysedCases& cases, Fit& fit) {
  fit.categories = CountCategories(problem, cases, problem.dependent);
  fit.reference = PositionOf(fit.categories, problem.reference);
  for (std::size_t c = 0; c < fit.categories.codes.size(); ++c) {
    if (c != fit.reference) fit.logits.push_back(c);
  }
}

Vector StartingCoefficients(const Problem& problem, const Fit& fit, const Matrix& r) {
  Vector start(fit.kept.size() * fit.Equations(), 0.0L);
  if (!problem.hasIntercept) return start;
  for (std::size_t j = 0; j < fit.Equations(); ++j) {
    const Real odds = fit.categories.weights[fit.logits[j]] / fit.categories.weights[fit.reference];
    start[j * fit.kept.size()] = r(0, 0) * std::log(odds);
  }
  return start;
}

}  // namespace

Fit FitModel(const Problem& problem, const AnalysedCases& cases, const Columns& columns,
             const Independence& independence) {
  Fit fit;
  SetUpCategories(problem, cases, fit);
  fit.kept = independence.kept;
  fit.isWellPosed = independence.IsClear();
  fit.inflation = InflationOf(columns, fit.kept);
  fit.isWellPosed = fit.isWellPosed && fit.inflation < kLargestInflation;
  std::vector<int> responses;
  for (const std::size_t c : cases.inDomain) {
    const auto& codes = fit.categories.codes;
    const auto place = std::find(codes.begin(), codes.end(), problem.dependent.codes[c]);
    responses.push_back(static_cast<int>(place - codes.begin()));
  }
  const OrthogonalColumns orthogonal = Orthogonalise(columns, fit.kept);
  const Likelihood likelihood(orthogonal.q, columns.weights, responses, fit);
  const std::size_t p = columns.parameters.size();

  Vector beta = StartingCoefficients(problem, fit, orthogonal.r);
  const auto scaled = [&](const Vector& c) { return OnDataScale(c, orthogonal.r, fit.kept, p); };
  Real current = likelihood.LogLikelihood(beta);
  fit.initialLogLikelihood = fit.finalLogLikelihood = current;
  fit.history.push_back({0, current, scaled(beta)});
  Vector score;
  Matrix information;
  likelihood.ScoreAndInformation(beta, score, information);
  const Real total = std::accumulate(columns.weights.begin(), columns.weights.end(), 0.0L);
  PositiveInverse inverse = InverseOf(information);
  const auto noteInformation = [&] {
    for (std::size_t a = 0; a < inverse.inverse.Rows(); ++a)
      fit.information = std::max(fit.information, total * inverse.inverse(a, a));
  };
  noteInformation();
  fit.isWellPosed = fit.isWellPosed && inverse.smallestPivot > 1e-6L;

  const bool isExactAtStart = problem.hasIntercept && likelihood.Size() < fit.categories.codes.size();
  bool isDone = isExactAtStart || problem.criteria.maxIterations == 0;
  while (!isDone && fit.isWellPosed) {
    ++fit.iterations;
    const Vector before = beta;
    const Vector step = MatrixTimes(inverse.inverse, score);
    Real length = 1, next = 0;
    int halvings = 0;
    for (;; ++halvings, length /= 2) {
      for (std::size_t i = 0; i < beta.size(); ++i)
        beta[i] = before[i] + length * step[i];
      next = likelihood.LogLikelihood(beta);
      if (next >= current - 1e-14L * std::abs(current)) break;
      if (halvings >= 5) fit.isWellPosed = false;
      if (!fit.isWellPosed) break;
    }
    // Whether a step that hardly changes the likelihood is halved is up to rounding; the first ones tell.
    if (halvings > 0 && std::abs(next - current) < 1e-10L * std::abs(current)) fit.isWellPosed = false;
    likelihood.ScoreAndInformation(beta, score, information);
    inverse = InverseOf(information);
    noteInformation();
    fit.isWellPosed = fit.isWellPosed && inverse.smallestPivot > 0 && fit.iterations < 15;
    current = fit.finalLogLikelihood = next;
    fit.history.push_back({halvings, current, scaled(beta)});
    const Real change = ChangeOf(scaled(beta), scaled(before), problem.criteria.isAbsolute);
    const Real criterion = problem.criteria.parameterChange;
    if (std::abs(change / criterion - 1) < 1e-3L) fit.isWellPosed = false;
    // An absolute change below what double precision can tell of large estimates comes by chance.
    Real size = 0;
    for (const Real b : fit.history.back().estimates)
      size += std::abs(b);
    if (problem.criteria.isAbsolute && criterion < 1e-14L * fit.inflation * size) fit.isWellPosed = false;
    isDone = change < criterion || fit.iterations >= problem.criteria.maxIterations;
  }
  // A direction in which the information dies away: separation, or too close to it for a comparison.
  for (std::size_t a = 0; a < information.Rows(); ++a) {
    if (information(a, a) < 1e-5L * total) fit.isWellPosed = false;
  }
  if (inverse.smallestPivot < 1e-6L) fit.isWellPosed = false;
  if (!fit.isWellPosed) return fit;

  fit.estimates = fit.history.back().estimates;
  Matrix half;  // the columns of the inverse information, then its rows
  for (std::size_t a = 0; a < beta.size(); ++a)
    half.Append(scaled(inverse.inverse.Row(a)));
  fit.modelCovariance = Matrix(0, fit.estimates.size());
  for (std::size_t a = 0; a < fit.estimates.size(); ++a)
    fit.modelCovariance.Append(scaled(half.Column(a)));
  for (std::size_t i = 0; i < cases.inDomain.size(); ++i) {
    const Vector probabilities = likelihood.Probabilities(i, beta);
    fit.probabilities.Append(probabilities);
    const Vector influence = MatrixTimes(inverse.inverse, likelihood.Score(i, probabilities));
    fit.influences.Append(scaled(influence));
  }
  return fit;
}

int PredictedCategory(const Fit& fit, std::size_t caseInDomain) {
  const Vector p = fit.probabilities.Row(caseInDomain);
  const std::size_t best = static_cast<std::size_t>(std::max_element(p.begin(), p.end()) - p.begin());
  for (std::size_t c = 0; c < p.size(); ++c) {
    if (c != best && std::abs(std::log(p[c] / p[best])) < 1e-9L) return -1;
  }
  return static_cast<int>(best);
}

}  // namespace reference
