// Messages about bad design values in the data.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/data.h"

namespace tavo {

/// Sends, at error level, the messages that name a variable and where its value stands. After kLimit messages of one
/// kind about one variable or stage it keeps silent, so that a file of bad values doesn't bury the first ones.
class OrvVariableReporter {
 public:
  static constexpr int kLimit = 20;

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
  bool MaySend(const std::string& key, int subject) const;

  const host::VORN_DataSource& fSource;
  mutable std::map<std::pair<std::string, int>, int> fNSent;
};

}  // namespace tavo
