#include "standalone/files/data_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>

#include "standalone/data/cell_scanner.h"
#include "standalone/data/cells.h"
#include "standalone/data/file_text.h"
#include "standalone/data/names.h"
#include "standalone/data/read_columns.h"
#include "standalone/data/row_slices.h"
#include "standalone/data/schema_columns.h"
#include "standalone/data/table_schema.h"
#include "standalone/files/csv_writer.h"
#include "standalone/files/vdt_file.h"
#include "standalone/text/ascii.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

namespace fs = std::filesystem;

// Beyond any survey: a file whose line feeds got lost must not become as many variables.
constexpr std::size_t kMostColumns = 100000;
constexpr std::size_t kListedRenames = 50;
constexpr std::size_t kShownHeader = 80;  // characters of a header text in a message

/// Reads one delimited file, step by step; the first step that fails ends it with an error.
class DelimitedReader {
 public:
  explicit DelimitedReader(const ReadOptions& options) : fOptions(options) {}

  ReadResult Read() {
    fResult.ok = ReadText() && ReadHeader() && ReadSchema() && ReadBody();
    if (!fResult.ok) fResult.table = Table();
    return std::move(fResult);
  }

 private:
  bool ReadText();
  bool ReadHeader();
  bool ReadSchema();
  bool ReadBody();
  bool AddVariables(ReadColumns read);
  bool TakeRoom(const SchemaField& field, const host::VORN_Variable& variable);
  void WarnOfRenames();

  bool Fail(std::string error) {
    fResult.error = std::move(error);
    return false;
  }
  bool FailAt(const char* place, std::string message) {
    return Fail(fText.Describe({static_cast<std::size_t>(place - fText.Begin()), std::move(message)}));
  }

  const ReadOptions& fOptions;
  ReadResult fResult;
  FileText fText;
  char fDelimiter = ',';
  const char* fpBody = nullptr;       // where the rows begin
  std::vector<std::string> fHeaders;  // as written, without blanks around them
  NameList fNames;
  TableSchema fSchema;
  FieldMatch fMatch;
  ReadRules fRules;
  std::size_t fDictionaryBytes = 0;  // that the fields' values take
};

bool DelimitedReader::ReadText() {
  if (const std::string failure = FileText::Read(fOptions.path, fText); !failure.empty()) {
    return Fail(fmt::format("{}: the file can't be read: {}", fOptions.path, failure));
  }
  if (fText.Size() == 0) {
    return Fail(
        fmt::format("{}: the file is empty; its first line must hold the variables' names", fOptions.path));
  }
  // Checked in one go before anything is read, so that all that follows may take valid UTF-8 for granted.
  const std::size_t bad = FindBadByteInParts(fText.View(), std::max(fOptions.threads, 1));
  if (bad == fText.Size()) return true;
  const char* place = fText.Begin() + bad;
  return FailAt(place, *place == '\0' ? "a NUL byte; this is no text in UTF-8, save the file in that encoding"
                                      : "invalid UTF-8; save the file in that encoding");
}

bool DelimitedReader::ReadHeader() {
  fDelimiter = FindDelimiter(fText.View(), DataFileFormOf(fOptions.path) == DataFileForm::kTabs);
  const CellScanner scanner(fDelimiter, fText.End());
  const char* place = fText.Begin();
  if (CellScanner::IsLineEnd(place)) {
    return FailAt(place, "the first line is blank; it must hold the variables' names");
  }
  for (;; ++place) {
    Cell cell;
    if (const char* fault = scanner.Scan(place, cell)) return FailAt(cell.after, fault);
    fHeaders.emplace_back(Trimmed(cell.Text()));
    if (fHeaders.size() > kMostColumns) {
      return FailAt(place, fmt::format("more than {} columns; split the file", kMostColumns));
    }
    place = cell.after;
    if (*place != fDelimiter) break;
  }
  fpBody = CellScanner::SkipLineEnd(place);
  fNames = MakeNames(fHeaders);
  WarnOfRenames();
  return true;
}

void DelimitedReader::WarnOfRenames() {
  const std::vector<std::size_t>& renamed = fNames.renamed;
  if (renamed.empty()) return;
  std::string list;
  for (std::size_t i = 0; i < std::min(renamed.size(), kListedRenames); ++i) {
    list += fmt::format("{}\"{}\" is {}", i == 0 ? "" : ", ", Shortened(fHeaders[renamed[i]], kShownHeader),
                        fNames.names[renamed[i]]);
  }
  if (renamed.size() > kListedRenames) list += fmt::format(", and {} more", renamed.size() - kListedRenames);
  fResult.warnings.push_back(fmt::format(
      "{}: names that commands can't use or that stand twice were changed, the original became the "
      "label: {}",
      fOptions.path, list));
}

bool DelimitedReader::ReadSchema() {
  const std::string path = SchemaPathOf(fOptions);
  if (!path.empty()) {
    SchemaResult read = ReadTableSchema(path);
    if (!read.error.empty()) return Fail(std::move(read.error));
    fResult.warnings.insert(fResult.warnings.end(), read.warnings.begin(), read.warnings.end());
    fSchema = std::move(read.schema);
  }
  fMatch = MatchFields(fSchema, fHeaders, fNames.names);
  if (!fMatch.error.empty()) return Fail(fMatch.error);
  SchemaRules made = RulesFrom(fSchema, fMatch, fNames.names);
  if (!made.error.empty()) return Fail(std::move(made.error));
  fRules = std::move(made.rules);
  return true;
}

bool DelimitedReader::ReadBody() {
  const CellScanner scanner(fDelimiter, fText.End());
  ReadShares shares;
  shares.threads = fOptions.threads;
  ReadColumns read = ReadRows(fText, fpBody, scanner, fRules, shares);
  if (read.fault) return Fail(fText.Describe(read.fault));
  return AddVariables(std::move(read));
}

bool DelimitedReader::TakeRoom(const SchemaField& field, const host::VORN_Variable& variable) {
  const std::size_t values = field.categories.size() + field.missingValues.size();
  fDictionaryBytes +=
      values * static_cast<std::size_t>(host::CellCount(variable.GetType())) * sizeof(host::OBS);
  if (fDictionaryBytes <= kDictionaryRoom) return true;
  return Fail(
      fmt::format("{}:{}: field \"{}\": its values, as wide as the variable, would fill the memory; leave "
                  "out value labels, or make the variable narrower",
                  fSchema.path, field.line, Shortened(field.name, kShownHeader)));
}

bool DelimitedReader::AddVariables(ReadColumns read) {
  for (std::size_t i = 0; i < read.columns.size(); ++i) {
    host::VORN_Variable variable = VariableOf(fNames.names[i], read.columns[i]);
    if (fHeaders[i] != fNames.names[i]) variable.SetLabel(fHeaders[i]);
    if (fMatch.fields[i] != nullptr) {
      if (!TakeRoom(*fMatch.fields[i], variable)) return false;
      std::string error = ApplyField(fSchema, *fMatch.fields[i], variable);
      if (!error.empty()) return Fail(std::move(error));
    }
    fResult.table.Add(std::move(variable)).cells = std::move(read.columns[i].cells);
  }
  fResult.table.SetCaseCount(read.rows);
  fResult.table.SetDocuments(std::move(fSchema.documents));
  return true;
}

ReadResult Failure(std::string error) {
  ReadResult result;
  result.error = std::move(error);
  return result;
}

}  // namespace

DataFileForm DataFileFormOf(const std::string& path) {
  const std::string ending = UpperOf(fs::path(path).extension().string());
  if (ending == ".CSV") return DataFileForm::kCommas;
  if (ending == ".TSV") return DataFileForm::kTabs;
  if (ending == ".VDT") return DataFileForm::kCaseFile;
  return DataFileForm::kUnknown;
}

std::string SchemaPathOf(const ReadOptions& options) {
  if (!options.schemaPath.empty() || DataFileFormOf(options.path) == DataFileForm::kCaseFile)
    return options.schemaPath;
  std::string path = SchemaPathFor(options.path);
  std::error_code ignored;
  return fs::exists(path, ignored) ? path : std::string();
}

ReadResult ReadDataFile(const ReadOptions& options) {
  const DataFileForm form = DataFileFormOf(options.path);
  if (form == DataFileForm::kUnknown) {
    return Failure(
        fmt::format("{}: the file's ending tells its form, and must be .csv, .tsv or .vdt", options.path));
  }
  if (form == DataFileForm::kCaseFile && !options.schemaPath.empty()) {
    return Failure(fmt::format("{}: a case file has a dictionary of its own; leave out the schema {}",
                               options.path, options.schemaPath));
  }
  try {
    return form == DataFileForm::kCaseFile ? ReadVdt(options.path) : DelimitedReader(options).Read();
  } catch (const std::bad_alloc&) {
    return Failure(fmt::format("{}: the data needs more memory than there is", options.path));
  } catch (const std::length_error&) {
    return Failure(fmt::format("{}: the data needs more memory than there is", options.path));
  }
}

}  // namespace standalone
