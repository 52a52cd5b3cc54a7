// The active data as the module sees it.
#pragma once

#include <memory>

#include "standalone/data/table.h"

namespace standalone {

/// The data source of one command over the session's table, which is lent and must outlive it.
std::unique_ptr<host::ProcedureDataSource> MakeProcedureDataSource(Table& table);

}  // namespace standalone
