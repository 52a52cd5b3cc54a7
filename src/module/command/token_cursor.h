// A place in a list of tokens.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/command.h"

namespace tavo {

/// Moves over tokens, which are lent. Past the end every question is answered as for an empty token.
class TokenCursor {
 public:
  explicit TokenCursor(const std::vector<host::TokenInfoObj>& tokens) : fTokens(tokens) {}

  bool AtEnd() const { return fIndex >= fTokens.size(); }
  void Step() { ++fIndex; }
  const host::TokenInfoObj& Token() const { return AtEnd() ? fEnd : fTokens[fIndex]; }
  host::OperatorCode Operator() const { return Token().getOperatorCode(); }
  bool IsAt(host::OperatorCode code) const { return Operator() == code; }
  const std::string& Text() const { return Token().getString(); }
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
