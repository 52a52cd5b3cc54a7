// The tables of a run, in their fixed order.
#pragma once

#include "host/output.h"
#include "module/command/valid_specs.h"
#include "module/frame/procedure_driver.h"

namespace tavo {

/// Builds all tables of a run whose model is built, and saves what the command asks for. A table that lacks
/// its data is left out silently.
void OutputAll(TavoProcedureDriver& driver, const TavoValidSpecs& specs, const FirstPassFindings& found,
               host::ProcedureDataSource& source, host::BpHeading& heading);
/// The notes on the files that a command reads; sent before the first pass.
void NoteInputFiles(const TavoValidSpecs& specs);

}  // namespace tavo
