#include "command_dump.h"

#include <charconv>

#include "standalone/command/syntax_parser.h"

namespace command_test {

namespace {

using host::ParamDescriptor;
using host::SubComDescriptor;
using host::UPSpecTypes::ParamSpec;
using host::UPSpecTypes::SubComSpec;

std::string Shortest(double number) {
  char buffer[40];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, number);
  return {buffer, result.ptr};
}

/// The mark that tells a token's kind in a dump, where its text doesn't.
std::string_view MarkOf(const host::TokenInfoObj& token) {
  if (token.IsNumber()) return "#";
  if (token.IsLiteral()) return "'";
  if (token.IsPlainString()) return token.IsReservedWord() ? "!" : "~";
  return "";
}

void Append(std::string& dump, const host::TokenInfoObj& token) {
  dump += MarkOf(token);
  dump += token.IsNumber() ? Shortest(token.number) : token.text;
  if (token.IsLiteral()) dump += '\'';
}

SubComDescriptor Subcommand(std::string name, SubComSpec spec, bool required = false,
                            bool repeatable = false) {
  return {std::move(name), spec, required, repeatable, {}};
}

void AddAll(SubComDescriptor& subcommand, ParamSpec spec, const std::vector<std::string>& names,
            bool required = false) {
  for (const std::string& name : names)
    subcommand.addParamDesc(name, spec, required);
}

}  // namespace

std::string Dump(const std::vector<host::TokenInfoObj>& tokens) {
  std::string text;
  for (const host::TokenInfoObj& token : tokens) {
    if (!text.empty()) text += ' ';
    Append(text, token);
  }
  return text;
}

std::string Dump(const host::CommandSpec& specification) {
  std::string text;
  for (const host::SubComObj& subcommand : specification.subcommands) {
    if (!text.empty()) text += ' ';
    text.append("/").append(subcommand.name);
    for (const host::ParamObj& param : subcommand.params) {
      text.append(" ").append(param.name);
      if (!param.name.empty() && param.isLeadingToken()) continue;
      text.append(param.name.empty() ? "{" : "={").append(Dump(param.value)).append("}");
    }
  }
  return text;
}

std::string Dump(const host::SourcePosition& position) {
  return std::to_string(position.line) + ":" + std::to_string(position.column) + "+" +
         std::to_string(position.length);
}

host::CommandDescriptor RegressionGrammar() {
  host::CommandDescriptor grammar{"TAVOREG", {}};
  grammar.addSubComDesc(Subcommand("", SubComSpec::kTokens, true));

  SubComDescriptor plan = Subcommand("PLAN", SubComSpec::kNamed, true);
  AddAll(plan, ParamSpec::kTokens, {"FILE"}, true);
  grammar.addSubComDesc(plan);
  SubComDescriptor joint = Subcommand("JOINTPROB", SubComSpec::kNamed);
  AddAll(joint, ParamSpec::kTokens, {"FILE"}, true);
  grammar.addSubComDesc(joint);
  grammar.addSubComDesc(Subcommand("MODEL", SubComSpec::kTokens));
  SubComDescriptor intercept = Subcommand("INTERCEPT", SubComSpec::kNamed);
  AddAll(intercept, ParamSpec::kWord, {"INCLUDE", "SHOW"});
  grammar.addSubComDesc(intercept);

  SubComDescriptor custom = Subcommand("CUSTOM", SubComSpec::kNamed, false, true);
  AddAll(custom, ParamSpec::kLiteral, {"LABEL"});
  ParamDescriptor matrix{"LMATRIX", ParamSpec::kTokens, false, true, {}, false};
  matrix.allowSlash(true);
  custom.addParamDesc(matrix);
  AddAll(custom, ParamSpec::kTokens, {"KMATRIX"});
  grammar.addSubComDesc(custom);
  SubComDescriptor ratios = Subcommand("ODDSRATIOS", SubComSpec::kNamed, false, true);
  AddAll(ratios, ParamSpec::kTokens, {"FACTOR", "COVARIATE", "CONTROL"});
  grammar.addSubComDesc(ratios);

  SubComDescriptor criteria = Subcommand("CRITERIA", SubComSpec::kNamed);
  AddAll(criteria, ParamSpec::kNumber, {"CHKSEP", "CILEVEL", "DF"});
  AddAll(criteria, ParamSpec::kTokens, {"LCONVERGE"});
  AddAll(criteria, ParamSpec::kNumber, {"MXITER", "MXSTEP"});
  AddAll(criteria, ParamSpec::kTokens, {"PCONVERGE"});
  AddAll(criteria, ParamSpec::kNumber, {"SINGULAR"});
  grammar.addSubComDesc(criteria);
  SubComDescriptor statistics = Subcommand("STATISTICS", SubComSpec::kNamed);
  AddAll(statistics, ParamSpec::kBare, {"PARAMETER", "EXP", "SE", "TTEST", "CINTERVAL", "DEFF", "DEFFSQRT"});
  grammar.addSubComDesc(statistics);
  SubComDescriptor test = Subcommand("TEST", SubComSpec::kNamed);
  AddAll(test, ParamSpec::kWord, {"TYPE", "PADJUST"});
  grammar.addSubComDesc(test);
  SubComDescriptor domain = Subcommand("DOMAIN", SubComSpec::kNamed);
  AddAll(domain, ParamSpec::kTokens, {"VARIABLE"}, true);
  grammar.addSubComDesc(domain);
  SubComDescriptor missing = Subcommand("MISSING", SubComSpec::kNamed);
  AddAll(missing, ParamSpec::kWord, {"CLASSMISSING"}, true);
  grammar.addSubComDesc(missing);

  SubComDescriptor print = Subcommand("PRINT", SubComSpec::kList);
  AddAll(print, ParamSpec::kBare, {"SAMPLEINFO", "VARIABLEINFO", "SUMMARY"});
  print.addParamDesc("HISTORY", ParamSpec::kNumber, false, false);
  AddAll(print, ParamSpec::kBare, {"GEF", "LMATRIX", "COVB", "CORB", "CLASSTABLE", "NONE"});
  grammar.addSubComDesc(print);
  SubComDescriptor save = Subcommand("SAVE", SubComSpec::kList);
  save.addParamDesc("PREDPROB", ParamSpec::kTokens, false, false);
  save.addParamDesc("PREDVAL", ParamSpec::kVariable, false, false);
  grammar.addSubComDesc(save);
  SubComDescriptor outfile = Subcommand("OUTFILE", SubComSpec::kNamed);
  AddAll(outfile, ParamSpec::kStringOrLiteral, {"COVB", "CORB"});
  AddAll(outfile, ParamSpec::kFilePath, {"MODEL", "PARAMETER"});
  grammar.addSubComDesc(outfile);
  return grammar;
}

Parsed Parse(std::string text) {
  Parsed parsed;
  parsed.source = standalone::SourceText("test.tvs", std::move(text));
  parsed.commands = ReadCommands(parsed.source);
  if (parsed.commands.empty()) return parsed;
  const host::CommandDescriptor grammar = RegressionGrammar();
  standalone::SyntaxParser parser(parsed.commands.front().tokens, grammar, parsed.specification,
                                  parsed.messages);
  parsed.succeeded = parser.Parse();
  return parsed;
}

}  // namespace command_test
