// Cases and documents of files that a procedure makes.
#include <fmt/format.h>

#include <cstring>
#include <ctime>

#include "host/files.h"
#include "standalone/data/cells.h"

namespace host {

CalendarDate BCLOCK() {
  const std::time_t now = std::time(nullptr);
  std::tm day{};
  // std::localtime shares one buffer among all threads.
  if (::localtime_r(&now, &day) == nullptr) return {};
  return {day.tm_mday, day.tm_mon + 1, day.tm_year + 1900};
}

void DSDocument::AddDateLine() {
  AddLine(fmt::format("(Entered {:04}-{:02}-{:02})", fDate.year, fDate.month, fDate.day));
}

VORN_Case::VORN_Case(const VORN_DataSource& source) {
  std::size_t cells = 0;
  for (unsigned i = 0; i < source.ColumnCount(); ++i) {
    const int type = source.GetVariable(i)->GetType();
    fColumns.push_back({type, cells});
    cells += static_cast<std::size_t>(CellCount(type));
  }
  fCells.resize(cells);
  InitCase();
}

void VORN_Case::InitCase() {
  for (const Place& place : fColumns) {
    if (place.type == 0) {
      fCells[place.first].number = kSystemMissing;
    } else {
      standalone::PadText({}, place.type, &fCells[place.first]);
    }
  }
}

bool VORN_Case::SetColumnValue(unsigned column, double value) {
  if (column >= fColumns.size() || fColumns[column].type != 0) return false;
  fCells[fColumns[column].first].number = value;
  return true;
}

bool VORN_Case::SetColumnValue(unsigned column, std::string_view text) {
  if (column >= fColumns.size() || fColumns[column].type == 0) return false;
  standalone::PadText(text, fColumns[column].type, &fCells[fColumns[column].first]);
  return true;
}

}  // namespace host
