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

TavoProcedureDriver::TavoProcedureDriver(TavoValidSpecs& specs, host::ProcedureDataSource& source)
    : fSpecs(specs), fSource(source), fpIterations(std::make_unique<OrvIterationData>()) {
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
  if (specs.Settings() != nullptr) specs.Settings()->SetProgressListener(fpProgress.get());
}

TavoProcedureDriver::~TavoProcedureDriver() = default;

// The records themselves are of no interest here: the pass fills the adapter's code tables and counters.
bool TavoProcedureDriver::WalkFirstPass() {
  host::MCStopProcessor* stop = fSpecs.Settings() == nullptr ? nullptr : fSpecs.Settings()->StopProcessor();
  host::CurrentSession().Progress().Show("Reading the cases", "");
  for (long record = 1; fpIterator->HasNext(); ++record) {
    fpIterator->Next();
    if (fpIterator->IteratorStatus() == MCCommon::kFailed) {
      fStatus = OrvStatus::Error(StatusCode::kUserError);
      return false;
    }
    if (record % kRecordsPerStopCheck == 0 && stop != nullptr && stop->IsStopRequested()) {
      fStatus = OrvStatus::Error(StatusCode::kCancelled);
      return false;
    }
  }
  return true;
}

bool TavoProcedureDriver::ProcessDataPass() {
  if (fpIterator == nullptr) return false;
  bool result = true;
  if (!fStatus.IsError() && !fpIterator->HasNext()) {
    fStatus = OrvStatus::Error(StatusCode::kNoRecords);
    result = false;
  }
  if (!fStatus.IsError()) result = WalkFirstPass();
  if (!fStatus.IsError()) {
    result = SettleDependent() && result;
    SettleFactors();
    result = SettleDomain() && result;
    CheckOddsRatios(fSpecs, *fpAdapter, fSource);
  }
  if (!fStatus.IsError()) fpIterator->Reset();
  return result && !fStatus.IsError();
}

bool TavoProcedureDriver::SettleDependent() {
  const int dependent = fSpecs.DependentVariable();
  if (dependent < 0) return true;
  const int categories = fpAdapter->CategoryCount(dependent);
  const bool enough = categories >= 2;
  if (!enough) fStatus = OrvStatus::Error(StatusCode::kOneDependentValue);
  fpAdapter->SortCategories(dependent, true);
  fSpecs.SetDependentCounts(categories, ReferenceCode());
  return enough;
}

int TavoProcedureDriver::ReferenceCode() {
  if (fSpecs.IsHighReference()) return kHighestCategory;
  if (fSpecs.ReferenceValue().Empty()) return kLowestCategory;
  bool notFound = false;
  const int code = fpAdapter->CodeForValue(fSpecs.DependentVariable(), fSpecs.ReferenceValue().cells.data(),
                                           notFound, false);
  if (!notFound) return code;
  SendWarning("Highest factor level is used");
  return kHighestCategory;
}

void TavoProcedureDriver::SettleFactors() {
  std::vector<int> levels;
  for (const int factor : fSpecs.Factors()) {
    levels.push_back(fpAdapter->CategoryCount(factor));
    fpAdapter->SortCategories(factor, true);
  }
  if (!levels.empty()) fSpecs.SetFactorLevels(std::move(levels));
}

bool TavoProcedureDriver::SettleDomain() {
  if (fSpecs.DomainVariable() < 0) return true;
  bool notFound = false;
  const int code =
      fpAdapter->CodeForValue(fSpecs.DomainVariable(), fSpecs.DomainValue().cells.data(), notFound, false);
  if (notFound) {
    fStatus = OrvStatus::Error(StatusCode::kUserError);
    SendError("Invalid domain variable value");
    return false;
  }
  fSpecs.SetDomainCode(code);
  return true;
}

bool TavoProcedureDriver::RunModel() {
  if (!fStatus.IsOK() || fpAdapter == nullptr || fpIterator == nullptr) return false;
  if (fSpecs.Stages().empty() || fSpecs.Settings() == nullptr) return false;
  fpComponent = std::make_unique<TavoComponent>(*fSpecs.Settings());
  fStatus = fpComponent->Status();
  if (fStatus.IsError()) return false;
  std::unique_ptr<MCOrv::JointInclProbs> joint;
  if (fSpecs.Settings()->IsFirstStageUnequalProbability()) {
    joint = ReadJointInclProbs(*fpAdapter, fSpecs, fSource);
    if (joint == nullptr) fStatus = OrvStatus::Error(StatusCode::kJointFileUnreadable);
  }
  if (!fStatus.IsError()) fStatus = fpComponent->BuildModel(*fpIterator, joint.get());
  const bool built = !fStatus.IsError();
  if (built) fStatus = fpComponent->Status();
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
