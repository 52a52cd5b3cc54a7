// CRITERIA: the numbers that steer the fit.
#include "module/command/option_readers.h"
#include "module/command/token_cursor.h"

namespace tavo {

namespace {

using host::ParamObj;
using host::SubComObj;
using host::TokenInfoObj;

/// A convergence criterion: [number] or [number RELATIVE] or [number ABSOLUTE].
struct Convergence {
  double value = 0;
  bool isRelative = true;
};

class CriteriaReader {
 public:
  CriteriaReader(ParseContext& context, const SubComObj& criteria)
      : fSpecs(context.specs), fMessages(context.messages), fCriteria(criteria) {}

  bool Read();

 private:
  /// Reads a whole number of at least `minimum` and sets it; true when the keyword is absent.
  template <class Setter>
  bool ReadInteger(const char* name, int minimum, Setter set);
  /// Reads a number for which `isLegal` holds and sets it; true when the keyword is absent.
  template <class Test, class Setter>
  bool ReadNumber(const char* name, Test isLegal, Setter set);
  /// Reads a convergence criterion and sets it; true when the keyword is absent.
  template <class Setter>
  bool ReadConvergence(const char* name, Setter set);
  bool ReadBrackets(const ParamObj& param, Convergence& convergence);

  TavoValidSpecs& fSpecs;
  TavoParseMessages& fMessages;
  const SubComObj& fCriteria;
};

// A fault among the first four hides the rest of the four, but never MXITER and MXSTEP: a user who got a
// limit wrong beside another number hears of both at once.
bool CriteriaReader::Read() {
  bool isGood =
      ReadInteger("CHKSEP", 0, [&](int iteration) { fSpecs.SetCheckSeparation(iteration); }) &&
      ReadNumber(
          "CILEVEL", [](double level) { return level >= 0 && level < 100; },
          [&](double level) { fSpecs.SetConfidenceLevel(level); }) &&
      ReadNumber(
          "DF", [](double df) { return df > 0; }, [&](double df) { fSpecs.SetDegreesOfFreedom(df); }) &&
      ReadConvergence("LCONVERGE", [&](const Convergence& criterion) {
        fSpecs.SetLogLikConvergence(criterion.value, criterion.isRelative);
      });
  isGood = ReadInteger("MXITER", 0, [&](int count) { fSpecs.SetMaximumIterations(count); }) && isGood;
  isGood = ReadInteger("MXSTEP", 1, [&](int count) { fSpecs.SetMaximumStepHalving(count); }) && isGood;
  return isGood &&
         ReadConvergence("PCONVERGE",
                         [&](const Convergence& criterion) {
                           fSpecs.SetParamConvergence(criterion.value, criterion.isRelative);
                         }) &&
         ReadNumber(
             "SINGULAR", [](double value) { return value > 0; },
             [&](double value) { fSpecs.SetSingularity(value); });
}

template <class Setter>
bool CriteriaReader::ReadInteger(const char* name, int minimum, Setter set) {
  const ParamObj* param = fCriteria.getParamObj(name);
  if (param == nullptr) return true;
  double value = 0;
  if (!param->getNumberValue(value) || !host::IsValidInteger(value) || value < minimum) {
    return fMessages.At(param->position).InvalidInteger(name);
  }
  set(static_cast<int>(value));
  return true;
}

template <class Test, class Setter>
bool CriteriaReader::ReadNumber(const char* name, Test isLegal, Setter set) {
  const ParamObj* param = fCriteria.getParamObj(name);
  if (param == nullptr) return true;
  double value = 0;
  if (!param->getNumberValue(value) || !isLegal(value)) {
    return fMessages.At(param->position).InvalidNumber(name);
  }
  set(value);
  return true;
}

template <class Setter>
bool CriteriaReader::ReadConvergence(const char* name, Setter set) {
  const ParamObj* param = fCriteria.getParamObj(name);
  if (param == nullptr) return true;
  Convergence convergence;
  if (!ReadBrackets(*param, convergence)) return false;
  set(convergence);
  return true;
}

bool CriteriaReader::ReadBrackets(const ParamObj& param, Convergence& convergence) {
  const std::vector<TokenInfoObj>& tokens = param.getTokenList();
  const std::string& name = param.getParamName();
  fMessages.SetParameter(name);
  if (!AreInBrackets(tokens)) return fMessages.At(param.position).BracketsRequired(name);
  const TokenInfoObj& number = tokens[1];
  if (tokens.size() < 3 || !number.IsNumber() || number.getNumeric() < 0) {
    return fMessages.At(number).InvalidNumber(name);
  }
  convergence.value = number.getNumeric();
  if (tokens.size() == 3) return true;

  const TokenInfoObj& change = tokens[2];
  const std::string word = change.IsString() ? change.getUpperString() : std::string();
  if (word != "RELATIVE" && word != "ABSOLUTE") {
    // A quoted word is no misspelt one: to suggest the same word would only puzzle.
    if (change.IsString()) fMessages.Among({"RELATIVE", "ABSOLUTE"});
    return fMessages.At(change).InvalidSyntax(change.getString());
  }
  convergence.isRelative = word == "RELATIVE";
  return tokens.size() == 4 || fMessages.At(tokens[3]).InvalidSyntax(tokens[3].getString());
}

}  // namespace

bool ReadCriteria(ParseContext& context, const SubComObj& criteria) {
  return CriteriaReader(context, criteria).Read();
}

}  // namespace tavo
