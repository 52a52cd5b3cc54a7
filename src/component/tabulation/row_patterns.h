// The rows that share one pattern.
#pragma once

#include <vector>

namespace tavo {

/// Rows laid end to end.
class TavoRowPatterns {
 public:
  std::vector<double>& RecordData() { return fRecordData; }
  const std::vector<double>& RecordData() const { return fRecordData; }

 private:
  std::vector<double> fRecordData;
};

}  // namespace tavo
