#include "module/command/effect_reader.h"

namespace tavo {

namespace {

using host::OperatorCode;

// Effects follow one another without a separator: a name behind a name opens the next effect, and only an
// operator in between goes on with the same one.
bool ContinuesEffect(OperatorCode code) {
  return code == OperatorCode::kLeftParenthesis || code == OperatorCode::kBy || code == OperatorCode::kTimes;
}

}  // namespace

bool EffectReader::Read(TokenCursor& cursor, OrvModelEffect& effect) {
  fFactorsInEffect.clear();
  if (!ReadOpening(cursor, effect)) return false;
  int open = 0;
  for (cursor.Step(); ContinuesEffect(cursor.Operator()); cursor.Step()) {
    const bool isNested = cursor.IsAt(OperatorCode::kLeftParenthesis);
    if (isNested) {
      // "x(A)" is the product of x and A, written with the covariate first. It is not nesting, but the names
      // of its parameters are to be written in the same way.
      if (open == 0 && effect.FactorsInEffect() == 0) effect.MarkFactorAfterCovariates();
      ++open;
    }
    cursor.Step();
    if (!ReadTerm(cursor, effect, isNested, open > 0)) return false;
  }
  return CloseParentheses(cursor, open);
}

bool EffectReader::ReadOpening(TokenCursor& cursor, OrvModelEffect& effect) {
  const host::TokenInfoObj& token = cursor.Token();
  const std::string name = token.getUpperVarName();
  if (token.IsVarName()) {
    if (const auto factor = fPredictors.factorIndex.find(name); factor != fPredictors.factorIndex.end()) {
      effect.AddFactor(factor->second, false);
      fFactorsInEffect.insert(name);
      return true;
    }
    if (const auto covariate = fPredictors.covariateIndex.find(name);
        covariate != fPredictors.covariateIndex.end()) {
      effect.AddCovariate(covariate->second);
      return true;
    }
    fMessages.Among(fPredictors.names);
  }
  return fMessages.At(cursor.Position()).EffectOpening(cursor.Text());
}

/// A name behind an operator.
bool EffectReader::ReadTerm(TokenCursor& cursor, OrvModelEffect& effect, bool isNested,
                            bool isInParentheses) {
  const host::TokenInfoObj& token = cursor.Token();
  if (!token.IsVarName()) return SyntaxError(cursor);
  const std::string name = token.getUpperVarName();
  if (const auto covariate = fPredictors.covariateIndex.find(name);
      covariate != fPredictors.covariateIndex.end()) {
    // Levels can be nested in levels, not in values of a scale.
    if (isInParentheses) return fMessages.At(token).CovariateNested(token.getVarName());
    effect.AddCovariate(covariate->second);
    return true;
  }
  const auto factor = fPredictors.factorIndex.find(name);
  if (factor == fPredictors.factorIndex.end()) {
    fMessages.Among(fPredictors.names);
    return SyntaxError(cursor);
  }
  // A covariate may come again, as a power; a factor crossed with itself is the factor.
  if (!fFactorsInEffect.insert(name).second)
    return fMessages.At(token).RepeatedFactorInEffect(token.getVarName());
  effect.AddFactor(factor->second, isNested);
  return true;
}

// Nesting goes inwards only, A(B(C)), so all parentheses close at the end of the effect.
bool EffectReader::CloseParentheses(TokenCursor& cursor, int open) {
  int closed = 0;
  for (; cursor.IsAt(OperatorCode::kRightParenthesis); cursor.Step())
    ++closed;
  return closed == open || fMessages.At(cursor.Position()).UnbalancedParentheses();
}

bool EffectReader::SyntaxError(const TokenCursor& cursor) {
  return fMessages.At(cursor.Position()).EffectSyntax(cursor.Text());
}

}  // namespace tavo
