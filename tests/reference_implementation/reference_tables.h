// Every number that a run reports, as the twin has it, under the name of its cell.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "reference_problem.h"
#include "reference_value.h"

namespace reference {

/// The name of a cell: the table, then the labels of its row and column, outermost first, each after a bar.
/// The table is its identifier, with its title where several share it and its heading where it has one. The
/// level of an interval is left out.
std::string CellName(const std::string& table, const std::vector<std::string>& row,
                     const std::vector<std::string>& column);

struct Answers {
  /// Why there is nothing to compare: the model is not estimable in a way that double precision repeats.
  std::string whyNot;
  std::map<std::string, Value> cells;
};

Answers Answer(const Problem& problem);

}  // namespace reference
