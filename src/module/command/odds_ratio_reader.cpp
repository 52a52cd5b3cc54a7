// ODDSRATIOS: one family of odds ratios.
#include <set>
#include <utility>

#include "component/numerics/missing_value.h"
#include "module/command/hypothesis_readers.h"
#include "module/command/token_cursor.h"

namespace tavo {

namespace {

using host::OperatorCode;
using host::ParamObj;
using host::TokenInfoObj;

// What a request holds until the first pass has met the categories: their values wait in the items, and these
// numbers only keep the places of the lists.
constexpr int kCategoryIsCodedLater = 1;
// Without amounts, the odds ratio is that of one unit of the covariate.
constexpr double kPlainChange = 1;
constexpr double kValueIsCodedLater = 1;

class OddsRatioReader {
 public:
  OddsRatioReader(ParseContext& context, OrvOddsRatioSpec& request, OddsRatioItems& items)
      : fContext(context), fMessages(context.messages), fRequest(request), fItems(items) {}

  bool Read(const host::SubComObj& oddsRatios);

 private:
  using ItemReader = bool (OddsRatioReader::*)(TokenCursor&);

  /// The items of a keyword between its brackets; true when the keyword is absent.
  bool ReadItems(const ParamObj* param, ItemReader read);
  bool ReadFactor(TokenCursor& cursor);
  bool ReadCovariate(TokenCursor& cursor);
  bool ReadControl(TokenCursor& cursor);
  /// False after a message when the token can't name a variable.
  bool CheckName(const TokenInfoObj& name);
  /// The value in parentheses behind the name at the cursor, which moves past it; null after a message.
  const TokenInfoObj* ReadValue(TokenCursor& cursor);
  bool SetCategory(const TokenInfoObj& value, FactorSpec& item);
  /// The numbers in parentheses behind a covariate's name, with the cursor on the left one.
  bool ReadChanges(TokenCursor& cursor, const TokenInfoObj& name, std::vector<double>& changes);
  /// A number, or missing for the mean. False after a message.
  bool SetControlValue(const TokenInfoObj& name, const TokenInfoObj& value, double& control);

  ParseContext& fContext;
  TavoParseMessages& fMessages;
  OrvOddsRatioSpec& fRequest;
  OddsRatioItems& fItems;
  std::set<std::string> fFactorsNamed, fCovariatesNamed, fControlsNamed;  // upper case
};

/// The variable of a name in one of the command's lists, or -1.
int VariableOf(const std::map<std::string, int>& list, const TokenInfoObj& name) {
  const auto found = list.find(name.getUpperVarName());
  return found == list.end() ? -1 : found->second;
}

bool OddsRatioReader::Read(const host::SubComObj& oddsRatios) {
  const ParamObj* factor = oddsRatios.getParamObj("FACTOR");
  const ParamObj* covariate = oddsRatios.getParamObj("COVARIATE");
  if (factor != nullptr && covariate != nullptr) {
    return fMessages.At(covariate->position).NotTogether("FACTOR", "COVARIATE");
  }
  if (factor == nullptr && covariate == nullptr) {
    return fMessages.AtSubcommand().EitherRequired("FACTOR", "COVARIATE");
  }
  return ReadItems(factor, &OddsRatioReader::ReadFactor) &&
         ReadItems(covariate, &OddsRatioReader::ReadCovariate) &&
         ReadItems(oddsRatios.getParamObj("CONTROL"), &OddsRatioReader::ReadControl);
}

bool OddsRatioReader::ReadItems(const ParamObj* param, ItemReader read) {
  if (param == nullptr) return true;
  const std::vector<TokenInfoObj>& tokens = param->getTokenList();
  if (!AreInBrackets(tokens)) return fMessages.At(param->position).BracketsRequired(param->name);
  // Brackets around nothing ask for nothing.
  if (tokens.size() < 3) return fMessages.At(tokens.front()).WrongValueType(param->name);
  TokenCursor cursor(tokens);
  cursor.Step();
  while (!cursor.AtLast()) {
    // Anew for each item: reading the amounts of a covariate narrows the place down to it.
    fMessages.SetParameter(param->name);
    if (!(this->*read)(cursor)) return false;
  }
  return true;
}

bool OddsRatioReader::CheckName(const TokenInfoObj& name) {
  return name.IsVarName() || fMessages.At(name).InvalidVariableName(name.getString());
}

bool OddsRatioReader::ReadFactor(TokenCursor& cursor) {
  const TokenInfoObj& name = cursor.Token();
  if (!CheckName(name)) return false;
  FactorSpec item;
  item.variable = VariableOf(fContext.predictors.factorIndex, name);
  if (item.variable < 0) {
    return fMessages.At(name).Among(fContext.predictors.factorNames).NotAFactor(name.getVarName());
  }
  if (!fFactorsNamed.insert(name.getUpperVarName()).second) {
    return fMessages.At(name).RepeatedFactor(name.getVarName());
  }
  // A factor alone is compared with its highest category, as the dependent variable is.
  if (cursor.Ahead(1).getOperatorCode() == OperatorCode::kLeftParenthesis) {
    const TokenInfoObj* value = ReadValue(cursor);
    if (value == nullptr || !SetCategory(*value, item)) return false;
  } else {
    cursor.Step();
  }
  fRequest.AddFactor(item.variable, kCategoryIsCodedLater);
  fItems.factors.push_back(std::move(item));
  return true;
}

const TokenInfoObj* OddsRatioReader::ReadValue(TokenCursor& cursor) {
  constexpr std::size_t kLength = 4;  // name, parenthesis, value, parenthesis
  const TokenInfoObj& name = cursor.Token();
  const TokenInfoObj* value = cursor.ValueInParentheses(1);
  if (value == nullptr) {
    fMessages.At(name).MalformedValue(name.getVarName());
  } else {
    cursor.Step(kLength);
  }
  return value;
}

/// HIGH and LOW are words; the same texts in quotes are values.
bool OddsRatioReader::SetCategory(const TokenInfoObj& value, FactorSpec& item) {
  const std::string word = value.IsString() ? value.getUpperString() : std::string();
  item.high = word == "HIGH";
  if (item.high || word == "LOW") return true;
  std::optional<CategoryValue> read = ReadValueToken(fContext, item.variable, value);
  if (!read) return false;
  item.value = std::move(*read);
  return true;
}

bool OddsRatioReader::ReadCovariate(TokenCursor& cursor) {
  const TokenInfoObj& name = cursor.Token();
  if (!CheckName(name)) return false;
  const int variable = VariableOf(fContext.predictors.covariateIndex, name);
  if (variable < 0) {
    return fMessages.At(name).Among(fContext.predictors.covariateNames).NotACovariate(name.getVarName());
  }
  if (!fCovariatesNamed.insert(name.getUpperVarName()).second) {
    return fMessages.At(name).RepeatedCovariate(name.getVarName());
  }
  cursor.Step();
  std::vector<double> changes;
  if (!cursor.IsAt(OperatorCode::kLeftParenthesis)) {
    changes.push_back(kPlainChange);
  } else if (!ReadChanges(cursor, name, changes)) {
    return false;
  }
  fRequest.AddCovariate(variable, std::move(changes));
  return true;
}

bool OddsRatioReader::ReadChanges(TokenCursor& cursor, const TokenInfoObj& name,
                                  std::vector<double>& changes) {
  const std::string parameter = "COVARIATE " + name.getVarName();
  fMessages.SetParameter(parameter);
  for (cursor.Step();; cursor.Step()) {
    const TokenInfoObj& token = cursor.Token();
    if (cursor.AtLast()) return fMessages.At(token).InvalidSyntax(token.getString());
    if (cursor.IsAt(OperatorCode::kRightParenthesis) && !changes.empty()) break;
    if (!token.IsNumber()) return fMessages.At(token).NotANumber(token.getString());
    // An odds ratio over no change is 1, whatever the model.
    if (token.getNumeric() == 0)
      return fMessages.At(token).ValueNotAllowed(parameter, "0", "any other number");
    changes.push_back(token.getNumeric());
  }
  cursor.Step();
  return true;
}

// A variable may be compared and held fixed in one request, so its name is only looked for among the
// controls. A control says where it is held; unlike a factor's reference, that has no default.
bool OddsRatioReader::ReadControl(TokenCursor& cursor) {
  const TokenInfoObj& name = cursor.Token();
  if (!CheckName(name)) return false;
  const int factor = VariableOf(fContext.predictors.factorIndex, name);
  const int covariate = VariableOf(fContext.predictors.covariateIndex, name);
  if (factor < 0 && covariate < 0) {
    return fMessages.At(name).Among(fContext.predictors.names).NotAPredictor(name.getVarName());
  }
  if (!fControlsNamed.insert(name.getUpperVarName()).second) {
    fMessages.At(name);
    return factor >= 0 ? fMessages.RepeatedFactor(name.getVarName())
                       : fMessages.RepeatedCovariate(name.getVarName());
  }
  const TokenInfoObj* value = ReadValue(cursor);
  if (value == nullptr) return false;
  ControlSpec item;
  double control = kValueIsCodedLater;
  if (factor >= 0) {
    item.variable = factor;
    if (!SetCategory(*value, item)) return false;
  } else if (!SetControlValue(name, *value, control)) {
    return false;
  }
  fRequest.AddControl(factor >= 0 ? factor : covariate, control);
  fItems.controls.push_back(std::move(item));
  return true;
}

bool OddsRatioReader::SetControlValue(const TokenInfoObj& name, const TokenInfoObj& value, double& control) {
  const bool isMean = value.IsString() && value.getUpperString() == "MEAN";
  if (!isMean && !value.IsNumber()) return fMessages.At(name).MalformedValue(name.getVarName());
  control = isMean ? MCCommonMath::MCMV::gMissingValue : value.getNumeric();
  return true;
}

}  // namespace

bool ReadOddsRatios(ParseContext& context, const host::SubComObj& oddsRatios, OrvOddsRatioSpec& request,
                    OddsRatioItems& items) {
  return OddsRatioReader(context, request, items).Read(oddsRatios);
}

}  // namespace tavo
