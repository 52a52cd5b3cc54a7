#include "module/reporting/status_messages.h"

#include <vector>

#include "host/output.h"

namespace tavo {

namespace {

using host::BpNumber;
using host::BpProcedure;

/// The two forms of a message about a design value: of a stratum, and of the stage as a whole.
std::string StageKey(const std::string& what, bool hasStratum) {
  return what + (hasStratum ? " in stage ^1 stratum ..." : " in stage ^1 ...");
}

std::string DesignStatusKey(std::uint32_t code, InclProbType inclusion, bool hasStratum) {
  switch (code) {
    case StatusCode::kInconsistentDesignValue:
      if (inclusion == InclProbType::kInclProbVariable) return StageKey("Unequal incl prob", hasStratum);
      if (inclusion == InclProbType::kPopSizeVariable) return StageKey("Unequal pop size", hasStratum);
      return "";
    case StatusCode::kMissingInclusionProb:
      return StageKey("No incl prob in active", hasStratum);
    case StatusCode::kPopulationBelowSample:
      return StageKey("Pop size too big", hasStratum);
    default:
      return "";
  }
}

std::string PlainStatusKey(const OrvStatus& status, const TavoComponent* component) {
  switch (status.Code()) {
    case StatusCode::kClusterNotInJointFile:
      return "Some levels not in joint prob file ...";
    case StatusCode::kJointFileHasMoreUnits:
      return "Some cluster levels not in sample file ...";
    case StatusCode::kEmptySubpopulation:
      return "There are no valid cases in the subpopulation";
    case StatusCode::kVarianceZero:
    case StatusCode::kVarianceZeroSomeNegative:
      return "Variance for all parameters is zero";
    case StatusCode::kNegativeVariance:
      return "Atleast one estimate was negative";
    case StatusCode::kOneDependentValue:
      return "Dependant variable has only one value";
    case StatusCode::kReferenceNotInUse:
      return "Highest factor level is used";
    case StatusCode::kSRSVarianceZero:
      // Only what compares with simple random sampling misses it; to anybody else it would be noise.
      return component != nullptr && component->Settings().NeedsSRS()
                 ? "Parameter variance for SRS design is zero"
                 : "";
    case StatusCode::kTooManyParameters:
      if (status.Integer(1) >= 1) return "Number of parameters ^1 exceeds limit ^2";
      // Memory that ends before the model is known can't be blamed on a number of parameters.
      return status.Integer(0) >= 1 ? "Number params ^1 too large for available memory"
                                    : "Not enough memory...";
    case StatusCode::kDesignCovarianceSingular:
      return "Design based covariance matrix is singular";
    default:
      return "";
  }
}

void SendParameterLimit(const OrvStatus& status, const std::string& key, host::BpErrorLevel level) {
  host::BpComposite message(key);
  message.Add(BpNumber{static_cast<double>(status.Integer(0)), BpProcedure::Count()});
  if (status.Integer(1) > 0)
    message.Add(BpNumber{static_cast<double>(status.Integer(1)), BpProcedure::Count()});
  host::BpError(message, level);
}

}  // namespace

StatusMessage MessageOfStatus(const OrvStatus& status, const TavoComponent* component) {
  int stage = 0;
  std::vector<int> stratum;
  if (component != nullptr && component->WarningDetail(status, stage, stratum)) {
    const InclProbType inclusion = component->Settings().InclusionTypeOfStage(stage);
    return {DesignStatusKey(status.Code(), inclusion, !stratum.empty()), stage};
  }
  return {PlainStatusKey(status, component), 0};
}

void ReportStatusMessage(const OrvStatus& status, const TavoComponent* component) {
  if (status.IsOK()) return;
  const StatusMessage message = MessageOfStatus(status, component);
  if (message.key.empty()) return;
  const host::BpErrorLevel level =
      status.IsError() ? host::BpErrorLevel::kError : host::BpErrorLevel::kWarning;
  if (status.Code() == StatusCode::kTooManyParameters && status.Integer(0) >= 1) {
    SendParameterLimit(status, message.key, level);
  } else if (message.stage > 0) {
    host::BpComposite text(message.key);
    text.Add(BpNumber{static_cast<double>(message.stage), BpProcedure::Count()});
    host::BpError(text, level);
  } else {
    host::BpError(host::Key(message.key), level);
  }
}

void ReportLackOfMemory(const OrvStatus& status, const char* key, const host::BpCellText& part) {
  if (!status.IsError() || status.Code() != StatusCode::kTooManyParameters) return;
  host::BpComposite message(key);
  message.Add(part);
  host::BpError(message, host::BpErrorLevel::kWarning);
}

}  // namespace tavo
