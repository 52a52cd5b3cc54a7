#include "module/frame/procedure_driver.h"

#include <string>
#include <utility>

#include "host/session.h"
#include "module/frame/odds_ratio_check.h"
#include "module/input/proc_joint_incl_probs.h"
#include "module/reporting/status_messages.h"

namespace tavo {

namespace {

constexpr int kLowestCategory = -1;  // reference codes with a meaning of their own
constexpr int kHighestCategory = 0;
// Asking the host at each case would slow the pass; a few thousand cases are over before a user notices.
constexpr long kRecordsPerStopCheck = 4096;

void SendError(const char* key) {
  host::BpError(host::Key(key), host::BpErrorLevel::kError);
}
void SendWarning(const char* key) {
  host::BpError(host::Key(key), host::BpErrorLevel::kWarning);
}

/// Shows each iteration while the fit runs, and keeps it for the iteration history.
class ShownIterations final : public ProgressListener {
 public:
  explicit ShownIterations(OrvIterationData& history) : fHistory(history) {}
  void Update(const ProgressReport& report) override {
    fHistory.Update(report);
    host::CurrentSession().Progress().Show("Estimating the model",
                                           "iteration " + std::to_string(report.GetInt("iterNum")));
  }

 private:
  OrvIterationData& fHistory;
};

}  // namespace

TavoProcedureDriver::TavoProcedureDriver(const TavoValidSpecs& specs, host::ProcedureDataSource& source)
    : fSpecs(specs),
      fSource(source),
      fpStopProcessor(host::CurrentSession().MakeStopProcessor()),
      fpIterations(std::make_unique<OrvIterationData>()) {
  std::unique_ptr<host::ProcDSIterator> cases = AsProcDSIterator(source.NewInputIterator(0));
  fpReporter = std::make_unique<OrvVariableReporter>(source);
  if (cases == nullptr) {
    fStatus = OrvStatus::Error(StatusCode::kUserError);
    return;
  }
  fpAdapter =
      std::make_unique<OrvRegInputAdapter>(specs, source, *cases, *fpReporter, !specs.ExcludesMissing());
  fpIterator = std::make_unique<OrvProcDSMultiIter>(source, std::move(cases), *fpAdapter);
  if (fpIterator->IteratorStatus() == MCCommon::kExhausted) {
    fStatus = OrvStatus::Error(StatusCode::kNoRecords);
    SendError("There are no valid cases ...");
  } else if (fpIterator->IteratorStatus() != MCCommon::kAvailable) {
    fStatus = OrvStatus::Error(StatusCode::kUserError);
  }
  fpProgress = std::make_unique<ShownIterations>(*fpIterations);
}

TavoProcedureDriver::~TavoProcedureDriver() = default;

// The records themselves are of no interest here: the pass fills the adapter's code tables and counters.
bool TavoProcedureDriver::WalkFirstPass() {
  host::CurrentSession().Progress().Show("Reading the cases", "");
  for (long record = 1; fpIterator->HasNext(); ++record) {
    fpIterator->Next();
    if (fpIterator->IteratorStatus() == MCCommon::kFailed) {
      fStatus = OrvStatus::Error(StatusCode::kUserError);
      return false;
    }
    if (record % kRecordsPerStopCheck == 0 && fpStopProcessor != nullptr &&
        fpStopProcessor->IsStopRequested()) {
      fStatus = OrvStatus::Error(StatusCode::kCancelled);
      return false;
    }
  }
  return true;
}

// A run that ends here still goes through what can be checked, so that the user hears of all faults at once.
std::optional<FirstPassFindings> TavoProcedureDriver::ProcessDataPass() {
  if (fStatus.IsError()) return std::nullopt;
  if (!fpIterator->HasNext()) {
    fStatus = OrvStatus::Error(StatusCode::kNoRecords);
    return std::nullopt;
  }
  if (!WalkFirstPass()) return std::nullopt;
  FirstPassFindings found;
  bool isSettled = SettleDependent(found);
  SettleFactors(found);
  isSettled = SettleDomain(found) && isSettled;
  found.oddsRatios = CheckOddsRatios(fSpecs, *fpAdapter, fSource);
  if (!isSettled) return std::nullopt;
  fpIterator->Reset();
  return found;
}

bool TavoProcedureDriver::SettleDependent(FirstPassFindings& found) {
  const int dependent = fSpecs.DependentVariable();
  if (dependent < 0) return true;
  found.dependentCategories = fpAdapter->CategoryCount(dependent);
  const bool enough = found.dependentCategories >= 2;
  if (!enough) fStatus = OrvStatus::Error(StatusCode::kOneDependentValue);
  // Before the reference is looked up: its code must be that of the sorted table.
  fpAdapter->SortCategories(dependent, true);
  found.referenceCode = ReferenceCode();
  return enough;
}

int TavoProcedureDriver::ReferenceCode() {
  if (fSpecs.IsHighReference()) return kHighestCategory;
  if (fSpecs.ReferenceValue().Empty()) return kLowestCategory;
  bool notFound = false;
  const int code = fpAdapter->CodeForValue(fSpecs.DependentVariable(), fSpecs.ReferenceValue().cells.data(),
                                           notFound, false);
  if (!notFound) return code;
  // No error: the model is the same, and its parameters can be turned to any other reference.
  SendWarning("Highest factor level is used");
  return kHighestCategory;
}

void TavoProcedureDriver::SettleFactors(FirstPassFindings& found) {
  for (const int factor : fSpecs.Factors()) {
    found.factorLevels.push_back(fpAdapter->CategoryCount(factor));
    fpAdapter->SortCategories(factor, true);
  }
}

bool TavoProcedureDriver::SettleDomain(FirstPassFindings& found) {
  if (fSpecs.DomainVariable() < 0) return true;
  bool notFound = false;
  found.domainCode =
      fpAdapter->CodeForValue(fSpecs.DomainVariable(), fSpecs.DomainValue().cells.data(), notFound, false);
  if (!notFound) return true;
  fStatus = OrvStatus::Error(StatusCode::kUserError);
  SendError("Invalid domain variable value");
  return false;
}

bool TavoProcedureDriver::RunModel(const FirstPassFindings& found) {
  if (!fStatus.IsOK() || fSpecs.Stages().empty()) return false;
  TavoCompSettings settings = fSpecs.BuildSettings(found);
  settings.SetStopProcessor(fpStopProcessor.get());
  settings.SetProgressListener(fpProgress.get());
  fpComponent = std::make_unique<TavoComponent>(settings);
  fStatus = fpComponent->Status();
  if (fStatus.IsError()) return false;
  std::unique_ptr<MCOrv::JointInclProbs> joint;
  if (settings.IsFirstStageUnequalProbability()) {
    joint = ReadJointInclProbs(*fpAdapter, fSpecs, fSource);
    if (joint == nullptr) fStatus = OrvStatus::Error(StatusCode::kJointFileUnreadable);
  }
  if (!fStatus.IsError()) fStatus = fpComponent->BuildModel(*fpIterator, joint.get());
  const bool built = !fStatus.IsError();
  if (built) fStatus = fpComponent->Status();
  // The host's pass is over before the predictions need one of their own.
  fpIterator->Close();
  return built;
}

void TavoProcedureDriver::ReportWarnings() {
  if (fStatus.IsWarning() && fpComponent != nullptr) {
    for (const OrvStatus& status : fpComponent->WarningList())
      ReportStatus(status);
  } else if (fStatus.IsError()) {
    ReportStatus(fStatus);
  }
}

void TavoProcedureDriver::ReportStatus(const OrvStatus& status) {
  ReportStatusMessage(status, fpComponent.get());
}

}  // namespace tavo
