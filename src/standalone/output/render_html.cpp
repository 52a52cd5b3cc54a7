// One page that shows the same offline, in a mail and in ten years: styles are inside, there are no
// scripts, and tables are tables, with headers that a screen reader can follow.
#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "standalone/output/renderers.h"
#include "standalone/output/table_layout.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

constexpr const char* kStyle = R"css(
:root { color-scheme: light; --ink: #1d2733; --soft: #5b6775; --line: #c9d1da; --strong: #1d2733; --band: #f5f7f9; }
* { box-sizing: border-box; }
body { font: 15px/1.45 system-ui, "Segoe UI", "Helvetica Neue", Arial, sans-serif; color: var(--ink);
       margin: 0 auto; padding: 2rem 1.5rem 4rem; max-width: 82rem; }
h1 { font-size: 1.5rem; margin: 0 0 .25rem; }
h2 { font-size: 1.2rem; margin: 2.5rem 0 .5rem; }
section > header p { color: var(--soft); margin: 0 0 1rem; }
section + section { border-top: 1px solid var(--line); margin-top: 3rem; padding-top: 2rem; }
.message { border-left: 4px solid #c98a00; background: #fff8e6; padding: .5rem .8rem; margin: .6rem 0; }
.message.error { border-color: #b3261e; background: #fdeceb; }
.message p { margin: 0; }
.message pre { margin: .4rem 0 0; font-size: .85rem; overflow-x: auto; }
.message .place { color: var(--soft); font-size: .85rem; }
dl.notes { display: grid; grid-template-columns: max-content auto; gap: .1rem 1rem; margin: 1rem 0; }
dl.notes dt { color: var(--soft); } dl.notes dd { margin: 0; }
figure { margin: 2rem 0; overflow-x: auto; }
table { border-top: 2px solid var(--strong); border-collapse: collapse; font-variant-numeric: tabular-nums; }
figcaption { padding-bottom: .5rem; }
figcaption strong { display: block; font-size: 1.05rem; }
figcaption span { color: var(--soft); white-space: pre-line; }
thead { border-bottom: 1px solid var(--strong); }
tbody { border-bottom: 2px solid var(--strong); }
th { font-weight: 600; text-align: left; vertical-align: top; padding: .3rem .7rem; }
thead th { vertical-align: bottom; text-align: right; max-width: 9rem; }
thead th.group { text-align: center; max-width: none; border-bottom: 1px solid var(--line); }
thead th.stub { text-align: left; max-width: none; }
tbody th { font-weight: 400; border-right: 1px solid var(--line); }
tbody th[scope=rowgroup] { font-weight: 600; }
td { position: relative; text-align: right; padding: .3rem .7rem; white-space: nowrap; }
td.text { white-space: normal; }
td[data-pad]::after { content: attr(data-pad); visibility: hidden; }
td sup { position: absolute; margin-top: .6em; }
td.mark sup { position: static; }
tbody tr:nth-child(even) td { background: var(--band); }
tbody tr + tr th[scope=rowgroup]:first-child, tbody tr.outer td, tbody tr.outer th { border-top: 1px solid var(--line); }
sup { font-size: .7em; line-height: 0; margin-left: .15em; color: var(--soft); }
ol.footnotes { list-style: none; margin: .5rem 0 0; padding: 0; color: var(--soft); font-size: .85rem; }
@media print { body { max-width: none; padding: 0; } figure { break-inside: avoid; overflow: visible; } }
)css";

std::string Escaped(std::string_view text) {
  std::string out;
  for (const char c : ValidUtf8(text)) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        // HTML has no way to write the other control characters.
        out += static_cast<unsigned char>(c) < 0x20 && c != '\n' ? ' ' : c;
    }
  }
  return out;
}

std::string WithMarks(const std::string& text, const std::string& marks) {
  std::string out = Escaped(text);
  if (!marks.empty()) out += "<sup>" + marks + "</sup>";
  return out;
}

std::string Span(const char* name, std::size_t span) {
  return span > 1 ? fmt::format(" {}=\"{}\"", name, span) : std::string();
}

void WriteHead(std::ostream& out, const TableLayout& layout) {
  const AxisLayout& columns = layout.Columns();
  const std::size_t height = std::max<std::size_t>(columns.levels, 1);
  const bool hasLabels =
      columns.levels > 0 || std::any_of(layout.Stub().begin(), layout.Stub().end(),
                                        [](const HeaderCell& cell) { return !cell.text.empty(); });
  if (!hasLabels) return;
  out << "<thead>\n";
  for (std::size_t level = 0; level < height; ++level) {
    out << "<tr>";
    if (level == 0) {
      for (const HeaderCell& cell : layout.Stub()) {
        out << "<th class=\"stub\" scope=\"col\"" << Span("colspan", cell.levelSpan)
            << Span("rowspan", height) << '>' << WithMarks(cell.text, cell.marks) << "</th>";
      }
    }
    for (const HeaderCell& cell : columns.cells) {
      if (cell.level != level) continue;
      // The outermost label of a shallow branch reaches down to the last level.
      out << (cell.isLeaf ? "<th scope=\"col\"" : "<th class=\"group\" scope=\"colgroup\"")
          << Span("colspan", cell.span) << Span("rowspan", cell.levelSpan) << '>'
          << WithMarks(cell.text, cell.marks) << "</th>";
    }
    if (columns.levels == 0) out << "<td></td>";
    out << "</tr>\n";
  }
  out << "</thead>\n";
}

/// What stands from the decimal point on, by which a column is aligned.
std::string_view Fraction(std::string_view number) {
  return number.substr(std::min(number.find_first_of(".%e"), number.size()));
}

/// The longest fraction of each column. Numbers with a shorter one are padded by the rest of it, which
/// doesn't show.
std::vector<std::string> LongestFractions(const TableLayout& layout) {
  std::vector<std::string> longest(layout.Columns().lines.size());
  for (std::size_t c = 0; c < longest.size(); ++c) {
    for (std::size_t r = 0; r < layout.Rows().lines.size(); ++r) {
      const LayoutCell cell = layout.At(r, c);
      if (!cell.isNumber) continue;
      if (const std::string_view part = Fraction(cell.text); part.size() > longest[c].size())
        longest[c] = part;
    }
  }
  return longest;
}

void WriteCell(std::ostream& out, const LayoutCell& cell, const std::string& longest) {
  const std::string text = WithMarks(cell.text, cell.marks);
  const std::size_t fraction = Fraction(cell.text).size();
  if (!cell.isNumber && !cell.text.empty()) {
    out << "<td class=\"text\">" << text << "</td>";
  } else if (cell.isNumber && !cell.text.empty() && fraction < longest.size()) {
    out << "<td data-pad=\"" << longest.substr(fraction) << "\">" << text << "</td>";
  } else {
    out << (cell.text.empty() && !cell.marks.empty() ? "<td class=\"mark\">" : "<td>") << text << "</td>";
  }
}

void WriteBody(std::ostream& out, const TableLayout& layout) {
  const AxisLayout& rows = layout.Rows();
  const std::vector<std::string> longest = LongestFractions(layout);
  out << "<tbody>\n";
  std::size_t next = 0;
  for (std::size_t r = 0; r < rows.lines.size(); ++r) {
    const bool isOuter =
        r > 0 && next < rows.cells.size() && rows.cells[next].level == 0 && !rows.cells[next].isLeaf;
    out << (isOuter ? "<tr class=\"outer\">" : "<tr>");
    for (; next < rows.cells.size() && rows.cells[next].first == r; ++next) {
      const HeaderCell& cell = rows.cells[next];
      out << (cell.isLeaf ? "<th scope=\"row\"" : "<th scope=\"rowgroup\"") << Span("rowspan", cell.span)
          << Span("colspan", cell.levelSpan) << '>' << WithMarks(cell.text, cell.marks) << "</th>";
    }
    for (std::size_t c = 0; c < longest.size(); ++c)
      WriteCell(out, layout.At(r, c), longest[c]);
    out << "</tr>\n";
  }
  out << "</tbody>\n";
}

/// `number` counts the tables of the page.
void WriteTable(std::ostream& out, const PivotTable& table, std::size_t number) {
  const TableLayout layout(table);
  out << "<figure id=\"table-" << number << "\" data-table=\"" << Escaped(table.id)
      << "\">\n<figcaption id=\"title-" << number << "\"><strong>"
      << WithMarks(table.title, layout.TitleMarks()) << "</strong>";
  if (!table.caption.empty()) out << "<span>" << Escaped(table.caption) << "</span>";
  out << "</figcaption>\n<table aria-labelledby=\"title-" << number << "\">\n";
  if (!layout.Empty()) {
    WriteHead(out, layout);
    WriteBody(out, layout);
  }
  out << "</table>\n";
  if (layout.Empty()) out << "<p>(no data)</p>\n";
  if (!layout.Footnotes().empty()) {
    out << "<ol class=\"footnotes\">\n";
    for (const Footnote& note : layout.Footnotes()) {
      out << "<li>" << note.letter << ". " << Escaped(note.text) << "</li>\n";
    }
    out << "</ol>\n";
  }
  out << "</figure>\n";
}

void WriteMessages(std::ostream& out, const std::vector<Message>& messages) {
  for (const Message& message : messages) {
    out << "<div class=\"message " << (message.isError ? "error" : "warning") << "\"><p><strong>"
        << (message.isError ? "Error: " : "Warning: ") << "</strong>" << Escaped(message.text) << "</p>";
    if (!message.location.empty()) out << "<p class=\"place\">at " << Escaped(message.location) << "</p>";
    if (!message.excerpt.empty()) out << "<pre>" << Escaped(message.excerpt) << "</pre>";
    out << "</div>\n";
  }
}

void WriteNotes(std::ostream& out, const std::vector<CommandNote>& notes) {
  if (notes.empty()) return;
  out << "<dl class=\"notes\">\n";
  for (const CommandNote& note : notes) {
    out << "<dt>" << Escaped(note.label) << "</dt><dd>" << Escaped(note.text) << "</dd>\n";
  }
  out << "</dl>\n";
}

void WriteCommand(std::ostream& out, const CommandOutput& command, std::size_t& tableNumber) {
  out << "<section>\n<header><h1>" << Escaped(command.Title()) << "</h1><p>"
      << fmt::format("{:.2f} s", command.seconds) << (command.failed ? ", ended with an error" : "")
      << "</p></header>\n";
  WriteMessages(out, command.messages);
  WriteNotes(out, command.notes);
  std::vector<std::string> last;
  for (const auto& table : command.tables) {
    if (table->heading != last && !table->heading.empty()) {
      out << "<h2>" << Escaped(table->heading.back()) << "</h2>\n";
    }
    last = table->heading;
    WriteTable(out, *table, ++tableNumber);
  }
  out << "</section>\n";
}

}  // namespace

void RenderHtml(std::ostream& out, const Document& document) {
  out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      << "<meta name=\"generator\" content=\"tavoreg " << Escaped(document.version)
      << "\">\n<title>tavoreg</title>\n"
      << "<style>" << kStyle << "</style>\n</head>\n<body>\n";
  WriteMessages(out, document.messages);
  std::size_t tableNumber = 0;
  for (const CommandOutput& command : document.commands)
    WriteCommand(out, command, tableNumber);
  out << "</body>\n</html>\n";
}

}  // namespace standalone
