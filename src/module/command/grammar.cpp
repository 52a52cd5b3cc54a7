#include "module/command/grammar.h"

#include <initializer_list>
#include <utility>

namespace tavo {

namespace {

using host::CommandDescriptor;
using host::ParamDescriptor;
using host::SubComDescriptor;
using host::UPSpecTypes::ParamSpec;
using host::UPSpecTypes::SubComSpec;

constexpr bool kRequired = true;
constexpr bool kRepeatable = true;
constexpr bool kMayStandAlone = false;  // the value of a keyword need not be given

SubComDescriptor Subcommand(const char* name, SubComSpec spec, bool required = false,
                            bool repeatable = false) {
  return {name, spec, required, repeatable, {}};
}

void AddKeywords(SubComDescriptor& subcommand, ParamSpec spec, std::initializer_list<const char*> names) {
  for (const char* name : names)
    subcommand.addParamDesc(name, spec, false);
}

// Keywords whose values have a syntax of their own (names in any place, brackets, parentheses, TO) take
// tokens as they stand; their readers report faults with the place and in words that name the keyword.
SubComDescriptor FileSubcommand(const char* name, bool required) {
  SubComDescriptor subcommand = Subcommand(name, SubComSpec::kNamed, required);
  subcommand.addParamDesc("FILE", ParamSpec::kTokens, kRequired);
  return subcommand;
}

SubComDescriptor Intercept() {
  SubComDescriptor subcommand = Subcommand("INTERCEPT", SubComSpec::kNamed);
  AddKeywords(subcommand, ParamSpec::kWord, {"INCLUDE", "SHOW"});
  return subcommand;
}

SubComDescriptor Custom() {
  SubComDescriptor subcommand = Subcommand("CUSTOM", SubComSpec::kNamed, false, kRepeatable);
  subcommand.addParamDesc("LABEL", ParamSpec::kLiteral, false);
  ParamDescriptor rows{"LMATRIX", ParamSpec::kTokens};
  rows.allowSlash(true);  // coefficients may be fractions
  subcommand.addParamDesc(std::move(rows));
  subcommand.addParamDesc("KMATRIX", ParamSpec::kTokens, false);
  return subcommand;
}

SubComDescriptor OddsRatios() {
  SubComDescriptor subcommand = Subcommand("ODDSRATIOS", SubComSpec::kNamed, false, kRepeatable);
  AddKeywords(subcommand, ParamSpec::kTokens, {"FACTOR", "COVARIATE", "CONTROL"});
  return subcommand;
}

SubComDescriptor Criteria() {
  SubComDescriptor subcommand = Subcommand("CRITERIA", SubComSpec::kNamed);
  AddKeywords(subcommand, ParamSpec::kNumber, {"CHKSEP", "CILEVEL", "DF"});
  AddKeywords(subcommand, ParamSpec::kTokens, {"LCONVERGE"});
  AddKeywords(subcommand, ParamSpec::kNumber, {"MXITER", "MXSTEP"});
  AddKeywords(subcommand, ParamSpec::kTokens, {"PCONVERGE"});
  AddKeywords(subcommand, ParamSpec::kNumber, {"SINGULAR"});
  return subcommand;
}

SubComDescriptor Statistics() {
  SubComDescriptor subcommand = Subcommand("STATISTICS", SubComSpec::kNamed);
  AddKeywords(subcommand, ParamSpec::kBare,
              {"PARAMETER", "EXP", "SE", "TTEST", "CINTERVAL", "DEFF", "DEFFSQRT"});
  return subcommand;
}

SubComDescriptor Test() {
  SubComDescriptor subcommand = Subcommand("TEST", SubComSpec::kNamed);
  AddKeywords(subcommand, ParamSpec::kWord, {"TYPE", "PADJUST"});
  return subcommand;
}

SubComDescriptor Domain() {
  SubComDescriptor subcommand = Subcommand("DOMAIN", SubComSpec::kNamed);
  subcommand.addParamDesc("VARIABLE", ParamSpec::kTokens, kRequired);
  return subcommand;
}

SubComDescriptor Missing() {
  SubComDescriptor subcommand = Subcommand("MISSING", SubComSpec::kNamed);
  subcommand.addParamDesc("CLASSMISSING", ParamSpec::kWord, kRequired);
  return subcommand;
}

SubComDescriptor Print() {
  SubComDescriptor subcommand = Subcommand("PRINT", SubComSpec::kList);
  AddKeywords(subcommand, ParamSpec::kBare, {"SAMPLEINFO", "VARIABLEINFO", "SUMMARY"});
  // The options in their documented order, in which the host lists them to a user.
  subcommand.addParamDesc("HISTORY", ParamSpec::kNumber, false, kMayStandAlone);
  AddKeywords(subcommand, ParamSpec::kBare, {"GEF", "LMATRIX", "COVB", "CORB", "CLASSTABLE", "NONE"});
  return subcommand;
}

SubComDescriptor Save() {
  SubComDescriptor subcommand = Subcommand("SAVE", SubComSpec::kList);
  subcommand.addParamDesc("PREDPROB", ParamSpec::kTokens, false, kMayStandAlone);
  subcommand.addParamDesc("PREDVAL", ParamSpec::kVariable, false, kMayStandAlone);
  return subcommand;
}

SubComDescriptor Outfile() {
  SubComDescriptor subcommand = Subcommand("OUTFILE", SubComSpec::kNamed);
  AddKeywords(subcommand, ParamSpec::kStringOrLiteral, {"COVB", "CORB"});
  AddKeywords(subcommand, ParamSpec::kFilePath, {"MODEL", "PARAMETER"});
  return subcommand;
}

}  // namespace

CommandDescriptor BuildGrammar() {
  CommandDescriptor command;
  command.name = kCommandName;
  command.addSubComDesc(Subcommand("", SubComSpec::kTokens, kRequired));
  command.addSubComDesc(FileSubcommand("PLAN", kRequired));
  command.addSubComDesc(FileSubcommand("JOINTPROB", false));
  command.addSubComDesc(Subcommand("MODEL", SubComSpec::kTokens));
  command.addSubComDesc(Intercept());
  command.addSubComDesc(Custom());
  command.addSubComDesc(OddsRatios());
  command.addSubComDesc(Criteria());
  command.addSubComDesc(Statistics());
  command.addSubComDesc(Test());
  command.addSubComDesc(Domain());
  command.addSubComDesc(Missing());
  command.addSubComDesc(Print());
  command.addSubComDesc(Save());
  command.addSubComDesc(Outfile());
  return command;
}

}  // namespace tavo
