// Which record columns a tabulator keeps, and where each ends up in its shorter row.
#pragma once

#include <cstddef>
#include <vector>

namespace tavo {

/// The order of an extracted row: dependent, factors, covariates, weight.
class OrvRecordExtractor {
 public:
  void Set(int dependent, const std::vector<int>& factors, const std::vector<int>& covariates, int weight);

  int Size() const { return fExtractSize; }                     // factors + covariates + 2
  const std::vector<int>& Columns() const { return fExtract; }  // record column of each row position
  int DependentOffset() const { return 0; }
  const std::vector<int>& FactorOffsets() const { return fFactorOffsets; }
  const std::vector<int>& CovariateOffsets() const { return fCovariateOffsets; }
  int WeightOffset() const { return fWeightOffset; }

  /// Rows hold weights divided by `unit`, a power of two, from now on; 1 at first.
  void SetWeightUnit(double unit) { fWeightUnit = unit; }
  double WeightUnit() const { return fWeightUnit; }

  /// Writes the row of a record's data into `row` (Size() cells).
  void Extract(const double* record, double* row) const {
    for (std::size_t k = 0; k < fExtract.size(); ++k)
      row[k] = record[fExtract[k]];
    row[fWeightOffset] /= fWeightUnit;
  }

 private:
  int fExtractSize = 0;
  std::vector<int> fExtract;
  std::vector<int> fFactorOffsets;
  std::vector<int> fCovariateOffsets;
  int fWeightOffset = 0;
  double fWeightUnit = 1.0;
};

}  // namespace tavo
