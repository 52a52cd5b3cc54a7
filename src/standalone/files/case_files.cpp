// Files by the names that a command gives them: checks of names, and case files beside the active data.
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "host/files.h"
#include "host/session.h"
#include "standalone/data/table.h"
#include "standalone/files/data_reader.h"
#include "standalone/files/data_writer.h"
#include "standalone/files/dictionary_check.h"

namespace host {

namespace {

namespace fs = std::filesystem;

fs::path PathOf(std::string_view name) {
  return {BEPesGetInputPath(name)};
}

bool IsFolder(const fs::path& path) {
  std::error_code ignored;
  return !path.has_filename() || fs::is_directory(path, ignored);
}

/// The folder in which a file of this path lies or would be made.
fs::path FolderOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

}  // namespace

bool CheckFileRef(std::string_view name) {
  if (name.empty() || name.find('\0') != std::string_view::npos) return false;
  return !IsFolder(PathOf(name));
}

bool ValidateFileSpecification(std::string_view name) {
  return CheckFileRef(name) && ::access(PathOf(name).c_str(), R_OK) == 0;
}

bool UserCaseFileSpec::Init(std::string name, bool isLiteral, bool forOutput) {
  fName = std::move(name);
  fIsLiteral = isLiteral;
  fForOutput = forOutput;
  fIsInit = !fName.empty();
  return fIsInit;
}

bool UserCaseFileSpec::IsValid() const {
  if (!fIsInit || !CheckFileRef(fName)) return false;
  // Writing goes through a new file in the same folder, so the folder's permissions count, not the file's.
  return !fForOutput || ::access(FolderOf(PathOf(fName)).c_str(), W_OK | X_OK) == 0;
}

bool UserCaseFileSpec::Exists() const {
  if (!fIsInit || !CheckFileRef(fName)) return false;
  std::error_code ignored;
  return fForOutput ? fs::exists(PathOf(fName), ignored) : ValidateFileSpecification(fName);
}

namespace {

/// A data source that fills a table of its own.
class TableStore final : public IndependentDataStore {
 public:
  /// `path` is what messages call the file.
  explicit TableStore(std::string path) : fPath(std::move(path)) {}

  unsigned ColumnCount() const override { return fpSource->ColumnCount(); }
  const VORN_Variable* GetVariable(unsigned index) const override { return Source().GetVariable(index); }
  VORN_Variable* GetVariable(unsigned index) override { return fpSource->GetVariable(index); }
  int FindVarIndex(std::string_view name) const override { return fpSource->FindVarIndex(name); }
  VORN_Variable* MakeVariable(int type, int& index) override {
    return fbHasDictionary ? nullptr : fpSource->MakeVariable(type, index);
  }
  std::unique_ptr<VORN_InputCaseIterator> NewInputIterator(int mode) override {
    return fpSource->NewInputIterator(mode);
  }

  void SaveDocuments(const DSDocument& document) override { fTable.SetDocuments(document.Lines()); }
  bool WriteDictionary(std::string& error) override;
  bool AddCase(const VORN_Case& row, std::string& error) override;

  /// Writes what there is to the path.
  bool WriteFile(std::string& error) const;

 private:
  const VORN_DataSource& Source() const { return *fpSource; }
  bool HasShapeOf(const VORN_Case& row) const;

  bool Fail(std::string_view reason, std::string& error) const {
    error = fmt::format("{} cannot be written: {}", fPath, reason);
    return false;
  }

  std::string fPath;
  standalone::Table fTable;
  std::unique_ptr<VORN_DataSource> fpSource = standalone::MakeProcedureDataSource(fTable);
  bool fbHasDictionary = false;
};

bool TableStore::WriteDictionary(std::string& error) {
  const std::string fault = standalone::DictionaryFault(fTable);
  fbHasDictionary = fault.empty();
  return fbHasDictionary || Fail(fault, error);
}

bool TableStore::HasShapeOf(const VORN_Case& row) const {
  if (row.ColumnCount() != fTable.ColumnCount()) return false;
  for (unsigned i = 0; i < row.ColumnCount(); ++i) {
    if (row.Type(i) != fTable.At(i).variable.GetType()) return false;
  }
  return true;
}

bool TableStore::AddCase(const VORN_Case& row, std::string& error) {
  if (!fbHasDictionary) return Fail("a case comes before the dictionary", error);
  if (!HasShapeOf(row)) return Fail("a case has other variables than the file", error);
  for (unsigned i = 0; i < row.ColumnCount(); ++i) {
    standalone::Column& column = fTable.At(i);
    column.cells.insert(column.cells.end(), row.Cells(i), row.Cells(i) + column.Stride());
  }
  fTable.SetCaseCount(fTable.CaseCount() + 1);
  return true;
}

bool TableStore::WriteFile(std::string& error) const {
  if (!fbHasDictionary) return Fail("it has no dictionary yet", error);
  error = standalone::WriteDataFile(fPath, fTable);
  return error.empty();
}

}  // namespace

struct UserInputCaseFile::Impl {
  standalone::Table table;
  std::unique_ptr<VORN_DataSource> source;
};

UserInputCaseFile::UserInputCaseFile(std::unique_ptr<Impl> impl) : fpImpl(std::move(impl)) {}
UserInputCaseFile::~UserInputCaseFile() = default;

std::unique_ptr<UserInputCaseFile> UserInputCaseFile::Open(const UserCaseFileSpec& spec, std::string& error) {
  if (!spec.IsInit()) {
    error = "no file is named";
    return nullptr;
  }
  standalone::ReadOptions options;
  options.path = BEPesGetInputPath(spec.DocumentationString());
  options.threads = GETTHREADS();
  standalone::ReadResult read = standalone::ReadDataFile(options);
  if (!read.ok) {
    error = std::move(read.error);
    return nullptr;
  }
  auto impl = std::make_unique<Impl>();
  impl->table = std::move(read.table);
  impl->source = standalone::MakeProcedureDataSource(impl->table);
  return std::unique_ptr<UserInputCaseFile>(new UserInputCaseFile(std::move(impl)));
}

VORN_DataSource& UserInputCaseFile::DataSource() {
  return *fpImpl->source;
}

struct UserOutputCaseFile::Impl {
  explicit Impl(std::string path) : store(std::move(path)) {}
  TableStore store;
};

UserOutputCaseFile::UserOutputCaseFile(std::unique_ptr<Impl> impl) : fpImpl(std::move(impl)) {}
UserOutputCaseFile::~UserOutputCaseFile() = default;

std::unique_ptr<UserOutputCaseFile> UserOutputCaseFile::Create(const UserCaseFileSpec& spec,
                                                               std::string& error) {
  if (!spec.IsInit()) {
    error = "no file is named";
    return nullptr;
  }
  const std::string path = BEPesGetInputPath(spec.DocumentationString());
  error = standalone::OutputNameFault(path);
  if (error.empty() && !spec.IsValid())
    error = fmt::format("{} cannot be written: its folder can't be written", path);
  if (!error.empty()) return nullptr;
  return std::unique_ptr<UserOutputCaseFile>(new UserOutputCaseFile(std::make_unique<Impl>(path)));
}

IndependentDataStore& UserOutputCaseFile::DataSource() {
  return fpImpl->store;
}

bool UserOutputCaseFile::Commit(std::string& error) {
  return fpImpl->store.WriteFile(error);
}

}  // namespace host
