// Data, plans and commands for runs of the program: small files written by a test, the same on every machine.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "program.h"

/// A data file as its cells.
struct DataFile {
  std::vector<std::string> names;
  std::vector<std::vector<std::string>> rows;

  /// The place of a variable; a name that isn't there throws.
  std::size_t ColumnOf(const std::string& name) const;
  std::string& Cell(std::size_t row, const std::string& name) { return rows[row][ColumnOf(name)]; }
  const std::string& Cell(std::size_t row, const std::string& name) const {
    return rows[row][ColumnOf(name)];
  }
  /// Gives each cell of a variable, new or known, the text that `value` makes of the row's number.
  DataFile& Fill(const std::string& name, const std::function<std::string(std::size_t)>& value);
  /// The file's text: a header line, then a line for each case.
  std::string Text(char delimiter = ',', const std::string& lineEnd = "\n") const;
};

/// A number in the fewest digits that read back to it.
std::string NumberText(double value);

/// A survey with 4 strata (st) of 5 primary units (psu): the weight w, the responses y (0, 1) and y3 (1, 2,
/// 3), which depend on the factors g ("low", "mid", "high") and b (1, 2) and on the covariates x and z, a
/// domain d (1, 2, 3), and for designs without replacement the number of units of a stratum, pop, and the
/// chance of a unit, prob.
DataFile SurveyData(std::size_t cases = 240, unsigned seed = 1);

/// A stage of a plan. `inside` is what follows the variable lists, such as PopulationSize.
struct StageText {
  std::string method = "wr";
  std::vector<std::string> strata = {};
  std::vector<std::string> clusters = {};
  std::string inside = {};
};

/// A plan file; an empty weight leaves the element out. `attributes` are those of AnalysisDesign.
std::string PlanText(const std::vector<StageText>& stages, const std::string& weight = "w",
                     const std::string& attributes = "");
/// One stage with replacement: st, psu, w.
std::string SimplePlan();
/// One stage without replacement, with what says its sizes.
std::string SizedPlan(const std::string& inside);
/// <PopulationSize> or <IncProb> that refers to a variable or a value.
std::string SizeVariable(const std::string& element, const std::string& name);
std::string SizeValue(const std::string& element, const std::string& value);

/// A run of one command file on one data file in a folder of its own, with the output as a JSON document.
struct Analysis {
  std::string command;
  std::string data;
  std::string plan = SimplePlan();
  std::vector<std::string> arguments = {};
  std::string dataName = "data.csv";
};
ProgramRun RunAnalysis(const Analysis& analysis);

/// The parameter estimates of a document's first command: statistic by "response / parameter". The statistics
/// are the innermost column labels; the limits of intervals carry their heading as well.
using Estimates = std::map<std::string, std::map<std::string, double>>;
Estimates EstimatesOf(const nlohmann::json& document);
