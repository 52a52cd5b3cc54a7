#include "component/design/variances.h"

#include <algorithm>
#include <cassert>

#include "component/design/joint_units.h"
#include "component/numerics/missing_value.h"

namespace tavo {

using MCCommonMath::IsMissing;

namespace {

/// The sampling fraction of `count` units. `fits` becomes false when the population is smaller than the
/// sample.
double SamplingFraction(double count, double value, bool isPopulation, bool& fits) {
  if (!isPopulation) return value;
  const double fraction = count / value;
  if (fraction <= 1.0) return fraction;  // not of a population that is NaN
  fits = false;
  return 1.0;
}

/// Factor of the between-unit sum of squares; a single unit tells nothing of the spread.
double BetweenFactor(double count, double fraction) {
  return count > 1.0 ? (1.0 - fraction) * count / (count - 1.0) : 0.0;
}

/// Adds a unit to the moments of one variable after the other (Welford 1962). Neighbouring variables mostly
/// have the same count: the division, which costs more than all the rest, is done once for them.
class UnitAdder {
 public:
  void Add(UnitMoments& moments, double total) {
    if (moments.count != fBefore) {
      fBefore = moments.count;
      fInverse = 1.0 / (fBefore + 1.0);
    }
    const double deviation = total - moments.mean;
    moments.count = fBefore + 1.0;
    moments.mean += deviation * fInverse;
    moments.squares += deviation * deviation * fInverse * fBefore;
  }

 private:
  double fBefore = 0.0;
  double fInverse = 1.0;
};

void AddTo(std::vector<double>& sums, const std::vector<double>& terms) {
  for (std::size_t k = 0; k < sums.size(); ++k)
    sums[k] += terms[k];
}

}  // namespace

// ---- OrvVariances ----

void OrvVariances::AddUnit(const std::vector<double>& totals) {
  assert(totals.size() == fUnits.size());
  UnitAdder adder;
  for (std::size_t i = 0; i < fUnits.size(); ++i) {
    if (!IsMissing(totals[i])) adder.Add(fUnits[i], totals[i]);
  }
}

void OrvVariances::MergeAsUnit(const OrvVariances& child) {
  assert(child.Variables() == Variables());
  UnitAdder adder;
  for (std::size_t i = 0; i < fUnits.size(); ++i) {
    const TotalEstimate& estimate = child.fEstimates[i];
    if (!estimate.HasUnits()) continue;
    adder.Add(fUnits[i], estimate.total);
    fUnits[i].lowerVariance += estimate.variance;
  }
}

void OrvVariances::MergeAsStratum(const OrvVariances& child) {
  assert(child.Variables() == Variables());
  for (std::size_t i = 0; i < fEstimates.size(); ++i) {
    const TotalEstimate& stratum = child.fEstimates[i];
    if (!stratum.HasUnits()) continue;
    TotalEstimate& sum = fEstimates[i];
    sum.strata += 1.0;
    sum.units += stratum.units;
    sum.total += stratum.total;
    sum.variance += stratum.variance;
  }
}

bool OrvVariances::Finish(double value, bool isPopulation) {
  bool fits = true;
  for (std::size_t i = 0; i < fUnits.size(); ++i) {
    const UnitMoments& units = fUnits[i];
    if (units.count <= 0.0) continue;
    const double fraction = SamplingFraction(units.count, value, isPopulation, fits);
    const double variance =
        units.squares * BetweenFactor(units.count, fraction) + fraction * units.lowerVariance;
    fEstimates[i] = {1.0, units.count, units.mean * units.count, variance};
  }
  return fits;
}

// The sum over pairs of Yates and Grundy (1953) and Sen (1953), each pair once, and what the stages below add
// to it (Raj 1966); see joint_units.h.
void OrvVariances::FinishJoint(const JointUnits& units) {
  assert(units.count == 0 || units.variables == fEstimates.size());
  const auto whenKnown = [&units](const double* totals, auto&& visit) {
    for (std::size_t i = 0; i < units.variables; ++i) {
      if (!IsMissing(totals[i])) visit(i);
    }
  };
  for (std::size_t a = 0; a < units.count; ++a) {
    const double* const total = units.Totals(a);
    whenKnown(total, [&](std::size_t i) {
      TotalEstimate& estimate = fEstimates[i];
      estimate.strata = 1.0;
      estimate.units += 1.0;
      estimate.total += total[i];
      if (!units.variances.empty()) estimate.variance += units.Probability(a) * units.Variances(a)[i];
    });
    for (std::size_t b = 0; b < a; ++b) {
      const double weight = units.weights[a * units.count + b];
      const double* const other = units.Totals(b);
      whenKnown(total, [&](std::size_t i) {
        const double difference = total[i] - other[i];
        if (!IsMissing(other[i])) fEstimates[i].variance += weight * difference * difference;
      });
    }
  }
}

void OrvVariances::Clear() {
  std::fill(fUnits.begin(), fUnits.end(), UnitMoments());
  std::fill(fEstimates.begin(), fEstimates.end(), TotalEstimate());
}

// ---- OrvCovariances ----

OrvCovariances::OrvCovariances(const std::vector<int>& sizes, const std::vector<int>& offsets,
                               bool hasLowerStages)
    : fBlocks(sizes.size()) {
  assert(offsets.size() == sizes.size());
  for (std::size_t b = 0; b < sizes.size(); ++b) {
    BlockSums& block = fBlocks[b];
    block.size = static_cast<std::size_t>(sizes[b]);
    block.offset = static_cast<std::size_t>(offsets[b]);
    const std::size_t packed = block.size * (block.size + 1) / 2;
    block.means.assign(block.size, 0.0);
    block.totals.assign(block.size, 0.0);
    block.cross.assign(packed, 0.0);
    block.lower.assign(hasLowerStages ? packed : 0, 0.0);
    block.deviations.assign(kWaitingUnits * block.size, 0.0);
  }
}

void OrvCovariances::AddUnit(const std::vector<double>& totals) {
  for (BlockSums& block : fBlocks) {
    assert(block.offset + block.size <= totals.size());
    const double* x = totals.data() + block.offset;
    if (block.size > 0 && !IsMissing(*x)) AddToBlock(block, x);
  }
}

void OrvCovariances::AddToBlock(BlockSums& block, const double* x) {
  const double after = block.count + 1.0;
  const double inverse = 1.0 / after;
  double* deviations = block.deviations.data() + block.waiting * block.size;
  double* means = block.means.data();
  for (std::size_t i = 0; i < block.size; ++i) {
    deviations[i] = x[i] - means[i];
    means[i] += deviations[i] * inverse;
  }
  block.factors[block.waiting] = block.count / after;
  block.count = after;
  if (++block.waiting == kWaitingUnits) AddWaiting(block);
}

void OrvCovariances::AddWaiting(BlockSums& block) {
  if (block.waiting == 0) return;
  const std::size_t size = block.size;
  const auto used = static_cast<std::ptrdiff_t>(block.waiting * size);
  std::fill(block.deviations.begin() + used, block.deviations.end(), 0.0);
  std::fill(block.factors.begin() + static_cast<std::ptrdiff_t>(block.waiting), block.factors.end(), 0.0);
  block.waiting = 0;

  // Places that no unit waits in have the factor 0. The units are added one after the other, as if each had
  // gone through by itself, so how many happened to wait together shows in no digit.
  const double* __restrict d0 = block.deviations.data();
  const double* __restrict d1 = d0 + size;
  const double* __restrict d2 = d1 + size;
  const double* __restrict d3 = d2 + size;
  double* __restrict row = block.cross.data();
  for (std::size_t i = 0; i < size; row += ++i) {
    const double e0 = block.factors[0] * d0[i];
    const double e1 = block.factors[1] * d1[i];
    const double e2 = block.factors[2] * d2[i];
    const double e3 = block.factors[3] * d3[i];
    if (e0 == 0.0 && e1 == 0.0 && e2 == 0.0 && e3 == 0.0) continue;  // a parameter that the units don't touch
    for (std::size_t j = 0; j <= i; ++j) {
      row[j] = (((row[j] + e0 * d0[j]) + e1 * d1[j]) + e2 * d2[j]) + e3 * d3[j];
    }
  }
}

void OrvCovariances::MergeAsUnit(const OrvCovariances& child) {
  assert(child.fBlocks.size() == fBlocks.size());
  for (std::size_t b = 0; b < fBlocks.size(); ++b) {
    const BlockSums& from = child.fBlocks[b];
    if (from.count <= 0.0) continue;
    AddToBlock(fBlocks[b], from.totals.data());
    AddTo(fBlocks[b].lower, from.cross);
  }
}

void OrvCovariances::MergeAsStratum(const OrvCovariances& child) {
  assert(child.fBlocks.size() == fBlocks.size());
  for (std::size_t b = 0; b < fBlocks.size(); ++b) {
    const BlockSums& from = child.fBlocks[b];
    if (from.count <= 0.0) continue;
    fBlocks[b].count += 1.0;
    AddTo(fBlocks[b].totals, from.totals);
    AddTo(fBlocks[b].cross, from.cross);
  }
}

void OrvCovariances::MergeAsLowerStage(const OrvCovariances& child, double factor) {
  assert(child.fBlocks.size() == fBlocks.size());
  for (std::size_t b = 0; b < fBlocks.size(); ++b) {
    const BlockSums& from = child.fBlocks[b];
    std::vector<double>& lower = fBlocks[b].lower;
    if (from.count <= 0.0) continue;
    for (std::size_t k = 0; k < lower.size(); ++k)
      lower[k] += factor * from.cross[k];
  }
}

bool OrvCovariances::Finish(double value, bool isPopulation) {
  bool fits = true;
  for (BlockSums& block : fBlocks) {
    if (block.count <= 0.0) continue;
    AddWaiting(block);
    const double fraction = SamplingFraction(block.count, value, isPopulation, fits);
    const double between = BetweenFactor(block.count, fraction);
    for (std::size_t i = 0; i < block.size; ++i)
      block.totals[i] = block.means[i] * block.count;
    for (double& cross : block.cross)
      cross *= between;
    for (std::size_t k = 0; k < block.lower.size(); ++k)
      block.cross[k] += fraction * block.lower[k];
  }
  return fits;
}

void OrvCovariances::FinishJoint(const JointUnits& units) {
  // The children's covariances already carry their unit's probability; see MergeAsLowerStage.
  for (BlockSums& block : fBlocks) {
    std::vector<std::size_t> present;
    for (std::size_t a = 0; a < units.count && block.size > 0; ++a) {
      if (!IsMissing(units.Totals(a)[block.offset])) present.push_back(a);
    }
    if (present.empty()) continue;
    AddPairs(block, units, present);
    for (std::size_t k = 0; k < block.lower.size(); ++k)
      block.cross[k] += block.lower[k];
  }
}

// The sum over pairs of w_ab (t_a - t_b)(t_a - t_b)' equals the sum over units of (t_a - c) u_a', where u_a
// is the sum over all other units b of w_ab (t_a - t_b) and c any vector: the u_a add up to 0. So the
// triangle is touched once for each unit instead of once for each pair. With the mean as c the factors stay
// of the size of the differences.
void OrvCovariances::AddPairs(BlockSums& block, const JointUnits& units,
                              const std::vector<std::size_t>& present) {
  const std::size_t size = block.size;
  const auto totals = [&](std::size_t position) { return units.Totals(present[position]) + block.offset; };
  std::vector<double> pulls(present.size() * size, 0.0);  // the u_a, end to end
  for (std::size_t a = 0; a < present.size(); ++a) {
    const double* const ta = totals(a);
    double* const ua = pulls.data() + a * size;
    for (std::size_t i = 0; i < size; ++i)
      block.totals[i] += ta[i];
    for (std::size_t b = 0; b < a; ++b) {
      const double weight = units.weights[present[a] * units.count + present[b]];
      const double* const tb = totals(b);
      double* const ub = pulls.data() + b * size;
      for (std::size_t i = 0; i < size; ++i) {
        const double pull = weight * (ta[i] - tb[i]);
        ua[i] += pull;
        ub[i] -= pull;
      }
    }
  }
  block.count = static_cast<double>(present.size());

  for (std::size_t a = 0; a < present.size(); ++a) {
    const double* const ta = totals(a);
    const double* const ua = pulls.data() + a * size;
    double* row = block.cross.data();
    for (std::size_t i = 0; i < size; row += ++i) {
      const double deviation = ta[i] - block.totals[i] / block.count;
      for (std::size_t j = 0; j <= i; ++j)
        row[j] += deviation * ua[j];
    }
  }
}

void OrvCovariances::Clear() {
  for (BlockSums& block : fBlocks) {
    block.count = 0.0;
    block.waiting = 0;
    std::fill(block.means.begin(), block.means.end(), 0.0);
    std::fill(block.totals.begin(), block.totals.end(), 0.0);
    std::fill(block.cross.begin(), block.cross.end(), 0.0);
    std::fill(block.lower.begin(), block.lower.end(), 0.0);
  }
}

const std::vector<double>* OrvCovariances::Block(int block) const {
  if (block < 0 || block >= BlockCount()) return nullptr;
  return &fBlocks[static_cast<std::size_t>(block)].cross;
}

}  // namespace tavo
