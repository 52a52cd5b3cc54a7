#include "component/numerics/precise_vectors.h"

#include <array>

namespace MCCommonMath::precise {

namespace {

// Sums side by side, so that they run in vector registers. Each is a double and what rounding took from it
// (Ogita, Rump and Oishi 2005, algorithm 5.3), which is as good as a sum in twice the precision.
class Lanes {
 public:
  template <class Term>
  void Add(std::size_t n, Term&& term) {
    std::size_t i = 0;
    for (; i + kCount <= n; i += kCount) {
      for (std::size_t lane = 0; lane < kCount; ++lane)
        AddTo(lane, term(i + lane));
    }
    for (; i < n; ++i)
      AddTo(i % kCount, term(i));
  }

  [[nodiscard]] DoubleDouble Total() const {
    DoubleDouble total;
    for (std::size_t lane = 0; lane < kCount; ++lane)
      total += ExactSum(fSums[lane], fRests[lane]);
    return total;
  }

 private:
  static constexpr std::size_t kCount = 8;

  void AddTo(std::size_t lane, const DoubleDouble& term) {
    const DoubleDouble sum = ExactSum(fSums[lane], term.high);
    fSums[lane] = sum.high;
    fRests[lane] += sum.low + term.low;
  }

  std::array<double, kCount> fSums{};
  std::array<double, kCount> fRests{};
};

// a b, its halves not yet normalised: a sum of such products doesn't need it.
DoubleDouble LooseProduct(const DoubleDouble& a, const DoubleDouble& b) {
  const DoubleDouble product = ExactProduct(a.high, b.high);
  return {product.high, product.low + (a.high * b.low + a.low * b.high)};
}

}  // namespace

void Multiply(const PreciseView& a, const PreciseView& b, std::size_t n, PreciseColumn& out) {
  for (std::size_t i = 0; i < n; ++i)
    out.Set(i, a.Get(i) * b.Get(i));
}

void AddScaled(const DoubleDouble& alpha, const PreciseView& a, std::size_t n, PreciseColumn& sums,
               std::size_t first) {
  for (std::size_t i = 0; i < n; ++i)
    sums.AddTo(first + i, alpha * a.Get(i));
}

DoubleDouble Sum(const PreciseView& a, std::size_t n) {
  Lanes lanes;
  lanes.Add(n, [&](std::size_t i) { return a.Get(i); });
  return lanes.Total();
}

DoubleDouble Dot(const PreciseView& a, const PreciseView& b, std::size_t n) {
  Lanes lanes;
  lanes.Add(n, [&](std::size_t i) { return LooseProduct(a.Get(i), b.Get(i)); });
  return lanes.Total();
}

}  // namespace MCCommonMath::precise
