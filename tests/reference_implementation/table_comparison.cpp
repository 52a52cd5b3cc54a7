#include "table_comparison.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace reference {

namespace {

std::string Digits(Real value) {
  char text[48];
  std::snprintf(text, sizeof text, "%.17Lg", value);
  return text;
}

std::string TextOf(const Value& value) {
  if (value.isMissing) return "missing";
  return value.IsUndecided() ? "any number" : Digits(value.number) + " within " + Digits(value.tolerance);
}

/// Enters an agreement, or a difference, into the result.
void CompareCell(const std::string& cell, const Value& twin, const std::optional<double>& program,
                 Comparison& result) {
  if (twin.IsUndecided()) {
    ++result.undecided;
    return;
  }
  const bool isSame = twin.isMissing ? !program.has_value() : program.has_value();
  if (!isSame || (program && !std::isfinite(*program))) {
    result.mismatches.push_back({cell, "the program says " + (program ? Digits(*program) : "missing") +
                                           ", the twin " + TextOf(twin)});
    return;
  }
  if (twin.isMissing) return;
  ++result.compared;
  const Real difference = std::abs(static_cast<Real>(*program) - twin.number);
  // Counts and settings have no tolerance but for their last digit as a double.
  const Real tolerance = twin.tolerance + 4e-16L * std::abs(twin.number);
  if (difference > tolerance)
    result.mismatches.push_back(
        {cell, "the program says " + Digits(*program) + ", the twin " + TextOf(twin)});
  Worst& worst = result.worst[StatisticOf(cell)];
  const Real scale = std::max(std::abs(twin.number), twin.tolerance * 1e9L);
  if (scale > 0 && difference / scale >= worst.relative) {
    worst.relative = difference / scale;
    worst.cell = cell;
  }
  if (tolerance > 0) worst.ofTolerance = std::max(worst.ofTolerance, difference / tolerance);
}

}  // namespace

std::string StatisticOf(const std::string& cell) {
  static const std::array<const char*, 5> kByParameter = {
      "EffectsContrast", "CovariancesOf", "CorrelationsOf", "GeneralEstimable", "ContrastCoefficients"};
  std::string table = cell.substr(0, cell.find_first_of(" |"));
  for (const char* name : kByParameter) {
    if (table.rfind(name, 0) == 0) return table;
  }
  const std::string label = cell.substr(cell.rfind('|') + 1);
  if (table == "IterationHistory" && label != "N Step-halving" && label != "Pseudo -2 Log Likelihood")
    return table + " estimates";
  if (table == "Classification") return table;
  if (cell.find("|Confidence Interval") != std::string::npos) return table + " limit";
  return table + " " + label;
}

Comparison Compare(const std::map<std::string, Value>& twin, const ProgramTables& program) {
  Comparison result;
  if (program.hasFailed) {
    std::string text = "the program failed:";
    for (const std::string& message : program.messages)
      text += " " + message;
    result.mismatches.push_back({"", text});
    return result;
  }
  for (const auto& [cell, value] : twin) {
    const auto found = program.cells.find(cell);
    if (found == program.cells.end()) {
      if (!value.isMissing)
        result.mismatches.push_back({cell, "the program has no such cell, the twin " + TextOf(value)});
      continue;
    }
    CompareCell(cell, value, found->second, result);
  }
  for (const auto& [cell, value] : program.cells) {
    if (value && twin.find(cell) == twin.end())
      result.mismatches.push_back(
          {cell, "the program says " + Digits(*value) + ", the twin has no such cell"});
  }
  return result;
}

void Merge(const std::map<std::string, Worst>& from, std::map<std::string, Worst>& into) {
  for (const auto& [statistic, worst] : from) {
    Worst& all = into[statistic];
    if (worst.relative >= all.relative) {
      all.relative = worst.relative;
      all.cell = worst.cell;
    }
    all.ofTolerance = std::max(all.ofTolerance, worst.ofTolerance);
  }
}

}  // namespace reference
