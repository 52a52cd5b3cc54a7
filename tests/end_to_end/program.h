// Running the program as a user does.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

struct ProgramRun {
  int exitStatus = -1;
  std::string output;
  std::string messages;  // standard error

  nlohmann::json Json() const { return nlohmann::json::parse(output, nullptr, false); }
};

/// Runs the program in a folder and waits for it.
ProgramRun RunProgram(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

/// Runs the program on a terminal: standard output and standard error are the same one. What the terminal
/// shows is in `output`, with line feeds alone at the ends of its lines.
ProgramRun RunOnTerminal(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

/// Runs the program and sends it the signal of Ctrl-C as soon as it has written something to standard error.
ProgramRun InterruptProgram(const std::vector<std::string>& arguments, const std::filesystem::path& folder);

/// Runs another copy of the program, by its path, in a folder and waits for it.
ProgramRun RunCopy(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const std::filesystem::path& folder);

/// A fresh folder that is removed at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& Path() const { return fPath; }
  /// Writes a file and returns its path.
  std::filesystem::path Write(const std::string& name, const std::string& content) const;

 private:
  std::filesystem::path fPath;
};

/// Printed output without what differs from run to run: the seconds that a command took, with their rule.
std::string WithoutSeconds(const std::string& text);
/// Printed output without what differs from machine to machine as well: the last change of a likelihood that
/// has converged is noise of rounding.
std::string Settled(const std::string& text);

std::string ReadText(const std::filesystem::path& path);

/// The cells of a table of the first command whose paths hold these labels in order; null when not exactly
/// one fits.
nlohmann::json FindCell(const nlohmann::json& document, const std::string& table,
                        const std::vector<std::string>& row, const std::vector<std::string>& column,
                        int command = 0);
/// The same in one table.
nlohmann::json FindCellIn(const nlohmann::json& table, const std::vector<std::string>& row,
                          const std::vector<std::string>& column);
