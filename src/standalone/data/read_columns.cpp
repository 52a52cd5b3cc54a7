// Three steps: slices are read side by side, each into its own rows of the columns; columns that are text in
// any slice get the rows again that went in as numbers; and texts, kept as places until then, are laid out in
// their final width.
#include "standalone/data/read_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <deque>

#include "standalone/data/parallel.h"
#include "standalone/data/row_slices.h"

namespace standalone {

namespace {

// A single wide text widens all cells of its column. The room for texts may exceed the file's size by this
// much and this many times, beyond which a file is refused rather than let to fill the memory.
constexpr std::size_t kTextRoom = std::size_t{256} << 20;
constexpr std::size_t kTextRoomPerByte = 64;

class ColumnsReader {
 public:
  ColumnsReader(const FileText& text, const char* body, const CellScanner& scanner, const ReadRules& rules,
                const ReadShares& shares)
      : fText(text), fpBody(body), fScanner(scanner), fRules(rules), fShares(shares) {}

  ReadColumns Read() {
    MakeSlices();
    RunParts(fSlices.size(), fShares.threads, [&](std::size_t i) { fSlices[i].Read(); });
    if (TakeFault()) return std::move(fResult);
    JoinKinds();
    RunParts(fSlices.size(), fShares.threads, [&](std::size_t i) { fSlices[i].ReadLateText(fIsText); });
    if (TakeFault()) return std::move(fResult);
    CloseGaps();
    JoinWidths();
    if (fResult.fault) return std::move(fResult);
    RunParts(fResult.columns.size(), fShares.threads, [&](std::size_t i) { LayOut(fResult.columns[i]); });
    return std::move(fResult);
  }

 private:
  void MakeSlices();
  bool TakeFault();
  void JoinKinds();
  void CloseGaps();
  void JoinWidths();
  void LayOut(ReadColumn& column) const;
  void CheckRoom(std::size_t column, const char* widestPlace);

  const FileText& fText;
  const char* fpBody;
  const CellScanner& fScanner;
  const ReadRules& fRules;
  const ReadShares& fShares;
  std::deque<SliceReader> fSlices;
  std::vector<std::size_t> fFirstRows;  // per slice, where its rows begin in the columns
  std::vector<bool> fIsText;            // per column
  std::size_t fTextRoom = 0;
  ReadColumns fResult;
};

void ColumnsReader::MakeSlices() {
  const std::string_view body(fpBody,
                              fpBody < fText.End() ? static_cast<std::size_t>(fText.End() - fpBody) : 0);
  const auto threads = static_cast<std::size_t>(std::max(fShares.threads, 1));
  const std::size_t count = std::clamp<std::size_t>(body.size() / fShares.leastSlice, 1, threads);
  const std::vector<RowSlice> slices = CutIntoSlices(body, count, fRules.columns.size(), fShares.threads);

  std::size_t rows = 0;
  for (const RowSlice& slice : slices) {
    fFirstRows.push_back(rows);
    rows += slice.rowBound;
  }
  fResult.columns.resize(fRules.columns.size());
  RunParts(fResult.columns.size(), fShares.threads,
           [&](std::size_t i) { fResult.columns[i].cells.resize(rows); });
  for (std::size_t s = 0; s < slices.size(); ++s) {
    std::vector<ColumnPart> parts(fResult.columns.size());
    for (std::size_t i = 0; i < parts.size(); ++i)
      parts[i].cells = fResult.columns[i].cells.data() + fFirstRows[s];
    fSlices.emplace_back(fText, fScanner, fRules, slices[s], std::move(parts));
  }
}

bool ColumnsReader::TakeFault() {
  for (const SliceReader& slice : fSlices) {
    if (!slice.Fault()) continue;
    fResult.fault = slice.Fault();
    fResult.columns.clear();
    return true;
  }
  return false;
}

void ColumnsReader::JoinKinds() {
  fIsText.assign(fResult.columns.size(), false);
  for (std::size_t i = 0; i < fIsText.size(); ++i) {
    fIsText[i] = fRules.columns[i].kind == ColumnRule::Kind::kText ||
                 std::any_of(fSlices.begin(), fSlices.end(),
                             [i](const SliceReader& slice) { return slice.Parts()[i].isText; });
  }
}

/// The slices' room was a bound; moves their rows together and drops what is left over.
void ColumnsReader::CloseGaps() {
  RunParts(fResult.columns.size(), fShares.threads, [&](std::size_t i) {
    std::vector<host::OBS>& cells = fResult.columns[i].cells;
    std::size_t rows = 0;
    for (std::size_t s = 0; s < fSlices.size(); ++s) {
      host::OBS* from = cells.data() + fFirstRows[s];
      if (fFirstRows[s] != rows) std::copy(from, from + fSlices[s].RowCount(), cells.data() + rows);
      rows += fSlices[s].RowCount();
    }
    cells.resize(rows);
  });
  for (const SliceReader& slice : fSlices)
    fResult.rows += slice.RowCount();
}

void ColumnsReader::JoinWidths() {
  for (std::size_t i = 0; i < fResult.columns.size() && !fResult.fault; ++i) {
    ReadColumn& column = fResult.columns[i];
    std::size_t width = std::max(fRules.columns[i].leastWidth, fRules.columns[i].mostWidth);
    const char* widestPlace = fText.Begin();
    for (const SliceReader& slice : fSlices) {
      const ColumnPart& part = slice.Parts()[i];
      column.decimals = std::max(column.decimals, part.decimals);
      column.longest = std::max(column.longest, part.longest);
      if (part.widest <= width) continue;
      width = part.widest;
      widestPlace = part.widestPlace;
    }
    if (!fIsText[i]) continue;
    column.width = static_cast<int>(width);
    column.decimals = column.longest = 0;  // of numbers seen before the first text
    CheckRoom(i, widestPlace);
  }
}

void ColumnsReader::CheckRoom(std::size_t column, const char* widestPlace) {
  const int width = fResult.columns[column].width;
  fTextRoom += static_cast<std::size_t>(host::CellCount(width)) * sizeof(host::OBS) * fResult.rows;
  if (fTextRoom <= kTextRoom + kTextRoomPerByte * fText.Size()) return;
  fResult.fault = {
      static_cast<std::size_t>(widestPlace - fText.Begin()),
      fmt::format("a text of {} bytes makes variable {} too large, as each case gets as much room as the "
                  "widest text; shorten it, or leave the column out",
                  width, fRules.columns[column].name)};
  fResult.columns.clear();
}

void ColumnsReader::LayOut(ReadColumn& column) const {
  if (column.width == 0) return;
  const auto stride = static_cast<std::size_t>(host::CellCount(column.width));
  host::OBS blank;
  std::memset(blank.text, ' ', sizeof blank.text);
  std::vector<host::OBS> cells(stride * fResult.rows, blank);
  char* out = reinterpret_cast<char*>(cells.data());
  for (const host::OBS& cell : column.cells) {
    const TextPlace place = TextPlace::Load(cell);
    const std::string_view raw(fText.Begin() + place.offset, place.bytes);
    if (place.hasDoubledQuotes) {
      const std::string text = Unquoted(raw);
      std::copy(text.begin(), text.end(), out);
    } else {
      std::copy(raw.begin(), raw.end(), out);
    }
    out += stride * sizeof(host::OBS);
  }
  column.cells = std::move(cells);
}

}  // namespace

ReadColumns ReadRows(const FileText& text, const char* body, const CellScanner& scanner,
                     const ReadRules& rules, const ReadShares& shares) {
  return ColumnsReader(text, body, scanner, rules, shares).Read();
}

}  // namespace standalone
