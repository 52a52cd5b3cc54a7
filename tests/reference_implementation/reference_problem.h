// A survey and what is asked of it, as plain values: what the twin reads directly and the program reads as
// files.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace reference {

/// A categorical variable. `labels` are its categories in ascending order as they are printed (numbers, or
/// texts by their bytes); `codes` has the category of each case from 0, -1 for a missing one.
struct Categorical {
  std::string name;
  bool isText = false;
  std::vector<std::string> labels;
  std::vector<int> codes;
};

/// A numeric variable; a missing value is no number.
struct Numeric {
  std::string name;
  std::vector<double> values;
};

enum class Estimator { kWithReplacement, kEqualWithoutReplacement, kUnequalWithoutReplacement };
enum class SizeKind { kNone, kRateValue, kRateVariable, kCountValue, kCountVariable };

/// A stage of the sample. A last stage without clusters has the cases as its units.
struct Stage {
  Estimator estimator = Estimator::kWithReplacement;
  std::vector<Categorical> strata, clusters;
  SizeKind sizeKind = SizeKind::kNone;
  double sizeValue = 0;
  Numeric size;  // in use for the variable kinds; one value for all cases of a stratum
};

/// The joint inclusion probabilities of the first-stage units of a stratum.
struct JointStratum {
  std::vector<int> strata;              // codes
  std::vector<std::vector<int>> units;  // codes of the cluster variables
  std::vector<std::vector<double>> probabilities;
};

/// A term of the model. The factors stand in the order in which they are written; with `isNested` the second
/// and later ones in parentheses, a(b(c)), or all of them when there are covariates, x(a).
struct Effect {
  std::vector<std::size_t> factors;
  bool isNested = false;
  std::vector<int> powers;  // one per covariate
};

enum class Extreme { kHigh, kLow, kValue };
/// A category asked for: the highest or lowest in use, or the one with that code.
struct CategoryRequest {
  Extreme kind = Extreme::kHigh;
  int code = 0;
};

enum class TestType { kF, kAdjustedF, kChiSquare, kAdjustedChiSquare };
enum class Adjustment { kNone, kBonferroni, kSequentialBonferroni, kSidak, kSequentialSidak };

/// A coefficient as it is written: numerator or numerator/denominator.
struct Fraction {
  int numerator = 0;
  int denominator = 1;
  double Value() const { return static_cast<double>(numerator) / static_cast<double>(denominator); }
};

/// A row of a hypothesis: coefficients of effects, led by one for the intercept or not; or, with `isAll`, one
/// for each parameter of all equations.
struct HypothesisRow {
  bool isAll = false;
  std::optional<Fraction> intercept;
  std::vector<std::size_t> effects;
  std::vector<std::vector<Fraction>> coefficients;  // by effect; with isAll one list
};

/// A CUSTOM subcommand. Without rows it tests the intercept against the one value.
struct Hypothesis {
  std::vector<HypothesisRow> rows;
  std::vector<double> values;  // empty: all 0
};

/// An ODDSRATIOS subcommand: of factors, or of covariates when there are no factors.
struct OddsRatioRequest {
  struct OfFactor {
    std::size_t factor = 0;
    CategoryRequest reference;
  };
  struct OfCovariate {
    std::size_t covariate = 0;
    std::vector<double> changes;
  };
  struct FactorControl {
    std::size_t factor = 0;
    CategoryRequest category;
  };
  struct CovariateControl {
    std::size_t covariate = 0;
    std::optional<double> value;  // none: the mean
  };
  std::vector<OfFactor> factors;
  std::vector<OfCovariate> covariates;
  std::vector<FactorControl> factorControls;
  std::vector<CovariateControl> covariateControls;
};

struct Criteria {
  int maxIterations = 100;
  double parameterChange = 1e-6;
  bool isAbsolute = false;
  double level = 95;  // of confidence, in percent
  std::optional<double> degreesOfFreedom;
};

struct Problem {
  std::size_t cases = 0;
  Categorical dependent;
  std::vector<Categorical> factors;
  std::vector<Numeric> covariates;
  Numeric weight;
  std::vector<Categorical> domain;  // none, or the one variable
  int domainCode = 0;
  std::vector<Stage> stages;
  std::vector<JointStratum> joint;
  bool isSrsWithReplacement = false;

  CategoryRequest reference;
  bool hasIntercept = true;
  std::vector<Effect> effects;
  Criteria criteria;
  TestType testType = TestType::kF;
  Adjustment adjustment = Adjustment::kNone;
  std::vector<Hypothesis> hypotheses;
  std::vector<OddsRatioRequest> oddsRatios;
  int threads = 1;
};

}  // namespace reference
