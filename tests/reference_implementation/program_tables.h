// What the program reports of some files, cell by cell.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace reference {

struct ProgramTables {
  bool hasFailed = false;
  std::vector<std::string> messages;                   // as a user reads them
  std::map<std::string, std::optional<double>> cells;  // by `CellName`; none: missing
};

/// Reads data.csv, runs command.tvs and collects the tables, in process, through the embedded host.
ProgramTables RunProgram(const std::map<std::string, std::string>& files, int threads);

}  // namespace reference
