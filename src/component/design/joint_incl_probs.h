// Where the joint inclusion probabilities of a design come from.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace MCOrv {

/// Hands out, stratum by stratum, the first-stage units and the joint inclusion probabilities of their pairs.
/// The design pass asks for each stratum of the sample once.
class JointInclProbs {
 public:
  /// From the codes of a unit's cluster variables to its number in the stratum, 1 … n, each number once.
  using Units = std::map<std::vector<std::int32_t>, int>;

  virtual ~JointInclProbs() = default;
  /// `strataKey`: codes of the stratum, empty for a design without strata. `matrix` gets n * n numbers by
  /// rows, n the number of units: row a, column b the probability that units a + 1 and b + 1 are both in the
  /// sample, with the units' own probabilities on the diagonal. False when there is no valid stratum of these
  /// codes; both outputs are empty then.
  virtual bool ReadStratum(const std::vector<std::int32_t>& strataKey, Units& units,
                           std::vector<double>& matrix) = 0;
  /// 0 while all went well; otherwise a number that tells the last fault.
  virtual int GetError() const = 0;
};

}  // namespace MCOrv
