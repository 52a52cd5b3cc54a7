// Brackets and values in parentheses among the tokens of a keyword.
#include "module/command/token_cursor.h"

#include <gtest/gtest.h>

namespace tavo {
namespace {

using host::OperatorCode;
using host::TokenInfoObj;
using host::TokenKind;
using Tokens = std::vector<TokenInfoObj>;

TokenInfoObj Operator(OperatorCode code) {
  TokenInfoObj token;
  token.kind = TokenKind::kOperator;
  token.code = code;
  return token;
}

TokenInfoObj Text(TokenKind kind, const char* text) {
  TokenInfoObj token;
  token.kind = kind;
  token.text = text;
  return token;
}

const TokenInfoObj kOpen = Operator(OperatorCode::kLeftParenthesis);
const TokenInfoObj kClose = Operator(OperatorCode::kRightParenthesis);
const TokenInfoObj kLeft = Operator(OperatorCode::kLeftBracket);
const TokenInfoObj kRight = Operator(OperatorCode::kRightBracket);
const TokenInfoObj kName = Text(TokenKind::kName, "a");

TEST(Brackets, StandAtBothEnds) {
  EXPECT_TRUE(AreInBrackets({kLeft, kRight}));
  EXPECT_TRUE(AreInBrackets({kLeft, kName, kRight}));
  for (const Tokens& tokens :
       {Tokens{}, Tokens{kLeft}, Tokens{kRight}, Tokens{kName, kRight}, Tokens{kLeft, kName}}) {
    EXPECT_FALSE(AreInBrackets(tokens)) << tokens.size();
  }
}

TEST(ValueInParentheses, IsAWordANumberOrALiteral) {
  for (const TokenKind kind : {TokenKind::kName, TokenKind::kWord, TokenKind::kNumber, TokenKind::kLiteral}) {
    const Tokens tokens = {kName, kOpen, Text(kind, "value"), kClose};
    const TokenInfoObj* value = TokenCursor(tokens).ValueInParentheses(1);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value, &tokens[2]);
  }
}

TEST(ValueInParentheses, IsNoneWhereSomethingElseStands) {
  for (const Tokens& tokens :
       {Tokens{kName}, Tokens{kName, kOpen}, Tokens{kName, kOpen, kName}, Tokens{kName, kOpen, kClose},
        Tokens{kName, kOpen, kOpen, kClose}, Tokens{kName, kOpen, kName, kName}, Tokens{kName, kName, kClose},
        Tokens{kName, kLeft, kName, kRight}}) {
    EXPECT_EQ(TokenCursor(tokens).ValueInParentheses(1), nullptr) << tokens.size();
  }
}

TEST(ValueInParentheses, IsCountedFromTheCursor) {
  const Tokens tokens = {kName, kOpen, kName, kClose};
  TokenCursor cursor(tokens);
  EXPECT_EQ(cursor.ValueInParentheses(0), nullptr);
  cursor.Step();
  EXPECT_EQ(cursor.ValueInParentheses(0), &tokens[2]);
}

}  // namespace
}  // namespace tavo
