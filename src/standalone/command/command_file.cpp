#include "standalone/command/command_file.h"

#include "standalone/command/command_reader.h"
#include "standalone/command/parser_keys.h"

namespace standalone {

namespace {

// Far above any file of commands; tokens take many times the room of their text, so the text must be bounded.
constexpr std::size_t kMaxMegabytes = 8;

class CommandTokenSequence : public host::VORN_TokenSequence {
 public:
  explicit CommandTokenSequence(const CommandTokens& command) : fCommand(command) {}
  const std::vector<host::TokenInfoObj>& Tokens() const override { return fCommand.tokens; }

 private:
  const CommandTokens& fCommand;
};

}  // namespace

std::vector<CommandTokens> ReadCommands(const SourceText& source) {
  if (source.Text().size() > kMaxMegabytes << 20) {
    // Refused as one command, so that the message takes the way of all others.
    CommandTokens refused;
    refused.errors.push_back({keys::kFileTooLarge, {std::to_string(kMaxMegabytes)}, {}});
    return {refused};
  }
  return CommandReader(source.Text()).Read();
}

std::unique_ptr<host::VORN_TokenSequence> MakeTokenSequence(const CommandTokens& command) {
  return std::make_unique<CommandTokenSequence>(command);
}

}  // namespace standalone
