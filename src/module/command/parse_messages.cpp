#include "module/command/parse_messages.h"

#include <utility>

#include "host/output.h"
#include "module/command/grammar.h"

namespace tavo {

namespace {

using host::BpComposite;
using host::BpErrorLevel;

/// Messages whose arguments are numbers or lists, or that are about no place in the command.
bool SendError(const BpComposite& text) {
  host::BpError(text, BpErrorLevel::kError);
  return false;
}

host::BpNumber Count(int number) {
  return {static_cast<double>(number), host::BpProcedure::Count()};
}

}  // namespace

TavoParseMessages::TavoParseMessages() {
  fMessage.SetCommandName(kCommandName);
  fMessage.SetProcedureTitle("TavoReg");
}

void TavoParseMessages::SetSubcommand(const host::SubComObj* subcommand, std::size_t ordinal,
                                      std::size_t occurrences) {
  fpSubcommand = subcommand;
  fParameter.clear();
  fOrdinalText.clear();
  if (occurrences > 1) fOrdinalText = " " + host::IntegerToString(static_cast<long>(ordinal) + 1);
}

std::string TavoParseMessages::SubcommandName() const {
  if (IsInPlan() || fpSubcommand == nullptr) return {};
  return fpSubcommand->name + fOrdinalText;
}

TavoParseMessages& TavoParseMessages::At(const host::SourcePosition& position) {
  fMessage.SetPosition(position);
  return *this;
}

TavoParseMessages& TavoParseMessages::AtSubcommand() {
  if (fpSubcommand != nullptr) fMessage.SetPosition(fpSubcommand->position);
  return *this;
}

TavoParseMessages& TavoParseMessages::Among(std::vector<std::string> candidates) {
  fMessage.SetCandidates(std::move(candidates));
  return *this;
}

std::string TavoParseMessages::GroupText() const {
  if (!IsInPlan()) return {};
  if (fGroupIndex == kGlobalGroup) return host::FacSTDictionaryLookUp("Global plan stage...");
  std::string text = host::FacSTDictionaryLookUp("Plan stage ^1...");
  if (const std::size_t place = text.find("^1"); place != std::string::npos) {
    text.replace(place, 2, host::IntegerToString(fGroupIndex));
  }
  return text;
}

bool TavoParseMessages::Error(std::string_view key, const std::vector<std::string>& arguments) {
  fMessage.SetGroupText(GroupText());
  fMessage.GenericError(key, arguments);
  return false;
}

void TavoParseMessages::Warning(std::string_view key, const std::vector<std::string>& arguments) {
  fMessage.SetGroupText(GroupText());
  fMessage.GenericWarning(key, arguments);
}

// The variable list.

bool TavoParseMessages::NameExpectedAfterKeyword(const std::string& keyword) {
  return Error("Keyword ^1 should be followed by a valid variable name in ^2 variable list...",
               {keyword, kCommandName});
}

bool TavoParseMessages::KeywordRepeated(const std::string& keyword) {
  return Error("Keyword ^1 already occured in ^2 variable list...", {keyword, kCommandName});
}

bool TavoParseMessages::ImproperTo() {
  return Error("Keyword TO improperly used in ^1...", {kCommandName});
}

// Names and values.

bool TavoParseMessages::InvalidVariableName(const std::string& name) {
  if (IsInVariableList()) {
    return Error("Variable name ^1 in variable list ^2 is not valid...", {name, kCommandName});
  }
  return Error("Variable name ^1 for parameter ^2 of subcommand ^3 is not valid...",
               {name, fParameter, SubcommandName()});
}

bool TavoParseMessages::InvalidSyntax(const std::string& symbol) {
  if (IsInVariableList())
    return Error("Invalid syntax in variable list ^2, symbol ^1 ...", {symbol, kCommandName});
  return Error("Invalid syntax in parameter ^2, symbol ^1, subcommand ^3 ...",
               {symbol, fParameter, SubcommandName()});
}

bool TavoParseMessages::VariableError(const std::string& name, const std::string& what) {
  if (IsInPlan()) return Error("Variable ^1 for parameter ^2 " + what, {name, fParameter});
  if (IsInVariableList()) return Error("Variable ^1 for variable list ^2 " + what, {name, kCommandName});
  if (fParameter.empty()) return Error("Variable ^1 for subcommand ^2 " + what, {name, SubcommandName()});
  return Error("Variable ^1 for parameter ^2 of subcommand ^3 " + what, {name, fParameter, SubcommandName()});
}

bool TavoParseMessages::VariableNotFound(const std::string& name) {
  return VariableError(name, "is not found in the dictionary...");
}

bool TavoParseMessages::VariableNotNumeric(const std::string& name) {
  return VariableError(name, "is not numeric...");
}

bool TavoParseMessages::VariableRepeated(const std::string& name) {
  return Error("Variable ^1 for parameter ^2 already occured...",
               {name, IsInPlan() ? fParameter : kCommandName});
}

bool TavoParseMessages::InvalidCategoryValue(const std::string& variable, const std::string& value) {
  if (IsInVariableList()) {
    return Error("Variable ^1 has value ^2 of invalid type or format, variable list ^3...",
                 {variable, value, kCommandName});
  }
  return Error("^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...",
               {variable, value, fParameter, SubcommandName()});
}

bool TavoParseMessages::MalformedValue(const std::string& variable) {
  constexpr std::string_view kKey = "Variable ^1 for parameter ^2 has invalid value, subcommand ^3...";
  if (IsInVariableList()) return Error(kKey, {variable, kCommandName, kCommandName});
  return ErrorInParameter(kKey, variable);
}

bool TavoParseMessages::CommandVariableNotAllowed(const std::string& name) {
  return Error("Variable name ^1 for variable list ^2 cannot be used for parameter ^3...",
               {name, kCommandName, SubcommandName()});
}

// Keywords.

bool TavoParseMessages::WrongValueType(const std::string& parameter) {
  return Error("Parameter ^1 of subcommand ^2 has incorrect value type...", {parameter, SubcommandName()});
}

bool TavoParseMessages::ValueNotAllowed(const std::string& parameter, const std::string& value,
                                        const std::string& allowed) {
  return Error("Parameter ^1 of subcommand ^2 cannot take value ^3...",
               {parameter, SubcommandName(), value, allowed});
}

bool TavoParseMessages::InvalidInteger(const std::string& parameter) {
  return Error("Parameter ^1 of subcommand ^2 does not have a valid integer value...",
               {parameter, SubcommandName()});
}

bool TavoParseMessages::InvalidNumber(const std::string& parameter) {
  return Error("Parameter ^1 of subcommand ^2 does not have a valid numerical value...",
               {parameter, SubcommandName()});
}

bool TavoParseMessages::BracketsRequired(const std::string& parameter) {
  return Error("Square brackets required for parameter ^1 in subcommand ^2...",
               {parameter, SubcommandName()});
}

void TavoParseMessages::ValueIgnored(const std::string& parameter, const std::string& value) {
  Warning("Parameter ^1 of subcommand ^2 with value ^3 is ignored...", {parameter, SubcommandName(), value});
}

bool TavoParseMessages::FileNotAccessible(const std::string& name) {
  return Error("File ^1 cannot be accessed...", {name});
}

bool TavoParseMessages::NotTogether(const std::string& parameter, const std::string& other) {
  return Error("Parameter ^1 of subcommand ^3 cannot be given with parameter ^2...",
               {parameter, other, SubcommandName()});
}

bool TavoParseMessages::EitherOrBothRequired(const std::string& parameter, const std::string& other) {
  return Error("Either ^1 or ^2, or both, required for ^3...", {parameter, other, SubcommandName()});
}

bool TavoParseMessages::EitherRequired(const std::string& parameter, const std::string& other) {
  return Error("Either ^1 or ^2, but not both, required for ^3...", {parameter, other, SubcommandName()});
}

bool TavoParseMessages::OutputVariableExists(const std::string& name) {
  return Error("Output variable ^1 already exists...", {name});
}

bool TavoParseMessages::FileUsedTwice(const std::string& name, const std::string& use,
                                      const std::string& otherUse) {
  return Error("File ^1 cannot be used for both ^2 and ^3...", {name, use, otherUse});
}

// Effects and the model.

bool TavoParseMessages::EffectOpening(const std::string& text) {
  return Error("Model effect is opening with ^1, subcommand ^2 ...", {text, SubcommandName()});
}

bool TavoParseMessages::EffectSyntax(const std::string& text) {
  return Error("Syntax error in effect ^1, subcommand ^2 ...", {text, SubcommandName()});
}

bool TavoParseMessages::CovariateNested(const std::string& name) {
  return Error("Covariate ^1 nested in effect, subcommand ^2 ...", {name, SubcommandName()});
}

bool TavoParseMessages::RepeatedFactorInEffect(const std::string& name) {
  return Error("Repeated factor in effect ^1, subcommand ^2 ...", {name, SubcommandName()});
}

bool TavoParseMessages::UnbalancedParentheses() {
  return Error("Unbalanced parentheses in effect, subcommand ^1 ...", {SubcommandName()});
}

void TavoParseMessages::DuplicateEffect() {
  Warning("Duplicate effect in ^1 ...", {SubcommandName()});
}

bool TavoParseMessages::NothingInModel() {
  return Error("No factors, no covariates, no intercept ...", {});
}

bool TavoParseMessages::SubcommandInvalidWithValue(const std::string& subcommand,
                                                   const std::string& parameter, const std::string& value) {
  return Error("Subcommand ^1 is invalid when parameter ^2 has value ^3...", {subcommand, parameter, value});
}

void TavoParseMessages::UnusedPredictors(const std::vector<std::string>& names) {
  BpComposite text("Model does not use [%1:, ^1:]1");
  text.Sublist();
  for (const std::string& name : names)
    text.Add(host::Plain(name));
  text.EndSublist();
  host::BpError(text, BpErrorLevel::kWarning);
}

bool TavoParseMessages::OneValuePerRow() {
  return Error("^2 row should contain ^1 value, subcommand ^3 ...", {"1", fParameter, SubcommandName()});
}

// The plan.

bool TavoParseMessages::PlanVariableInCommand(const std::string& name, const std::string& parameter) {
  return Error("Plan variable name ^1 for parameter ^2 cannot be used for variable list ^3...",
               {name, parameter, kCommandName});
}

bool TavoParseMessages::PlanVariableInDomain(const std::string& name) {
  return Error("Plan variable name ^1 cannot be used for parameter ^2 of subcommand ^3...",
               {name, "VARIABLE", "DOMAIN"});
}

bool TavoParseMessages::InvalidMatrixValue(const std::string& variable, const std::string& value, int row,
                                           int column) {
  return Error("MATRIX variable ^1 in column ^4 has value ^2 of invalid type or format in row ^3...",
               {variable, value, host::IntegerToString(row), host::IntegerToString(column)});
}

bool TavoParseMessages::NoStageInformation() {
  return Error("Parser cannot get information for the current stage...", {});
}

bool TavoParseMessages::NoPlanSpecifications() {
  return SendError(BpComposite("The parser cannot get plan file specifications..."));
}

bool TavoParseMessages::NoStages() {
  return SendError(BpComposite("The plan doesn't have any stage..."));
}

bool TavoParseMessages::InvalidStageSequence(const std::vector<int>& numbers) {
  BpComposite text("Stage Number Sequence [%1:, ^1:]1 is invalid");
  text.Sublist();
  for (const int number : numbers)
    text.Add(Count(number));
  return SendError(text.EndSublist());
}

bool TavoParseMessages::DefaultJointProbFileNotAccessible(const std::string& name) {
  return SendError(
      BpComposite("Default joint probability file ^1 cannot be accessed...").Add(host::Plain(name)));
}

bool TavoParseMessages::NoWeightInPlan() {
  return SendError(BpComposite("The plan doesn't name a weight variable..."));
}

bool TavoParseMessages::NoEstimationMethod(int stage) {
  return SendError(BpComposite("Stage ^1 of the plan has no estimation method...").Add(Count(stage)));
}

bool TavoParseMessages::NoInclusionData(int stage) {
  return SendError(
      BpComposite("Stage ^1 of the plan is sampled without replacement but gives neither population "
                  "sizes nor inclusion probabilities...")
          .Add(Count(stage)));
}

// The command as a whole.

bool TavoParseMessages::NoSubcommands() {
  return SendError(BpComposite("The command doesn't have any subcommand..."));
}

void TavoParseMessages::SplitFileIgnored() {
  host::BpError(BpComposite("No split file ..."), BpErrorLevel::kWarning);
}

void TavoParseMessages::CaseWeightIgnored() {
  host::BpError(BpComposite("No VORN weight ..."), BpErrorLevel::kWarning);
}

}  // namespace tavo
