#include "standalone/files/data_writer.h"

#include <fmt/format.h>

#include <filesystem>
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

std::string NameFault(const std::string& path) {
  if (DataFileFormOf(path) == DataFileForm::kUnknown)
    return "the file's ending tells its form, and must be .csv, .tsv or .vdt";
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (fs::is_directory(status)) return "it is a folder";
  return fs::exists(status) && !fs::is_regular_file(status) ? "it is no regular file" : "";
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
