#include "standalone/files/csv_writer.h"

#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <system_error>

#include "standalone/data/cells.h"
#include "standalone/data/table_schema.h"
#include "standalone/files/atomic_file.h"
#include "standalone/files/dictionary_check.h"
#include "standalone/text/numbers.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Writes rows; the first value that can't be written ends it with an error.
class DelimitedWriter {
 public:
  DelimitedWriter(PendingFile& file, char delimiter, const Table& table)
      : fFile(file), fDelimiter(delimiter), fTable(table) {}

  /// What went wrong; empty on success.
  std::string Write() {
    WriteHeader();
    for (std::size_t row = 0; row < fTable.CaseCount(); ++row) {
      if (!WriteRow(row)) break;
    }
    return fError.empty() ? fFile.Error() : fError;
  }

 private:
  void WriteHeader();
  bool WriteRow(std::size_t row);
  void AppendNumber(const Column& column, std::size_t row);
  void AppendText(std::string_view text);
  bool NeedsQuotes(std::string_view text) const;
  bool EndCell(std::size_t column) {
    fLine += column + 1 == fTable.ColumnCount() ? '\n' : fDelimiter;
    return fError.empty();
  }

  PendingFile& fFile;
  const char fDelimiter;
  const Table& fTable;
  std::string fLine;
  std::string fError;
};

void DelimitedWriter::WriteHeader() {
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    AppendText(fTable.At(i).variable.GetName());
    EndCell(i);
  }
  fFile.Append(fLine);
}

bool DelimitedWriter::WriteRow(std::size_t row) {
  fLine.clear();
  for (std::size_t i = 0; i < fTable.ColumnCount(); ++i) {
    const Column& column = fTable.At(i);
    if (column.variable.IsNumeric()) {
      AppendNumber(column, row);
    } else {
      const std::string_view text =
          UnpaddedText(&column.cells[row * column.Stride()], column.variable.GetType());
      if (FindBadByte(text) != text.size()) fError = BadTextClause(column, row);
      AppendText(text);
    }
    if (!EndCell(i)) return false;
  }
  return fFile.Append(fLine);
}

void DelimitedWriter::AppendNumber(const Column& column, std::size_t row) {
  const double number = column.cells[row].number;
  if (number == host::kSystemMissing) {
    AppendText({});
    return;
  }
  if (!std::isfinite(number)) fError = BadNumberClause(column, row);
  AppendShortest(fLine, number);
}

bool DelimitedWriter::NeedsQuotes(std::string_view text) const {
  if (text.empty()) return fTable.ColumnCount() == 1;  // a blank line might get lost
  // A comma is taken for the delimiter where a file of one column doesn't show another.
  const bool hasSpecial = text.find_first_of("\"\r\n,") != std::string_view::npos ||
                          text.find(fDelimiter) != std::string_view::npos;
  // Other programs drop blanks at a cell's ends, and all drop what looks like a mark at the file's beginning.
  return hasSpecial || text.front() == ' ' || text.front() == '\t' || text.back() == '\t' ||
         text.starts_with(kByteOrderMark);
}

void DelimitedWriter::AppendText(std::string_view text) {
  if (!NeedsQuotes(text)) {
    fLine += text;
    return;
  }
  fLine += '"';
  for (const char c : text) {
    if (c == '"') fLine += '"';
    fLine += c;
  }
  fLine += '"';
}

/// A second name for the file at a path, under which it outlives its replacement. Where the file system knows
/// no second names there is none, and a failure to put the file back is then possible.
class KeptFile {
 public:
  explicit KeptFile(const fs::path& path) : fPath(path) {
    std::error_code failure;
    fbWasThere = fs::exists(path, failure);
    if (!fbWasThere) return;
    fs::path kept = path.parent_path() /
                    ("." + path.filename().string().substr(0, 200) + ".kept-" + std::to_string(::getpid()));
    fs::remove(kept, failure);
    fs::create_hard_link(fs::canonical(path, failure), kept, failure);
    if (failure) fs::copy_file(path, kept, failure);
    if (!failure) fKept = std::move(kept);
  }
  ~KeptFile() {
    std::error_code ignored;
    if (!fKept.empty()) fs::remove(fKept, ignored);
  }
  KeptFile(const KeptFile&) = delete;
  KeptFile& operator=(const KeptFile&) = delete;

  /// Puts things back as they were.
  void Restore() {
    std::error_code ignored;
    if (!fbWasThere) fs::remove(fPath, ignored);
    if (fKept.empty()) return;
    fs::rename(fKept, fs::weakly_canonical(fPath, ignored), ignored);
    fKept.clear();
  }

 private:
  fs::path fPath;
  fs::path fKept;
  bool fbWasThere = false;
};

}  // namespace

std::string SchemaPathFor(const std::string& path) {
  return fs::path(path).replace_extension(".schema.json").string();
}

std::string WriteDelimited(const std::string& path, char delimiter, const Table& table) {
  PendingFile data(path);
  if (!data.Error().empty()) return data.Error();
  const std::string schemaPath = SchemaPathFor(path);
  PendingFile schema(schemaPath);
  const std::string schemaText = SchemaText(table);
  if (schemaText.size() > kMostSchemaBytes)
    return "the labels take more room than a schema may have; write a .vdt file";
  if (!schema.Append(schemaText) || !schema.Complete())
    return "its schema " + schemaPath + ": " + schema.Error();
  if (std::string error = DelimitedWriter(data, delimiter, table).Write(); !error.empty()) return error;
  if (!data.Complete()) return data.Error();

  // Both files are complete and on the disk now: nearly all that can fail has failed by then.
  KeptFile before(schemaPath);
  if (!schema.Publish()) return "its schema " + schemaPath + ": " + schema.Error();
  if (!data.Publish()) before.Restore();
  return data.Error();
}

}  // namespace standalone
