// A TAVOREG command over a small survey in memory, from its text to its tables.
#pragma once

#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "standalone/output/catalogue.h"
#include "standalone/session/embedded_session.h"
#include "standalone/session/run_commands.h"
#include "test_folder.h"

namespace test_support {

/// One stage of a plan as XML. `inside` is what stands in it.
inline std::string PlanStage(int number, const std::string& method, const std::string& inside,
                             const std::string& label = "") {
  return "<AnalysisStage label='" + label + "' stageNumber='" + std::to_string(number) +
         "' estimationMethod='" + method + "'>" + inside + "</AnalysisStage>";
}
inline std::string PlanVariable(const std::string& name) {
  return "<Variable name='" + name + "'/>";
}
inline std::string PlanStrata(const std::string& name) {
  return "<StrataVarList>" + PlanVariable(name) + "</StrataVarList>";
}
inline std::string PlanClusters(const std::string& name) {
  return "<ClusterVarList>" + PlanVariable(name) + "</ClusterVarList>";
}
inline std::string PlanOf(const std::string& stages) {
  return "<VORNTessel version='12.0'><AnalysisDesign SRSestimator='wor'>" + stages +
         "<Weight><Variable name='w'/></Weight></AnalysisDesign></VORNTessel>";
}

/// The survey: strata h (1, 2), 4 units psu in each, 10 cases in each. Numeric variables y (0, 1), y3 (1 to
/// 3), a (1 to 3), b (1, 2), c (1, 2), x, z, the weight w, the domain d (1, 2) and population sizes n (12 and
/// 16 units in the strata). No predictor separates the categories of y and y3. The plan: one stage with
/// replacement, h, psu, w.
class ModuleRun {
 public:
  explicit ModuleRun(standalone::SessionOptions options = {}) : fOptions(std::move(options)) {
    fOptions.baseFolder = fFolder.Path();
    WritePlan(PlanOf(PlanStage(1, "wr", PlanStrata("h") + PlanClusters("psu"))));
    FillSurvey();
  }

  /// The values of a numeric variable; a new one is made. All must be of the same length when the command
  /// runs.
  std::vector<double>& operator[](const std::string& name) { return fNumbers[name]; }
  std::vector<std::string>& Text(const std::string& name) { return fTexts[name]; }
  void WritePlan(const std::string& xml) { fFolder.Write("plan.xml", xml); }
  const TestFolder& Folder() const { return fFolder; }
  standalone::SessionOptions& Options() { return fOptions; }
  /// Changes the table before the command runs, such as labels and missing values.
  std::function<void(standalone::Table&)> prepare;
  host::CommonBlock initial;  // of the host before the command

  /// Runs `TAVOREG` with `command` behind it; the plan is added.
  const standalone::CommandOutput& Run(const std::string& command) {
    fpSession = std::make_unique<standalone::Session>(fOptions);
    fTable = MakeTable();
    if (prepare) prepare(fTable);
    fpSession->SetTable(&fTable);
    fpSession->Common() = initial;
    fText = standalone::SourceText("test.tvs", "TAVOREG " + command + " /PLAN FILE='plan.xml'.");
    result = standalone::RunCommands(*fpSession, fText, {{"TAVOREG", TAVOMAIN}});
    return Output();
  }
  const standalone::CommandOutput& Output() const { return fpSession->Output().commands.back(); }
  standalone::Session& Host() { return *fpSession; }
  /// The table after the command, with what the command added.
  const standalone::Table& Table() const { return fTable; }
  standalone::RunResult result;

  std::vector<std::string> Keys() const {
    std::vector<std::string> keys;
    for (const standalone::Message& message : Output().messages)
      keys.push_back(message.key);
    return keys;
  }
  std::vector<std::string> TableIds() const {
    std::vector<std::string> ids;
    for (const auto& table : Output().tables)
      ids.push_back(table->id);
    return ids;
  }

 private:
  void FillSurvey() {
    std::uint32_t state = 12345;
    const auto draw = [&state](int count) {  // the classic linear congruence; its high bits
      state = state * 1664525U + 1013904223U;
      return static_cast<int>((state >> 16U) % static_cast<std::uint32_t>(count));
    };
    for (int i = 0; i < 80; ++i) {
      const int h = 1 + i / 40;
      const auto put = [&](const char* name, double value) { fNumbers[name].push_back(value); };
      put("h", h);
      put("psu", 1 + i / 10 % 4);
      put("y", draw(2));
      put("y3", 1 + draw(3));
      put("a", 1 + draw(3));
      put("b", 1 + draw(2));
      put("c", 1 + draw(2));
      put("x", draw(100) / 10.0);
      put("z", draw(50) - 25);
      put("w", 1 + draw(4));
      put("d", 1 + draw(2));
      put("n", 8 + 4 * h);
    }
  }

  standalone::Table MakeTable() const {
    standalone::Table table;
    if (!fNumbers.empty()) table.SetCaseCount(fNumbers.begin()->second.size());
    for (const auto& [name, values] : fNumbers) {
      host::VORN_Variable variable(name, 0);
      const bool isWhole = name != "x";
      variable.SetFormat({5, 8, isWhole ? 0 : 1});
      standalone::Column& column = table.Add(variable);
      for (std::size_t i = 0; i < values.size(); ++i)
        column.cells[i].number = values[i];
    }
    for (const auto& [name, values] : fTexts) {
      std::size_t width = 1;
      for (const std::string& text : values)
        width = std::max(width, text.size());
      standalone::Column& column = table.Add(host::VORN_Variable(name, static_cast<int>(width)));
      for (std::size_t i = 0; i < values.size(); ++i) {
        std::string padded = values[i];
        padded.resize(column.Stride() * sizeof(host::OBS), ' ');
        std::memcpy(static_cast<void*>(&column.cells[i * column.Stride()]), padded.data(), padded.size());
      }
    }
    return table;
  }

  TestFolder fFolder;
  standalone::SessionOptions fOptions;
  std::map<std::string, std::vector<double>> fNumbers;
  std::map<std::string, std::vector<std::string>> fTexts;
  standalone::Table fTable;
  standalone::SourceText fText;
  std::unique_ptr<standalone::Session> fpSession;
};

/// The English text of a dictionary key.
inline std::string T(const std::string& key) {
  return standalone::CatalogueText(key);
}

}  // namespace test_support
