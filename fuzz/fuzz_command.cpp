// Command files, from their text to the rendered output, over a small survey (fuzz/survey) that they can
// name.
#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <variant>
#include <vector>

#include "source_folder.h"
#include "standalone/command/command_file.h"
#include "standalone/files/data_reader.h"
#include "standalone/output/catalogue.h"
#include "standalone/output/renderers.h"
#include "standalone/session/embedded_session.h"
#include "standalone/session/run_commands.h"
#include "standalone/text/utf8.h"
#include "target.h"
#include "test_folder.h"

namespace {

using fuzz::Require;
using host::TokenInfoObj;
using host::TokenKind;
using standalone::CommandOutput;
using standalone::CommandTokens;
using standalone::SourceText;

constexpr const char* kSurvey = TAVO_SOURCE_DIR "/fuzz/survey/";
constexpr std::array<const char*, 6> kFiles = {"data.csv",   "data.schema.json", "plan.xml",
                                               "stages.xml", "unequal.xml",      "joint.csv"};

/// The survey's files in a folder of their own, which commands may write into.
class Survey {
 public:
  Survey() {
    for (const char* name : kFiles) {
      std::ifstream file(std::string(kSurvey) + name, std::ios::binary);
      fBytes[name].assign(std::istreambuf_iterator<char>(file), {});
      Require(!fBytes[name].empty(), std::string("there is a file ") + name);
    }
  }

  std::string Path() const { return fFolder.Path(); }
  /// Takes away what a command has written, and brings back what it may have written over.
  void Restore() const {
    for (const auto& entry : std::filesystem::directory_iterator(Path()))
      std::filesystem::remove_all(entry.path());
    for (const auto& [name, bytes] : fBytes)
      fFolder.Write(name, bytes);
  }
  standalone::Table Data() const {
    standalone::ReadResult read = standalone::ReadDataFile({fFolder.Path("data.csv"), "", 1});
    Require(read.ok, "the survey can be read: " + read.error);
    return std::move(read.table);
  }

 private:
  TestFolder fFolder;
  std::map<std::string, std::string> fBytes;
};

/// A command may name files to write to; none outside of the survey's folder must be touched.
bool NamesAnotherFolder(const std::vector<CommandTokens>& commands) {
  return std::any_of(commands.begin(), commands.end(), [](const CommandTokens& command) {
    return std::any_of(command.tokens.begin(), command.tokens.end(), [](const TokenInfoObj& token) {
      return token.kind == TokenKind::kLiteral && token.text.find('/') != std::string::npos;
    });
  });
}

std::string Printed(const TokenInfoObj& token) {
  if (token.kind != TokenKind::kLiteral) return token.text;
  std::string text = "'";
  for (const char c : token.text)
    text += c == '\'' ? "''" : std::string(1, c);
  return text + "'";
}

bool IsSame(const TokenInfoObj& a, const TokenInfoObj& b) {
  return a.kind == b.kind && a.code == b.code && a.text == b.text && a.number == b.number;
}

/// Tokens lie in their line, one behind the other.
void CheckPlaces(const CommandTokens& command, const SourceText& source) {
  host::SourcePosition last{1, 1, 0};
  for (const TokenInfoObj& token : command.tokens) {
    const host::SourcePosition& place = token.position;
    const bool isBehind =
        place.line > last.line || (place.line == last.line && place.column >= last.column + last.length);
    Require(isBehind, "tokens stand one behind the other");
    Require(place.line <= source.LineCount() && place.length > 0, "a token has a place");
    const auto length = static_cast<int>(standalone::CountCharacters(source.Line(place.line)));
    Require(place.column >= 1 && place.column + place.length <= length + 1, "a token lies in its line");
    last = place;
  }
}

/// Tokens that are written one behind the other are the same tokens.
void CheckTokens(const CommandTokens& command, const SourceText& source) {
  CheckPlaces(command, source);
  if (!command.errors.empty()) return;
  std::string text;
  for (const TokenInfoObj& token : command.tokens)
    text += Printed(token) + " ";
  const std::vector<CommandTokens> again = standalone::ReadCommands(SourceText("again", text + ".\n"));
  Require(again.size() == 1 && again[0].errors.empty() && again[0].name == command.name,
          "a command that is printed is one command: " + text);
  Require(std::equal(again[0].tokens.begin(), again[0].tokens.end(), command.tokens.begin(),
                     command.tokens.end(), IsSame),
          "printing tokens and reading them leaves them as they were: " + text);
}

void CheckMessages(const CommandOutput& output) {
  bool hasError = false;
  for (const standalone::Message& message : output.messages) {
    hasError = hasError || message.isError;
    Require(!message.text.empty(), "a message says something");
    Require(message.key != "Fault of the program ^1...", "no exception escapes: " + message.text);
  }
  Require(output.failed == hasError, "a command fails with an error message, and only then");
  Require(output.failed || !output.tables.empty(), "a command that runs makes tables");
}

/// What any analysis prints, however odd: finite numbers (a missing one is the host's missing value),
/// probabilities and shares within their bounds.
void CheckNumber(const host::BpNumber& number, const std::string& where) {
  using Kind = host::BpFormatSpec::Kind;
  constexpr double kWhole = 100 * (1 + 1e-12);  // shares are sums of weights over a sum of weights
  if (number.value == host::kSystemMissing) return;
  Require(std::isfinite(number.value), where + ": a number is finite");
  const double most = number.format.kind == Kind::kSignificance ? 1
                      : number.format.kind == Kind::kPercent    ? kWhole
                                                                : HUGE_VAL;
  Require(most == HUGE_VAL || (number.value >= 0 && number.value <= most), where + ": it is in its bounds");
}

void CheckTables(const CommandOutput& output) {
  for (const auto& table : output.tables) {
    for (const auto& [place, cell] : table->AllCells()) {
      if (const auto* number = std::get_if<host::BpNumber>(&cell.content)) CheckNumber(*number, table->id);
    }
  }
}

void CheckRendering(const standalone::Document& document) {
  for (const auto format : {standalone::OutputFormat::kText, standalone::OutputFormat::kMarkdown,
                            standalone::OutputFormat::kHtml, standalone::OutputFormat::kJson}) {
    std::ostringstream out;
    standalone::Render(out, document, format);
    Require(format != standalone::OutputFormat::kJson || nlohmann::json::accept(out.str()),
            "the document is well-formed: " + out.str());
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const Survey survey;
  const SourceText source("fuzz.tvs", std::string(fuzz::TextOf(bytes, size)));
  const std::vector<CommandTokens> commands = standalone::ReadCommands(source);
  for (const CommandTokens& command : commands)
    CheckTokens(command, source);
  if (NamesAnotherFolder(commands)) return 0;

  survey.Restore();
  standalone::Table data = survey.Data();
  standalone::SessionOptions options;
  options.baseFolder = survey.Path();
  standalone::Session session(options);
  session.SetTable(&data);
  const standalone::RunResult result = standalone::RunCommands(session, source, {{"TAVOREG", TAVOMAIN}});
  Require(result.commands == static_cast<int>(commands.size()), "every command runs");
  for (const CommandOutput& output : session.Output().commands) {
    CheckMessages(output);
    CheckTables(output);
  }
  CheckRendering(session.Output());
  return 0;
}
