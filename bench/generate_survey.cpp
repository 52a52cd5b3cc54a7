// Writes survey data of any size for the benchmarks: 50 strata of 20 primary sampling units of unequal size,
// rows in random order, lognormal weights, a logistic response with an effect of the unit.
//
//   generate_survey ROWS FILE.csv [CATEGORIES]
//
// Columns: stratum, psu, wt, f2, f4, f5, x1, x2, x3, y. The same arguments give the same file.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr int kStrata = 50;
constexpr int kUnitsPerStratum = 20;
constexpr int kUnits = kStrata * kUnitsPerStratum;

using Random = std::mt19937_64;

double Normal(Random& random) {
  return std::normal_distribution<double>()(random);
}

/// Rows of each unit: at least one, the rest in proportion to gamma-distributed sizes.
std::vector<int> UnitsOfRows(std::size_t rows, Random& random) {
  std::vector<double> sizes(kUnits);
  std::gamma_distribution<double> gamma(4.0, 1.0);
  for (double& size : sizes)
    size = gamma(random);
  std::discrete_distribution<int> draw(sizes.begin(), sizes.end());
  std::vector<int> units(rows);
  for (std::size_t i = 0; i < rows; ++i)
    units[i] = i < kUnits ? static_cast<int>(i) : draw(random);
  std::shuffle(units.begin(), units.end(), random);
  return units;
}

struct Row {
  int f2, f4, f5;
  double x1, x2;
  int x3;
};

Row DrawRow(double unitMean, Random& random) {
  std::discrete_distribution<int> four({0.4, 0.3, 0.2, 0.1});
  std::discrete_distribution<int> five({0.1, 0.15, 0.2, 0.25, 0.3});
  Row row{};
  row.f2 = std::uniform_int_distribution<int>(1, 2)(random);
  row.f4 = four(random) + 1;
  row.f5 = five(random) + 1;
  row.x1 = Normal(random);
  row.x2 = 0.6 * unitMean + 0.8 * Normal(random);
  row.x3 = std::uniform_int_distribution<int>(18, 90)(random);
  return row;
}

double LinearPredictor(const Row& row, int logit, double unitEffect) {
  constexpr std::array<double, 4> kB4 = {0.0, 0.3, -0.4, 0.5};
  constexpr std::array<double, 5> kB5 = {0.0, -0.2, 0.1, 0.25, -0.3};
  constexpr std::array<double, 4> kSlope4 = {0.0, 0.25, -0.35, 0.15};
  const double scale = 1.0 - 0.35 * logit;
  const auto at = [logit](const auto& values, int level) {
    return values[static_cast<std::size_t>(level - 1 + logit) % values.size()];
  };
  return -0.5 + 0.2 * logit + scale * 0.4 * (row.f2 == 2) + at(kB4, row.f4) + at(kB5, row.f5) +
         scale * 0.5 * row.x1 - 0.3 * row.x2 + scale * 0.01 * (row.x3 - 54) + at(kSlope4, row.f4) * row.x1 +
         unitEffect;
}

/// 0 or 1 for two categories, otherwise 1 to `categories`.
int DrawResponse(const Row& row, int categories, double unitEffect, Random& random) {
  std::vector<double> weights(static_cast<std::size_t>(categories), 1.0);
  for (int j = 0; j + 1 < categories; ++j) {
    weights[static_cast<std::size_t>(j)] = std::exp(LinearPredictor(row, j, unitEffect));
  }
  const int drawn = std::discrete_distribution<int>(weights.begin(), weights.end())(random);
  return categories == 2 ? 1 - drawn : drawn + 1;
}

}  // namespace

int main(int argc, char** argv) {
  const long rows = argc >= 3 ? std::atol(argv[1]) : 0;
  const int categories = argc >= 4 ? std::atoi(argv[3]) : 2;
  if (rows < kUnits || categories < 2) {
    std::fprintf(stderr,
                 "usage: generate_survey ROWS FILE.csv [CATEGORIES]   (at least %d rows, 2 categories)\n",
                 kUnits);
    return 2;
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(argv[2], "w"), &std::fclose);
  if (file == nullptr) {
    std::perror(argv[2]);
    return 2;
  }
  Random random(20260101);
  const std::vector<int> units = UnitsOfRows(static_cast<std::size_t>(rows), random);
  std::vector<double> unitMeans(kUnits);
  std::vector<double> unitEffects(kUnits);
  std::vector<double> stratumWeights(kStrata);
  for (double& mean : unitMeans)
    mean = Normal(random);
  for (double& effect : unitEffects)
    effect = 0.4 * Normal(random);
  for (double& weight : stratumWeights)
    weight = 40.0 * std::exp(0.4 * Normal(random));

  std::fprintf(file.get(), "stratum,psu,wt,f2,f4,f5,x1,x2,x3,y\n");
  for (const int unit : units) {
    const Row row = DrawRow(unitMeans[static_cast<std::size_t>(unit)], random);
    const int stratum = unit / kUnitsPerStratum;
    const double weight = stratumWeights[static_cast<std::size_t>(stratum)] * std::exp(0.5 * Normal(random));
    const int y = DrawResponse(row, categories, unitEffects[static_cast<std::size_t>(unit)], random);
    std::fprintf(file.get(), "%d,%d,%.4f,%d,%d,%d,%.6f,%.6f,%d,%d\n", stratum + 1,
                 unit % kUnitsPerStratum + 1, weight + 0.0001, row.f2, row.f4, row.f5, row.x1, row.x2, row.x3,
                 y);
  }
  return 0;
}
