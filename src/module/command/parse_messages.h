// The messages of the command parser: one operation per message.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "component/input/custom_test.h"
#include "host/command.h"

namespace tavo {

/// Sends the parser's messages and knows the state that they share: the subcommand and the parameter in work,
/// or the part of the plan that is being checked. Where a message has several forms, this state chooses the
/// form.
///
/// Operations that send an error return false, so that a reader can end with `return messages.Some(…)`. Call
/// `At` just before one that is about a token.
class TavoParseMessages {
 public:
  static constexpr int kNoGroup = -1;
  static constexpr int kGlobalGroup = 0;

  TavoParseMessages();

  /// kNoGroup: the command is being read; kGlobalGroup: the plan as a whole; above: that stage of the plan.
  /// While a group is set, messages name the plan's part instead of a subcommand.
  void SetGroupIndex(int index) { fGroupIndex = index; }
  /// The subcommand in work, not owned; null for none. `ordinal` counts from 0 among its `occurrences` in the
  /// command.
  void SetSubcommand(const host::SubComObj* subcommand, std::size_t ordinal = 0, std::size_t occurrences = 1);
  /// The parameter in work; empty for none.
  void SetParameter(std::string name) { fParameter = std::move(name); }
  /// What messages call the subcommand in work: its name, with its number when the command has several; empty
  /// while a group is set.
  std::string SubcommandName() const;

  /// The place of the next message.
  TavoParseMessages& At(const host::SourcePosition& position);
  TavoParseMessages& At(const host::TokenInfoObj& token) { return At(token.position); }
  TavoParseMessages& AtSubcommand();
  /// The names among which the next message may suggest one.
  TavoParseMessages& Among(std::vector<std::string> candidates);

  // The variable list.
  bool NameExpectedAfterKeyword(const std::string& keyword);
  bool KeywordRepeated(const std::string& keyword);
  bool ImproperTo();

  // Names and values, in the form that fits the part in work.
  bool InvalidVariableName(const std::string& name);
  bool InvalidSyntax(const std::string& symbol);
  bool VariableNotFound(const std::string& name);
  bool VariableNotNumeric(const std::string& name);
  bool VariableRepeated(const std::string& name);
  bool InvalidCategoryValue(const std::string& variable, const std::string& value);
  bool MalformedValue(const std::string& variable);  // no single value in parentheses behind a variable
  bool CommandVariableNotAllowed(const std::string& name);  // DOMAIN with a variable of the variable list

  // Keywords of the subcommand in work.
  bool WrongValueType(const std::string& parameter);
  /// `allowed` says what the keyword takes.
  bool ValueNotAllowed(const std::string& parameter, const std::string& value, const std::string& allowed);
  bool InvalidInteger(const std::string& parameter);
  bool InvalidNumber(const std::string& parameter);
  bool BracketsRequired(const std::string& parameter);
  void ValueIgnored(const std::string& parameter, const std::string& value);
  bool FileNotAccessible(const std::string& name);
  bool NotTogether(const std::string& parameter, const std::string& other);
  bool EitherOrBothRequired(const std::string& parameter, const std::string& other);
  bool EitherRequired(const std::string& parameter, const std::string& other);
  bool OutputVariableExists(const std::string& name);
  bool FileUsedTwice(const std::string& name, const std::string& use, const std::string& otherUse);

  // Numbers in the parameter in work.
  bool NotANumber(const std::string& symbol);
  bool NumberMissingAfter(const std::string& symbol);
  bool NoDenominator(const std::string& numerator);
  bool DenominatorNotANumber(const std::string& symbol);
  bool DenominatorNotPositive(const std::string& denominator);

  // Rows of the matrix in work.
  bool EmptyLabel();
  bool InvalidRowType(const std::string& symbol);
  /// `expected`: what the rows before open with.
  bool OtherRowTypeExpected(MatrixRowType expected, const std::string& symbol);
  bool InterceptNotInModel();
  bool OnlyInterceptInModel();
  bool EffectNotInModel(const std::string& text);
  bool DuplicateEffectInRow(const std::string& text);
  bool ValueCountsDifferForEffect();
  bool ValueCountsDiffer();
  bool OneValuePerRow();
  bool ScalarRequiredWithout(const std::string& parameter, const std::string& other);
  bool RowCountsDiffer(const std::string& parameter, const std::string& other);
  bool RequiredWithValue(const std::string& parameter, const std::string& other, const std::string& value);

  // Variables of odds ratios.
  bool NotAFactor(const std::string& name);
  bool NotACovariate(const std::string& name);
  bool NotAPredictor(const std::string& name);
  bool RepeatedFactor(const std::string& name);
  bool RepeatedCovariate(const std::string& name);

  // Effects and the model.
  bool EffectOpening(const std::string& text);
  bool EffectSyntax(const std::string& text);
  bool CovariateNested(const std::string& name);
  bool RepeatedFactorInEffect(const std::string& name);
  bool UnbalancedParentheses();
  void DuplicateEffect();
  bool NothingInModel();
  bool SubcommandInvalidWithValue(const std::string& subcommand, const std::string& parameter,
                                  const std::string& value);
  void UnusedPredictors(const std::vector<std::string>& names);

  // The plan.
  bool PlanVariableInCommand(const std::string& name, const std::string& parameter);
  bool PlanVariableInDomain(const std::string& name);
  bool InvalidMatrixValue(const std::string& variable, const std::string& value, int row, int column);
  bool NoStageInformation();
  bool NoPlanSpecifications();
  bool NoStages();
  bool InvalidStageSequence(const std::vector<int>& numbers);
  bool DefaultJointProbFileNotAccessible(const std::string& name);
  bool NoWeightInPlan();
  bool NoEstimationMethod(int stage);
  bool NoInclusionData(int stage);

  // The command as a whole.
  bool NoSubcommands();
  void SplitFileIgnored();
  void CaseWeightIgnored();

 private:
  bool IsInPlan() const { return fGroupIndex >= 0; }
  bool IsInVariableList() const {
    return !IsInPlan() && (fpSubcommand == nullptr || fpSubcommand->name.empty());
  }
  std::string GroupText() const;
  /// Always false.
  bool Error(std::string_view key, const std::vector<std::string>& arguments);
  void Warning(std::string_view key, const std::vector<std::string>& arguments);
  /// A message about a text in the parameter and the subcommand in work, which are its second and third
  /// argument.
  bool ErrorInParameter(std::string_view key, const std::string& text) {
    return Error(key, {text, fParameter, SubcommandName()});
  }
  /// "variable ^1 …" in its four forms: parameter and subcommand, subcommand alone, plan parameter, variable
  /// list.
  bool VariableError(const std::string& name, const std::string& what);

  host::ParserMessage fMessage;
  int fGroupIndex = kNoGroup;
  const host::SubComObj* fpSubcommand = nullptr;
  std::string fOrdinalText;  // " 2" behind the name of a subcommand that occurs several times
  std::string fParameter;
};

}  // namespace tavo
