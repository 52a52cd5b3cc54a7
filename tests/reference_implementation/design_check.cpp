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

/// Whether the program takes for a variance what rounding left of none, as where all cases of a level are in
/// one unit whose scores add up to 0. The t-value is then as large as it is meaningless.
bool IsVarianceOfRounding(const std::map<std::string, Value>& twin, const Comparison& comparison) {
  return std::any_of(
      comparison.mismatches.begin(), comparison.mismatches.end(), [&](const Mismatch& mismatch) {
        const auto found = twin.find(mismatch.cell);
        return StatisticOf(mismatch.cell) == "ParameterEstimates Std. Error" && found != twin.end() &&
               !found->second.isMissing && found->second.number == 0 && found->second.tolerance == 0;
      });
}

/// Whether the program takes a variance for rounding: one below a share of 1e-12 of the terms that cancel in
/// it is cleared, however many digits it has. An intercept far from the covariates' values can be hit.
bool IsVarianceCleared(const Comparison& comparison) {
  return std::any_of(comparison.mismatches.begin(), comparison.mismatches.end(),
                     [](const Mismatch& mismatch) {
                       return StatisticOf(mismatch.cell) == "ParameterEstimates Std. Error" &&
                              StartsWith(mismatch.text, "the program says 0, ");
                     });
}

/// The rows of tests in which the program sees more independent contrasts than there are. A covariance of few
/// units is singular; what rounding leaves of a dependent contrast can be above the share of 1e-12 at which
/// it is dropped, and the statistic is then any large number.
std::vector<std::string> RowsOfRankByRounding(const Comparison& comparison) {
  std::vector<std::string> rows;
  for (const Mismatch& mismatch : comparison.mismatches) {
    const bool isOverall =
        StartsWith(mismatch.cell, "TestsOfModelEffects") || StartsWith(mismatch.cell, "OverallTestResults");
    const std::size_t bar = mismatch.cell.rfind('|');
    const std::string label = mismatch.cell.substr(bar + 1);
    if (isOverall && (label == "df1" || label == "degrees of freedom"))
      rows.push_back(mismatch.cell.substr(0, bar + 1));
  }
  return rows;
}

/// The faults that are known and open, when they account for all differences; otherwise nothing.
std::string KnownFault(const std::map<std::string, Value>& twin, const Comparison& comparison) {
  if (comparison.mismatches.empty()) return "";
  if (IsHalvedByRounding(twin, comparison)) return "a step halved by rounding";
  if (IsVarianceOfRounding(twin, comparison)) return "rounding taken for a variance";
  if (IsVarianceCleared(comparison)) return "a variance taken for rounding";
  const std::vector<std::string> explained = RowsOfRankByRounding(comparison);
  for (const Mismatch& mismatch : comparison.mismatches) {
    const auto isOf = [&](const std::string& start) { return StartsWith(mismatch.cell, start); };
    if (std::none_of(explained.begin(), explained.end(), isOf)) return "";
  }
  return "a rank raised by rounding";
}

}  // namespace

Checked Check(const Problem& problem, const Falsify& falsify) {
  Checked result;
  Answers answers = Answer(problem);
  result.whyNot = answers.whyNot;
  if (!result.whyNot.empty()) return result;
  if (falsify) falsify(answers.cells);
  result.comparison = Compare(answers.cells, RunProgram(FilesOf(problem), problem.threads));
  result.knownFault = KnownFault(answers.cells, result.comparison);
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
    text.append("---- ").append(name).append("\n").append(content);
  return text;
}

}  // namespace reference
