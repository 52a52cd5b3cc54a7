// What stands between the host-aware layer and the component.
#pragma once

#include <memory>

#include "component/estimation/fit_progress.h"
#include "component/frame/orv_status.h"
#include "component/run/component.h"
#include "host/data.h"
#include "module/command/valid_specs.h"
#include "module/input/proc_ds_multi_iter.h"
#include "module/input/reg_input_adapter.h"
#include "module/input/variable_reporter.h"

namespace tavo {

class TavoProcedureDriver {
 public:
  /// Specification (with its settings built) and data source are lent. Fetches the first accepted case.
  TavoProcedureDriver(TavoValidSpecs& specs, host::ProcedureDataSource& source);
  ~TavoProcedureDriver();

  /// The first pass: categories are collected and sorted, reference and domain codes settled.
  bool ProcessDataPass();
  /// Builds the component and runs it.
  bool RunModel();
  /// Hands the component's statuses to the host.
  void ReportWarnings();
  void ReportStatus(const OrvStatus& status);

  /// Null until RunModel.
  TavoComponent* Component() { return fpComponent.get(); }
  const OrvRegInputAdapter& Adapter() const { return *fpAdapter; }
  OrvRegInputAdapter& Adapter() { return *fpAdapter; }
  const OrvIterationData& Iterations() const { return *fpIterations; }
  OrvStatus Status() const { return fStatus; }
  const TavoValidSpecs& Specs() const { return fSpecs; }

 private:
  bool WalkFirstPass();
  bool SettleDependent();
  int ReferenceCode();
  void SettleFactors();
  bool SettleDomain();

  TavoValidSpecs& fSpecs;
  host::ProcedureDataSource& fSource;
  std::unique_ptr<OrvVariableReporter> fpReporter;
  std::unique_ptr<OrvRegInputAdapter> fpAdapter;
  std::unique_ptr<OrvProcDSMultiIter> fpIterator;
  std::unique_ptr<TavoComponent> fpComponent;
  std::unique_ptr<OrvIterationData> fpIterations;
  std::unique_ptr<ProgressListener> fpProgress;  // shows each iteration and hands it on to fpIterations
  OrvStatus fStatus;
};

}  // namespace tavo
