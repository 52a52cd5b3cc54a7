#include "program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <regex>

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

ProgramRun RunProgram(const std::vector<std::string>& arguments, const std::filesystem::path& folder) {
  const TemporaryFolder scratch;
  const std::filesystem::path out = scratch.Path() / "out";
  const std::filesystem::path err = scratch.Path() / "err";
  std::vector<std::string> words = {TAVOREG_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words)
    argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT, 0600);
  pid_t child = 0;
  ProgramRun run;
  if (posix_spawn(&child, TAVOREG_PROGRAM, &actions, nullptr, argv.data(), environ) == 0) {
    int status = 0;
    ::waitpid(child, &status, 0);
    run.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  posix_spawn_file_actions_destroy(&actions);
  run.output = ReadText(out);
  run.messages = ReadText(err);
  return run;
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
