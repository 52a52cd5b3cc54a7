// The module's entry: one command from its tokens to its tables.

#include <memory>
#include <optional>

#include "host/session.h"
#include "module/command/command_parser.h"
#include "module/command/valid_specs.h"
#include "module/frame/output_frame.h"
#include "module/frame/procedure_driver.h"

namespace {

using host::BpError;
using host::BpErrorLevel;
using host::Key;

/// The procedure runs with the host's split files and case weight off, whatever the host's setting: the
/// design's own weight takes their place. The parser clears both fields; this puts them back, also after an
/// exception.
class HostFields {
 public:
  HostFields()
      : fSplitFileCount(host::pvGetCmnGlb().splitFileCount), fWeight(host::pvGetCmnGlb().weightVariable) {}
  ~HostFields() {
    host::pvGetCmnGlb().splitFileCount = fSplitFileCount;
    host::pvGetCmnGlb().weightVariable = fWeight;
  }
  HostFields(const HostFields&) = delete;
  HostFields& operator=(const HostFields&) = delete;

 private:
  std::int64_t fSplitFileCount;
  std::int64_t fWeight;
};

bool HostHasError() {
  return host::pvGetCmnGlb().errorFlag != 0;
}

/// A status that has no message of its own must not end a run in silence.
void ReportSilentEnd(const tavo::OrvStatus& status) {
  if (!status.IsError() || HostHasError() || status.Code() == tavo::StatusCode::kCancelled) return;
  if (status.Code() == tavo::StatusCode::kNoRecords) {  // the component left out every case that was valid
    BpError(Key("No case has a positive weight ..."), BpErrorLevel::kError);
    return;
  }
  if (status.Code() == tavo::StatusCode::kJointFileUnreadable) {  // a warning has said what is wrong with it
    BpError(Key("The joint inclusion probabilities cannot be used ..."), BpErrorLevel::kError);
    return;
  }
  host::BpComposite message("The analysis ended with status ^1: ^2");
  message.Add(host::BpNumber{static_cast<double>(status.Code()), host::BpProcedure::Count()});
  message.Add(host::Plain(std::string(tavo::StatusCodeText(status.Code()))));
  BpError(message, BpErrorLevel::kError);
}

void RunDriver(const tavo::TavoValidSpecs& specs, host::ProcedureDataSource& source,
               host::BpProcedure& procedure) {
  tavo::TavoProcedureDriver driver(specs, source);
  const std::optional<tavo::FirstPassFindings> found = driver.ProcessDataPass();
  const bool built = !HostHasError() && found && driver.RunModel(*found);
  if (HostHasError()) return;
  if (built) tavo::OutputAll(driver, specs, *found, source, procedure.Heading());
  driver.ReportWarnings();
  ReportSilentEnd(driver.Status());
}

/// What predictions may add to a case: a category like the dependent variable's, and one cell each for the
/// probabilities.
unsigned CellsAdded(const tavo::TavoValidSpecs& specs, const host::ProcedureDataSource& source) {
  const host::VORN_Variable& dependent =
      *source.GetVariable(static_cast<unsigned>(specs.DependentVariable()));
  return static_cast<unsigned>(host::CellCount(dependent.GetType()) + specs.NewVariableCount());
}

void RunCommand(host::HostSession& session) {
  const std::unique_ptr<host::BpProcedure> procedure = session.MakeProcedure("TavoReg");
  const std::unique_ptr<host::VORN_TokenSequence> tokens = session.MakeTokenSequence();
  const std::unique_ptr<host::ProcedureDataSource> source = session.MakeDataSource();
  tavo::TavoValidSpecs specs;
  tavo::TavoCommandParser parser(*tokens, specs, *source);
  if (parser.Parse() == 0 || HostHasError()) return;
  tavo::NoteInputFiles(specs);
  if (source->ColumnCount() == 0) {
    BpError(Key("There are no valid cases for selection ..."), BpErrorLevel::kError);
    return;
  }
  source->SetMaxObsAdded(CellsAdded(specs, *source));
  RunDriver(specs, *source, *procedure);
}

}  // namespace

extern "C" void TAVOMAIN() {
  const HostFields fields;
  RunCommand(host::CurrentSession());
}
