// One problem through the twin and the program, and what to say when they differ.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "reference_problem.h"
#include "table_comparison.h"

namespace reference {

struct Checked {
  std::string whyNot;      // there was nothing to compare
  std::string knownFault;  // the difference is one that is known and open
  Comparison comparison;

  bool IsMismatch() const { return knownFault.empty() && !comparison.mismatches.empty(); }
};

/// Changes the twin's cells before they are compared, to see that a wrong number is found.
using Falsify = std::function<void(std::map<std::string, Value>&)>;

Checked Check(const Problem& problem, const Falsify& falsify = {});

/// Shrinks a problem whose check is a mismatch to the smallest one that differs in the same statistic.
Problem ShrinkMismatch(const Problem& problem, const Falsify& falsify = {});

/// What differs, and the files of the problem, ready to run.
std::string Describe(const Problem& problem, const Checked& checked);

}  // namespace reference
