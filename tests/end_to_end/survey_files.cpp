#include "survey_files.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <stdexcept>

namespace {

/// Numbers that only look random, the same on every machine (Park and Miller 1988).
class Dice {
 public:
  explicit Dice(unsigned seed) : fState(seed) {}
  /// Uniform in (0, 1).
  double Uniform() {
    fState = fState * 48271 % 2147483647;
    return static_cast<double>(fState) / 2147483647.0;
  }
  /// Uniform in 1 … sides.
  int Throw(int sides) { return 1 + static_cast<int>(Uniform() * sides); }

 private:
  std::uint64_t fState;
};

/// The category that a draw falls into, for the linear predictors of the categories.
int Draw(Dice& dice, const std::vector<double>& predictors) {
  double total = 0;
  for (const double predictor : predictors)
    total += std::exp(predictor);
  double left = dice.Uniform() * total;
  for (std::size_t k = 0; k + 1 < predictors.size(); ++k) {
    left -= std::exp(predictors[k]);
    if (left < 0) return static_cast<int>(k);
  }
  return static_cast<int>(predictors.size()) - 1;
}

double Rounded(double value) {
  return std::round(value * 1000) / 1000;
}

std::string VariableList(const std::string& element, const std::vector<std::string>& names) {
  if (names.empty()) return {};
  std::string text = "<" + element + ">";
  for (const std::string& name : names)
    text += "<Variable name=\"" + name + "\"/>";
  return text + "</" + element + ">\n";
}

}  // namespace

std::string NumberText(double value) {
  std::array<char, 32> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end.ptr};
}

std::size_t DataFile::ColumnOf(const std::string& name) const {
  const auto at = std::find(names.begin(), names.end(), name);
  if (at == names.end()) throw std::out_of_range("no variable " + name);
  return static_cast<std::size_t>(at - names.begin());
}

DataFile& DataFile::Fill(const std::string& name, const std::function<std::string(std::size_t)>& value) {
  if (std::find(names.begin(), names.end(), name) == names.end()) {
    names.push_back(name);
    for (auto& row : rows)
      row.emplace_back();
  }
  const std::size_t column = ColumnOf(name);
  for (std::size_t i = 0; i < rows.size(); ++i)
    rows[i][column] = value(i);
  return *this;
}

std::string DataFile::Text(char delimiter, const std::string& lineEnd) const {
  std::string text;
  const auto add = [&](const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (i > 0) text += delimiter;
      text += cells[i];
    }
    text += lineEnd;
  };
  add(names);
  for (const auto& row : rows)
    add(row);
  return text;
}

DataFile SurveyData(std::size_t cases, unsigned seed) {
  constexpr std::array kLevels = {"low", "mid", "high"};
  constexpr int kUnits = 5;
  constexpr std::array kPopulation = {20, 30, 40, 25};
  Dice dice(seed);
  DataFile file{{"st", "psu", "w", "y", "y3", "g", "b", "x", "z", "d", "pop", "prob"}, {}};
  for (std::size_t i = 0; i < cases; ++i) {
    // Round robin, so that each unit has cases.
    const auto stratum = static_cast<int>(i % 4);
    const auto unit = static_cast<int>(i / 4 % kUnits);
    const double weight = Rounded(1 + 3 * dice.Uniform());
    const int g = dice.Throw(3);
    const int b = dice.Throw(2);
    const double x = Rounded(4 * dice.Uniform() - 2 + 0.3 * unit);
    const double z = Rounded(dice.Uniform() + dice.Uniform());
    const double lean = -0.4 + 0.5 * x - 0.6 * (g == 1) + 0.4 * (b == 1) * z + 0.2 * stratum;
    const int y = Draw(dice, {0, lean});
    const int y3 = 1 + Draw(dice, {0.3 * x, 0.5 * lean, 0});
    const int population = kPopulation[static_cast<std::size_t>(stratum)];
    file.rows.push_back({std::to_string(stratum + 1), std::to_string(unit + 1), NumberText(weight),
                         std::to_string(y), std::to_string(y3), kLevels[static_cast<std::size_t>(g - 1)],
                         std::to_string(b), NumberText(x), NumberText(z), std::to_string(dice.Throw(3)),
                         std::to_string(population), NumberText(static_cast<double>(kUnits) / population)});
  }
  return file;
}

std::string PlanText(const std::vector<StageText>& stages, const std::string& weight,
                     const std::string& attributes) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<VORNTessel version=\"12.0\">\n<AnalysisDesign " +
      attributes + ">\n";
  int number = 0;
  for (const StageText& stage : stages) {
    text += "<AnalysisStage stageNumber=\"" + std::to_string(++number) + "\" estimationMethod=\"" +
            stage.method + "\">\n" + VariableList("StrataVarList", stage.strata) +
            VariableList("ClusterVarList", stage.clusters) + stage.inside + "</AnalysisStage>\n";
  }
  if (!weight.empty()) text += "<Weight><Variable name=\"" + weight + "\"/></Weight>\n";
  return text + "</AnalysisDesign>\n</VORNTessel>\n";
}

std::string SimplePlan() {
  return PlanText({{"wr", {"st"}, {"psu"}}});
}

std::string SizedPlan(const std::string& inside) {
  return PlanText({{"equal_wor", {"st"}, {"psu"}, inside}});
}

std::string SizeVariable(const std::string& element, const std::string& name) {
  return "<" + element + "><Variable name=\"" + name + "\"/></" + element + ">";
}

std::string SizeValue(const std::string& element, const std::string& value) {
  return "<" + element + "><SingleValue value=\"" + value + "\"/></" + element + ">";
}

ProgramRun RunAnalysis(const Analysis& analysis) {
  const TemporaryFolder folder;
  folder.Write("command.tvs", analysis.command);
  if (!analysis.plan.empty()) folder.Write("plan.xml", analysis.plan);
  if (!analysis.data.empty()) folder.Write(analysis.dataName, analysis.data);
  std::vector<std::string> arguments = {"run",      "command.tvs", "--data", analysis.dataName,
                                        "--format", "json"};
  arguments.insert(arguments.end(), analysis.arguments.begin(), analysis.arguments.end());
  return RunProgram(arguments, folder.Path());
}

Estimates EstimatesOf(const nlohmann::json& document) {
  Estimates found;
  for (const auto& table : document["commands"][0]["tables"]) {
    if (table["id"] != "ParameterEstimates") continue;
    for (const auto& cell : table["cells"]) {
      if (!cell["value"].is_number()) continue;
      std::string column;
      for (const auto& label : cell["column"])
        column = label.get<std::string>();
      if (column == "Lower" || column == "Upper")
        column = cell["column"][cell["column"].size() - 2].get<std::string>() + " " + column;
      std::string row;
      for (const auto& label : cell["row"])
        row += (row.empty() ? "" : " / ") + label.get<std::string>();
      found[row][column] = cell["value"].get<double>();
    }
  }
  return found;
}
