#include "component/estimation/start_values.h"

#include <cassert>
#include <cmath>
#include <cstddef>

namespace tavo {

std::vector<double> StartValues(const OrvResponseCategories& response, const TavoFitLayout& layout) {
  assert(layout.logits == response.LogitCount());
  std::vector<double> estimates(static_cast<std::size_t>(layout.ParameterCount()), 0.0);
  if (!layout.hasIntercept || estimates.empty()) return estimates;
  const std::vector<double>& counts = response.WeightedCounts();
  for (std::size_t j = 0; j < static_cast<std::size_t>(layout.logits); ++j)
    estimates[j * layout.centres.size()] = std::log(counts[j] / counts.back());
  return estimates;
}

}  // namespace tavo
