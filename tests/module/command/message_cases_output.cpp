#include "message_cases.h"

namespace command_parser_test {

namespace {

constexpr const char* kTypeKey = "Parameter ^1 of subcommand ^2 has incorrect value type...";
constexpr const char* kIntegerKey = "Parameter ^1 of subcommand ^2 does not have a valid integer value...";
constexpr const char* kTogetherKey = "Parameter ^1 of subcommand ^3 cannot be given with parameter ^2...";
constexpr const char* kFileKey = "File ^1 cannot be used for both ^2 and ^3...";

}  // namespace

std::vector<MessageCase> OutputCases() {
  return {
      // New variables.
      {"Variable name ^1 for parameter ^2 of subcommand ^3 is not valid...",
       {"10", "PREDPROB", "SAVE"},
       "TAVOREG y /SAVE PREDPROB(^10)"},
      {kTypeKey, {"PREDPROB", "SAVE"}, "TAVOREG y /SAVE PREDPROB(^p 10)"},
      {kTypeKey, {"PREDPROB", "SAVE"}, "TAVOREG y /SAVE PREDPROB(^p:)"},
      {kTypeKey, {"PREDPROB", "SAVE"}, "TAVOREG y /SAVE PREDPROB(^p:10 20)"},
      {kTypeKey, {"PREDPROB", "SAVE"}, "TAVOREG y /SAVE PREDPROB(^1:10)"},
      {kIntegerKey, {"PREDPROB p", "SAVE"}, "TAVOREG y /SAVE PREDPROB(p:^0)"},
      {kIntegerKey, {"PREDPROB p", "SAVE"}, "TAVOREG y /SAVE PREDPROB(p:^q)"},
      {kIntegerKey, {"PREDPROB PredictedProbability", "SAVE"}, "TAVOREG y /SAVE PREDPROB(:^2.5)"},
      {"Output variable ^1 already exists...", {"X"}, "TAVOREG y /SAVE PREDVAL(^X)"},

      // Files.
      {kTogetherKey, {"COVB", "CORB", "OUTFILE"}, "TAVOREG y /OUTFILE COVB='a.vdt' ^CORB='b.vdt'"},
      {kTogetherKey,
       {"MODEL", "PARAMETER", "OUTFILE"},
       "TAVOREG y /OUTFILE MODEL='m.xml' ^PARAMETER='p.xml'"},
      {kTypeKey, {"COVB", "OUTFILE"}, "TAVOREG y /OUTFILE COVB=^''"},
      {kFileKey, {"PLAN.xml", "PLAN", "COVB"}, "TAVOREG y /OUTFILE COVB=^'PLAN.xml'"},
      {kFileKey,
       {"Plan.XML", "JOINTPROB", "PARAMETER"},
       "TAVOREG y /PLAN FILE='./plan.xml' /JOINTPROB FILE='plan.xml' /OUTFILE PARAMETER=^'Plan.XML'"},
      {kFileKey, {"OUT.vdt", "CORB", "MODEL"}, "TAVOREG y /OUTFILE CORB='out.vdt' MODEL=^'OUT.vdt'"},
  };
}

}  // namespace command_parser_test
