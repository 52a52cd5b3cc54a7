#include "program_tables.h"

#include "output_query.h"
#include "reference_tables.h"
#include "standalone/files/data_reader.h"
#include "standalone/session/embedded_session.h"
#include "standalone/session/run_commands.h"
#include "test_folder.h"

namespace reference {

namespace {

/// The name of a table as `CellName` takes it.
std::string TableName(const standalone::PivotTable& table) {
  if (table.id == "EffectsContrast" || table.id == "OddsRatios") return table.id + " " + table.title;
  const bool isOfHypothesis = table.id == "ContrastCoefficients" || table.id == "IndividualTestResults" ||
                              table.id == "OverallTestResults";
  return isOfHypothesis ? table.id + " " + table.heading.back() : table.id;
}

void Collect(const standalone::PivotTable& table, ProgramTables& result) {
  for (const auto& [coordinates, cell] : table.AllCells()) {
    const std::string name =
        CellName(TableName(table), test_support::PathOf(table, coordinates, host::BpPlace::kRow),
                 test_support::PathOf(table, coordinates, host::BpPlace::kColumn));
    const auto* number = std::get_if<host::BpNumber>(&cell.content);
    std::optional<double>& value = result.cells[name];
    if (number != nullptr && number->value != host::kSystemMissing) value = number->value;
  }
}

}  // namespace

ProgramTables RunProgram(const std::map<std::string, std::string>& files, int threads) {
  static const TestFolder folder;
  for (const auto& [name, text] : files)
    folder.Write(name, text);
  ProgramTables result;
  standalone::ReadResult data = standalone::ReadDataFile({folder.Path("data.csv"), "", 1});
  if (!data.ok) {
    result.hasFailed = true;
    result.messages.push_back(data.error);
    return result;
  }
  standalone::SessionOptions options;
  options.baseFolder = folder.Path();
  options.threads = threads;
  standalone::Session session(options);
  session.SetTable(&data.table);
  const standalone::SourceText source("command.tvs", files.at("command.tvs"));
  result.hasFailed = standalone::RunCommands(session, source, {{"TAVOREG", TAVOMAIN}}).failed > 0;
  for (const standalone::CommandOutput& output : session.Output().commands) {
    for (const standalone::Message& message : output.messages)
      result.messages.push_back(message.text);
    for (const auto& table : output.tables)
      Collect(*table, result);
  }
  return result;
}

}  // namespace reference
