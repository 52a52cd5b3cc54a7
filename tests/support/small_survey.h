// A small survey for whole runs of the component, and the same analysis done directly with dense matrices.
#pragma once

#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "component/input/comp_settings.h"
#include "component/input/record_iterator.h"
#include "component/numerics/record.h"
#include "component/run/algorithm.h"

namespace inference_test {

enum Column : int {
  kResponse,
  kFactor,
  kCovariate,
  kWeight,
  kStratum,
  kCluster,
  kDomain,
  kPopulation,
  kColumns
};

struct Case {
  int response = 1;
  int factor = 1;
  double x = 0;
  double weight = 1;
  int stratum = 1;
  int cluster = 1;
  int domain = 1;
  double population = 1000;
};

/// The cases as a stream of records.
class CaseStream final : public MCCommon::MultiPassRecordIter {
 public:
  explicit CaseStream(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
      MCCommon::Record record(kColumns);
      record[kResponse] = c.response;
      record[kFactor] = c.factor;
      record[kCovariate] = c.x;
      record[kWeight] = c.weight;
      record[kStratum] = c.stratum;
      record[kCluster] = c.cluster;
      record[kDomain] = c.domain;
      record[kPopulation] = c.population;
      fRecords.push_back(record);
    }
  }
  bool HasNext() const override { return fNext < fRecords.size(); }
  const MCCommon::Record* Next() override { return HasNext() ? &fRecords[fNext++] : nullptr; }
  int IteratorStatus() const override { return HasNext() ? MCCommon::kAvailable : MCCommon::kExhausted; }
  int Reset() override {
    fNext = 0;
    return IteratorStatus();
  }

 private:
  std::vector<MCCommon::Record> fRecords;
  std::size_t fNext = 0;
};

/// Intercept, factor with two levels, covariate.
inline const std::vector<int> kPredictors = {kFactor, kCovariate};

/// Response and weight, tight criteria; no design, no predictors.
inline tavo::TavoCompSettings BareSettings(int categories) {
  tavo::TavoCompSettings settings;
  settings.SetDependent(kResponse, categories, 0);
  settings.SetWeightVar(kWeight);
  settings.SetParamCriterion(1e-10);
  return settings;
}

inline void AddPredictors(tavo::TavoCompSettings& settings) {
  settings.AddFactor(kFactor, 2);
  settings.AddCovariate(kCovariate);
  tavo::OrvModelEffect factor(1, 1, &kPredictors);
  factor.AddFactor(kFactor, false);
  tavo::OrvModelEffect covariate(1, 1, &kPredictors);
  covariate.AddCovariate(kCovariate);
  settings.AddEffect(factor);
  settings.AddEffect(covariate);
}

/// Strata and clusters, one stage with replacement.
inline void AddDesign(tavo::TavoCompSettings& settings) {
  settings.AddDesignCategorical(kStratum, tavo::DesignVariableKind::kStrata, 1);
  settings.AddDesignCategorical(kCluster, tavo::DesignVariableKind::kCluster, 1);
  settings.SetStageEstimator(tavo::StageEstimator::kWithReplacement, 1);
}

/// Parameters of one logit: intercept, factor level 1, factor level 2 (redundant), covariate.
constexpr int kBasicParameters = 4;

inline tavo::TavoCompSettings FullSettings(int categories) {
  tavo::TavoCompSettings settings = BareSettings(categories);
  AddDesign(settings);
  AddPredictors(settings);
  return settings;
}

/// 4 strata of 3 clusters of 6 cases, two domains.
inline std::vector<Case> RandomCases(int categories, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  const auto whole = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
  std::vector<Case> cases;
  for (int i = 0; i < 72; ++i) {
    Case c;
    c.response = whole(1, categories);
    c.factor = whole(1, 2);
    c.x = 50.0 + 10.0 * normal(random) + 5.0 * c.response;
    c.weight = whole(1, 5) + 0.5;
    c.stratum = i / 18 + 1;
    c.cluster = i / 6 % 3 + 1;
    c.domain = whole(1, 2);
    cases.push_back(c);
  }
  return cases;
}

/// A finished run. The settings must outlive it.
inline std::unique_ptr<tavo::TavoAlgorithm> Analyse(const tavo::TavoCompSettings& settings,
                                                    const std::vector<Case>& cases) {
  auto algorithm = std::make_unique<tavo::TavoAlgorithm>(settings);
  CaseStream stream(cases);
  algorithm->BuildModel(stream);
  return algorithm;
}

// ---- the same analysis on full dense matrices, in the units of the data ----

using Real = long double;
using Row = std::vector<Real>;
using Dense = std::vector<Row>;

inline Dense Zeros(std::size_t n) {
  return Dense(n, Row(n, 0));
}

inline void AddProduct(Dense& sum, const Row& v, Real factor) {
  for (std::size_t i = 0; i < v.size(); ++i) {
    for (std::size_t j = 0; j < v.size(); ++j)
      sum[i][j] += factor * v[i] * v[j];
  }
}

/// Gauss-Jordan elimination with the largest pivot of each column.
inline Dense Inverse(Dense a) {
  const std::size_t n = a.size();
  Dense inverse = Zeros(n);
  for (std::size_t i = 0; i < n; ++i)
    inverse[i][i] = 1;
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t best = k;
    for (std::size_t i = k; i < n; ++i) {
      if (std::abs(a[i][k]) > std::abs(a[best][k])) best = i;
    }
    std::swap(a[k], a[best]);
    std::swap(inverse[k], inverse[best]);
    const Real pivot = a[k][k];
    for (std::size_t j = 0; j < n; ++j) {
      a[k][j] /= pivot;
      inverse[k][j] /= pivot;
    }
    for (std::size_t i = 0; i < n; ++i) {
      if (i == k) continue;
      const Real factor = a[i][k];
      for (std::size_t j = 0; j < n; ++j) {
        a[i][j] -= factor * a[k][j];
        inverse[i][j] -= factor * inverse[k][j];
      }
    }
  }
  return inverse;
}

inline Dense Multiply(const Dense& a, const Dense& b) {
  Dense product = Zeros(a.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < a.size(); ++j) {
      for (std::size_t k = 0; k < a.size(); ++k)
        product[i][j] += a[i][k] * b[k][j];
    }
  }
  return product;
}

/// Newton's method on the kept columns (1, factor is 1, x), logit by logit with the last category as
/// reference.
class DirectFit {
 public:
  /// `domain` 0: all cases.
  DirectFit(const std::vector<Case>& cases, int categories, int domain = 0)
      : fCases(cases),
        fLogits(static_cast<std::size_t>(categories - 1)),
        fDomain(domain),
        fTheta(3 * fLogits, 0) {
    for (int iteration = 0; iteration < 30; ++iteration)
      Step();
  }

  const Row& Theta() const { return fTheta; }

  /// One stage with replacement: clusters within strata.
  Dense DesignCovariance() const {
    std::map<int, std::map<int, Row>> totals;
    for (const Case& c : fCases) {
      Row& total = totals[c.stratum][c.cluster];
      total.resize(fTheta.size(), 0);
      const Row score = Score(c);
      for (std::size_t i = 0; i < score.size(); ++i)
        total[i] += score[i];
    }
    Dense m = Zeros(fTheta.size());
    for (const auto& [stratum, clusters] : totals)
      AddBetween(m, clusters);
    return Sandwich(m);
  }

  /// Of a simple random sample without replacement: N/(n-1) (1 - n/N) times the sum of w r r'.
  Dense SRSCovariance() const {
    Dense m = Zeros(fTheta.size());
    Real population = 0;
    for (const Case& c : fCases) {
      population += c.weight;
      AddProduct(m, Score(c), 1 / static_cast<Real>(c.weight));
    }
    const auto n = static_cast<Real>(fCases.size());
    for (Row& row : m) {
      for (Real& element : row)
        element *= population / (n - 1) * (1 - n / population);
    }
    return Sandwich(m);
  }

 private:
  static Row Columns(const Case& c) { return {1, c.factor == 1 ? Real(1) : Real(0), c.x}; }

  Row Probabilities(const Case& c) const {
    const Row x = Columns(c);
    Row p(fLogits, 0);
    Real sum = 1;
    for (std::size_t j = 0; j < fLogits; ++j) {
      for (std::size_t k = 0; k < 3; ++k)
        p[j] += fTheta[3 * j + k] * x[k];
      p[j] = std::exp(p[j]);
      sum += p[j];
    }
    for (Real& each : p)
      each /= sum;
    return p;
  }

  Row Score(const Case& c) const {
    Row score(fTheta.size(), 0);
    if (fDomain != 0 && c.domain != fDomain) return score;
    const Row x = Columns(c);
    const Row p = Probabilities(c);
    for (std::size_t j = 0; j < fLogits; ++j) {
      const Real residual = (c.response == static_cast<int>(j) + 1 ? 1 : 0) - p[j];
      for (std::size_t k = 0; k < 3; ++k)
        score[3 * j + k] = c.weight * residual * x[k];
    }
    return score;
  }

  Dense Information() const {
    Dense information = Zeros(fTheta.size());
    for (const Case& c : fCases) {
      if (fDomain != 0 && c.domain != fDomain) continue;
      const Row x = Columns(c);
      const Row p = Probabilities(c);
      for (std::size_t a = 0; a < fTheta.size(); ++a) {
        for (std::size_t b = 0; b < fTheta.size(); ++b) {
          const Real spread = (a / 3 == b / 3 ? p[a / 3] : 0) - p[a / 3] * p[b / 3];
          information[a][b] += c.weight * spread * x[a % 3] * x[b % 3];
        }
      }
    }
    return information;
  }

  void Step() {
    Row gradient(fTheta.size(), 0);
    for (const Case& c : fCases) {
      const Row score = Score(c);
      for (std::size_t i = 0; i < score.size(); ++i)
        gradient[i] += score[i];
    }
    const Dense g = Inverse(Information());
    for (std::size_t i = 0; i < fTheta.size(); ++i) {
      for (std::size_t j = 0; j < fTheta.size(); ++j)
        fTheta[i] += g[i][j] * gradient[j];
    }
  }

  static void AddBetween(Dense& m, const std::map<int, Row>& clusters) {
    const auto n = static_cast<Real>(clusters.size());
    Row mean(m.size(), 0);
    for (const auto& [code, total] : clusters) {
      for (std::size_t i = 0; i < mean.size(); ++i)
        mean[i] += total[i] / n;
    }
    for (const auto& [code, total] : clusters) {
      Row deviation = total;
      for (std::size_t i = 0; i < mean.size(); ++i)
        deviation[i] -= mean[i];
      AddProduct(m, deviation, n / (n - 1));
    }
  }

  Dense Sandwich(const Dense& m) const {
    const Dense g = Inverse(Information());
    return Multiply(Multiply(g, m), g);
  }

  const std::vector<Case>& fCases;
  std::size_t fLogits;
  int fDomain;
  Row fTheta;
};

/// Position among all parameters of a kept one.
inline int KeptPosition(std::size_t kept) {
  constexpr int kColumnsOfLogit[] = {0, 1, 3};
  return static_cast<int>(kept / 3) * kBasicParameters + kColumnsOfLogit[kept % 3];
}

}  // namespace inference_test
