// Command files: splitting into commands, and their tokens.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/command.h"
#include "standalone/command/source_text.h"

namespace standalone {

/// A mistake in the text itself, such as an unclosed literal or comment.
struct TokenError {
  std::string key;  // a key of the message catalogue
  std::vector<std::string> arguments;
  host::SourcePosition position;
};

/// One command of a file: its name (first token, upper case) and all its tokens, the name included, without
/// the terminator.
struct CommandTokens {
  std::string name;
  std::vector<host::TokenInfoObj> tokens;
  std::vector<TokenError> errors;  // the command must not run when there is one
};

/// Splits a text into commands and tokens. A command ends with a period at the end of a line, a blank line,
/// or the end of the text; /* … */ is a comment.
std::vector<CommandTokens> ReadCommands(const SourceText& source);

/// A token sequence over a command, which is not owned.
std::unique_ptr<host::VORN_TokenSequence> MakeTokenSequence(const CommandTokens& command);

}  // namespace standalone
