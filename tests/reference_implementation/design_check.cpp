#include "design_check.h"

#include <algorithm>
#include <cmath>

#include "problem_files.h"
#include "shrinking.h"

namespace reference {

namespace {

bool StartsWith(const std::string& text, const std::string& start) {
  return text.rfind(start, 0) == 0;
}

/// Whether the program halved a step of the fit that raises the likelihood by less than its own rounding
/// error. Near the end of a fit the sum over cases is not known to the 8 machine epsilons by which a step may
/// lower it when single terms are large against it; the halved step then ends the fit a digit early.
bool IsHalvedByRounding(const std::map<std::string, Value>& twin, const Comparison& comparison) {
  static const std::string kTable = "IterationHistory";
  for (const Mismatch& mismatch : comparison.mismatches) {
    if (StatisticOf(mismatch.cell) != kTable + " N Step-halving") continue;
    const std::string number = mismatch.cell.substr(
        kTable.size() + 1, mismatch.cell.find('|', kTable.size() + 1) - kTable.size() - 1);
    const auto deviance = [&](int iteration) {
      const auto found =
          twin.find(CellName(kTable, {std::to_string(iteration)}, {"Pseudo -2 Log Likelihood"}));
      return found == twin.end() ? 0.0L : found->second.number;
    };
    const Real before = deviance(std::stoi(number) - 1), after = deviance(std::stoi(number));
    if (std::abs(before - after) < 1e-9L * before) return true;
  }
  return false;
}

/// Whether the program sees more independent contrasts than there are. A covariance of few units is singular;
/// what rounding leaves of a dependent contrast can be above the share of 1e-12 at which it is dropped.
bool IsRankByRounding(const Comparison& comparison) {
  bool hasRank = false;
  for (const Mismatch& mismatch : comparison.mismatches) {
    const bool isTest =
        StartsWith(mismatch.cell, "TestsOfModelEffects") || StartsWith(mismatch.cell, "OverallTestResults");
    if (!isTest) return false;
    const std::string label = mismatch.cell.substr(mismatch.cell.rfind('|') + 1);
    hasRank = hasRank || label == "df1" || label == "degrees of freedom";
  }
  return hasRank;
}

}  // namespace

Checked Check(const Problem& problem, const Falsify& falsify) {
  Checked result;
  Answers answers = Answer(problem);
  result.whyNot = answers.whyNot;
  if (!result.whyNot.empty()) return result;
  if (falsify) falsify(answers.cells);
  result.comparison = Compare(answers.cells, RunProgram(FilesOf(problem), problem.threads));
  if (IsHalvedByRounding(answers.cells, result.comparison)) {
    result.knownFault = "a step halved by rounding";
  } else if (IsRankByRounding(result.comparison)) {
    result.knownFault = "a rank raised by rounding";
  }
  return result;
}

Problem ShrinkMismatch(const Problem& problem, const Falsify& falsify) {
  const std::string statistic = StatisticOf(Check(problem, falsify).comparison.mismatches.at(0).cell);
  return Shrink(problem, [&](const Problem& smaller) {
    const Checked checked = Check(smaller, falsify);
    const auto& mismatches = checked.comparison.mismatches;
    return checked.IsMismatch() &&
           std::any_of(mismatches.begin(), mismatches.end(),
                       [&](const Mismatch& mismatch) { return StatisticOf(mismatch.cell) == statistic; });
  });
}

std::string Describe(const Problem& problem, const Checked& checked) {
  constexpr std::size_t kMost = 20;
  std::string text;
  const auto& mismatches = checked.comparison.mismatches;
  for (std::size_t i = 0; i < std::min(kMost, mismatches.size()); ++i)
    text += mismatches[i].cell + ": " + mismatches[i].text + "\n";
  if (mismatches.size() > kMost) text += "and " + std::to_string(mismatches.size() - kMost) + " more\n";
  for (const auto& [name, content] : FilesOf(problem))
    text += "---- " + name + "\n" + content;
  return text;
}

}  // namespace reference
