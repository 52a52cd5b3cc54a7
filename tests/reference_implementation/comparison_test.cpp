// The check of the check: a wrong number is found, wherever it stands, and its case shrinks.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "design_check.h"
#include "problem_files.h"
#include "random_problem.h"
#include "shrinking.h"

namespace {

using reference::Check;
using reference::Checked;
using reference::Compare;
using reference::Comparison;
using reference::MakeProblem;
using reference::Problem;
using reference::ProgramTables;
using reference::Value;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using Cells = std::map<std::string, Value>;

ProgramTables Program(std::map<std::string, std::optional<double>> cells) {
  return {false, {}, std::move(cells)};
}

TEST(TableComparison, AcceptsNumbersWithinTheirTolerance) {
  const Comparison same = Compare({{"T|B", Value::Of(1, 1e-9L)}}, Program({{"T|B", 1 + 0.9e-9}}));
  EXPECT_THAT(same.mismatches, IsEmpty());
  EXPECT_EQ(same.compared, 1U);
  EXPECT_NEAR(static_cast<double>(same.worst.at("T B").ofTolerance), 0.9, 1e-6);
  EXPECT_THAT(Compare({{"T|B", Value::Of(1, 1e-9L)}}, Program({{"T|B", 1 + 1.1e-9}})).mismatches, SizeIs(1));
}

TEST(TableComparison, ACountMustBeExact) {
  EXPECT_THAT(Compare({{"T|N", Value::Exactly(3)}}, Program({{"T|N", 3.0}})).mismatches, IsEmpty());
  EXPECT_THAT(Compare({{"T|N", Value::Exactly(3)}}, Program({{"T|N", 3.0000001}})).mismatches, SizeIs(1));
}

TEST(TableComparison, MissingOnOneSideOnlyIsAMismatch) {
  EXPECT_THAT(Compare({{"T|B", Value::Missing()}}, Program({{"T|B", 1.0}})).mismatches, SizeIs(1));
  EXPECT_THAT(Compare({{"T|B", Value::Of(1, 1)}}, Program({{"T|B", std::nullopt}})).mismatches, SizeIs(1));
  EXPECT_THAT(Compare({{"T|B", Value::Missing()}}, Program({{"T|B", std::nullopt}})).mismatches, IsEmpty());
}

TEST(TableComparison, ACellOfOneSideOnlyIsAMismatch) {
  EXPECT_THAT(Compare({{"T|B", Value::Of(1, 1)}}, Program({})).mismatches, SizeIs(1));
  EXPECT_THAT(Compare({}, Program({{"T|B", 1.0}})).mismatches, SizeIs(1));
}

TEST(TableComparison, NothingIsSaidOfWhatRoundingDecides) {
  const Comparison comparison = Compare({{"T|B", Value::Undecided()}}, Program({{"T|B", 123.0}}));
  EXPECT_THAT(comparison.mismatches, IsEmpty());
  EXPECT_EQ(comparison.undecided, 1U);
}

TEST(TableComparison, NotANumberIsNeverRight) {
  const double nothing = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THAT(Compare({{"T|B", Value::Of(1, 1)}}, Program({{"T|B", nothing}})).mismatches, SizeIs(1));
}

TEST(TableComparison, AFailedRunIsAMismatch) {
  ProgramTables failed;
  failed.hasFailed = true;
  failed.messages = {"because"};
  const Comparison comparison = Compare({}, failed);
  ASSERT_THAT(comparison.mismatches, SizeIs(1));
  EXPECT_THAT(comparison.mismatches[0].text, HasSubstr("because"));
}

/// Makes each number whose cell's name holds `part` wrong by a millionth.
reference::Falsify WrongWhere(const std::string& part) {
  return [part](Cells& cells) {
    for (auto& [name, value] : cells) {
      if (name.find(part) != std::string::npos) value.number *= 1 + 1e-6L;
    }
  };
}

/// The first design, from a seed on, with which the falsified twin disagrees and the true one agrees.
Problem FirstMismatch(const reference::Falsify& falsify, std::uint64_t seed) {
  for (;; ++seed) {
    const Problem problem = MakeProblem(seed);
    const Checked honest = Check(problem);
    if (!honest.whyNot.empty() || !honest.comparison.mismatches.empty()) continue;
    if (Check(problem, falsify).IsMismatch()) return problem;
  }
}

TEST(WrongNumbers, AreFoundInEveryTable) {
  for (const char* part :
       {"SampleDesignInformation|Population", "CategoricalVariableInformation|resp", "CovariateInformation|",
        "IterationHistory|0|Pseudo", "PseudoRSquares|McFadden", "|B", "|Std. Error", "|Significance",
        "|Design Effect", "CovariancesOf", "CorrelationsOf", "Classification|", "GeneralEstimableFunction|",
        "EffectsContrast", "TestsOfModelEffects", "ContrastCoefficients", "IndividualTestResults",
        "OverallTestResults", "OddsRatios"}) {
    const Problem problem = FirstMismatch(WrongWhere(part), 1);
    const Checked checked = Check(problem, WrongWhere(part));
    for (const reference::Mismatch& mismatch : checked.comparison.mismatches)
      EXPECT_THAT(mismatch.cell, HasSubstr(part));
  }
}

TEST(WrongNumbers, ShrinkToTheirCause) {
  // Wrong only where a factor is crossed with a covariate: everything else of the design can go.
  const auto falsify = WrongWhere("] * x|Std. Error");
  const Problem problem = FirstMismatch(falsify, 100);
  const Problem smallest = reference::ShrinkMismatch(problem, falsify);
  EXPECT_TRUE(Check(smallest, falsify).IsMismatch());
  EXPECT_LT(smallest.cases, problem.cases / 2);
  EXPECT_LE(smallest.cases, 12U);
  EXPECT_THAT(smallest.effects, SizeIs(1));
  EXPECT_THAT(smallest.factors, SizeIs(1));
  EXPECT_THAT(smallest.covariates, SizeIs(1));
  EXPECT_THAT(smallest.stages, SizeIs(1));
  EXPECT_THAT(smallest.stages[0].strata, IsEmpty());
  EXPECT_THAT(smallest.hypotheses, IsEmpty());
  EXPECT_THAT(smallest.oddsRatios, IsEmpty());
  EXPECT_THAT(smallest.domain, IsEmpty());
}

TEST(WrongNumbers, AreDescribedWithFilesReadyToRun) {
  const auto falsify = WrongWhere("|Std. Error");
  const Problem problem = FirstMismatch(falsify, 1);
  const std::string text = Describe(problem, Check(problem, falsify));
  EXPECT_THAT(text, HasSubstr("Std. Error: the program says"));
  for (const auto& [name, content] : FilesOf(problem))
    EXPECT_THAT(text, HasSubstr("---- " + name + "\n" + content));
}

TEST(Shrinking, EndsWhenNothingMoreCanGo) {
  // Needs three cases of the first stratum and a factor in the model.
  const auto isShown = [](const Problem& problem) {
    const auto isFactor = [](const reference::Effect& effect) { return !effect.factors.empty(); };
    return problem.cases >= 3 && std::any_of(problem.effects.begin(), problem.effects.end(), isFactor);
  };
  std::uint64_t seed = 1;
  while (!isShown(MakeProblem(seed)))
    ++seed;
  const Problem smallest = reference::Shrink(MakeProblem(seed), isShown);
  EXPECT_EQ(smallest.cases, 3U);
  EXPECT_THAT(smallest.dependent.codes, SizeIs(3));
  EXPECT_THAT(smallest.effects, SizeIs(1));
  EXPECT_THAT(smallest.covariates, IsEmpty());
}

}  // namespace
