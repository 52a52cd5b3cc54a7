#include "component/estimation/fit_progress.h"

#include <utility>

#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;

void OrvIterationReporter::Set(const std::vector<double>* estimates, int iteration, int stepHalvings,
                               double logLikelihood, double seconds) {
  fpEstimates = estimates;
  fIteration = iteration;
  fNStepHalvings = stepHalvings;
  fLogLikelihood = logLikelihood;
  fSeconds = seconds;
}

int OrvIterationReporter::GetInt(std::string_view name) const {
  if (name == "iterNum") return fIteration;
  if (name == "stepHalving") return fNStepHalvings;
  return 0;
}

double OrvIterationReporter::GetDouble(std::string_view name) const {
  if (name == "loglik") return fLogLikelihood;
  if (name == "time") return fSeconds;
  return 0;
}

const std::vector<double>* OrvIterationReporter::GetVector(std::string_view name) const {
  return name == "paramEstim" ? fpEstimates : nullptr;
}

void OrvIterationData::Update(const ProgressReport& report) {
  const auto* snapshot = dynamic_cast<const ProgressReportVect*>(&report);
  if (snapshot == nullptr) return;
  Row row;
  row.iteration = snapshot->GetInt("iterNum");
  row.stepHalvings = snapshot->GetInt("stepHalving");
  const double logLikelihood = snapshot->GetDouble("loglik");
  row.minusTwoLogLikelihood = IsMissing(logLikelihood) ? logLikelihood : -2 * logLikelihood;
  if (const std::vector<double>* estimates = snapshot->GetVector("paramEstim")) row.estimates = *estimates;
  fRows.push_back(std::move(row));
}

}  // namespace tavo
