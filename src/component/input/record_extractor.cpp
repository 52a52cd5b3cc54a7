#include "component/input/record_extractor.h"

#include <numeric>

namespace tavo {

void OrvRecordExtractor::Set(int dependent, const std::vector<int>& factors,
                             const std::vector<int>& covariates, int weight) {
  fExtract.assign(1, dependent);
  fExtract.insert(fExtract.end(), factors.begin(), factors.end());
  fExtract.insert(fExtract.end(), covariates.begin(), covariates.end());
  fExtract.push_back(weight);
  fExtractSize = static_cast<int>(fExtract.size());

  // The order is fixed, so the places follow from the counts alone.
  fFactorOffsets.resize(factors.size());
  fCovariateOffsets.resize(covariates.size());
  std::iota(fFactorOffsets.begin(), fFactorOffsets.end(), 1);
  std::iota(fCovariateOffsets.begin(), fCovariateOffsets.end(), 1 + static_cast<int>(factors.size()));
  fWeightOffset = fExtractSize - 1;
}

}  // namespace tavo
