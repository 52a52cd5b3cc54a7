#include <array>

#include "host/command.h"
#include "host/output.h"
#include "module/command/plan/plan_reader.h"

namespace tavo {

namespace {

/// By status, from 1.
constexpr std::array<const char*, 24> kKeys = {
    "Invalid plan file...",
    "Variable is not a valid VORN variable...",
    "Variable is repeated more than once...",
    "Illegal estimation method for this stage...",
    "Population size value is incorrect...",
    "Inclusion probability value is incorrect...",
    "Cluster variables are required for non-final stages...",
    "Matrix variable is invalid...",
    "Matrix category list does not match the matrix variable list...",
    "The plan cannot have more than ^1 stages...",
    "AnalysisDesign is missing in plan file...",
    "Sample size values are not positive...",
    "Sample rate values are not positive...",
    "SampleDesign is missing in plan file...",
    "Illegal selection method at second or third stage...",
    "Sample size or rate is not specified...",
    "MOS missing when PPS selection method specified...",
    "MOS variable or source is not specified...",
    "Minimum MOS value is greater than maximum MOS value...",
    "Minimum or maximum MOS values are not positive...",
    "Cluster variable is missing in the last stage...",
    "Variable is repeated more than once in sample design...",
    "The parser cannot get plan file specifications...",
    "Illegal SRS estimator method...",
};

}  // namespace

const char* OrvPlanMessages::Key(PlanStatus status) {
  const auto index = static_cast<std::size_t>(status);
  return index == 0 || index > kKeys.size() ? "" : kKeys[index - 1];
}

void OrvPlanMessages::Report(PlanStatus status, const std::string& detail) {
  const char* const key = Key(status);
  if (*key == '\0') return;
  host::BpComposite message(key);
  message.Add(host::Plain(detail));
  host::BpError(message, host::BpErrorLevel::kError);
}

void OrvPlanMessages::Report(const PlanRemark& remark) {
  host::ParserMessage message;
  message.SetCandidates(remark.candidates);
  message.GenericWarning(remark.key, remark.arguments);
}

}  // namespace tavo
