#include "bad_input.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using nlohmann::json;

std::vector<json> MessagesOf(const json& document) {
  std::vector<json> messages;
  if (document.contains("messages")) {
    for (const auto& message : document["messages"])
      messages.push_back(message);
  }
  for (const auto& command : document["commands"]) {
    for (const auto& message : command["messages"])
      messages.push_back(message);
  }
  return messages;
}

/// Where in a command a message points: the location, the line and the caret under it, as standard error
/// shows them.
std::string Pointer(const std::string& command, const std::string& at) {
  if (at.empty()) return {};
  const auto bar = at.find('|');
  const std::string before = bar == std::string::npos ? "" : at.substr(0, bar);
  const std::string marked = bar == std::string::npos ? at : at.substr(bar + 1);
  const auto found = command.find(before + marked);
  if (found == std::string::npos) return "no such place: " + at;
  const auto place = found + before.size();
  const auto lineBreak = command.rfind('\n', place);
  const auto start = lineBreak == std::string::npos ? 0 : lineBreak + 1;
  const auto line =
      std::count(command.begin(), command.begin() + static_cast<std::ptrdiff_t>(start), '\n') + 1;
  const auto text = command.substr(start, command.find('\n', start) - start);
  return "  at command.tvs:" + std::to_string(line) + ":" + std::to_string(place - start + 1) + "\n  | " +
         text + "\n  | " + std::string(place - start, ' ') + "^" + std::string(marked.size() - 1, '~') + "\n";
}

}  // namespace

std::string CommandWith(const std::string& more) {
  return kSimple + "\n" + more + ".\n";
}

void ExpectAnswer(const BadInput& input) {
  const ProgramRun run = RunAnalysis(input.analysis);
  EXPECT_EQ(run.exitStatus, input.exitStatus);
  const json document = run.Json();
  ASSERT_TRUE(document.is_object()) << run.output;
  const std::vector<json> messages = MessagesOf(document);
  ASSERT_EQ(messages.size(), input.messages.size()) << run.messages;

  std::string standardError;
  for (std::size_t i = 0; i < messages.size(); ++i) {
    const ExpectedMessage& expected = input.messages[i];
    const auto text = messages[i]["text"].get<std::string>();
    EXPECT_EQ(messages[i]["level"], expected.isError ? "error" : "warning") << text;
    EXPECT_EQ(messages[i]["key"], expected.key);
    EXPECT_NE(text.find(expected.says), std::string::npos) << text;
    standardError += (expected.isError ? "error: " : "warning: ") + text + "\n" +
                     Pointer(input.analysis.command, expected.at);
  }
  EXPECT_EQ(run.messages, standardError);

  const bool anyError = std::any_of(input.messages.begin(), input.messages.end(),
                                    [](const ExpectedMessage& message) { return message.isError; });
  EXPECT_EQ(anyError, input.exitStatus != 0);
}
