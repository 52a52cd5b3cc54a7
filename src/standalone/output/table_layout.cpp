#include "standalone/output/table_layout.h"

#include <algorithm>
#include <set>
#include <unordered_set>

#include "standalone/output/number_text.h"

namespace standalone {

namespace {

/// a, b, …, z, aa, ab, …
std::string Letter(std::size_t number) {
  std::string letters;
  for (std::size_t n = number + 1; n > 0; n = (n - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('a' + (n - 1) % 26));
  }
  return letters;
}

std::string ContentText(const CellContent& content) {
  if (const auto* text = std::get_if<std::string>(&content)) return *text;
  if (const auto* number = std::get_if<host::BpNumber>(&content))
    return NumberText(number->value, number->format);
  return {};
}

/// Place of each label in the order of the categories; -1 for groups.
std::vector<int> Ranks(const PivotDimension& dimension) {
  std::vector<int> ranks(dimension.labels.size(), -1);
  int next = 0;
  for (const int category : dimension.Categories())
    ranks[static_cast<std::size_t>(category)] = next++;
  return ranks;
}

/// The lines of an axis that have cells, in the order of the categories.
std::vector<std::vector<int>> UsedLines(const PivotTable& table, const std::vector<std::size_t>& dimensions) {
  std::vector<std::vector<int>> ranks;
  ranks.reserve(dimensions.size());
  for (const std::size_t d : dimensions)
    ranks.push_back(Ranks(table.dimensions[d]));
  const auto before = [&ranks](const std::vector<int>& a, const std::vector<int>& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
      const int x = ranks[i][static_cast<std::size_t>(a[i])], y = ranks[i][static_cast<std::size_t>(b[i])];
      if (x != y) return x < y;
    }
    return false;
  };
  // From the cells and not from the product of the categories, of which a table with many dimensions has
  // very many and uses few.
  std::set<std::vector<int>, decltype(before)> lines(before);
  std::vector<int> line(dimensions.size());
  for (const auto& [coordinates, cell] : table.AllCells()) {
    for (std::size_t i = 0; i < dimensions.size(); ++i)
      line[i] = coordinates[dimensions[i]];
    lines.insert(line);
  }
  return {lines.begin(), lines.end()};
}

}  // namespace

/// One label on the way from the outermost to the innermost of a line.
struct TableLayout::Entry {
  std::size_t dimension;
  int label;
  std::size_t level, levelSpan;
};

TableLayout::TableLayout(const PivotTable& table) : fTable(table) {
  fRows = MakeAxis(host::BpPlace::kRow, false);
  fColumns = MakeAxis(host::BpPlace::kColumn, true);
  NumberNotes();
  PlaceHeader(fRows, false);
  PlaceHeader(fColumns, true);
  MakeStub();
}

AxisLayout TableLayout::MakeAxis(host::BpPlace place, bool withLabels) {
  AxisLayout axis;
  axis.dimensions = fTable.DimensionsOf(place);
  axis.lines = UsedLines(fTable, axis.dimensions);
  for (std::size_t i = 0; i < axis.dimensions.size(); ++i) {
    const std::size_t d = axis.dimensions[i];
    axis.depths.push_back(Depth(axis, i));
    if (IsHidden(d)) continue;
    axis.levels += axis.depths[i] + (withLabels && !fTable.dimensions[d].hideLabel ? 1 : 0);
  }
  return axis;
}

bool TableLayout::IsHidden(std::size_t dimension) const {
  const PivotDimension& d = fTable.dimensions[dimension];
  return d.hideWhenSingle && d.Categories().size() == 1;
}

std::vector<int> TableLayout::VisiblePath(std::size_t dimension, int category) const {
  std::vector<int> path;
  const auto& labels = fTable.dimensions[dimension].labels;
  for (int at = category; at > 0; at = labels[static_cast<std::size_t>(at)].parent) {
    const PivotLabel& label = labels[static_cast<std::size_t>(at)];
    if (label.isCategory || !label.text.empty()) path.push_back(at);
  }
  std::reverse(path.begin(), path.end());
  return path;
}

std::size_t TableLayout::Depth(const AxisLayout& axis, std::size_t position) const {
  std::size_t depth = 0;
  std::unordered_set<int> seen;
  for (const auto& line : axis.lines) {
    if (!seen.insert(line[position]).second) continue;
    depth = std::max(depth, VisiblePath(axis.dimensions[position], line[position]).size());
  }
  return depth;
}

std::vector<TableLayout::Entry> TableLayout::EntriesOf(const AxisLayout& axis, const std::vector<int>& line,
                                                       bool withLabels) const {
  std::vector<Entry> entries;
  std::size_t level = 0;
  for (std::size_t i = 0; i < axis.dimensions.size(); ++i) {
    const std::size_t d = axis.dimensions[i];
    if (IsHidden(d)) continue;
    if (withLabels && !fTable.dimensions[d].hideLabel) entries.push_back({d, 0, level++, 1});
    const std::vector<int> path = VisiblePath(d, line[i]);
    const std::size_t depth = axis.depths[i];
    for (std::size_t k = 0; k < path.size(); ++k) {
      // In a shallow branch the last label reaches down to the innermost level.
      const bool isLast = k + 1 == path.size();
      entries.push_back({d, path[k], level + k, isLast ? depth - k : 1});
    }
    level += depth;
  }
  return entries;
}

void TableLayout::PlaceHeader(AxisLayout& axis, bool withLabels) const {
  axis.cells.clear();
  std::vector<Entry> previous;
  std::vector<std::size_t> open;  // the cell of each entry of the previous line
  for (std::size_t line = 0; line < axis.lines.size(); ++line) {
    const std::vector<Entry> entries = EntriesOf(axis, axis.lines[line], withLabels);
    // A header cell spans the lines that agree in it and in all that lies outside it. The innermost label
    // is the line's own, even where it repeats the one before.
    std::size_t shared = 0;
    while (shared + 1 < entries.size() && shared < previous.size() &&
           previous[shared].dimension == entries[shared].dimension &&
           previous[shared].label == entries[shared].label) {
      ++axis.cells[open[shared]].span;
      ++shared;
    }
    open.resize(shared);
    for (std::size_t k = shared; k < entries.size(); ++k) {
      const Entry& entry = entries[k];
      const PivotLabel& label =
          fTable.dimensions[entry.dimension].labels[static_cast<std::size_t>(entry.label)];
      open.push_back(axis.cells.size());
      axis.cells.push_back({entry.level, entry.levelSpan, line, 1, label.text, KnownMarks(label.notes),
                            k + 1 == entries.size()});
    }
    previous = entries;
  }
}

AxisLayout TableLayout::ColumnBlock(std::size_t first, std::size_t count) const {
  AxisLayout block = fColumns;
  const auto begin = fColumns.lines.begin() + static_cast<std::ptrdiff_t>(first);
  block.lines.assign(begin, begin + static_cast<std::ptrdiff_t>(count));
  block.cells.clear();
  for (const HeaderCell& cell : fColumns.cells) {
    const std::size_t from = std::max(cell.first, first),
                      to = std::min(cell.first + cell.span, first + count);
    if (from >= to) continue;
    HeaderCell part = cell;
    part.first = from - first;
    part.span = to - from;
    block.cells.push_back(std::move(part));
  }
  return block;
}

void TableLayout::MakeStub() {
  std::size_t level = 0;
  for (std::size_t i = 0; i < fRows.dimensions.size(); ++i) {
    const std::size_t d = fRows.dimensions[i];
    if (IsHidden(d)) continue;
    const PivotDimension& dimension = fTable.dimensions[d];
    const std::size_t depth = fRows.depths[i];
    HeaderCell cell;
    cell.level = level;
    cell.levelSpan = depth;
    if (!dimension.hideLabel) {
      cell.text = dimension.Label();
      cell.marks = KnownMarks(dimension.labels[0].notes);
    }
    fStub.push_back(std::move(cell));
    level += depth;
  }
}

// Letters run as the eye does: title, column labels, row labels, then the cells row by row.
void TableLayout::NumberNotes() {
  std::vector<std::string> ofTitle = fTable.notes;
  for (const PivotDimension& dimension : fTable.dimensions) {
    if (dimension.hideLabel)
      ofTitle.insert(ofTitle.end(), dimension.labels[0].notes.begin(), dimension.labels[0].notes.end());
  }
  fTitleMarks = Marks(ofTitle);
  NumberLabelNotes(fColumns);
  NumberLabelNotes(fRows);
  const bool anyNote = std::any_of(fTable.AllCells().begin(), fTable.AllCells().end(),
                                   [](const auto& cell) { return !cell.second.notes.empty(); });
  if (!anyNote) return;
  for (std::size_t row = 0; row < fRows.lines.size(); ++row) {
    for (std::size_t column = 0; column < fColumns.lines.size(); ++column) {
      if (const PivotCell* cell = Find(row, column); cell != nullptr && !cell->notes.empty())
        Marks(cell->notes);
    }
  }
}

void TableLayout::NumberLabelNotes(const AxisLayout& axis) {
  for (const std::size_t d : axis.dimensions) {
    const PivotDimension& dimension = fTable.dimensions[d];
    if (!dimension.hideLabel) Marks(dimension.labels[0].notes);
    for (std::size_t label = 1; label < dimension.labels.size(); ++label)
      Marks(dimension.labels[label].notes);
  }
}

std::string TableLayout::Marks(const std::vector<std::string>& notes) {
  for (const std::string& note : notes) {
    const auto [at, isNew] = fLetters.try_emplace(note, Letter(fLetters.size()));
    if (isNew) fFootnotes.push_back({at->second, note});
  }
  return KnownMarks(notes);
}

std::string TableLayout::KnownMarks(const std::vector<std::string>& notes) const {
  std::string marks;
  for (const std::string& note : notes) {
    const auto at = fLetters.find(note);
    if (at == fLetters.end()) continue;
    if (!marks.empty()) marks += ',';
    marks += at->second;
  }
  return marks;
}

const PivotCell* TableLayout::Find(std::size_t row, std::size_t column) const {
  std::vector<int> coordinates(fTable.dimensions.size());
  for (std::size_t i = 0; i < fRows.dimensions.size(); ++i)
    coordinates[fRows.dimensions[i]] = fRows.lines[row][i];
  for (std::size_t i = 0; i < fColumns.dimensions.size(); ++i) {
    coordinates[fColumns.dimensions[i]] = fColumns.lines[column][i];
  }
  return fTable.Find(coordinates);
}

LayoutCell TableLayout::At(std::size_t row, std::size_t column) const {
  const PivotCell* cell = Find(row, column);
  if (cell == nullptr) return {};
  return {ContentText(cell->content), KnownMarks(cell->notes),
          std::holds_alternative<host::BpNumber>(cell->content)};
}

std::vector<std::string> TableLayout::Path(const AxisLayout& axis, std::size_t line) const {
  std::vector<std::string> path;
  for (std::size_t i = 0; i < axis.dimensions.size(); ++i) {
    const auto part = fTable.dimensions[axis.dimensions[i]].Path(axis.lines[line][i]);
    path.insert(path.end(), part.begin(), part.end());
  }
  return path;
}

}  // namespace standalone
