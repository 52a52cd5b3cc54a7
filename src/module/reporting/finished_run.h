// What the tables and the saved files see of a run.
#pragma once

#include "component/estimation/fit_progress.h"
#include "component/run/output_stats.h"
#include "host/data.h"
#include "host/stop.h"
#include "module/command/valid_specs.h"
#include "module/input/reg_input_adapter.h"

namespace tavo {

/// What was asked for, what the data hold, and what came out. Nothing is owned: all of it outlives the
/// reporting.
struct FinishedRun {
  const TavoValidSpecs& specs;
  const FirstPassFindings& found;
  const host::ProcedureDataSource& source;  // the variables behind dictionary indices
  const OrvRegInputAdapter& adapter;        // the values behind the codes of the component, and the counts
  const OrvIterationData& iterations;
  const TavoOutputStats* stats;  // null when the run stopped before there were results
  host::MCStopProcessor* stop;   // asked while a large document is written; null: the run can't be stopped
};

}  // namespace tavo
