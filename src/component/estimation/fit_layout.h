// The parameters of a fit as the iteration sees them.
#pragma once

#include <cstddef>
#include <vector>

namespace tavo {

/// The vector of estimates holds `logits` blocks, one after the other, each with the same non-redundant basic
/// parameters; an intercept is the first of its block. The vectors below are by non-redundant basic
/// parameter. On the internal scale, on which the iteration works, a column v enters as (v - centre)/scale,
/// the centre only in a model with an intercept.
struct TavoFitLayout {
  int logits = 0;  // K-1
  bool hasIntercept = false;
  std::vector<double> centres;
  std::vector<double> scales;
  std::vector<bool> isIndicator;  // a column without covariates, which holds 0 or a constant

  int ParameterCount() const { return logits * static_cast<int>(centres.size()); }
  int InterceptCount() const { return hasIntercept ? 1 : 0; }
};

}  // namespace tavo
