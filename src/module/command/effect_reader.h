// Reading one effect: A, A*B, A BY B, A(B), A(B(C)), X*X, A*X, X(A).
#pragma once

#include <set>
#include <string>

#include "component/input/model_effect.h"
#include "module/command/parse_context.h"
#include "module/command/token_cursor.h"

namespace tavo {

/// Reads effects from any list of tokens, of MODEL and of the rows of a contrast matrix alike.
class EffectReader {
 public:
  /// Nothing is owned; the predictors must be complete.
  EffectReader(const CommandPredictors& predictors, TavoParseMessages& messages)
      : fPredictors(predictors), fMessages(messages) {}

  /// Reads from the cursor to the first token that doesn't continue the effect. False after a message.
  bool Read(TokenCursor& cursor, OrvModelEffect& effect);

 private:
  bool ReadOpening(TokenCursor& cursor, OrvModelEffect& effect);
  bool ReadTerm(TokenCursor& cursor, OrvModelEffect& effect, bool isNested, bool isInParentheses);
  bool CloseParentheses(TokenCursor& cursor, int open);
  bool SyntaxError(const TokenCursor& cursor);

  const CommandPredictors& fPredictors;
  TavoParseMessages& fMessages;
  std::set<std::string> fFactorsInEffect;  // upper case names
};

}  // namespace tavo
