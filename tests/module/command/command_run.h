// One TAVOREG command, parsed over a small table and plan files in a folder of its own.
//
// The dictionary, in this order: y a b c (numeric), g (string 4), x z (numeric), w st st2 psu psu2 n p d
// (numeric), ts (string 3), wide (string 12).
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "module/command/command_parser.h"
#include "module/command/valid_specs.h"
#include "standalone/session/embedded_session.h"

namespace command_parser_test {

/// A stage of a plan as XML. `inside` is what stands in it behind the variable lists.
std::string Stage(int number, const std::string& method, const std::vector<std::string>& strata,
                  const std::vector<std::string>& clusters, const std::string& inside = "");
/// A plan of the given stages with weight w.
std::string Plan(const std::string& stages, const std::string& weight = "w",
                 const std::string& estimator = "wor");
/// One stage with replacement: stratum st, clusters psu, weight w.
std::string SimplePlan();

class CommandRun {
 public:
  CommandRun();
  ~CommandRun();
  CommandRun(const CommandRun&) = delete;
  CommandRun& operator=(const CommandRun&) = delete;

  void WriteFile(const std::string& name, const std::string& text) const;
  void WritePlan(const std::string& xml) const { WriteFile("plan.xml", xml); }
  /// Adds a numeric variable to the dictionary, before the command is parsed.
  void AddVariable(const std::string& name) { fTable.Add(host::VORN_Variable(name, 0)); }
  /// Parses once. `PLAN FILE='plan.xml'` is added to a command that has no PLAN; the file is the simple plan
  /// unless another was written.
  bool Parse(const std::string& text);

  tavo::TavoValidSpecs& Specs() { return fSpecs; }
  standalone::Session& Host() { return *fpSession; }
  const std::vector<standalone::Message>& Messages() const {
    return fpSession->Output().commands.back().messages;
  }
  /// Keys of the messages, in order.
  std::vector<std::string> Keys() const;
  int IndexOf(const std::string& variable) const { return fTable.Find(variable); }

  standalone::SessionOptions& Options() { return fOptions; }
  host::CommonBlock initial;  // split and weight of the host before the command

 private:
  std::string fFolder;
  standalone::SessionOptions fOptions;
  standalone::Table fTable;
  std::unique_ptr<standalone::Session> fpSession;
  std::unique_ptr<standalone::SessionScope> fpScope;
  standalone::SourceText fSource;
  std::vector<standalone::CommandTokens> fCommands;
  std::unique_ptr<host::VORN_TokenSequence> fpTokens;
  std::unique_ptr<host::ProcedureDataSource> fpData;
  tavo::TavoValidSpecs fSpecs;
  std::unique_ptr<tavo::TavoCommandParser> fpParser;
};

}  // namespace command_parser_test
