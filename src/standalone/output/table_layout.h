// A pivot table laid out as a grid: which rows and columns it has, which header cells span them, and the
// letters of its footnotes. The text, Markdown and HTML renderers start from here.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "standalone/output/document.h"

namespace standalone {

/// One cell of a header. A header has levels (outermost first) and lines (the table's rows or columns).
struct HeaderCell {
  std::size_t level = 0, levelSpan = 1;
  std::size_t first = 0, span = 1;  // lines
  std::string text;
  std::string marks;    // letters of its footnotes, such as "a,b"
  bool isLeaf = false;  // belongs to one line only and is its innermost label
};

/// The lines of one axis, in order. A line holds one category per dimension of the axis, outermost dimension
/// first.
struct AxisLayout {
  std::vector<std::size_t> dimensions;  // indices into the table's dimensions
  std::vector<std::size_t> depths;      // levels that the labels of each dimension take
  std::vector<std::vector<int>> lines;
  std::size_t levels = 0;
  std::vector<HeaderCell> cells;  // ordered by first line, then by level
};

struct LayoutCell {
  std::string text;
  std::string marks;
  bool isNumber = false;
};

struct Footnote {
  std::string letter, text;
};

/// The table is not owned. Rows and columns without any cell are left out.
class TableLayout {
 public:
  explicit TableLayout(const PivotTable& table);

  const PivotTable& Table() const { return fTable; }
  const AxisLayout& Rows() const { return fRows; }
  const AxisLayout& Columns() const { return fColumns; }
  bool Empty() const { return fRows.lines.empty(); }
  /// The header of some of the columns, in their order (a block of a table that is too wide).
  AxisLayout ColumnBlock(std::size_t first, std::size_t count) const;
  /// What stands above the row labels, one text per row level.
  const std::vector<HeaderCell>& Stub() const { return fStub; }
  const std::string& TitleMarks() const { return fTitleMarks; }
  const std::vector<Footnote>& Footnotes() const { return fFootnotes; }

  const PivotCell* Find(std::size_t row, std::size_t column) const;
  LayoutCell At(std::size_t row, std::size_t column) const;
  /// All labels of a line, outermost dimension first, groups before categories.
  std::vector<std::string> Path(const AxisLayout& axis, std::size_t line) const;

 private:
  struct Entry;
  AxisLayout MakeAxis(host::BpPlace place, bool withLabels);
  void PlaceHeader(AxisLayout& axis, bool withLabels) const;
  std::vector<Entry> EntriesOf(const AxisLayout& axis, const std::vector<int>& line, bool withLabels) const;
  bool IsHidden(std::size_t dimension) const;
  std::vector<int> VisiblePath(std::size_t dimension, int category) const;
  std::size_t Depth(const AxisLayout& axis, std::size_t position) const;
  void MakeStub();
  void NumberNotes();
  void NumberLabelNotes(const AxisLayout& axis);
  std::string Marks(const std::vector<std::string>& notes);
  std::string KnownMarks(const std::vector<std::string>& notes) const;

  const PivotTable& fTable;
  AxisLayout fRows, fColumns;
  std::vector<HeaderCell> fStub;
  std::string fTitleMarks;
  std::vector<Footnote> fFootnotes;
  std::map<std::string, std::string> fLetters;  // text to letter
};

}  // namespace standalone
