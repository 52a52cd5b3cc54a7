// Messages about bad design values in the data.
#pragma once

#include <utility>
#include <vector>

#include "host/data.h"

namespace tavo {

/// Sends, at error level and for each case, the messages that name a variable and where its value stands. How
/// many of a kind are shown is the host's affair.
class OrvVariableReporter {
 public:
  explicit OrvVariableReporter(const host::VORN_DataSource& source) : fSource(source) {}
  /// A value that is no population size: above 0 and whole. `caseNumber` counts from 1.
  void InvalidPopulationSize(int variable, long caseNumber) const;
  /// A value outside (0, 1].
  void InvalidInclusionProbability(int variable, long caseNumber) const;
  /// A combination of values that a stage's matrix doesn't hold.
  void NotInMatrix(bool isSize, int stage,
                   const std::vector<std::pair<int, const host::OBS*>>& variablesAndValues) const;

 private:
  void InvalidValue(const char* key, int variable, long caseNumber) const;

  const host::VORN_DataSource& fSource;
};

}  // namespace tavo
