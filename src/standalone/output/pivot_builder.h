// The handles through which a procedure fills the document.
#pragma once

#include <memory>
#include <string>

#include "host/output.h"
#include "standalone/output/document.h"

namespace standalone {

/// A procedure whose tables go to `output`, which is not owned and must outlive it. Its outermost
/// heading adds no level to the outline.
///
/// A table stands in the document from the moment it is made, so tables keep the order of their making; one
/// that has no dimension when its handle ends is taken out again. `BpCategory::Cell` makes its own category
/// current; it throws std::logic_error while another dimension has no current category, and so does making a
/// dimension once there are cells: both are mistakes of the caller, and a cell at a guessed place would be a
/// wrong number.
std::unique_ptr<host::BpProcedure> MakeProcedure(CommandOutput& output);

}  // namespace standalone
