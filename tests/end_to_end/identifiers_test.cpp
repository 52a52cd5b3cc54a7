// Identifiers in a text file keep all their characters.
#include <gtest/gtest.h>

#include "survey_files.h"

namespace {

constexpr const char* kCommand =
    "TAVOREG y BY g WITH x\n  /PLAN FILE='plan.xml'\n  /STATISTICS PARAMETER SE TTEST.\n";

/// The estimates with other names for the units 1 to 5 of each stratum.
Estimates WithUnits(const std::vector<std::string>& names) {
  DataFile data = SurveyData();
  for (auto& row : data.rows) {
    std::string& unit = row[data.ColumnOf("psu")];
    unit = names[static_cast<std::size_t>(std::stoi(unit)) - 1];
  }
  const ProgramRun run = RunAnalysis({kCommand, data.Text()});
  EXPECT_EQ(run.exitStatus, 0) << run.messages;
  return EstimatesOf(run.Json());
}

TEST(Identifiers, OfUnitsThatADoubleCannotTellApartGiveTheSameStandardErrors) {
  const Estimates plain = WithUnits({"1", "2", "3", "4", "5"});
  EXPECT_GT(plain.size(), 2U);
  EXPECT_EQ(WithUnits({"9007199254740992", "9007199254740993", "9007199254740994", "9007199254740995",
                       "9007199254740996"}),
            plain);
  EXPECT_EQ(WithUnits({"01", "1", "2", "3", "4"}), plain) << "in the order of their texts, as the others";
}

}  // namespace
