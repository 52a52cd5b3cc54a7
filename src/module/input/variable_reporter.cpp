#include "module/input/variable_reporter.h"

#include "host/output.h"

namespace tavo {

using host::BpProcedure;

void OrvVariableReporter::InvalidValue(const char* key, int variable, long caseNumber) const {
  host::BpComposite message(key);
  message.Add(host::BpVariable{fSource.GetVariable(static_cast<unsigned>(variable)), host::BpShow::kValue});
  message.Add(host::BpNumber{static_cast<double>(caseNumber), BpProcedure::Count()});
  host::BpError(message, host::BpErrorLevel::kError);
}

void OrvVariableReporter::InvalidPopulationSize(int variable, long caseNumber) const {
  InvalidValue("Invalid value in pop. size variable ^1 ...", variable, caseNumber);
}

void OrvVariableReporter::InvalidInclusionProbability(int variable, long caseNumber) const {
  InvalidValue("Invalid value in incl. prob. variable ^1 ...", variable, caseNumber);
}

void OrvVariableReporter::NotInMatrix(
    bool isSize, int stage, const std::vector<std::pair<int, const host::OBS*>>& variablesAndValues) const {
  const char* key = isSize ? "No population size ^1 [%1 = %2:, ^1 = ^2:]2 ..."
                           : "No inclusion prob ^1 [%1 = %2:, ^1 = ^2:]2 ...";
  host::BpComposite message(key);
  message.Add(host::BpNumber{static_cast<double>(stage), BpProcedure::Count()});
  message.Sublist();
  for (const auto& [variable, cells] : variablesAndValues) {
    const host::VORN_Variable* entry = fSource.GetVariable(static_cast<unsigned>(variable));
    message.Add(host::BpVariable{entry, host::BpShow::kValue});
    message.Add(host::BpDataValue(entry, cells));
  }
  message.EndSublist();
  host::BpError(message, host::BpErrorLevel::kError);
}

}  // namespace tavo
