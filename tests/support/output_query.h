// Finding cells of an output table by their labels.
#pragma once

#include <string>
#include <vector>

#include "standalone/output/document.h"
#include "standalone/output/number_text.h"

namespace test_support {

/// True when `wanted` is a subsequence of `path`.
inline bool Fits(const std::vector<std::string>& wanted, const std::vector<std::string>& path) {
  std::size_t next = 0;
  for (const std::string& label : path) {
    if (next < wanted.size() && label == wanted[next]) ++next;
  }
  return next == wanted.size();
}

/// The labels of a cell on the rows or on the columns, outermost dimension first.
inline std::vector<std::string> PathOf(const standalone::PivotTable& table,
                                       const std::vector<int>& coordinates, host::BpPlace place) {
  std::vector<std::string> path;
  for (const std::size_t d : table.DimensionsOf(place)) {
    const auto part = table.dimensions[d].Path(coordinates[d]);
    path.insert(path.end(), part.begin(), part.end());
  }
  return path;
}

/// The only cell whose row and column labels hold the wanted ones in their order; null when there is none or
/// several.
inline const standalone::PivotCell* FindCell(const standalone::PivotTable* table,
                                             const std::vector<std::string>& row,
                                             const std::vector<std::string>& column) {
  if (table == nullptr) return nullptr;
  const standalone::PivotCell* found = nullptr;
  for (const auto& [coordinates, cell] : table->AllCells()) {
    if (!Fits(row, PathOf(*table, coordinates, host::BpPlace::kRow))) continue;
    if (!Fits(column, PathOf(*table, coordinates, host::BpPlace::kColumn))) continue;
    if (found != nullptr) return nullptr;
    found = &cell;
  }
  return found;
}

/// The number in that cell; the host's missing value when there is no such cell or it holds no number.
inline double NumberAt(const standalone::PivotTable* table, const std::vector<std::string>& row,
                       const std::vector<std::string>& column) {
  const standalone::PivotCell* cell = FindCell(table, row, column);
  const auto* number = cell == nullptr ? nullptr : std::get_if<host::BpNumber>(&cell->content);
  return number == nullptr ? host::kSystemMissing : number->value;
}

}  // namespace test_support
