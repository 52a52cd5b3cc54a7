#include "command_run.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace command_parser_test {

namespace {

std::string VariableList(const char* element, const std::vector<std::string>& names) {
  if (names.empty()) return {};
  std::string text = std::string("<") + element + ">";
  for (const std::string& name : names)
    text += "<Variable name='" + name + "'/>";
  return text + "</" + element + ">";
}

std::string NewFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tavo-command-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  return pattern;
}

void FillDictionary(standalone::Table& table) {
  table.SetCaseCount(1);
  const std::vector<std::pair<const char*, int>> variables = {
      {"y", 0},   {"a", 0},   {"b", 0},    {"c", 0}, {"g", 4}, {"x", 0}, {"z", 0},  {"w", 0},    {"st", 0},
      {"st2", 0}, {"psu", 0}, {"psu2", 0}, {"n", 0}, {"p", 0}, {"d", 0}, {"ts", 3}, {"wide", 12}};
  for (const auto& [name, type] : variables)
    table.Add(host::VORN_Variable(name, type));
}

}  // namespace

std::string Stage(int number, const std::string& method, const std::vector<std::string>& strata,
                  const std::vector<std::string>& clusters, const std::string& inside) {
  return "<AnalysisStage label='L" + std::to_string(number) + "' stageNumber='" + std::to_string(number) +
         "' estimationMethod='" + method + "'>" + VariableList("StrataVarList", strata) +
         VariableList("ClusterVarList", clusters) + inside + "</AnalysisStage>";
}

std::string Plan(const std::string& stages, const std::string& weight, const std::string& estimator) {
  std::string text = "<VORNTessel version='12.0'><AnalysisDesign SRSestimator='" + estimator + "'>" + stages;
  if (!weight.empty()) text += "<Weight><Variable name='" + weight + "'/></Weight>";
  return text + "</AnalysisDesign></VORNTessel>";
}

std::string SimplePlan() {
  return Plan(Stage(1, "wr", {"st"}, {"psu"}));
}

CommandRun::CommandRun() : fFolder(NewFolder()) {
  fOptions.baseFolder = fFolder;
  FillDictionary(fTable);
  WritePlan(SimplePlan());
}

CommandRun::~CommandRun() {
  if (fpSession) fpSession->EndCommand();
  std::error_code ignored;
  std::filesystem::remove_all(fFolder, ignored);
}

void CommandRun::WriteFile(const std::string& name, const std::string& text) const {
  std::ofstream(fFolder + "/" + name, std::ios::binary) << text;
}

bool CommandRun::Parse(const std::string& text) {
  const bool hasPlan = text.find("/PLAN") != std::string::npos;
  fSource = standalone::SourceText("test.tvs", text + (hasPlan ? "" : " /PLAN FILE='plan.xml'"));
  fCommands = standalone::ReadCommands(fSource);
  if (fCommands.size() != 1 || !fCommands.front().errors.empty())
    throw std::runtime_error("bad test command");
  fpSession = std::make_unique<standalone::Session>(fOptions);
  fpSession->SetTable(&fTable);
  fpScope = std::make_unique<standalone::SessionScope>(*fpSession);
  fpSession->BeginCommand(fCommands.front(), fSource);
  fpSession->Common() = initial;
  fpTokens = fpSession->MakeTokenSequence();
  fpData = fpSession->MakeDataSource();
  fpParser = std::make_unique<tavo::TavoCommandParser>(*fpTokens, fSpecs, *fpData);
  return fpParser->Parse() != 0;
}

std::vector<std::string> CommandRun::Keys() const {
  std::vector<std::string> keys;
  for (const standalone::Message& message : Messages())
    keys.push_back(message.key);
  return keys;
}

}  // namespace command_parser_test
