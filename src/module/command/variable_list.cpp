// The list of variables that opens the command: the dependent variable, its reference, factors and
// covariates.
#include <utility>

#include "module/command/model_reader.h"
#include "module/command/token_cursor.h"

namespace tavo {

namespace {

using host::OperatorCode;
using host::SourcePosition;
using host::TokenInfoObj;

bool OpensList(OperatorCode code) {
  return code == OperatorCode::kBy || code == OperatorCode::kWith;
}

/// The factors or the covariates while they are read.
struct PredictorList {
  const char* keyword;
  bool isNumericOnly;
  std::vector<int>& variables;
  std::vector<std::string>& names;
  std::map<std::string, int>& index;
};

class VariableListReader {
 public:
  VariableListReader(ParseContext& context, const std::vector<TokenInfoObj>& tokens)
      : fContext(context), fMessages(context.messages), fCursor(tokens) {}

  bool Read();

 private:
  bool ReadDependent();
  bool ReadReference(int dependent, const std::string& name);
  bool ReadPredictors();
  bool ReadList(PredictorList list);
  bool ReadEntry(PredictorList& list, bool& isAfterRange);
  bool ReadTo(bool isAfterRange);
  bool CheckNameFollows(const char* keyword, const SourcePosition& keywordPosition);
  bool AddRange(PredictorList& list, int last, const TokenInfoObj& to, const SourcePosition& position);
  /// Enters a name; gives its dictionary index. False after a message.
  bool Enter(PredictorList& list, const std::string& name, const SourcePosition& position, int& index);

  ParseContext& fContext;
  TavoParseMessages& fMessages;
  TokenCursor fCursor;
  bool fbBySeen = false;
  bool fbWithSeen = false;
};

bool VariableListReader::Read() {
  if (!ReadDependent() || !ReadPredictors()) return false;
  CommandPredictors& predictors = fContext.predictors;
  predictors.all = predictors.factors;
  predictors.all.insert(predictors.all.end(), predictors.covariates.begin(), predictors.covariates.end());
  predictors.names = predictors.factorNames;
  predictors.names.insert(predictors.names.end(), predictors.covariateNames.begin(),
                          predictors.covariateNames.end());
  return true;
}

bool VariableListReader::ReadDependent() {
  const TokenInfoObj& token = fCursor.Token();
  if (!token.IsVarName()) return fMessages.At(token).InvalidVariableName(token.getString());
  const int dependent = fContext.FindVariable(token.getVarName(), token.position);
  if (dependent < 0) return false;
  fCursor.Step();
  if (fCursor.IsAt(OperatorCode::kLeftParenthesis)) {
    if (!ReadReference(dependent, token.getVarName())) return false;
  } else {
    fContext.specs.SetDependent(dependent, true, {});
  }
  fContext.commandVariables.insert(token.getUpperVarName());
  return true;
}

/// HIGH and LOW are words; the same texts in quotes are values.
bool VariableListReader::ReadReference(int dependent, const std::string& name) {
  constexpr std::size_t kLength = 3;  // parenthesis, value, parenthesis
  const TokenInfoObj* value = fCursor.ValueInParentheses(0);
  if (value == nullptr) return fMessages.At(fCursor.Position()).MalformedValue(name);
  const bool isHigh = value->IsString() && value->getUpperString() == "HIGH";
  const bool isLow = value->IsString() && value->getUpperString() == "LOW";
  CategoryValue reference;
  if (!isHigh && !isLow) {
    std::optional<CategoryValue> read = ReadValueToken(fContext, dependent, *value);
    if (!read) return false;
    reference = std::move(*read);
  }
  fContext.specs.SetDependent(dependent, isHigh, std::move(reference));
  fCursor.Step(kLength);
  return true;
}

// Either list may come first, each once.
bool VariableListReader::ReadPredictors() {
  CommandPredictors& predictors = fContext.predictors;
  while (!fCursor.AtEnd()) {
    const TokenInfoObj& keyword = fCursor.Token();
    const bool isBy = fCursor.IsAt(OperatorCode::kBy);
    if (!OpensList(fCursor.Operator())) return fMessages.At(keyword).InvalidSyntax(keyword.getString());
    bool& seen = isBy ? fbBySeen : fbWithSeen;
    if (std::exchange(seen, true)) return fMessages.At(keyword).KeywordRepeated(isBy ? "BY" : "WITH");
    const bool isRead =
        isBy ? ReadList({"BY", false, predictors.factors, predictors.factorNames, predictors.factorIndex})
             : ReadList({"WITH", true, predictors.covariates, predictors.covariateNames,
                         predictors.covariateIndex});
    if (!isRead) return false;
  }
  return true;
}

bool VariableListReader::CheckNameFollows(const char* keyword, const SourcePosition& keywordPosition) {
  if (!fCursor.AtEnd() && !fCursor.IsAt(OperatorCode::kTo) && !OpensList(fCursor.Operator())) return true;
  return fMessages.At(keywordPosition).NameExpectedAfterKeyword(keyword);
}

bool VariableListReader::ReadList(PredictorList list) {
  const SourcePosition position = fCursor.Position();
  fCursor.Step();
  if (!CheckNameFollows(list.keyword, position)) return false;
  bool isAfterRange = false;
  while (!fCursor.AtEnd() && !OpensList(fCursor.Operator())) {
    if (!ReadEntry(list, isAfterRange)) return false;
  }
  return true;
}

/// A name, or TO and the last name of a range whose first one stands before it.
bool VariableListReader::ReadEntry(PredictorList& list, bool& isAfterRange) {
  const TokenInfoObj& first = fCursor.Token();
  // A range needs a name on both sides that belongs to it alone: "a TO b TO c" could mean two things.
  const bool isRange = fCursor.IsAt(OperatorCode::kTo);
  if (isRange && !ReadTo(isAfterRange)) return false;
  isAfterRange = isRange;

  const TokenInfoObj& token = fCursor.Token();
  if (!token.IsVarName()) return fMessages.At(token).InvalidVariableName(token.getString());
  int index = -1;
  if (!Enter(list, token.getVarName(), token.position, index)) return false;
  if (isRange && !AddRange(list, index, first, token.position)) return false;
  list.variables.push_back(index);
  list.names.push_back(token.getVarName());
  fCursor.Step();
  return true;
}

bool VariableListReader::ReadTo(bool isAfterRange) {
  const SourcePosition position = fCursor.Position();
  fCursor.Step();
  if (!CheckNameFollows("TO", position)) return false;
  return !isAfterRange || fMessages.At(position).ImproperTo();
}

// A range runs through the dictionary, not through an alphabet. Its ends are in the list already or about to
// be; a covariate in between that isn't numeric is as much of an error as one that is named.
bool VariableListReader::AddRange(PredictorList& list, int last, const TokenInfoObj& to,
                                  const SourcePosition& position) {
  const int first = list.variables.back();
  if (first > last) return fMessages.At(to).ImproperTo();
  for (int i = first + 1; i < last; ++i) {
    const std::string& name = fContext.data.GetVariable(static_cast<unsigned>(i))->GetName();
    int index = -1;
    if (!Enter(list, name, position, index)) return false;
    list.variables.push_back(index);
    list.names.push_back(name);
  }
  return true;
}

bool VariableListReader::Enter(PredictorList& list, const std::string& name, const SourcePosition& position,
                               int& index) {
  // One role a variable: the dependent one stands in the set as well.
  const std::string upper = host::GetUpperVarName(name);
  if (!fContext.commandVariables.insert(upper).second) return fMessages.At(position).VariableRepeated(name);
  index = fContext.FindVariable(name, position);
  if (index < 0) return false;
  if (list.isNumericOnly && !fContext.IsNumeric(index))
    return fMessages.At(position).VariableNotNumeric(name);
  list.index.emplace(upper, index);
  return true;
}

}  // namespace

bool ReadVariableList(ParseContext& context, const std::vector<TokenInfoObj>& tokens) {
  return VariableListReader(context, tokens).Read();
}

}  // namespace tavo
