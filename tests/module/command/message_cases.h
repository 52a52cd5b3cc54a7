// Commands, each with the one message that it raises.
#pragma once

#include <string>
#include <vector>

#include "command_run.h"
#include "standalone/output/template.h"

namespace command_parser_test {

struct MessageCase {
  const char* key;
  std::vector<standalone::TemplateArgument> arguments;
  std::string command;  // with a ^ in front of the token that the message shows, when it shows one
  std::string plan = SimplePlan();
  bool isError = true;
  const char* group = "";       // what stands in front of the sentence
  host::CommonBlock initial{};  // of the host before the command
};

/// Of the variable list, the model and the options.
std::vector<MessageCase> CommandCases();
/// Of CUSTOM and ODDSRATIOS.
std::vector<MessageCase> HypothesisCases();
/// Of what is saved and written.
std::vector<MessageCase> OutputCases();
/// Of plans.
std::vector<MessageCase> PlanCases();

}  // namespace command_parser_test
