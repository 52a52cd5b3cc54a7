// Compact texts for tokens and trees, and a sink that records messages: what the tests of this folder
// compare.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/command.h"
#include "standalone/command/command_file.h"
#include "standalone/command/message_sink.h"

namespace command_test {

/// A name as it stands, other words with ~, reserved words with !, numbers with # (shortest text), literals
/// in single quotes, operators as their glyphs; a blank between two tokens.
std::string Dump(const std::vector<host::TokenInfoObj>& tokens);

/// Subcommands as /NAME, each followed by its keywords: KEYWORD or KEYWORD={tokens}; the nameless keyword as
/// {tokens}.
std::string Dump(const host::CommandSpec& specification);

/// "line:column+length key|argument|argument" for each message, one per line.
class RecordingSink : public standalone::MessageSink {
 public:
  struct Record {
    bool isError = false;
    std::string key;
    std::vector<std::string> arguments;
    standalone::MessageContext context;
  };
  void Send(bool isError, std::string_view key, const std::vector<std::string>& arguments,
            const standalone::MessageContext& context) override {
    records.push_back({isError, std::string(key), arguments, context});
  }
  std::vector<Record> records;
};

/// A position as line:column+length.
std::string Dump(const host::SourcePosition& position);

/// The grammar of the logistic regression command, with all its subcommands and keywords.
host::CommandDescriptor RegressionGrammar();

/// The outcome of reading the first command of a text with that grammar.
struct Parsed {
  standalone::SourceText source;
  std::vector<standalone::CommandTokens> commands;
  host::CommandSpec specification;
  RecordingSink messages;
  bool succeeded = false;
};
Parsed Parse(std::string text);

}  // namespace command_test
