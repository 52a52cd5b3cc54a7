// The row of doubles in which cases travel.
#pragma once

#include <cstddef>
#include <vector>

namespace MCCommon {

/// A row of doubles whose length is fixed at construction: cases, covariate patterns and design records
/// travel in it. Cells start at 0. Indices are not checked.
class Record {
 public:
  explicit Record(int size = 0) : fCells(size > 0 ? static_cast<std::size_t>(size) : 0) {}

  [[nodiscard]] int Size() const { return static_cast<int>(fCells.size()); }

  /// The first of `Size()` consecutive cells.
  [[nodiscard]] double* GetAll() { return fCells.data(); }
  [[nodiscard]] const double* GetAll() const { return fCells.data(); }

  [[nodiscard]] double& operator[](int index) { return fCells[static_cast<std::size_t>(index)]; }
  [[nodiscard]] double operator[](int index) const { return fCells[static_cast<std::size_t>(index)]; }

 private:
  std::vector<double> fCells;
};

}  // namespace MCCommon
