#include "standalone/data/slice_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "standalone/data/cell_number.h"
#include "standalone/text/ascii.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

constexpr std::size_t kExcerpt = 40;  // characters of a cell that a message shows

/// Texts that count as empty in a numeric column whatever the schema says.
bool IsEmptyNumber(std::string_view text) {
  return text.empty() || text == "." || text == "NA";
}

std::size_t DoubledQuotes(std::string_view raw) {
  return static_cast<std::size_t>(std::count(raw.begin(), raw.end(), '"')) / 2;
}

}  // namespace

void TextPlace::Store(host::OBS& cell) const {
  const std::uint64_t packed = (std::uint64_t{offset} << 18) | (bytes << 1) | std::uint64_t{hasDoubledQuotes};
  std::memcpy(cell.text, &packed, sizeof packed);
}

TextPlace TextPlace::Load(const host::OBS& cell) {
  std::uint64_t packed;
  std::memcpy(&packed, cell.text, sizeof packed);
  return {packed >> 18, (packed >> 1) & 0x1FFFF, (packed & 1) != 0};
}

SliceReader::SliceReader(const FileText& text, const CellScanner& scanner, const ReadRules& rules,
                         const RowSlice& slice, std::vector<ColumnPart> parts)
    : fText(text),
      fScanner(scanner),
      fRules(rules),
      fSlice(slice),
      fParts(std::move(parts)),
      fbPlainNumbers(rules.missingTexts.empty()) {
  for (std::size_t i = 0; i < fParts.size(); ++i) {
    fParts[i].isText = rules.columns[i].kind == ColumnRule::Kind::kText;
    fParts[i].isWhole = rules.columns[i].kind == ColumnRule::Kind::kInteger;
  }
}

void SliceReader::Read() {
  const char* place = fSlice.begin;
  while (place != nullptr && place < fSlice.end) {
    // In a file of one column a blank line is an empty cell. Elsewhere blank lines are harmless at the end
    // only; between rows they may stand for a lost one.
    if (CellScanner::IsLineEnd(place) && fParts.size() > 1) {
      if (!IsBlankToTheEnd(place)) {
        Fail(place, "a blank line between the rows; remove it");
      }
      return;
    }
    place = ReadRow(place);
    if (place != nullptr) ++fNRows;
  }
}

const char* SliceReader::ReadRow(const char* place) {
  const char* const rowStart = place;
  const char delimiter = fScanner.Delimiter();
  const std::size_t last = fParts.size() - 1;
  for (std::size_t i = 0;; ++i) {
    ColumnPart& part = fParts[i];
    CellNumber number;
    // Nearly all cells of a survey are plain numbers: they are read where they stand, before the end of the
    // cell is looked for. What isn't plain goes the long way below, so both must agree on every number.
    const char* after = part.isText || !fbPlainNumbers ? nullptr : ReadPlainNumber(place, number);
    if (after != nullptr && (*after == delimiter || CellScanner::IsLineEnd(after)) &&
        (number.decimals == 0 || !part.isWhole)) {
      part.cells[fNRows].number = number.value;
      part.decimals = std::max(part.decimals, number.decimals);
      part.longest = std::max(part.longest, static_cast<int>(after - place));
    } else {
      after = ReadCell(place, i);
      if (after == nullptr) return nullptr;
    }
    const bool isLineEnd = *after != delimiter;
    if (isLineEnd != (i == last)) return FailRagged(rowStart);
    if (isLineEnd) return CellScanner::SkipLineEnd(after);
    place = after + 1;
  }
}

const char* SliceReader::ReadCell(const char* place, std::size_t column) {
  Cell cell;
  if (const char* fault = fScanner.Scan(place, cell)) return Fail(cell.after, fault);
  ColumnPart& part = fParts[column];
  if (!part.isText) {
    if (ReadAsNumber(cell, column)) return cell.after;
    if (fRules.columns[column].kind != ColumnRule::Kind::kGuess) {
      return Fail(cell.begin,
                  fmt::format("\"{}\" is no {}number, which the schema makes of variable {}; correct the "
                              "value, or give the field another type",
                              Shortened(cell.Text(), kExcerpt), part.isWhole ? "whole " : "",
                              fRules.columns[column].name));
    }
    // The rows above went in as numbers and stay so for now: only when all slices are read is it known from
    // where on they must be read again as texts.
    part.isText = true;
    part.firstText = fNRows;
  }
  return StoreText(cell, column, fNRows) ? cell.after : nullptr;
}

bool SliceReader::ReadAsNumber(const Cell& cell, std::size_t column) {
  if (cell.hasDoubledQuotes) return false;
  ColumnPart& part = fParts[column];
  const std::string_view text = Trimmed(cell.Raw());
  CellNumber number;
  if (IsEmptyNumber(text) || IsMissingText(text)) {
    part.cells[fNRows].number = host::kSystemMissing;
    return true;
  }
  if (fRules.columns[column].kind == ColumnRule::Kind::kGuess && LooksLikeIdentifier(text)) return false;
  if (!ReadNumber(text, number) || (part.isWhole && number.value != std::floor(number.value))) return false;
  part.cells[fNRows].number = number.value;
  part.decimals = std::max(part.decimals, number.decimals);
  part.longest = std::max(part.longest, static_cast<int>(std::min(text.size(), kWidestText)));
  return true;
}

bool SliceReader::StoreText(const Cell& cell, std::size_t column, std::size_t row) {
  ColumnPart& part = fParts[column];
  const ColumnRule& rule = fRules.columns[column];
  std::size_t width = cell.Raw().size();
  if (cell.hasDoubledQuotes) width -= DoubledQuotes(cell.Raw());
  if (width > kWidestText) {
    Fail(cell.begin,
         fmt::format("a text of {} bytes, while a variable holds at most {}; shorten it, or leave the "
                     "column out (a quote that is never closed also makes such texts)",
                     width, kWidestText));
    return false;
  }
  if (rule.mostWidth != 0 && width > rule.mostWidth) {
    Fail(cell.begin,
         fmt::format("a text of {} bytes, while the schema's x-format gives variable {} {}; correct the "
                     "value, or make the format wider",
                     width, rule.name, rule.mostWidth));
    return false;
  }
  TextPlace place{static_cast<std::size_t>(cell.begin - fText.Begin()), cell.Raw().size(),
                  cell.hasDoubledQuotes};
  if (!fbPlainNumbers && !cell.hasDoubledQuotes && IsMissingText(Trimmed(cell.Raw()))) {
    place.bytes = 0;
    width = 0;
  }
  place.Store(part.cells[row]);
  if (width > part.widest) {
    part.widest = width;
    part.widestPlace = cell.begin;
  }
  return true;
}

bool SliceReader::IsMissingText(std::string_view text) const {
  return std::find(fRules.missingTexts.begin(), fRules.missingTexts.end(), text) != fRules.missingTexts.end();
}

void SliceReader::ReadLateText(const std::vector<bool>& isText) {
  std::vector<std::size_t> rowsToRead(fParts.size(), 0);
  for (std::size_t i = 0; i < fParts.size(); ++i) {
    if (isText[i]) rowsToRead[i] = fParts[i].isText ? fParts[i].firstText : fNRows;
  }
  const std::size_t rows = *std::max_element(rowsToRead.begin(), rowsToRead.end());
  const char* place = fSlice.begin;
  for (std::size_t row = 0; row < rows; ++row) {
    Cell cell;
    for (std::size_t i = 0; i < fParts.size(); ++i) {
      fScanner.Scan(place, cell);
      if (row < rowsToRead[i] && !StoreText(cell, i, row)) return;
      place = cell.after + 1;
    }
    place = CellScanner::SkipLineEnd(cell.after);
  }
}

bool SliceReader::IsBlankToTheEnd(const char* place) const {
  while (!fScanner.IsAtEnd(place)) {
    if (!CellScanner::IsLineEnd(place)) return false;
    place = CellScanner::SkipLineEnd(place);
  }
  return true;
}

const char* SliceReader::Fail(const char* place, std::string message) {
  fFault = {static_cast<std::size_t>(place - fText.Begin()), std::move(message)};
  return nullptr;
}

/// Counts the line anew from its start, since the reader stopped at the first cell too many or too few.
const char* SliceReader::FailRagged(const char* rowStart) {
  std::size_t count = 0;
  Cell cell;
  for (const char* place = rowStart;; place = cell.after + 1) {
    if (const char* fault = fScanner.Scan(place, cell)) return Fail(cell.after, fault);
    ++count;
    if (*cell.after != fScanner.Delimiter()) break;
  }
  const char* advice = fScanner.Delimiter() == ',' ? " (a decimal comma needs quotes around the number)" : "";
  return Fail(rowStart,
              fmt::format("this line has {} {}, the header has {}; give every line as many cells as the "
                          "header{}",
                          count, count == 1 ? "cell" : "cells", fParts.size(), advice));
}

}  // namespace standalone
