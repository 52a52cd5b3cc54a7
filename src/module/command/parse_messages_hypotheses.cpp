// Messages about custom tests and odds ratios.
#include "module/command/parse_messages.h"

namespace tavo {

// Numbers.

bool TavoParseMessages::NotANumber(const std::string& symbol) {
  return ErrorInParameter("Symbol ^1 in parameter ^2 is not a number, subcommand ^3 ...", symbol);
}

bool TavoParseMessages::NumberMissingAfter(const std::string& symbol) {
  return ErrorInParameter("No valid number after symbol ^1 in parameter ^2, subcommand ^3 ...", symbol);
}

bool TavoParseMessages::NoDenominator(const std::string& numerator) {
  return ErrorInParameter("No denominator for numerator ^1 in fraction for ^2, subcommand ^3 ...", numerator);
}

bool TavoParseMessages::DenominatorNotANumber(const std::string& symbol) {
  return ErrorInParameter("Denominator ^1 in fraction for ^2 is not a valid number, subcommand ^3 ...",
                          symbol);
}

bool TavoParseMessages::DenominatorNotPositive(const std::string& denominator) {
  return ErrorInParameter("Not positive denominator ^1 in fraction for ^2, subcommand ^3 ...", denominator);
}

// Rows.

bool TavoParseMessages::EmptyLabel() {
  return Error("Empty label in subcommand ^1 ...", {SubcommandName()});
}

bool TavoParseMessages::InvalidRowType(const std::string& symbol) {
  return ErrorInParameter("Invalid type of ^2 row ^1, subcommand ^3 ...", symbol);
}

bool TavoParseMessages::OtherRowTypeExpected(MatrixRowType expected, const std::string& symbol) {
  const char* key = "ALL was expected in ^2 row but ^1 was found, subcommand ^3 ...";
  if (expected == MatrixRowType::kValueEffectList) {
    key = "Intercept value was expected in ^2 row but ^1 was found, subcommand ^3 ...";
  } else if (expected == MatrixRowType::kEffectList) {
    key = "Model effect was expected in ^2 row but ^1 was found, subcommand ^3 ...";
  }
  return ErrorInParameter(key, symbol);
}

bool TavoParseMessages::InterceptNotInModel() {
  return Error("Intercept cannot be used in ^1, subcommand ^2 ...", {fParameter, SubcommandName()});
}

bool TavoParseMessages::OnlyInterceptInModel() {
  return Error("Only intercept can be used in ^1, subcommand ^2 ...", {fParameter, SubcommandName()});
}

bool TavoParseMessages::EffectNotInModel(const std::string& text) {
  return ErrorInParameter("Effect ^1 in ^2 not in MODEL, subcommand ^3 ...", text);
}

bool TavoParseMessages::DuplicateEffectInRow(const std::string& text) {
  return ErrorInParameter("Duplicate effect ^1 in ^2 row, subcommand ^3 ...", text);
}

bool TavoParseMessages::ValueCountsDifferForEffect() {
  return Error("Different number of values in ^1 for the same effect, subcommand ^2 ...",
               {fParameter, SubcommandName()});
}

bool TavoParseMessages::ValueCountsDiffer() {
  return Error("Different number of values in ^1, subcommand ^2 ...", {fParameter, SubcommandName()});
}

bool TavoParseMessages::ScalarRequiredWithout(const std::string& parameter, const std::string& other) {
  return Error("^1 should be scalar when ^2 is not used, subcommand ^3...",
               {parameter, other, SubcommandName()});
}

bool TavoParseMessages::RowCountsDiffer(const std::string& parameter, const std::string& other) {
  return Error("^1 and ^2 different number of rows, subcommand ^3 ...", {parameter, other, SubcommandName()});
}

bool TavoParseMessages::RequiredWithValue(const std::string& parameter, const std::string& other,
                                          const std::string& value) {
  return Error("Parameter ^1 is required when parameter ^2 takes value ^4, subcommand ^3...",
               {parameter, other, SubcommandName(), value});
}

// Variables of odds ratios.

bool TavoParseMessages::NotAFactor(const std::string& name) {
  return ErrorInParameter("^1 for ^2 is not a factor variable name, subcommand ^3 ...", name);
}

bool TavoParseMessages::NotACovariate(const std::string& name) {
  return ErrorInParameter("^1 for ^2 is not a covariate variable name, subcommand ^3 ...", name);
}

bool TavoParseMessages::NotAPredictor(const std::string& name) {
  return ErrorInParameter("^1 specified for ^2 is not a factor or covariate variable name, subcommand ^3 ...",
                          name);
}

bool TavoParseMessages::RepeatedFactor(const std::string& name) {
  return ErrorInParameter("Repeated factor ^1 in parameter ^2, subcommand ^3 ...", name);
}

bool TavoParseMessages::RepeatedCovariate(const std::string& name) {
  return ErrorInParameter("Repeated covariate ^1 in parameter ^2, subcommand ^3 ...", name);
}

}  // namespace tavo
