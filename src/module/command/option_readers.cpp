#include "module/command/option_readers.h"

#include <array>
#include <span>
#include <string>
#include <utility>

#include "host/files.h"
#include "module/command/token_cursor.h"

namespace tavo {

namespace {

using host::ParamObj;
using host::SubComObj;
using host::TokenInfoObj;

/// A word that a keyword takes, and what it stands for.
template <class Meaning>
struct WordMeaning {
  const char* word;
  Meaning meaning;
};

/// "F, ADJF or CHISQUARE".
template <class Meaning, std::size_t N>
std::string ListOf(const std::array<WordMeaning<Meaning>, N>& known) {
  std::string text;
  for (std::size_t i = 0; i < N; ++i)
    text += (i == 0 ? "" : i + 1 == N ? " or " : ", ") + std::string(known[i].word);
  return text;
}

/// The meaning of a keyword's word; `meaning` stays when the keyword is absent. False after a message.
template <class Meaning, std::size_t N>
bool ReadWord(ParseContext& context, const SubComObj& subcommand, const char* keyword,
              const std::array<WordMeaning<Meaning>, N>& known, Meaning& meaning) {
  const ParamObj* param = subcommand.getParamObj(keyword);
  if (param == nullptr) return true;
  std::string word;
  param->getStringGeneric(word);
  const std::string upper = host::GetUpperString(word);
  for (const WordMeaning<Meaning>& entry : known) {
    if (upper == entry.word) {
      meaning = entry.meaning;
      return true;
    }
  }
  return context.messages.At(ValuePosition(*param)).ValueNotAllowed(param->name, word, ListOf(known));
}

bool FileNotAccessible(ParseContext& context, const ParamObj& file, const std::string& name) {
  return context.messages.At(ValuePosition(file)).FileNotAccessible(name);
}

}  // namespace

bool ReadPlanFile(ParseContext& context, const SubComObj& plan) {
  const ParamObj& file = *plan.getParamObj("FILE");
  std::string name;
  bool isLiteral = false;
  if (!ReadFileName(file, name, isLiteral)) {
    return context.messages.At(ValuePosition(file)).WrongValueType(file.name);
  }
  // At once, though the file is read later: a wrong name is told before anything else of the command is
  // judged.
  if (!host::CheckFileRef(name) || !host::ValidateFileSpecification(name)) {
    return FileNotAccessible(context, file, name);
  }
  context.specs.SetPlanFileName(std::move(name));
  return true;
}

bool ReadJointProbFile(ParseContext& context, const SubComObj& jointProb) {
  const ParamObj& file = *jointProb.getParamObj("FILE");
  std::string name;
  bool isLiteral = false;
  if (!ReadFileName(file, name, isLiteral)) {
    return context.messages.At(ValuePosition(file)).WrongValueType(file.name);
  }
  host::UserCaseFileSpec& specification = context.specs.JointProbFile();
  specification.Init(std::move(name), isLiteral, false);
  if (specification.Exists() && specification.IsValid() && !specification.IsInUse()) return true;
  return FileNotAccessible(context, file, specification.DocumentationString());
}

bool ReadIntercept(ParseContext& context, const SubComObj& intercept) {
  enum class Include { kYes, kNo, kOnly };
  constexpr std::array<WordMeaning<Include>, 3> kInclude = {
      {{"YES", Include::kYes}, {"NO", Include::kNo}, {"ONLY", Include::kOnly}}};
  constexpr std::array<WordMeaning<bool>, 2> kShow = {{{"YES", true}, {"NO", false}}};

  Include include = Include::kYes;
  if (!ReadWord(context, intercept, "INCLUDE", kInclude, include)) return false;
  context.specs.SetIntercept(include != Include::kNo);
  context.interceptOnly = include == Include::kOnly;

  bool show = true;
  if (!ReadWord(context, intercept, "SHOW", kShow, show)) return false;
  // Only an intercept beside effects can be hidden: without it there is nothing to hide, alone it is the
  // whole table.
  if (!show && include != Include::kYes) {
    context.messages.At(intercept.getParamObj("SHOW")->position).ValueIgnored("SHOW", "NO");
    return true;
  }
  context.specs.SetShowIntercept(show);
  return true;
}

bool ReadStatistics(ParseContext& context, const SubComObj& statistics) {
  constexpr std::array<WordMeaning<Statistic>, 7> kStatistics = {{{"PARAMETER", Statistic::PARAMETER},
                                                                  {"EXP", Statistic::EXP},
                                                                  {"SE", Statistic::SE},
                                                                  {"TTEST", Statistic::TTEST},
                                                                  {"CINTERVAL", Statistic::CINTERVAL},
                                                                  {"DEFF", Statistic::DEFF},
                                                                  {"DEFFSQRT", Statistic::DEFFSQRT}}};
  // In the order of this list, so that the result is the same however the command orders its words.
  for (const auto& [keyword, statistic] : kStatistics) {
    if (statistics.getParamObj(keyword) != nullptr) context.specs.AddStatistic(statistic);
  }
  return true;
}

bool ReadTest(ParseContext& context, const SubComObj& test) {
  constexpr std::array<WordMeaning<TestType>, 4> kTypes = {
      {{"F", TestType::WaldF},
       {"ADJF", TestType::AdjustedWaldF},
       {"CHISQUARE", TestType::WaldChiSquare},
       {"ADJCHISQUARE", TestType::AdjustedWaldChiSquare}}};
  constexpr std::array<WordMeaning<PAdjustMethod>, 5> kMethods = {
      {{"LSD", PAdjustMethod::LeastSignificanceDifference},
       {"BONFERRONI", PAdjustMethod::Bonferroni},
       {"SEQBONFERRONI", PAdjustMethod::SequentialBonferroni},
       {"SIDAK", PAdjustMethod::Sidak},
       {"SEQSIDAK", PAdjustMethod::SequentialSidak}}};
  context.specs.SetTestSubcommandUsed(true);
  TestType type = TestType::WaldF;
  if (!ReadWord(context, test, "TYPE", kTypes, type)) return false;
  context.specs.SetTestType(type);
  PAdjustMethod method = PAdjustMethod::LeastSignificanceDifference;
  if (!ReadWord(context, test, "PADJUST", kMethods, method)) return false;
  context.specs.SetAdjustment(method);
  return true;
}

bool ReadDomain(ParseContext& context, const SubComObj& domain) {
  TavoParseMessages& messages = context.messages;
  const ParamObj& variable = *domain.getParamObj("VARIABLE");
  const std::vector<TokenInfoObj>& tokens = variable.getTokenList();
  const TokenInfoObj& name = tokens.front();
  messages.SetParameter(variable.name);
  if (!name.IsVarName()) return messages.At(name).InvalidVariableName(name.getString());
  const int index = context.FindVariable(name.getVarName(), name.position);
  if (index < 0) return false;
  // Known before the plan is checked, whose weight and sizes must not be this variable.
  context.designAndDomainVariables.insert(name.getUpperVarName());
  if (context.IsCommandVariable(name.getVarName())) {
    return messages.At(name).CommandVariableNotAllowed(name.getVarName());
  }
  constexpr std::size_t kLength = 4;  // name, parenthesis, value, parenthesis
  const TokenInfoObj* token = TokenCursor(tokens).ValueInParentheses(1);
  if (token == nullptr || tokens.size() != kLength) return messages.At(name).WrongValueType(variable.name);
  messages.SetParameter({});
  std::optional<CategoryValue> value = ReadValueToken(context, index, *token);
  if (!value) return false;
  context.specs.SetDomain(index, std::move(*value));
  return true;
}

bool ReadMissing(ParseContext& context, const SubComObj& missing) {
  constexpr std::array<WordMeaning<bool>, 2> kExclude = {{{"EXCLUDE", true}, {"INCLUDE", false}}};
  bool exclude = true;
  if (!ReadWord(context, missing, "CLASSMISSING", kExclude, exclude)) return false;
  context.specs.SetExcludeMissing(exclude);
  return true;
}

bool ReadPrint(ParseContext& context, const SubComObj& print) {
  constexpr std::array<WordMeaning<PrintOption>, 9> kOptions = {{{"SAMPLEINFO", PrintOption::SAMPLEINFO},
                                                                 {"VARIABLEINFO", PrintOption::VARIABLEINFO},
                                                                 {"SUMMARY", PrintOption::SUMMARY},
                                                                 {"GEF", PrintOption::GEF},
                                                                 {"LMATRIX", PrintOption::LMATRIX},
                                                                 {"COVB", PrintOption::COVB},
                                                                 {"CORB", PrintOption::CORB},
                                                                 {"CLASSTABLE", PrintOption::CLASSTABLE},
                                                                 {"NONE", PrintOption::NONE}}};
  for (const auto& [keyword, option] : kOptions) {
    if (print.getParamObj(keyword) != nullptr) context.specs.AddPrintOption(option);
  }
  const ParamObj* history = print.getParamObj("HISTORY");
  if (history == nullptr) return true;
  double step = 1;
  if (!history->isLeadingToken()) history->getNumberValue(step);
  if (!host::IsValidInteger(step) || step < 1) {
    return context.messages.At(ValuePosition(*history)).InvalidInteger(history->name);
  }
  context.specs.SetHistoryStep(static_cast<int>(step));
  return true;
}

}  // namespace tavo
