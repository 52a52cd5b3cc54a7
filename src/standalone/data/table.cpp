#include "standalone/data/table.h"

#include <cstring>

#include "standalone/text/ascii.h"

namespace standalone {

int Table::Find(std::string_view name) const {
  // Commands name few variables, and procedures add columns and name them later, so no index is kept.
  for (std::size_t i = 0; i < fColumns.size(); ++i) {
    if (IsSameWord(fColumns[i]->variable.GetName(), name)) return static_cast<int>(i);
  }
  return -1;
}

Column& Table::Add(host::VORN_Variable variable) {
  host::OBS missing;
  if (variable.IsNumeric()) {
    missing.number = host::kSystemMissing;
  } else {
    std::memset(missing.text, ' ', sizeof missing.text);
  }
  auto column = std::make_unique<Column>(std::move(variable));
  column->cells.assign(fCaseCount * column->Stride(), missing);
  fColumns.push_back(std::move(column));
  return *fColumns.back();
}

}  // namespace standalone
