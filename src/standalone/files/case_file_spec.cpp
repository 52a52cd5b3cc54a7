// Checks of the files that a command names.
#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "host/files.h"

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
  return !fForOutput || ::access(FolderOf(PathOf(fName)).c_str(), W_OK | X_OK) == 0;
}

bool UserCaseFileSpec::Exists() const {
  if (!fIsInit || !CheckFileRef(fName)) return false;
  std::error_code ignored;
  return fForOutput ? fs::exists(PathOf(fName), ignored) : ValidateFileSpecification(fName);
}

}  // namespace host
