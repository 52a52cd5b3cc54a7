// Files by the names that a command gives them.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The path of a name in a command: relative names are taken from the folder of the command file.
std::string BEPesGetInputPath(std::string_view name);
/// True when the name is a legal path for a file (not empty, no NUL, no folder).
bool CheckFileRef(std::string_view name);
/// True when the file exists and can be read.
bool ValidateFileSpecification(std::string_view name);
/// The folder that holds the definition files installed with the module ("vorn-tessel-1.0.dtd").
std::string ModuleFolder();

/// A case file by name, before it is opened.
class UserCaseFileSpec {
 public:
  /// `isLiteral`: the name was quoted. Returns false for an empty name.
  bool Init(std::string name, bool isLiteral, bool forOutput);
  bool IsInit() const { return fIsInit; }
  bool IsValid() const;
  /// True while another part of the run has the file open.
  bool IsInUse() const { return false; }
  bool Exists() const;
  /// The name as the command gives it.
  const std::string& DocumentationString() const { return fName; }

 private:
  std::string fName;
  bool fIsInit = false;
  bool fIsLiteral = false;
  bool fForOutput = false;
};

}  // namespace host
