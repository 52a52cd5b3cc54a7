// The odds ratios that one request asks for.
#pragma once

#include <utility>
#include <vector>

namespace tavo {

/// Either the categories of factors against a reference, or the change of covariates by given amounts, while
/// other predictors are held at control values. Serves twice: over dictionary indices while a command is read
/// (every reference is then 1, since categories have no codes yet), and over record columns and codes after
/// the first pass. In the record form a reference and a factor's control value are codes: above 0 that
/// category, 0 the highest category in use, -1 the lowest.
class OrvOddsRatioSpec {
 public:
  static constexpr int kRefused = -1;
  static constexpr int kLowest = -1;
  static constexpr int kHighest = 0;

  struct Factor {
    int variable;
    int reference;
  };
  struct Control {
    int variable;
    double value;  // missing: the mean of a covariate
  };

  /// Each gives the new count, or kRefused: for a negative variable, a variable that is in the same list, a
  /// reference below -1, a change of exactly 0, and for a factor beside covariates or the other way round.
  int AddFactor(int variable, int reference);
  /// One odds ratio per change.
  int AddCovariate(int variable, std::vector<double> changes);
  int AddControl(int variable, double value);
  void Clear();

  const std::vector<Factor>& Factors() const { return fFactors; }
  const std::vector<int>& Covariates() const { return fCovariates; }
  /// One list of changes per covariate.
  const std::vector<std::vector<double>>& Changes() const { return fChanges; }
  const std::vector<Control>& Controls() const { return fControls; }
  int FactorCount() const { return static_cast<int>(fFactors.size()); }
  int CovariateCount() const { return static_cast<int>(fCovariates.size()); }

 private:
  std::vector<Factor> fFactors;
  std::vector<int> fCovariates;
  std::vector<std::vector<double>> fChanges;
  std::vector<Control> fControls;
};

}  // namespace tavo
