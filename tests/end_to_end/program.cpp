#include "program.h"

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <regex>
#include <thread>

namespace {

std::optional<double> Number(const std::string& text) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !std::isfinite(value)) return std::nullopt;
  return value;
}

bool SameLabel(const std::string& a, const std::string& b) {
  if (a == b) return true;
  const std::optional<double> x = Number(a);
  const std::optional<double> y = Number(b);
  return x && y && std::abs(*x - *y) <= 1e-9 * std::max(std::abs(*x), std::abs(*y));
}

bool IsSubsequence(const std::vector<std::string>& wanted, const nlohmann::json& path) {
  auto at = path.begin();
  for (const std::string& label : wanted) {
    while (at != path.end() && !SameLabel(label, at->get<std::string>()))
      ++at;
    if (at == path.end()) return false;
    ++at;
  }
  return true;
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tavoreg-test-XXXXXX").string();
  fPath = ::mkdtemp(pattern.data());
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(fPath, ignored);
}

std::filesystem::path TemporaryFolder::Write(const std::string& name, const std::string& content) const {
  std::ofstream(fPath / name, std::ios::binary) << content;
  return fPath / name;
}

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string WithoutSeconds(const std::string& text) {
  static const std::regex seconds("\\([0-9]+\\.[0-9]+ s\\)");
  static const std::regex rule("(═)+");
  return std::regex_replace(std::regex_replace(text, seconds, "(… s)"), rule, "═");
}

std::string Settled(const std::string& text) {
  static const std::regex lastChange("change of the log-likelihood is[^;]*;");
  return std::regex_replace(WithoutSeconds(text), lastChange, "change of the log-likelihood is …;");
}

namespace {

/// The program as a child process, with both output streams in files.
class Child {
 public:
  Child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
        const std::filesystem::path& folder) {
    std::vector<std::string> words = {program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words)
      argv.push_back(word.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, Output().c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, Messages().c_str(), O_WRONLY | O_CREAT, 0600);
    fbStarted = posix_spawn(&fProcess, program.c_str(), &actions, nullptr, argv.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
  }

  bool HasEnded() {
    if (fbStarted && !fbEnded) fbEnded = ::waitpid(fProcess, &fStatus, WNOHANG) == fProcess;
    return !fbStarted || fbEnded;
  }
  bool HasSpoken() const {
    std::error_code ignored;
    const auto size = std::filesystem::file_size(Messages(), ignored);
    return !ignored && size > 0;
  }
  void Interrupt() const { ::kill(fProcess, SIGINT); }

  ProgramRun Wait() {
    ProgramRun run;
    if (fbStarted && !fbEnded) fbEnded = ::waitpid(fProcess, &fStatus, 0) == fProcess;
    if (fbEnded) run.exitStatus = WIFEXITED(fStatus) ? WEXITSTATUS(fStatus) : 128 + WTERMSIG(fStatus);
    run.output = ReadText(Output());
    run.messages = ReadText(Messages());
    return run;
  }

 private:
  std::filesystem::path Output() const { return fScratch.Path() / "out"; }
  std::filesystem::path Messages() const { return fScratch.Path() / "err"; }

  TemporaryFolder fScratch;
  pid_t fProcess = 0;
  int fStatus = 0;
  bool fbStarted = false;
  bool fbEnded = false;
};

}  // namespace

ProgramRun RunProgram(const std::vector<std::string>& arguments, const std::filesystem::path& folder) {
  return RunCopy(TAVOREG_PROGRAM, arguments, folder);
}

ProgramRun RunCopy(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const std::filesystem::path& folder) {
  return Child(program, arguments, folder).Wait();
}

ProgramRun InterruptProgram(const std::vector<std::string>& arguments, const std::filesystem::path& folder) {
  Child child(TAVOREG_PROGRAM, arguments, folder);
  while (!child.HasEnded() && !child.HasSpoken())
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  if (!child.HasEnded()) child.Interrupt();
  return child.Wait();
}

ProgramRun RunOnTerminal(const std::vector<std::string>& arguments, const std::filesystem::path& folder) {
  ProgramRun run;
  std::vector<std::string> words = {TAVOREG_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words)
    argv.push_back(word.data());
  argv.push_back(nullptr);

  int terminal = -1;
  const pid_t process = ::forkpty(&terminal, nullptr, nullptr, nullptr);
  if (process < 0) return run;
  if (process == 0) {  // nothing but calls that are safe between fork and exec
    if (::chdir(folder.c_str()) == 0) ::execv(TAVOREG_PROGRAM, argv.data());
    ::_exit(127);
  }
  char block[4096];
  // When the program has ended, reading from its terminal fails (EIO).
  for (ssize_t count; (count = ::read(terminal, block, sizeof block)) > 0;)
    run.output.append(block, static_cast<std::size_t>(count));
  ::close(terminal);
  int status = 0;
  if (::waitpid(process, &status, 0) == process && WIFEXITED(status)) run.exitStatus = WEXITSTATUS(status);
  std::erase(run.output, '\r');  // the terminal makes each line feed a carriage return and a line feed
  return run;
}

nlohmann::json FindCellIn(const nlohmann::json& table, const std::vector<std::string>& row,
                          const std::vector<std::string>& column) {
  nlohmann::json found;
  int hits = 0;
  for (const auto& cell : table["cells"]) {
    if (!IsSubsequence(row, cell["row"]) || !IsSubsequence(column, cell["column"])) continue;
    found = cell;
    ++hits;
  }
  return hits == 1 ? found : nlohmann::json();
}

nlohmann::json FindCell(const nlohmann::json& document, const std::string& table,
                        const std::vector<std::string>& row, const std::vector<std::string>& column,
                        int command) {
  nlohmann::json found;
  int hits = 0;
  for (const auto& candidate : document["commands"][static_cast<std::size_t>(command)]["tables"]) {
    if (candidate["id"] != table) continue;
    for (const auto& cell : candidate["cells"]) {
      if (!IsSubsequence(row, cell["row"]) || !IsSubsequence(column, cell["column"])) continue;
      found = cell;
      ++hits;
    }
  }
  return hits == 1 ? found : nlohmann::json();
}
