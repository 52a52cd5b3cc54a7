#include <algorithm>
#include <ostream>

#include "standalone/output/renderers.h"
#include "standalone/output/table_layout.h"
#include "standalone/text/ascii.h"
#include "standalone/text/terminal_text.h"

namespace standalone {

namespace {

constexpr std::size_t kLeastWidth = 40;    // of a page; a narrower one is overrun
constexpr std::size_t kGap = 2;            // blanks between columns
constexpr std::size_t kMaxStubWidth = 44;  // row labels wrap here
constexpr std::size_t kLabelWidth = 12;    // column labels wrap here, unless the numbers are wider
constexpr std::size_t kMaxTextWidth = 40;  // texts in cells wrap here

std::string Rule(std::size_t width, const char* stroke = "─") {
  std::string rule;
  for (std::size_t i = 0; i < width; ++i)
    rule += stroke;
  return rule;
}

std::string WithMarks(const std::string& text, const std::string& marks) {
  if (marks.empty()) return text;
  return text.empty() ? "(" + marks + ")" : text + " (" + marks + ")";
}

std::size_t LongestWord(const std::string& text) {
  std::size_t longest = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of(" \n", at), text.size());
    longest = std::max(longest, DisplayWidth(text.substr(at, end - at)));
    at = end + 1;
  }
  return longest;
}

/// A number is aligned at its decimal point: what stands before it, and the rest with the footnote marks.
struct SplitNumber {
  std::string left, right;
};

SplitNumber SplitAtPoint(const LayoutCell& cell) {
  const std::size_t point = std::min(cell.text.find_first_of(".%e"), cell.text.size());
  std::string right = cell.text.substr(point);
  if (!cell.marks.empty()) right += (cell.text.empty() ? "(" : " (") + cell.marks + ")";
  return {cell.text.substr(0, point), std::move(right)};
}

struct ColumnWidth {
  std::size_t left = 0, right = 0;  // of the numbers, footnote marks included
  std::size_t marks = 0;            // of the marks behind the numbers
  std::size_t width = 0;            // of the column
  bool hasNumber = false;
  bool hasText = false;
  /// A column of texts alone is aligned on the left, its label too.
  bool IsLeftAligned() const { return hasText && !hasNumber; }
};

struct StubLine {
  std::string text;
  bool isLast = false;  // the line that carries the cells
};

class TextTable {
 public:
  TextTable(std::ostream& out, const TableLayout& layout, std::size_t width)
      : fOut(out), fLayout(layout), fLimit(width) {}

  void Write() {
    MeasureColumns();
    MakeStub();
    WriteLines(WithMarks(fLayout.Table().title, fLayout.TitleMarks()), 0);
    std::size_t first = 0;
    const std::size_t columns = fLayout.Columns().lines.size();
    do {
      const std::size_t count = ColumnsThatFit(first);
      if (first > 0) fOut << '\n' << fLayout.Table().title << " (continued)\n";
      WriteBlock(first, count);
      first += count;
    } while (first < columns);
    WriteCaptionAndNotes();
  }

 private:
  void WriteLines(const std::string& text, std::size_t indent) {
    for (const std::string& line : LinesOf(text)) {
      for (const std::string& part : Wrap(line, fLimit - indent)) {
        fOut << std::string(indent, ' ') << part << '\n';
      }
    }
  }

  void MeasureColumns() {
    const auto& axis = fLayout.Columns();
    fColumns.assign(axis.lines.size(), {});
    for (std::size_t c = 0; c < fColumns.size(); ++c) {
      ColumnWidth& column = fColumns[c];
      for (std::size_t r = 0; r < fLayout.Rows().lines.size(); ++r) {
        const LayoutCell cell = fLayout.At(r, c);
        if (cell.isNumber) {
          column.hasNumber = true;
          const SplitNumber parts = SplitAtPoint(cell);
          column.left = std::max(column.left, DisplayWidth(parts.left));
          column.right = std::max(column.right, DisplayWidth(parts.right));
          if (!cell.marks.empty()) column.marks = std::max(column.marks, cell.marks.size() + 3);
        } else {
          column.hasText = column.hasText || !cell.text.empty();
          for (const std::string& line : Wrap(WithMarks(cell.text, cell.marks), kMaxTextWidth)) {
            column.width = std::max(column.width, DisplayWidth(line));
          }
        }
      }
      column.width = std::max(column.width, column.left + column.right);
    }
    for (const HeaderCell& cell : axis.cells) {
      if (cell.isLeaf) WidenForLeaf(cell);
    }
    // Inner groups come after outer ones in the list; widening from the inside out settles each span once.
    for (auto cell = axis.cells.rbegin(); cell != axis.cells.rend(); ++cell) {
      if (!cell->isLeaf) WidenForGroup(*cell);
    }
  }

  void WidenForLeaf(const HeaderCell& cell) {
    const std::string text = WithMarks(cell.text, cell.marks);
    std::size_t& width = fColumns[cell.first].width;
    const std::size_t goal = std::min(DisplayWidth(text), std::max(kLabelWidth, width));
    width = std::max({width, goal, std::min(LongestWord(text), kMaxTextWidth)});
  }

  void WidenForGroup(const HeaderCell& cell) {
    const std::string text = WithMarks(cell.text, cell.marks);
    const std::size_t needed = std::max(LongestWord(text), std::min(DisplayWidth(text), kLabelWidth));
    for (std::size_t have = SpanWidth(cell.first, cell.span); have < needed;) {
      for (std::size_t c = cell.first; c < cell.first + cell.span && have < needed; ++c, ++have)
        ++fColumns[c].width;
    }
  }

  std::size_t SpanWidth(std::size_t first, std::size_t count) const {
    std::size_t width = (count - 1) * kGap;
    for (std::size_t c = first; c < first + count; ++c)
      width += fColumns[c].width;
    return width;
  }

  /// The labels of all rows, wrapped and indented by their depth: headings of groups first, the row's own
  /// label last.
  void MakeStub() {
    const auto& axis = fLayout.Rows();
    fStub.assign(axis.lines.size(), {});
    std::vector<std::size_t> depthOfLevel(axis.levels + 1, 0);
    std::size_t depth = 0, line = axis.lines.size();
    for (const HeaderCell& cell : axis.cells) {
      if (cell.first != line) {
        line = cell.first;
        depth = cell.level == 0 ? 0 : depthOfLevel[cell.level - 1] + 1;
      }
      for (std::size_t k = cell.level; k < cell.level + cell.levelSpan; ++k)
        depthOfLevel[k] = depth;
      AddStubLines(cell, depth);
      ++depth;
    }
    fStubHead = HeadOfStub();
    for (const auto& lines : fStub) {
      for (const StubLine& stub : lines)
        fStubWidth = std::max(fStubWidth, DisplayWidth(stub.text));
    }
    for (const std::string& text : fStubHead)
      fStubWidth = std::max(fStubWidth, DisplayWidth(text));
  }

  void AddStubLines(const HeaderCell& cell, std::size_t depth) {
    const std::string indent(2 * depth, ' ');
    const std::size_t width =
        std::max<std::size_t>(kMaxStubWidth > indent.size() ? kMaxStubWidth - indent.size() : 0, 20);
    const std::vector<std::string> parts = Wrap(WithMarks(cell.text, cell.marks), width);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      // A label that goes on in the next line hangs two blanks to the right.
      fStub[cell.first].push_back(
          {indent + (i > 0 ? "  " : "") + parts[i], cell.isLeaf && i + 1 == parts.size()});
    }
  }

  std::vector<std::string> HeadOfStub() const {
    std::string text;
    for (const HeaderCell& cell : fLayout.Stub()) {
      if (cell.text.empty()) continue;
      if (!text.empty()) text += " / ";
      text += WithMarks(cell.text, cell.marks);
    }
    return Wrap(text, kMaxStubWidth);
  }

  std::size_t ColumnsThatFit(std::size_t first) const {
    std::size_t used = fStubWidth, count = 0;
    while (first + count < fColumns.size()) {
      const std::size_t step = fColumns[first + count].width + (used > 0 ? kGap : 0);
      if (count > 0 && used + step > fLimit) break;
      used += step;
      ++count;
    }
    return count;
  }

  void WriteBlock(std::size_t first, std::size_t count) {
    if (fLayout.Empty()) {
      fOut << "(no data)\n";
      return;
    }
    const std::size_t stubGap = fStubWidth > 0 ? kGap : 0;
    const std::string rule = Rule(fStubWidth + stubGap + SpanWidth(first, count));
    fOut << rule << '\n';
    if (WriteHeader(first, count)) fOut << rule << '\n';
    for (std::size_t r = 0; r < fLayout.Rows().lines.size(); ++r)
      WriteRow(r, first, count);
    fOut << rule << '\n';
  }

  /// False when there is nothing above the cells.
  bool WriteHeader(std::size_t first, std::size_t count) {
    const AxisLayout block = fLayout.ColumnBlock(first, count);
    std::vector<std::string> lines;
    for (std::size_t level = 0; level < block.levels; ++level) {
      std::vector<const HeaderCell*> groups;
      for (const HeaderCell& cell : block.cells) {
        if (!cell.isLeaf && cell.level == level) groups.push_back(&cell);
      }
      if (!groups.empty()) AppendGroupLines(lines, groups, first);
    }
    AppendLeafLines(lines, block, first);
    if (lines.empty() && fStubHead.size() == 1 && fStubHead.front().empty()) return false;
    while (lines.size() < fStubHead.size())
      lines.insert(lines.begin(), std::string());
    const std::size_t before = lines.size() - fStubHead.size();
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const std::string stub = i >= before ? fStubHead[i - before] : std::string();
      WriteLine(PadRight(stub, fStubWidth), lines[i]);
    }
    return true;
  }

  /// Where column `c` of the block that starts at `first` begins, counted from the end of the row labels.
  std::size_t Offset(std::size_t first, std::size_t c) const {
    return c == 0 ? 0 : SpanWidth(first, c) + kGap;
  }

  void AppendGroupLines(std::vector<std::string>& lines, const std::vector<const HeaderCell*>& groups,
                        std::size_t first) {
    std::vector<std::vector<std::string>> texts;
    std::size_t height = 1;
    for (const HeaderCell* cell : groups) {
      texts.push_back(Wrap(WithMarks(cell->text, cell->marks), SpanWidth(first + cell->first, cell->span)));
      height = std::max(height, texts.back().size());
    }
    for (std::size_t i = 0; i <= height; ++i) {  // the last one underlines the groups
      std::string line;
      for (std::size_t g = 0; g < groups.size(); ++g) {
        const std::size_t width = SpanWidth(first + groups[g]->first, groups[g]->span);
        line = PadRight(line, Offset(first, groups[g]->first));
        const std::size_t blank = height - texts[g].size();
        if (i == height) {
          line += Rule(width);
        } else if (i >= blank) {
          line += PadCentre(texts[g][i - blank], width);
        }
      }
      lines.push_back(line);
    }
  }

  void AppendLeafLines(std::vector<std::string>& lines, const AxisLayout& block, std::size_t first) {
    std::vector<std::vector<std::string>> texts(block.lines.size());
    std::size_t height = 0;
    for (const HeaderCell& cell : block.cells) {
      if (!cell.isLeaf) continue;
      texts[cell.first] = Wrap(WithMarks(cell.text, cell.marks), fColumns[first + cell.first].width);
      height = std::max(height, texts[cell.first].size());
    }
    for (std::size_t i = 0; i < height; ++i) {
      std::string line;
      for (std::size_t c = 0; c < texts.size(); ++c) {
        line = PadRight(line, Offset(first, c));
        const std::size_t blank = height - texts[c].size();
        if (i >= blank) line += AlignedLabel(texts[c][i - blank], fColumns[first + c]);
      }
      lines.push_back(line);
    }
  }

  /// The cells stand on the last line of the row's label; texts that wrap go on below it.
  void WriteRow(std::size_t row, std::size_t first, std::size_t count) {
    std::vector<std::string> lines(1);
    for (std::size_t c = 0; c < count; ++c) {
      const std::vector<std::string> parts = CellLines(row, first + c);
      if (parts.size() > lines.size()) lines.resize(parts.size());
      for (std::size_t i = 0; i < parts.size(); ++i)
        lines[i] = PadRight(lines[i], Offset(first, c)) + parts[i];
    }
    std::vector<StubLine> stub = fStub[row];
    if (stub.empty() || !stub.back().isLast) stub.push_back({std::string(), true});
    for (std::size_t i = 0; i + 1 < stub.size(); ++i)
      WriteLine(PadRight(stub[i].text, fStubWidth), std::string());
    for (std::size_t i = 0; i < lines.size(); ++i) {
      WriteLine(PadRight(i == 0 ? stub.back().text : std::string(), fStubWidth), lines[i]);
    }
  }

  /// A label stands above the numbers, not above the marks behind them, when it has room there.
  static std::string AlignedLabel(const std::string& text, const ColumnWidth& column) {
    const bool hasRoom = DisplayWidth(text) + column.marks <= column.width;
    return Aligned(hasRoom ? text + std::string(column.marks, ' ') : text, column);
  }

  static std::string Aligned(const std::string& text, const ColumnWidth& column) {
    return column.IsLeftAligned() ? PadRight(text, column.width) : PadLeft(text, column.width);
  }

  std::vector<std::string> CellLines(std::size_t row, std::size_t column) const {
    const LayoutCell cell = fLayout.At(row, column);
    const ColumnWidth& width = fColumns[column];
    if (cell.isNumber) {
      const SplitNumber parts = SplitAtPoint(cell);
      return {PadLeft(PadLeft(parts.left, width.left) + PadRight(parts.right, width.right), width.width)};
    }
    std::vector<std::string> lines = Wrap(WithMarks(cell.text, cell.marks), kMaxTextWidth);
    for (std::string& line : lines)
      line = Aligned(line, width);
    return lines;
  }

  void WriteLine(const std::string& stub, const std::string& cells) {
    const std::string gap(fStubWidth > 0 ? kGap : 0, ' ');
    fOut << WithoutTrailingBlanks(stub + gap + cells) << '\n';
  }

  void WriteCaptionAndNotes() {
    WriteLines(fLayout.Table().caption, 0);
    for (const Footnote& note : fLayout.Footnotes()) {
      std::string mark = note.letter + ". ";
      for (const std::string& line : Wrap(note.text, fLimit - mark.size())) {
        fOut << mark << line << '\n';
        mark.assign(mark.size(), ' ');
      }
    }
  }

  std::ostream& fOut;
  const TableLayout& fLayout;
  std::size_t fLimit;
  std::vector<ColumnWidth> fColumns;
  std::vector<std::vector<StubLine>> fStub;
  std::vector<std::string> fStubHead;
  std::size_t fStubWidth = 0;
};

}  // namespace

void RenderTextTable(std::ostream& out, const PivotTable& table, std::size_t width) {
  const TableLayout layout(table);
  TextTable(out, layout, std::max(width, kLeastWidth)).Write();
}

}  // namespace standalone
