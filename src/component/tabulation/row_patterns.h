// The rows that share one pattern.
#pragma once

#include <vector>

namespace tavo {

/// Rows laid end to end, so that a pattern is one block of memory: how long a row is, the tabulator knows.
class TavoRowPatterns {
 public:
  std::vector<double>& RecordData() { return fRecordData; }
  const std::vector<double>& RecordData() const { return fRecordData; }

 private:
  std::vector<double> fRecordData;
};

}  // namespace tavo
