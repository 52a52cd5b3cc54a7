// Sums over millions of weights.
#pragma once

namespace tavo {

/// Adds a term to `sum` and keeps in `rest` what rounding took from it (Kahan 1965). `sum` can be read at any
/// time. For terms of one sign the error stays at two roundings, however many terms there are.
inline void AddCompensated(double& sum, double& rest, double term) {
  const double corrected = term - rest;
  const double next = sum + corrected;
  rest = (next - sum) - corrected;
  sum = next;
}

}  // namespace tavo
