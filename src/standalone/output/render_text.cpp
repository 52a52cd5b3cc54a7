#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "standalone/output/renderers.h"
#include "standalone/text/terminal_text.h"

namespace standalone {

namespace {

std::string Underline(const std::string& text, const char* stroke) {
  std::string line;
  for (std::size_t i = 0; i < DisplayWidth(text); ++i)
    line += stroke;
  return line;
}

void WriteMessages(std::ostream& out, const std::vector<Message>& messages, std::size_t width) {
  for (const Message& message : messages) {
    out << '\n';
    const std::string text = (message.isError ? "Error: " : "Warning: ") + WithoutControls(message.text);
    for (const std::string& line : Wrap(text, width))
      out << line << '\n';
    if (!message.location.empty()) out << "  at " << WithoutControls(message.location) << '\n';
    for (const std::string& line : LinesOf(message.excerpt))
      out << "  | " << WithoutControls(line) << '\n';
  }
}

void WriteNotes(std::ostream& out, const std::vector<CommandNote>& notes) {
  if (notes.empty()) return;
  std::size_t width = 0;
  for (const CommandNote& note : notes)
    width = std::max(width, DisplayWidth(note.label));
  out << '\n';
  for (const CommandNote& note : notes) {
    out << PadRight(note.label, width) << "  " << WithoutControls(note.text) << '\n';
  }
}

/// Headings that the table before did not stand under.
void WriteHeadings(std::ostream& out, const std::vector<std::string>& heading,
                   std::vector<std::string>& last) {
  std::size_t shared = 0;
  while (shared < heading.size() && shared < last.size() && heading[shared] == last[shared])
    ++shared;
  for (std::size_t i = shared; i < heading.size(); ++i) {
    out << '\n' << heading[i] << '\n' << Underline(heading[i], "─") << '\n';
  }
  last = heading;
}

std::string Counted(std::size_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

/// In the place of messages that the reader has seen already: how many belong to this command.
void CountMessages(std::ostream& out, const std::vector<Message>& messages) {
  if (messages.empty()) return;
  const auto errors = static_cast<std::size_t>(
      std::count_if(messages.begin(), messages.end(), [](const Message& m) { return m.isError; }));
  const std::size_t warnings = messages.size() - errors;
  out << '\n';
  if (errors > 0) out << Counted(errors, "error", "errors");
  if (errors > 0 && warnings > 0) out << " and ";
  if (warnings > 0) out << Counted(warnings, "warning", "warnings");
  out << ": see above.\n";
}

void WriteCommand(std::ostream& out, const CommandOutput& command, const TextOptions& options) {
  const std::string title = fmt::format("{}{}  ({:.2f} s)", command.Title(),
                                        command.failed ? ", ended with an error" : "", command.seconds);
  out << title << '\n' << Underline(title, "═") << '\n';
  if (options.messagesStandAbove) {
    CountMessages(out, command.messages);
  } else {
    WriteMessages(out, command.messages, options.width);
  }
  WriteNotes(out, command.notes);
  std::vector<std::string> heading;
  for (const auto& table : command.tables) {
    WriteHeadings(out, table->heading, heading);
    out << '\n';
    RenderTextTable(out, *table, options.width);
  }
}

/// Whether a message stands above the text, from which a blank line then parts it.
bool HasMessage(const Document& document) {
  return !document.messages.empty() ||
         std::any_of(document.commands.begin(), document.commands.end(),
                     [](const CommandOutput& command) { return !command.messages.empty(); });
}

}  // namespace

void RenderText(std::ostream& out, const Document& document, const TextOptions& options) {
  if (!options.messagesStandAbove) WriteMessages(out, document.messages, options.width);
  bool isFirst = options.messagesStandAbove ? !HasMessage(document) : document.messages.empty();
  for (const CommandOutput& command : document.commands) {
    if (!isFirst) out << '\n';
    isFirst = false;
    WriteCommand(out, command, options);
  }
}

}  // namespace standalone
