#include <fmt/format.h>

#include <ostream>

#include "standalone/output/message_text.h"
#include "standalone/output/renderers.h"
#include "standalone/output/table_layout.h"
#include "standalone/output/text_table.h"
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

void WriteCommand(std::ostream& out, const CommandOutput& command, std::size_t width) {
  const std::string title = fmt::format("{}{}  ({:.2f} s)", command.name,
                                        command.failed ? ", ended with an error" : "", command.seconds);
  out << title << '\n' << Underline(title, "═") << '\n';
  WriteMessages(out, command.messages, width);
  WriteNotes(out, command.notes);
  std::vector<std::string> heading;
  for (const auto& table : command.tables) {
    WriteHeadings(out, table->heading, heading);
    out << '\n';
    WriteTextTable(out, TableLayout(*table), width);
  }
}

}  // namespace

void RenderTextTable(std::ostream& out, const PivotTable& table, std::size_t width) {
  WriteTextTable(out, TableLayout(table), width);
}

void RenderText(std::ostream& out, const Document& document, std::size_t width) {
  WriteMessages(out, document.messages, width);
  bool isFirst = document.messages.empty();
  for (const CommandOutput& command : document.commands) {
    if (!isFirst) out << '\n';
    isFirst = false;
    WriteCommand(out, command, width);
  }
}

}  // namespace standalone
