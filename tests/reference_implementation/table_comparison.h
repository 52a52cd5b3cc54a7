// Holding the program's cells against the twin's.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "program_tables.h"
#include "reference_tables.h"

namespace reference {

struct Mismatch {
  std::string cell;
  std::string text;  // what each side says
};

/// The largest difference of a statistic, divided by the number itself or, where that is near 0 by
/// cancellation, by the scale on which it is known.
struct Worst {
  Real relative = 0;
  Real ofTolerance = 0;
  std::string cell;
};

struct Comparison {
  std::vector<Mismatch> mismatches;
  std::size_t compared = 0, undecided = 0;
  std::map<std::string, Worst> worst;  // by statistic
};

/// Each cell of either side must be on the other, missing on both or equal within the twin's tolerance. A
/// missing statistic may also have no cell.
Comparison Compare(const std::map<std::string, Value>& twin, const ProgramTables& program);

/// Adds the worst differences of one comparison to those of others.
void Merge(const std::map<std::string, Worst>& from, std::map<std::string, Worst>& into);

/// The statistic of a cell: its table and, where the column says it, which one.
std::string StatisticOf(const std::string& cell);

}  // namespace reference
