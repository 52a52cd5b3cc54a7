// Categories whose label or print format reads like that of another one.
#include <algorithm>
#include <set>

#include "reporting_fixture.h"

namespace tavo {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

void SetFormat(standalone::Table& table, const char* name, const host::VORN_Format& format) {
  table.At(static_cast<std::size_t>(table.Find(name))).variable.SetFormat(format);
}

/// The factor a with other values in the place of 1, 2 and 3, printed with one decimal.
class LookAlikes : public Reporting {
 protected:
  void MakeTenths(double one, double two, double three) {
    for (double& a : fRun["a"])
      a = a == 1 ? one : a == 2 ? two : three;
    fRun.prepare = [](standalone::Table& table) { SetFormat(table, "a", {5, 8, 1}); };
  }
  void MakeTexts(const std::string& one, const std::string& two, const std::string& three) {
    for (const double a : fRun["a"])
      fRun.Text("s").push_back(a == 1 ? one : a == 2 ? two : three);
  }
  std::vector<double> Estimates(const std::vector<std::string>& names) {
    std::vector<double> estimates;
    for (const std::string& name : names)
      estimates.push_back(NumberAt(Table("ParameterEstimates"), {name}, {"B"}));
    return estimates;
  }
};

constexpr const char* kTables = " /STATISTICS PARAMETER SE /PRINT COVB CORB SAMPLEINFO VARIABLEINFO HISTORY";

TEST_F(LookAlikes, NumbersThatPrintTheSameKeepAllTheirDigitsAndTheirEstimates) {
  fRun.Run(std::string("y BY a") + kTables);
  const std::vector<double> expected = Estimates({"[a=1]", "[a=2]", "[a=3]"});
  MakeTenths(0.1, 0.41, 0.42);
  fRun.Run(std::string("y BY a") + kTables);
  EXPECT_EQ(Estimates({"[a=0.1]", "[a=0.41]", "[a=0.42]"}), expected);
  EXPECT_NE(expected[1], 0);
  EXPECT_EQ(FindCell(Table("ParameterEstimates"), {"[a=0.4]"}, {"B"}), nullptr);
  for (const char* id : {"CovariancesOfParameterEstimates", "CorrelationsOfParameterEstimates"}) {
    EXPECT_NE(FindCell(Table(id), {"[a=0.1]"}, {"[a=0.41]"}), nullptr) << id;
    EXPECT_NE(FindCell(Table(id), {"[a=0.41]"}, {"[a=0.42]"}), nullptr) << id;
  }
  EXPECT_NE(FindCell(Table("IterationHistory"), {"0"}, {"[a=0.41]"}), nullptr);
  EXPECT_NE(FindCell(Table("CategoricalVariableInformation"), {"a", "0.42"}, {"Weighted Count"}), nullptr);
}

TEST_F(LookAlikes, ANumberThatPrintsAloneKeepsItsFormat) {
  MakeTenths(2, 0.41, 0.42);
  fRun.Run("y BY a /PRINT VARIABLEINFO");
  EXPECT_NE(FindCell(Table("CategoricalVariableInformation"), {"a", "2.0"}, {"Weighted Count"}), nullptr);
}

TEST_F(LookAlikes, StringsThatDifferInLeadingBlanksAreQuoted) {
  MakeTexts("Bern", " Bern", "it's");
  fRun.Run(std::string("y BY s") + kTables);
  const std::vector<double> estimates = Estimates({"[s=' Bern']", "[s='Bern']", "[s=it's]"});
  EXPECT_THAT(estimates, Not(Contains(host::kSystemMissing)));
  EXPECT_EQ(std::count(estimates.begin(), estimates.end(), 0.0), 1) << "the last one";
  for (const char* value : {"' Bern'", "'Bern'", "it's"}) {
    EXPECT_NE(FindCell(Table("CategoricalVariableInformation"), {"s", value}, {"Weighted Count"}), nullptr)
        << value;
  }
}

TEST_F(LookAlikes, AValueThatReadsLikeAQuotedOneIsQuotedToo) {
  MakeTexts("Bern", " Bern", "'Bern'");
  fRun.Run("y BY s /STATISTICS PARAMETER");
  EXPECT_THAT(Estimates({"[s=' Bern']", "[s='Bern']", "[s='''Bern''']"}),
              Not(Contains(host::kSystemMissing)));
}

TEST_F(LookAlikes, StringsThatANarrowFormatCutsAreWhole) {
  MakeTexts("Bern-North", "Bern-South", "Uri");
  fRun.prepare = [](standalone::Table& table) { SetFormat(table, "s", {1, 4, 0}); };
  fRun.Run("y BY s /STATISTICS PARAMETER");
  EXPECT_THAT(Estimates({"[s='Bern-North']", "[s='Bern-South']", "[s=Uri]"}),
              Not(Contains(host::kSystemMissing)));
}

TEST_F(LookAlikes, ValuesWithTheSameLabelShowTheValueBehindIt) {
  fRun.prepare = [](standalone::Table& table) {
    host::VORN_ValueLabelMap labels;
    for (const double value : {1.0, 2.0}) {
      host::OBS cell{};
      cell.number = value;
      labels.AddPair({cell}, "Other");
    }
    table.At(static_cast<std::size_t>(table.Find("a"))).variable.SetValueLabels(labels);
  };
  fRun.Run("y BY a /PRINT VARIABLEINFO /ODDSRATIOS FACTOR=[a(HIGH)]");
  for (const char* value : {"Other (1)", "Other (2)", "3"}) {
    EXPECT_NE(FindCell(Table("CategoricalVariableInformation"), {"a", value}, {"Weighted Count"}), nullptr)
        << value;
  }
  EXPECT_NE(FindCell(Table("OddsRatios"), {"Other (1) vs. 3"}, {"Odds Ratio"}), nullptr);
  EXPECT_NE(FindCell(Table("OddsRatios"), {"Other (2) vs. 3"}, {"Odds Ratio"}), nullptr);
}

TEST_F(LookAlikes, CategoriesOfTheDependentAreToldApart) {
  for (double& y : fRun["y3"])
    y = y == 1 ? 0.1 : y == 2 ? 0.41 : 0.42;
  fRun.prepare = [](standalone::Table& table) { SetFormat(table, "y3", {5, 8, 1}); };
  fRun.Run("y3 WITH x /STATISTICS PARAMETER /PRINT CLASSTABLE");
  EXPECT_NE(FindCell(Table("ParameterEstimates"), {"0.41", "x"}, {"B"}), nullptr);
  EXPECT_NE(FindCell(Table("Classification"), {"0.41"}, {"0.42"}), nullptr);
  EXPECT_THAT(Table("Classification")->caption, HasSubstr("0.42"));
}

TEST_F(LookAlikes, TheSubpopulationIsTheOneThatWasAskedFor) {
  for (double& d : fRun["d"])
    d = d == 1 ? 0.41 : 0.42;
  fRun.prepare = [](standalone::Table& table) { SetFormat(table, "d", {5, 8, 1}); };
  fRun.Run("y WITH x /DOMAIN VARIABLE=d(0.42) /PRINT VARIABLEINFO");
  EXPECT_THAT(Table("CategoricalVariableInformation")->caption, HasSubstr("0.42"));
}

TEST_F(LookAlikes, AValueThatReadsLikeTheEndOfAFactorMakesNoSecondParameterOfTheSameName) {
  for (std::size_t i = 0; i < 80; ++i) {
    const double a = fRun["a"][i];
    fRun.Text("s").push_back(a == 1 ? "1" : a == 2 ? "1] * [t=1" : "2");
    fRun.Text("t").push_back(fRun["b"][i] == 1 ? "1" : "1] * [t=1");
  }
  fRun.Run("y BY s t /MODEL s*t /STATISTICS PARAMETER");
  const standalone::PivotTable* table = Table("ParameterEstimates");
  std::multiset<std::string> names;
  for (const std::string& path : PathsOf(DimensionOf(*table, "Parameter")))
    names.insert(path);
  EXPECT_EQ(names.size(), 7U) << "an intercept and 3 times 2";
  EXPECT_EQ(names.count("[s='1'] * [t='1] * [t=1']"), 1U);
  EXPECT_EQ(names.count("[s='1] * [t=1'] * [t='1']"), 1U);
}

}  // namespace
}  // namespace tavo
