// Reading the rows of one slice of a delimited text into columns.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/data.h"
#include "standalone/data/cell_scanner.h"
#include "standalone/data/cells.h"
#include "standalone/data/file_text.h"
#include "standalone/data/row_slices.h"

namespace standalone {

/// What a column must or may hold. A guessed column is numeric until a cell is met that is no number, or one
/// that looks like an identifier.
struct ColumnRule {
  enum class Kind { kGuess, kNumber, kInteger, kText };
  Kind kind = Kind::kGuess;
  std::string name;            // for messages
  std::size_t mostWidth = 0;   // a wider text is refused; 0 for no rule of the column's own
  std::size_t leastWidth = 1;  // of a string column
};

/// What the columns of a file must or may hold, one rule each.
struct ReadRules {
  std::vector<ColumnRule> columns;
  std::vector<std::string> missingTexts;  // cells that count as empty, beside empty ones
};

/// One column's share of a slice. Cells of a text hold the place of their text (TextPlace) until the column
/// is complete.
struct ColumnPart {
  host::OBS* cells = nullptr;  // of the slice's first row
  bool isText = false;
  bool isWhole = false;       // only whole numbers may stand here
  std::size_t firstText = 0;  // the first row that holds a place when isText
  int decimals = 0;           // most that were seen
  int longest = 0;            // bytes of the longest number seen
  std::size_t widest = 0;     // bytes of the widest text
  const char* widestPlace = nullptr;
};

/// The place of a cell's text, packed into a cell: offset (46 bits), bytes (17 bits), doubled quotes (1 bit).
struct TextPlace {
  std::size_t offset = 0;
  std::size_t bytes = 0;
  bool hasDoubledQuotes = false;

  void Store(host::OBS& cell) const;
  static TextPlace Load(const host::OBS& cell);
};

/// One thread reads one slice; slices share nothing but the rows of the columns that are their own.
class SliceReader {
 public:
  /// Owns none of these. `parts` has one entry per column, with room for the slice's rows.
  SliceReader(const FileText& text, const CellScanner& scanner, const ReadRules& rules, const RowSlice& slice,
              std::vector<ColumnPart> parts);

  /// Reads all rows; stops at the first fault.
  void Read();
  /// For columns that turned out to be text, here or in another slice: reads the rows again that went in as
  /// numbers.
  void ReadLateText(const std::vector<bool>& isText);

  std::size_t RowCount() const { return fNRows; }
  const TextFault& Fault() const { return fFault; }
  const std::vector<ColumnPart>& Parts() const { return fParts; }

 private:
  const char* ReadRow(const char* place);
  const char* ReadCell(const char* place, std::size_t column);
  bool ReadAsNumber(const Cell& cell, std::size_t column);
  bool StoreText(const Cell& cell, std::size_t column, std::size_t row);
  bool IsMissingText(std::string_view text) const;
  bool IsBlankToTheEnd(const char* place) const;
  const char* Fail(const char* place, std::string message);
  const char* FailRagged(const char* rowStart);

  const FileText& fText;
  const CellScanner& fScanner;
  const ReadRules& fRules;
  RowSlice fSlice;
  std::vector<ColumnPart> fParts;
  bool fbPlainNumbers;  // no text stands for missing, so a number can be taken as soon as it is read
  std::size_t fNRows = 0;
  TextFault fFault;
};

}  // namespace standalone
