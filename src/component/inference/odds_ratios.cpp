#include "component/inference/odds_ratios.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "component/inference/inference.h"
#include "component/numerics/machine_constants.h"

namespace tavo {

namespace {

using MCCommonMath::IsMissing;
using MCCommonMath::MCMV;
using MCCommonMath::MCPower;

// A ratio near separation may pass the largest double; an infinity would print as a number that it isn't. One
// that underflows to 0 is as right as a small number can be.
double ExpOrMissing(double exponent) {
  return exponent > MCPower::gMachineMaxExp ? MCMV::gMissingValue : std::exp(exponent);
}

// The control of a factor as the request of a level: a code, 0 for the highest in use, negative for the
// lowest.
int RequestOf(double control) {
  return control >= 0 ? static_cast<int>(std::lround(control)) : OrvOddsRatioSpec::kLowest;
}

}  // namespace

TavoOddsRatioEstimator::TavoOddsRatioEstimator(const TavoModel& model, const OrvOddsRatioSpec& request,
                                               const std::vector<double>& means,
                                               const TavoInference& inference)
    : fModel(model), fRequest(request), fInference(inference) {
  const TavoCompSettings& settings = model.Settings();
  fLayout.Set(settings.Dependent(), settings.Factors(), settings.Covariates(), settings.WeightVar());
  for (const OrvOddsRatioSpec::Control& control : request.Controls())
    fControls[control.variable] = control.value;
  // The response of the rows is never read. The weight is there because the layout has a place for it.
  fBase.assign(static_cast<std::size_t>(fLayout.Size()), 0.0);
  fBase[static_cast<std::size_t>(fLayout.WeightOffset())] = 1.0;
  HoldFactors();
  HoldCovariates(means);
  fFixed = fBase;
  fChanged = fBase;
}

// Without a control a factor is held at its highest category in use, in most models the one whose columns are
// redundant: a ratio in a crossing then reads off a coefficient of the table of estimates.
void TavoOddsRatioEstimator::HoldFactors() {
  const std::vector<int>& factors = fModel.Settings().Factors();
  std::vector<int> levels;
  std::vector<double> counts;
  for (std::size_t i = 0; i < factors.size(); ++i) {
    const auto control = fControls.find(factors[i]);
    const int request = control == fControls.end() ? OrvOddsRatioSpec::kHighest : RequestOf(control->second);
    Warn(fModel.FactorLevels(static_cast<int>(i), request, true, levels, counts));
    const int level = levels.empty() ? 0 : levels.back();
    fBase[static_cast<std::size_t>(fLayout.FactorOffsets()[i])] = level;
    if (level > 0) fFixedPairs.push_back({factors[i], static_cast<double>(level)});
  }
}

// A missing control stands for the mean, as does none. A mean is missing when no weight lies in the
// subpopulation.
void TavoOddsRatioEstimator::HoldCovariates(const std::vector<double>& means) {
  const std::vector<int>& covariates = fModel.Settings().Covariates();
  assert(means.size() == covariates.size());
  for (std::size_t i = 0; i < covariates.size(); ++i) {
    const auto control = fControls.find(covariates[i]);
    const bool isControlled = control != fControls.end() && !IsMissing(control->second);
    const double value = isControlled ? control->second : means[i];
    fBase[static_cast<std::size_t>(fLayout.CovariateOffsets()[i])] = value;
    if (!IsMissing(value)) fFixedPairs.push_back({covariates[i], value});
  }
}

OrvStatus TavoOddsRatioEstimator::Estimate() {
  for (int logit = 0; logit < fModel.EquationCount(); ++logit) {
    for (const OrvOddsRatioSpec::Factor& factor : fRequest.Factors())
      FactorOddsRatios(factor, logit);
    for (std::size_t i = 0; i < fRequest.Covariates().size(); ++i)
      CovariateOddsRatios(i, logit);
  }
  const bool nothing = fRequest.FactorCount() > 0 && fResults.empty();
  return nothing ? OrvStatus::Error(StatusCode::kOddsFactorOneLevel) : OrvStatus();
}

std::size_t TavoOddsRatioEstimator::PositionOf(int column) const {
  const std::vector<int>& columns = fLayout.Columns();
  const auto found = std::find(columns.begin(), columns.end(), column);
  assert(found != columns.end());  // requests name predictors of the settings
  return static_cast<std::size_t>(found - columns.begin());
}

void TavoOddsRatioEstimator::FactorOddsRatios(const OrvOddsRatioSpec::Factor& wanted, int logit) {
  const std::size_t position = PositionOf(wanted.variable);
  const int factor = static_cast<int>(position) - fLayout.FactorOffsets().front();
  std::vector<int> levels;
  std::vector<double> counts;
  const OrvStatus status = fModel.FactorLevels(factor, wanted.reference, false, levels, counts);
  Warn(status);
  if (status.Code() == StatusCode::kOddsFactorOneLevel) return;  // nothing to compare; other factors go on
  const int reference = levels.back();  // the list ends with it, whether requested or fallen back on
  levels.pop_back();
  for (const int level : levels) {
    fFixed[position] = reference;
    fChanged[position] = level;
    TavoOddsRatioStats stats;
    stats.variable = wanted.variable;
    stats.category = level;
    stats.reference = reference;
    ComputeOneRatio(stats, logit);
  }
  fFixed[position] = fBase[position];
  fChanged[position] = fBase[position];
}

void TavoOddsRatioEstimator::CovariateOddsRatios(std::size_t covariate, int logit) {
  const int column = fRequest.Covariates()[covariate];
  const std::size_t position = PositionOf(column);
  for (const double change : fRequest.Changes()[covariate]) {
    TavoOddsRatioStats stats;
    stats.variable = column;
    stats.change = change;
    if (IsMissing(fBase[position]) || IsMissing(change)) {  // nothing can be said about this change
      stats.dependentCategory = fModel.Categories()[static_cast<std::size_t>(logit)];
      fResults.push_back(stats);
      continue;
    }
    fChanged[position] = fBase[position] + change;
    ComputeOneRatio(stats, logit);
  }
  fChanged[position] = fBase[position];
}

void TavoOddsRatioEstimator::ComputeOneRatio(TavoOddsRatioStats stats, int logit) {
  // Rows on the scale of the data, as the estimates and their covariance are. What the two rows share, the
  // intercept first of all, drops out of the difference before it can cost digits.
  fModel.FillDesignRow(fFixedRow, fFixed.data(), false);
  fModel.FillDesignRow(fChangedRow, fChanged.data(), false);
  fDifference.resize(fFixedRow.size());
  for (std::size_t i = 0; i < fDifference.size(); ++i)
    fDifference[i] = fChangedRow[i] - fFixedRow[i];
  double logOdds = 0;
  double standardError = 0;
  fInference.TestContrast(logit, fDifference, logOdds, standardError);
  stats.dependentCategory = fModel.Categories()[static_cast<std::size_t>(logit)];
  stats.oddsRatio = ExpOrMissing(logOdds);
  // A variance that isn't above 0, as pairs of units can make it, leaves limits that are the ratio itself.
  const double percentile = fInference.TPercentile();
  if (!IsMissing(standardError) && !IsMissing(percentile)) {
    const double margin = percentile * standardError;
    stats.confidenceLower = ExpOrMissing(logOdds - margin);
    stats.confidenceUpper = ExpOrMissing(logOdds + margin);
  }
  fResults.push_back(stats);
}

// Each logit meets the same faults of the request; one warning tells of them.
void TavoOddsRatioEstimator::Warn(const OrvStatus& status) {
  if (status.IsOK() || std::find(fWarnings.begin(), fWarnings.end(), status) != fWarnings.end()) return;
  fWarnings.push_back(status);
}

}  // namespace tavo
