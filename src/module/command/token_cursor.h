// A place in a list of tokens.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/command.h"

namespace tavo {

/// True for a token that may stand as a value in parentheses: a word, a number or a literal.
inline bool IsValueToken(const host::TokenInfoObj& token) {
  return token.IsString() || token.IsNumber() || token.IsLiteral();
}

/// True for tokens that open with "[" and end with "]".
inline bool AreInBrackets(const std::vector<host::TokenInfoObj>& tokens) {
  return tokens.size() >= 2 && tokens.front().getOperatorCode() == host::OperatorCode::kLeftBracket &&
         tokens.back().getOperatorCode() == host::OperatorCode::kRightBracket;
}

/// Moves over tokens, which are not owned. Past the end every question is answered as for an empty token.
class TokenCursor {
 public:
  explicit TokenCursor(const std::vector<host::TokenInfoObj>& tokens) : fTokens(tokens) {}

  bool AtEnd() const { return fIndex >= fTokens.size(); }
  /// On the last token or past it.
  bool AtLast() const { return fIndex + 1 >= fTokens.size(); }
  void Step(std::size_t count = 1) { fIndex += count; }
  const host::TokenInfoObj& Token() const { return Ahead(0); }
  /// The token so many places ahead.
  const host::TokenInfoObj& Ahead(std::size_t count) const {
    return fIndex + count < fTokens.size() ? fTokens[fIndex + count] : fEnd;
  }
  /// The value of a "(value)" that stands so many places ahead; null when something else stands there.
  const host::TokenInfoObj* ValueInParentheses(std::size_t ahead) const {
    const bool isThere = Ahead(ahead).getOperatorCode() == host::OperatorCode::kLeftParenthesis &&
                         IsValueToken(Ahead(ahead + 1)) &&
                         Ahead(ahead + 2).getOperatorCode() == host::OperatorCode::kRightParenthesis;
    return isThere ? &Ahead(ahead + 1) : nullptr;
  }
  host::OperatorCode Operator() const { return Token().getOperatorCode(); }
  bool IsAt(host::OperatorCode code) const { return Operator() == code; }
  const std::string& Text() const { return Token().getString(); }
  std::size_t Index() const { return fIndex; }
  /// The tokens from one on up to the cursor, as one text; words among them stand apart.
  std::string TextFrom(std::size_t index) const {
    std::string text;
    for (; index < fIndex && index < fTokens.size(); ++index) {
      const bool isBy = fTokens[index].getOperatorCode() == host::OperatorCode::kBy;
      text += isBy ? " " + fTokens[index].getString() + " " : fTokens[index].getString();
    }
    return text;
  }
  /// The text of the list's last token.
  const std::string& LastText() const { return (fTokens.empty() ? fEnd : fTokens.back()).getString(); }
  /// Of the token; past the end that of the last token.
  host::SourcePosition Position() const {
    if (!AtEnd() || fTokens.empty()) return Token().position;
    return fTokens.back().position;
  }

 private:
  const std::vector<host::TokenInfoObj>& fTokens;
  std::size_t fIndex = 0;
  host::TokenInfoObj fEnd;
};

}  // namespace tavo
