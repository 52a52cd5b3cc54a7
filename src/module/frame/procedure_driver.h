// What stands between the host-aware layer and the component.
#pragma once

#include <memory>
#include <optional>

#include "component/estimation/fit_progress.h"
#include "component/frame/orv_status.h"
#include "component/run/component.h"
#include "host/data.h"
#include "host/stop.h"
#include "module/command/valid_specs.h"
#include "module/input/proc_ds_multi_iter.h"
#include "module/input/reg_input_adapter.h"
#include "module/input/variable_reporter.h"

namespace tavo {

class TavoProcedureDriver {
 public:
  /// The parsed specification and the data source are not owned. Fetches the first accepted case; when there
  /// is none, the status is kNoRecords.
  TavoProcedureDriver(const TavoValidSpecs& specs, host::ProcedureDataSource& source);
  ~TavoProcedureDriver();

  /// The first pass: categories are collected and sorted, reference and domain codes settled. Nothing when
  /// the run ends here; the status says why: kNoRecords, kOneDependentValue, kCancelled, or kUserError when
  /// the user has been told.
  std::optional<FirstPassFindings> ProcessDataPass();
  /// Builds the component from what was asked for and what was found, and runs it. False when there is no
  /// model: the status, of this or an earlier step, says why.
  bool RunModel(const FirstPassFindings& found);
  /// Hands the component's statuses to the host.
  void ReportWarnings();
  void ReportStatus(const OrvStatus& status);

  /// Null until RunModel.
  TavoComponent* Component() { return fpComponent.get(); }
  const OrvRegInputAdapter& Adapter() const { return *fpAdapter; }
  OrvRegInputAdapter& Adapter() { return *fpAdapter; }
  const OrvIterationData& Iterations() const { return *fpIterations; }
  OrvStatus Status() const { return fStatus; }
  /// Asks the host whether the user wants the run to end. Null when the host has none.
  host::MCStopProcessor* StopProcessor() const { return fpStopProcessor.get(); }

 private:
  bool WalkFirstPass();
  bool SettleDependent(FirstPassFindings& found);
  int ReferenceCode();
  void SettleFactors(FirstPassFindings& found);
  bool SettleDomain(FirstPassFindings& found);

  const TavoValidSpecs& fSpecs;
  host::ProcedureDataSource& fSource;
  std::unique_ptr<host::MCStopProcessor> fpStopProcessor;
  std::unique_ptr<OrvVariableReporter> fpReporter;
  std::unique_ptr<OrvRegInputAdapter> fpAdapter;
  std::unique_ptr<OrvProcDSMultiIter> fpIterator;
  std::unique_ptr<TavoComponent> fpComponent;
  std::unique_ptr<OrvIterationData> fpIterations;
  std::unique_ptr<ProgressListener> fpProgress;  // shows each iteration and hands it on to fpIterations
  OrvStatus fStatus;
};

}  // namespace tavo
