// CRITERIA: the numbers that steer the fit.
#include "module/command/option_readers.h"

namespace tavo {

namespace {

using host::OperatorCode;
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
  bool ReadSeparation();
  bool ReadConfidenceLevel();
  bool ReadDegreesOfFreedom();
  bool ReadLogLikConvergence();
  bool ReadMaximumIterations();
  bool ReadMaximumStepHalving();
  bool ReadParamConvergence();
  bool ReadSingularity();

  /// Reads a whole number of at least `minimum` and sets it; true when the keyword is absent.
  template <class Setter>
  bool ReadInteger(const char* name, int minimum, Setter set);
  /// Reads a number for which `isLegal` holds and sets it; true when the keyword is absent.
  template <class Test, class Setter>
  bool ReadNumber(const char* name, Test isLegal, Setter set);
  bool ReadConvergence(const ParamObj& param, Convergence& convergence);

  TavoValidSpecs& fSpecs;
  TavoParseMessages& fMessages;
  const SubComObj& fCriteria;
};

// A fault among the first four hides the rest of the four, but never MXITER and MXSTEP.
bool CriteriaReader::Read() {
  bool isGood =
      ReadSeparation() && ReadConfidenceLevel() && ReadDegreesOfFreedom() && ReadLogLikConvergence();
  isGood = ReadMaximumIterations() && isGood;
  return ReadMaximumStepHalving() && isGood && ReadParamConvergence() && ReadSingularity();
}

bool CriteriaReader::ReadSeparation() {
  return ReadInteger("CHKSEP", 0, [&](int value) { fSpecs.SetCheckSeparation(value); });
}

bool CriteriaReader::ReadConfidenceLevel() {
  return ReadNumber(
      "CILEVEL", [](double level) { return level >= 0 && level < 100; },
      [&](double level) { fSpecs.SetConfidenceLevel(level); });
}

bool CriteriaReader::ReadDegreesOfFreedom() {
  return ReadNumber(
      "DF", [](double df) { return df > 0; }, [&](double df) { fSpecs.SetDegreesOfFreedom(df); });
}

bool CriteriaReader::ReadLogLikConvergence() {
  const ParamObj* param = fCriteria.getParamObj("LCONVERGE");
  if (param == nullptr) return true;
  Convergence convergence;
  if (!ReadConvergence(*param, convergence)) return false;
  fSpecs.SetLogLikConvergence(convergence.value, convergence.isRelative);
  return true;
}

bool CriteriaReader::ReadMaximumIterations() {
  return ReadInteger("MXITER", 0, [&](int value) { fSpecs.SetMaximumIterations(value); });
}

bool CriteriaReader::ReadMaximumStepHalving() {
  return ReadInteger("MXSTEP", 1, [&](int value) { fSpecs.SetMaximumStepHalving(value); });
}

bool CriteriaReader::ReadParamConvergence() {
  const ParamObj* param = fCriteria.getParamObj("PCONVERGE");
  if (param == nullptr) return true;
  Convergence convergence;
  if (!ReadConvergence(*param, convergence)) return false;
  fSpecs.SetParamConvergence(convergence.value, convergence.isRelative);
  return true;
}

bool CriteriaReader::ReadSingularity() {
  return ReadNumber(
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

bool CriteriaReader::ReadConvergence(const ParamObj& param, Convergence& convergence) {
  const std::vector<TokenInfoObj>& tokens = param.getTokenList();
  const std::string& name = param.getParamName();
  fMessages.SetParameter(name);
  const bool hasBrackets = tokens.size() >= 2 &&
                           tokens.front().getOperatorCode() == OperatorCode::kLeftBracket &&
                           tokens.back().getOperatorCode() == OperatorCode::kRightBracket;
  if (!hasBrackets) return fMessages.At(param.position).BracketsRequired(name);
  const TokenInfoObj& number = tokens[1];
  if (tokens.size() < 3 || !number.IsNumber() || number.getNumeric() < 0) {
    return fMessages.At(number).InvalidNumber(name);
  }
  convergence.value = number.getNumeric();
  if (tokens.size() == 3) return true;

  const TokenInfoObj& change = tokens[2];
  const std::string word = change.IsString() ? change.getUpperString() : std::string();
  if (word != "RELATIVE" && word != "ABSOLUTE") {
    return fMessages.At(change).Among({"RELATIVE", "ABSOLUTE"}).InvalidSyntax(change.getString());
  }
  convergence.isRelative = word == "RELATIVE";
  return tokens.size() == 4 || fMessages.At(tokens[3]).InvalidSyntax(tokens[3].getString());
}

}  // namespace

bool ReadCriteria(ParseContext& context, const SubComObj& criteria) {
  return CriteriaReader(context, criteria).Read();
}

}  // namespace tavo
