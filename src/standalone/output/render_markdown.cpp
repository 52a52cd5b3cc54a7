// Markdown's tables know no spans: groups of columns are named in each column's label, and groups of rows
// stand once, with blank cells below them.
#include <ostream>

#include "standalone/output/renderers.h"
#include "standalone/output/table_layout.h"

namespace standalone {

namespace {

/// Signs that Markdown would read as markup are escaped; a line feed becomes a break.
std::string Escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '\n') {
      out += "<br>";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '&') {
      out += "&amp;";
    } else {
      if (std::string_view("\\`*_[]|#>~$").find(c) != std::string_view::npos) out += '\\';
      out += c;
    }
  }
  return out;
}

std::string WithMarks(const std::string& text, const std::string& marks) {
  std::string out = Escaped(text);
  if (!marks.empty()) out += "<sup>" + marks + "</sup>";
  return out;
}

/// The label of a column with the groups that it stands in.
std::vector<std::string> ColumnLabels(const AxisLayout& axis) {
  std::vector<std::string> labels(axis.lines.size());
  for (const HeaderCell& cell : axis.cells) {
    for (std::size_t line = cell.first; line < cell.first + cell.span; ++line) {
      if (!labels[line].empty()) labels[line] += ": ";
      labels[line] += WithMarks(cell.text, cell.marks);
    }
  }
  return labels;
}

void WriteRowLine(std::ostream& out, const std::vector<std::string>& cells) {
  out << '|';
  for (const std::string& cell : cells)
    out << ' ' << cell << " |";
  out << '\n';
}

void WriteGrid(std::ostream& out, const TableLayout& layout) {
  const AxisLayout& rows = layout.Rows();
  std::vector<std::string> head(rows.levels);
  for (const HeaderCell& cell : layout.Stub()) {
    if (cell.level < head.size()) head[cell.level] = WithMarks(cell.text, cell.marks);
  }
  const std::vector<std::string> labels = ColumnLabels(layout.Columns());
  head.insert(head.end(), labels.begin(), labels.end());
  WriteRowLine(out, head);
  out << '|';
  for (std::size_t i = 0; i < head.size(); ++i)
    out << (i < rows.levels ? " :--- |" : " ---: |");
  out << '\n';
  std::size_t next = 0;
  for (std::size_t r = 0; r < rows.lines.size(); ++r) {
    std::vector<std::string> cells(rows.levels);
    for (; next < rows.cells.size() && rows.cells[next].first == r; ++next) {
      cells[rows.cells[next].level] = WithMarks(rows.cells[next].text, rows.cells[next].marks);
    }
    for (std::size_t c = 0; c < layout.Columns().lines.size(); ++c) {
      const LayoutCell cell = layout.At(r, c);
      cells.push_back(WithMarks(cell.text, cell.marks));
    }
    WriteRowLine(out, cells);
  }
}

void WriteTable(std::ostream& out, const PivotTable& table) {
  const TableLayout layout(table);
  out << "\n### " << WithMarks(table.title, layout.TitleMarks()) << "\n\n";
  if (!table.caption.empty()) out << Escaped(table.caption) << "\n\n";
  if (layout.Empty()) {
    out << "(no data)\n";
  } else {
    WriteGrid(out, layout);
  }
  if (!layout.Footnotes().empty()) out << '\n';
  for (const Footnote& note : layout.Footnotes()) {
    out << "<sup>" << note.letter << "</sup> " << Escaped(note.text) << "  \n";
  }
}

void WriteMessages(std::ostream& out, const std::vector<Message>& messages) {
  for (const Message& message : messages) {
    out << "\n> **" << (message.isError ? "Error" : "Warning") << ":** " << Escaped(message.text);
    if (!message.location.empty()) out << " (" << Escaped(message.location) << ')';
    out << '\n';
  }
}

void WriteCommand(std::ostream& out, const CommandOutput& command) {
  out << "\n# " << Escaped(command.Title()) << (command.failed ? " (ended with an error)" : "") << '\n';
  WriteMessages(out, command.messages);
  if (!command.notes.empty()) out << '\n';
  for (const CommandNote& note : command.notes)
    out << "- " << Escaped(note.label) << ": " << Escaped(note.text) << '\n';
  std::vector<std::string> last;
  for (const auto& table : command.tables) {
    if (table->heading != last && !table->heading.empty())
      out << "\n## " << Escaped(table->heading.back()) << '\n';
    last = table->heading;
    WriteTable(out, *table);
  }
}

}  // namespace

void RenderMarkdown(std::ostream& out, const Document& document) {
  WriteMessages(out, document.messages);
  for (const CommandOutput& command : document.commands)
    WriteCommand(out, command);
}

}  // namespace standalone
