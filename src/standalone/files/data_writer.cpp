#include "standalone/files/data_writer.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <new>
#include <system_error>

#include "standalone/files/csv_writer.h"
#include "standalone/files/data_reader.h"
#include "standalone/files/dictionary_check.h"
#include "standalone/files/vdt_file.h"

namespace standalone {

namespace {

namespace fs = std::filesystem;

std::string Message(const std::string& path, const std::string& reason) {
  return reason.empty() ? reason : fmt::format("{} cannot be written: {}", path, reason);
}

/// True for a schema that this program has written: such a file goes with its data.
bool IsWrittenSchema(const std::string& path) {
  std::string begin(std::size_t{1} << 12, '\0');
  std::ifstream stream(path, std::ios::binary);
  stream.read(begin.data(), static_cast<std::streamsize>(begin.size()));
  begin.resize(static_cast<std::size_t>(stream.gcount()));
  return begin.starts_with("{\n  \"fields\": [\n    {\"name\":");
}

std::string NameFault(const std::string& path) {
  if (DataFileFormOf(path) == DataFileForm::kUnknown)
    return "the file's ending tells its form, and must be .csv, .tsv or .vdt";
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (fs::is_directory(status)) return "it is a folder";
  if (fs::exists(status)) return fs::is_regular_file(status) ? "" : "it is no regular file";
  if (DataFileFormOf(path) == DataFileForm::kCaseFile) return "";
  const std::string schema = SchemaPathFor(path);
  if (!fs::is_regular_file(schema, ignored) || IsWrittenSchema(schema)) return "";
  return fmt::format(
      "its schema would replace {}, which somebody else has made; move that away, or choose another name",
      schema);
}

std::string Write(const std::string& path, const Table& table) {
  // Asked again, although the program asks before a run: what is at the path may have changed since.
  if (std::string fault = NameFault(path); !fault.empty()) return fault;
  if (std::string fault = DictionaryFault(table); !fault.empty()) return fault;
  const DataFileForm form = DataFileFormOf(path);
  if (form == DataFileForm::kCaseFile) return WriteVdt(path, table);
  return WriteDelimited(path, form == DataFileForm::kTabs ? '\t' : ',', table);
}

}  // namespace

std::string OutputNameFault(const std::string& path) {
  return Message(path, NameFault(path));
}

std::string WriteDataFile(const std::string& path, const Table& table) {
  try {
    return Message(path, Write(path, table));
  } catch (const std::bad_alloc&) {
    return Message(path, "there is not enough memory");
  }
}

}  // namespace standalone
