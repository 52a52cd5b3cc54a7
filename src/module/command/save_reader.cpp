// SAVE: names of the variables that are added to the active data.
#include <string>
#include <utility>

#include "module/command/option_readers.h"

namespace tavo {

namespace {

using host::OperatorCode;
using host::ParamObj;
using host::TokenInfoObj;

constexpr const char* kDefaultRoot = "PredictedProbability";
constexpr const char* kDefaultName = "PredictedValue";
constexpr int kDefaultCount = 25;

/// root, or root : count, or : count.
bool ReadPredProb(ParseContext& context, const ParamObj& predProb) {
  const std::vector<TokenInfoObj>& tokens = predProb.getTokenList();
  TavoParseMessages& messages = context.messages;
  std::string root = kDefaultRoot;
  double count = kDefaultCount;
  messages.SetParameter(predProb.name);
  const bool hasRoot = !tokens.empty() && tokens.front().IsVarName();
  if (hasRoot) root = tokens.front().getVarName();
  if (tokens.size() == 1 && !hasRoot) {
    return messages.At(tokens.front()).InvalidVariableName(tokens.front().getString());
  }
  if (tokens.size() > 1) {
    const std::size_t separator = hasRoot ? 1 : 0;
    const bool isComplete =
        tokens.size() == separator + 2 && tokens[separator].getOperatorCode() == OperatorCode::kRootSeparator;
    if (!isComplete) return messages.At(tokens.front()).WrongValueType(predProb.name);
    const TokenInfoObj& number = tokens.back();
    count = number.getNumeric();
    if (!number.IsNumber() || !host::IsValidInteger(count) || count < 1) {
      return messages.At(number).InvalidInteger(predProb.name + " " + root);
    }
  }
  context.specs.SetPredictedProbabilities(std::move(root), static_cast<int>(count));
  return true;
}

/// The default name, with a number behind it while a variable of that name exists.
std::string NewPredictedValueName(const host::VORN_DataSource& data) {
  std::string name = kDefaultName;
  for (long i = 1; data.FindVarIndex(name) >= 0; ++i)
    name = std::string(kDefaultName) + "_" + host::IntegerToString(i);
  return name;
}

bool ReadPredVal(ParseContext& context, const ParamObj& predVal) {
  constexpr int kNewVariable = -1;
  std::string name;
  // A name that the user chose must be free; one that was made up here gives way.
  if (predVal.isLeadingToken()) {
    name = NewPredictedValueName(context.data);
  } else {
    predVal.getVarName(name);
    if (context.data.FindVarIndex(name) >= 0) {
      return context.messages.At(ValuePosition(predVal)).OutputVariableExists(name);
    }
  }
  context.specs.SetPredictedValue(std::move(name), kNewVariable);
  return true;
}

}  // namespace

bool ReadSave(ParseContext& context, const host::SubComObj& save) {
  const ParamObj* predProb = save.getParamObj("PREDPROB");
  const ParamObj* predVal = save.getParamObj("PREDVAL");
  return (predProb == nullptr || ReadPredProb(context, *predProb)) &&
         (predVal == nullptr || ReadPredVal(context, *predVal));
}

}  // namespace tavo
