// Thousands of random surveys and models through the program and through its twin.
//
//   build/tests/test_reference_implementation                         2,000 designs
//   TAVO_DESIGNS=100000 build/tests/test_reference_implementation     as many as that
//   TAVO_SEED=4711 TAVO_DESIGNS=1 build/tests/…                       the one that a failure names
//
// A failure is shrunk and printed as files: put them into a folder and run the command there.

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "design_check.h"
#include "random_problem.h"

namespace {

using reference::Checked;
using reference::Problem;

std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* const text = std::getenv(name);
  return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::uint64_t kDesigns = 200;  // a tenth of the speed
#else
constexpr std::uint64_t kDesigns = 2000;
#endif

struct Tally {
  std::size_t compared = 0, cells = 0, undecided = 0, mismatches = 0;
  std::map<std::string, std::size_t> notCompared, knownFaults;
  std::map<std::string, reference::Worst> worst;
};

void Enter(const Checked& checked, Tally& tally) {
  if (!checked.whyNot.empty()) {
    ++tally.notCompared[checked.whyNot];
    return;
  }
  ++tally.compared;
  tally.cells += checked.comparison.compared;
  tally.undecided += checked.comparison.undecided;
  if (checked.knownFault.empty()) {
    Merge(checked.comparison.worst, tally.worst);
  } else {
    ++tally.knownFaults[checked.knownFault];
  }
}

void Print(const Tally& tally) {
  std::printf("%zu designs, %zu numbers compared, %zu that rounding decides\n", tally.compared, tally.cells,
              tally.undecided);
  for (const auto& [why, count] : tally.notCompared)
    std::printf("  not compared, %s: %zu\n", why.c_str(), count);
  for (const auto& [fault, count] : tally.knownFaults)
    std::printf("  known, %s: %zu\n", fault.c_str(), count);
  std::printf("worst relative error and share of the tolerance by statistic:\n");
  for (const auto& [statistic, worst] : tally.worst)
    std::printf("  %-55s %8.1Le %8.1Le\n", statistic.c_str(), worst.relative, worst.ofTolerance);
}

TEST(RandomDesigns, EveryNumberOfTheProgramIsTheTwins) {
  const std::uint64_t designs = FromEnvironment("TAVO_DESIGNS", kDesigns);
  const std::uint64_t first = FromEnvironment("TAVO_SEED", 1);
  Tally tally;
  for (std::uint64_t seed = first; seed < first + designs && tally.mismatches < 3; ++seed) {
    const Problem problem = reference::MakeProblem(seed);
    const Checked checked = reference::Check(problem);
    Enter(checked, tally);
    if (!checked.IsMismatch()) continue;
    ++tally.mismatches;
    const Problem smallest = reference::ShrinkMismatch(problem);
    ADD_FAILURE() << "TAVO_SEED=" << seed << " TAVO_DESIGNS=1\n"
                  << Describe(problem, checked) << "==== shrunk\n"
                  << Describe(smallest, reference::Check(smallest));
  }
  Print(tally);
  if (designs < 1000) return;
  EXPECT_GT(tally.compared, designs / 2);
  std::size_t known = 0;
  for (const auto& [fault, count] : tally.knownFaults)
    known += count;
  EXPECT_LT(known, tally.compared / 50) << "what is known to be wrong must stay rare";
}

TEST(RandomDesigns, TheSameSeedMakesTheSameDesign) {
  const Problem once = reference::MakeProblem(42), again = reference::MakeProblem(42);
  EXPECT_EQ(Describe(once, {}), Describe(again, {}));
}

}  // namespace
