// What the first pass learns: categories in use, level combinations of each effect, means and spreads of
// covariates; and the numbering of the parameters that follows from it.
#pragma once

#include <utility>
#include <vector>

#include "component/tabulation/effect_combinations.h"

namespace tavo {

/// Weighted counts of the categories of factors and of the dependent variable. Factor positions and
/// categories are 0-based here. A plain value: results keep a deep copy.
class OrvFactorCounts {
 public:
  /// First the weighted, then the unweighted count.
  using CountPair = std::pair<double, double>;

  OrvFactorCounts() = default;
  /// Columns are record columns; `dependentColumn` is negative when there is no categorical dependent.
  OrvFactorCounts(std::vector<int> factorColumns, std::vector<int> categoryCounts, int weightColumn,
                  int dependentColumn, int dependentCategories);

  int FactorCount() const { return static_cast<int>(fFactorColumns.size()); }
  int CategoryCount(int factor) const { return fCategoryCounts[static_cast<std::size_t>(factor)]; }
  /// Weighted count of each category of a factor.
  const std::vector<double>& FactorCounts(int factor) const {
    return fFactorCounts[static_cast<std::size_t>(factor)];
  }
  /// Counts of each dependent category; null without a dependent.
  const std::vector<CountPair>* DependentCounts() const {
    return fDependentColumn < 0 ? nullptr : &fDependentCounts;
  }
  /// How many categories of a factor have a positive count; -1 for a factor out of range.
  int CategoriesInUse(int factor) const;

 protected:
  std::vector<int> fFactorColumns;
  std::vector<int> fCategoryCounts;
  int fWeightColumn = -1;
  int fDependentColumn = -1;
  std::vector<std::vector<double>> fFactorCounts;
  std::vector<CountPair> fDependentCounts;
  // What rounding took from the weighted counts.
  std::vector<std::vector<double>> fFactorRests;
  std::vector<double> fDependentRests;
};

class OrvFactorTables : public OrvFactorCounts {
 public:
  using OrvFactorCounts::OrvFactorCounts;

  /// `effectFactors`: for each model effect (the intercept first when there is one) the record columns of its
  /// factors. `extractPositions`: for each factor its position in an extracted row. Rebuilds all tables.
  /// False, with nothing changed, when an effect names a column that is no factor or a position is missing.
  bool SetEffects(const std::vector<std::vector<int>>& effectFactors,
                  const std::vector<int>& extractPositions);
  /// For each model effect the record columns of its covariates and their powers.
  void SetEffectCovariates(std::vector<std::vector<int>> covariates, std::vector<std::vector<int>> exponents);
  /// Record columns of the covariates whose means are wanted.
  void SetCovariates(std::vector<int> columns);

  /// Adds one record (the data array) of the subpopulation. False when a category is out of range.
  bool Update(const double* record);
  /// Counts one record outside the subpopulation.
  void AddComplement(double weight);

  /// Numbers the parameters: an effect with factors gets one for each level combination that occurred, in
  /// sorted order, an effect without factors one. Returns their total.
  int AssignParameters();

  int EffectCount() const { return static_cast<int>(fEffectFactors.size()); }
  /// Model effect numbers of the effects with factors, ascending.
  const std::vector<int>& FactorEffects() const { return fEffectNumbers; }
  /// First parameter of each model effect.
  const std::vector<int>& ParameterOffsets() const { return fParameterOffsets; }
  /// Parameters of a model effect; 0 for an effect out of range.
  int ParameterCount(int effect) const;
  /// Parameter index of each model effect for an extracted row, -1 for a level combination that never
  /// occurred; the result is false then. `indices` is sized once by the caller to EffectCount(). Not safe for
  /// two threads at once on one object (working keys).
  bool ParameterIndices(const double* row, std::vector<int>& indices);
  /// The same for the effects with factors only, as positions within the effect, in the order of
  /// FactorEffects().
  bool LocalParameterIndices(const double* row, std::vector<int>& positions);
  /// 1-based factor levels of a parameter within an effect (parameter counted from 0), in the effect's factor
  /// order; empty for an effect without factors. False when out of range.
  bool EffectLevels(std::vector<int>& levels, int effect, int parameter) const;

  /// Centres and scales by which the columns of each effect are transformed for the fit; computed at first
  /// use.
  const std::vector<double>& Centres(bool hasIntercept);
  const std::vector<double>& Scales(bool hasIntercept);
  /// Weighted covariate means, in the order of SetCovariates; all missing when the total weight isn't
  /// positive.
  const std::vector<double>& CovariateMeans();

  double TotalWeight() const { return fTotalWeight; }            // in the subpopulation
  double ComplementWeight() const { return fComplementWeight; }  // outside it
  double PopulationEstimate() const { return fTotalWeight + fComplementWeight; }
  double SampleSize() const { return fSampleSize; }  // all valid records
  /// A power of four near the mean weight in the subpopulation: products of weights in this unit neither
  /// overflow nor fall below limits that are meant for sums over cases, and dividing by it, or by its root,
  /// is exact. 1 when the weights have no mean.
  double WeightUnit() const;

 private:
  /// One covariate of an effect.
  struct Term {
    int column;
    int power;
  };
  /// The product of an effect's covariates. Its running weighted mean is that effect's centre until the
  /// transformation is computed; its sum of squares is kept in units that are powers of two, so that it
  /// neither over- nor underflows.
  struct Product {
    std::size_t effect;
    std::vector<Term> terms;
    double squares = 0;  // weighted, about the mean, in the units of weights and of deviations
    int exponent = 0;    // of the unit of deviations
    double perUnit = 0;  // 2^-exponent; 0 before the first deviation
  };

  bool CountCategories(const double* record, double weight);
  bool CountDependent(const double* record, double weight);
  void UpdateCovariateMeans(const double* record, double share);
  void UpdateEffectSpreads(const double* record, double share, double weightBefore);
  static void ChooseUnit(double deviation, Product& product);
  void ReadLevels(const double* row);
  void ComputeTransformation(bool hasIntercept);
  bool IsLoneCovariateEffect(std::size_t effect) const;
  int LocalFactor(int column) const;

  std::vector<std::vector<int>> fEffectFactors;      // by model effect: local factor indices
  std::vector<int> fEffectNumbers;                   // by effect with factors: model effect
  std::vector<int> fLocalEffects;                    // by model effect: effect with factors, or -1
  std::vector<OrvEffectCombinations> fCombinations;  // by effect with factors
  std::vector<int> fFactorValues =
      std::vector<int>(fFactorColumns.size(), -1);  // 0-based levels of the record
  std::vector<int> fParameterOffsets;               // by model effect
  std::vector<int> fExtractPositions;               // by factor
  std::vector<std::vector<int>> fEffectCovariates;
  std::vector<std::vector<int>> fEffectExponents;
  std::vector<Product> fProducts;
  std::vector<double> fCentres;
  std::vector<double> fScales;
  bool fbTransformationDone = false;
  std::vector<int> fCovariates;
  std::vector<double> fCovariateMeans;
  bool fbMeansDone = false;
  double fTotalWeight = 0;
  double fTotalWeightRest = 0;
  double fComplementWeight = 0;
  double fComplementWeightRest = 0;
  double fSampleSize = 0;
  double fSubpopulationSize = 0;  // records of the subpopulation
  double fPerFirstWeight = 0;     // 1 over a power of two near the first weight; 0 before it
};

}  // namespace tavo
