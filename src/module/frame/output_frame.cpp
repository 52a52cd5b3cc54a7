#include "module/frame/output_frame.h"

#include <cassert>

#include "module/reporting/covariance_tables.h"
#include "module/reporting/design_tables.h"
#include "module/reporting/estimation_tables.h"
#include "module/reporting/table_frame.h"
#include "module/reporting/test_tables.h"
#include "module/saved/saved_results.h"

namespace tavo {

void OutputAll(TavoProcedureDriver& driver, const TavoValidSpecs& specs, const FirstPassFindings& found,
               host::ProcedureDataSource& source, host::BpHeading& heading) {
  assert(driver.Component() != nullptr);
  const TavoOutputStats* stats = nullptr;
  driver.Component()->OutputStatistics(stats);
  const TavoOutputFrame frame(
      heading, {specs, found, source, driver.Adapter(), driver.Iterations(), stats, driver.StopProcessor()});
  // From what went in over the fit to what is asked about it; files last, as they may fail without harm to
  // the tables.
  if (specs.Has(PrintOption::SAMPLEINFO)) OutputSampleDesign(frame);
  if (specs.Has(PrintOption::VARIABLEINFO)) {
    OutputCategoricalVariables(frame);
    OutputCovariates(frame);
  }
  OutputIterationHistory(frame);
  if (specs.Has(PrintOption::SUMMARY)) OutputPseudoRSquares(frame);
  OutputParameterEstimates(frame);
  if (specs.Has(PrintOption::COVB)) OutputCovariances(frame);
  if (specs.Has(PrintOption::CORB)) OutputCorrelations(frame);
  if (specs.Has(PrintOption::CLASSTABLE)) OutputClassification(frame);
  if (specs.Has(PrintOption::GEF)) OutputGeneralEstimableFunction(frame);
  OutputEffectTests(frame);
  OutputCustomTests(frame);
  OutputOddsRatios(frame);
  SaveResults(frame, *driver.Component(), driver.Adapter(), source);
}

void NoteInputFiles(const TavoValidSpecs& specs) {
  constexpr int kInputFiles = 1;
  host::AddNotes(kInputFiles, "Plan File", host::Plain(specs.PlanFileName()));
  if (specs.JointProbFile().IsInit()) {
    host::AddNotes(kInputFiles, "Joint Probabilities File",
                   host::Plain(specs.JointProbFile().DocumentationString()));
  }
}

}  // namespace tavo
