// The matrix file of OUTFILE, read back, and the document that it carries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "module_run.h"
#include "output_query.h"
#include "standalone/files/data_reader.h"

namespace tavo {
namespace {

using test_support::ModuleRun;
using test_support::NumberAt;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr double kEmpty = host::kSystemMissing;
using Lines = std::vector<std::string>;

class MatrixFile : public ::testing::Test {
 protected:
  /// The file that the command has written.
  void Read(const std::string& name) {
    standalone::ReadOptions options;
    options.path = fRun.Folder().Path(name);
    fFile = standalone::ReadDataFile(options);
    ASSERT_TRUE(fFile.ok) << fFile.error;
  }
  const standalone::Column& Column(const std::string& name) {
    const int index = fFile.table.Find(name);
    if (index < 0) throw std::runtime_error("no variable " + name);
    return fFile.table.At(static_cast<std::size_t>(index));
  }
  std::string Text(const std::string& name, std::size_t row) {
    const standalone::Column& column = Column(name);
    const char* bytes = reinterpret_cast<const char*>(&column.cells[row * column.Stride()]);
    std::string text(bytes, static_cast<std::size_t>(column.variable.GetType()));
    return text.substr(0, text.find_last_not_of(' ') + 1);
  }
  /// Row types and names (and logits, when there are any) of all cases.
  Lines Keys() {
    const bool hasLogits = fFile.table.Find("RowLogit_") >= 0;
    Lines keys;
    for (std::size_t i = 0; i < fFile.table.CaseCount(); ++i) {
      keys.push_back(Text("rowtype_", i) + " " + Text("varname_", i));
      if (hasLogits) keys.back() += " " + Text("RowLogit_", i) + "," + Text("ColumnLogit_", i);
    }
    return keys;
  }
  /// P1 … of a case.
  std::vector<double> Row(std::size_t row) {
    std::vector<double> cells;
    for (int j = 1; fFile.table.Find("P" + std::to_string(j)) >= 0; ++j)
      cells.push_back(Column("P" + std::to_string(j)).cells[row].number);
    return cells;
  }
  double Printed(const char* table, const Lines& row, const Lines& column) {
    return NumberAt(fRun.Output().FindTable(table), row, column);
  }

  ModuleRun fRun;
  standalone::ReadResult fFile;
};

constexpr const char* kStatistics = " /STATISTICS PARAMETER SE TTEST /PRINT COVB CORB ";

TEST_F(MatrixFile, OfTwoCategoriesHasNoLogitVariablesAndOneLogitInEachBlock) {
  fRun.Run(std::string("y BY b WITH x /MODEL b x") + kStatistics + "/OUTFILE COVB='out.vdt'");
  Read("out.vdt");
  Lines names;
  for (std::size_t i = 0; i < fFile.table.ColumnCount(); ++i)
    names.push_back(fFile.table.At(i).variable.GetName());
  EXPECT_THAT(names, ElementsAre("rowtype_", "varname_", "P1", "P2", "P3", "P4"));
  EXPECT_THAT(Keys(), ElementsAre("COV P1", "COV P2", "COV P3", "COV P4", "EST ", "SE ", "SIG ", "DF "));
  const Lines parameters = {"(Intercept)", "[b=1]", "[b=2]", "x"};
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = 0; j < 4; ++j) {
      const double printed =
          i == 2 || j == 2 ? 0.0
                           : Printed("CovariancesOfParameterEstimates", {parameters[i]}, {parameters[j]});
      EXPECT_EQ(Row(i)[j], printed) << i << j;
    }
    if (i == 2) continue;
    EXPECT_EQ(Row(4)[i], Printed("ParameterEstimates", {parameters[i]}, {"B"}));
    EXPECT_EQ(Row(5)[i], Printed("ParameterEstimates", {parameters[i]}, {"Std. Error"}));
    EXPECT_EQ(Row(6)[i], Printed("ParameterEstimates", {parameters[i]}, {"Significance"}));
    EXPECT_EQ(Row(7)[i], 6);
  }
}

TEST_F(MatrixFile, ARedundantParameterIs0InCovarianceAndEstimateAndMissingElsewhere) {
  fRun.Run("y BY b /OUTFILE COVB='cov.vdt'");
  Read("cov.vdt");
  ASSERT_EQ(fFile.table.CaseCount(), 7U);
  EXPECT_THAT(Row(2), ElementsAre(0, 0, 0)) << "the covariances of the last level";
  EXPECT_EQ(Row(0)[2], 0);
  EXPECT_EQ(Row(3)[2], 0) << "EST";
  for (std::size_t row = 4; row < 7; ++row)
    EXPECT_EQ(Row(row)[2], kEmpty) << Keys()[row];
  fRun.Run("y BY b /OUTFILE CORB='cor.vdt'");
  Read("cor.vdt");
  EXPECT_THAT(Row(2), ElementsAre(kEmpty, kEmpty, kEmpty));
  EXPECT_EQ(Row(0)[2], kEmpty);
  EXPECT_EQ(Row(3)[2], 0) << "EST";
}

TEST_F(MatrixFile, OfCorrelationsHasOnesOnTheDiagonal) {
  fRun.Run(std::string("y WITH x z") + kStatistics + "/OUTFILE CORB='out.vdt'");
  Read("out.vdt");
  EXPECT_THAT(Keys(), ElementsAre("CORR P1", "CORR P2", "CORR P3", "EST ", "SE ", "SIG ", "DF "));
  const Lines parameters = {"(Intercept)", "x", "z"};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const double printed = Printed("CorrelationsOfParameterEstimates", {parameters[i]}, {parameters[j]});
      EXPECT_NEAR(Row(i)[j], printed, 1e-15);
    }
    EXPECT_EQ(Row(i)[i], 1);
  }
}

// One unit in each stratum: all variances are zero.
TEST_F(MatrixFile, WithoutVarianceCorrelationsAreMissing) {
  fRun["psu"].assign(80, 1);
  fRun.Run("y WITH x /OUTFILE CORB='out.vdt'");
  Read("out.vdt");
  EXPECT_THAT(Row(0), ElementsAre(kEmpty, kEmpty));
  EXPECT_THAT(Row(1), ElementsAre(kEmpty, kEmpty));
}

TEST_F(MatrixFile, OfSeveralLogitsNamesThemByTheirPrintedValues) {
  fRun.prepare = [](standalone::Table& table) {
    table.At(static_cast<std::size_t>(table.Find("y3"))).variable.SetFormat({5, 8, 1});
  };
  fRun.Run(std::string("y3 (2) WITH x") + kStatistics + "/OUTFILE COVB='out.vdt'");
  Read("out.vdt");
  EXPECT_THAT(Keys(), ElementsAre("COV P1 1.0,1.0", "COV P2 1.0,1.0", "COV P1 1.0,3.0", "COV P2 1.0,3.0",
                                  "COV P1 3.0,1.0", "COV P2 3.0,1.0", "COV P1 3.0,3.0", "COV P2 3.0,3.0",
                                  "EST  1.0,1.0", "EST  3.0,3.0", "SE  1.0,1.0", "SE  3.0,3.0",
                                  "SIG  1.0,1.0", "SIG  3.0,3.0", "DF  1.0,1.0", "DF  3.0,3.0"));
  const Lines parameters = {"(Intercept)", "x"};
  const char* const logits[] = {"1.0", "3.0"};
  for (std::size_t a = 0; a < 2; ++a) {
    for (std::size_t b = 0; b < 2; ++b) {
      for (std::size_t i = 0; i < 2; ++i) {
        for (std::size_t j = 0; j < 2; ++j) {
          EXPECT_EQ(Row(4 * a + 2 * b + i)[j],
                    Printed("CovariancesOfParameterEstimates", {logits[a], parameters[i]},
                            {logits[b], parameters[j]}));
        }
      }
    }
    EXPECT_EQ(Row(8 + a)[1], Printed("ParameterEstimates", {logits[a], "x"}, {"B"}));
  }
}

TEST_F(MatrixFile, VariablesHaveTheirTypesFormatsAndLabels) {
  fRun.Run("y3 BY b WITH x /MODEL b x b*x /OUTFILE COVB='out.vdt'");
  Read("out.vdt");
  for (const auto& [name, width] : {std::pair<const char*, int>{"RowLogit_", 64},
                                    {"ColumnLogit_", 64},
                                    {"rowtype_", 8},
                                    {"varname_", 8}}) {
    const host::VORN_Variable& variable = Column(name).variable;
    EXPECT_EQ(variable.GetType(), width) << name;
    EXPECT_EQ(variable.GetFormat().type, 1) << name;
    EXPECT_EQ(variable.GetMeasurementLevel(), host::MeasurementLevel::kNominal) << name;
    EXPECT_EQ(variable.GetLabel(), "") << name;
  }
  const Lines labels = {"(Intercept)", "[b=1]", "[b=2]", "x", "[b=1] * x", "[b=2] * x"};
  for (std::size_t j = 0; j < labels.size(); ++j) {
    const host::VORN_Variable& variable = Column("P" + std::to_string(j + 1)).variable;
    EXPECT_EQ(variable.GetLabel(), labels[j]);
    EXPECT_EQ(variable.GetType(), 0);
    EXPECT_EQ(variable.GetFormat().type, 5);
    EXPECT_EQ(variable.GetFormat().width, 8);
    EXPECT_EQ(variable.GetFormat().decimals, 6);
    EXPECT_EQ(variable.GetMeasurementLevel(), host::MeasurementLevel::kScale);
  }
}

TEST_F(MatrixFile, ValueLabelsReachTheirFullLength) {
  const std::string value(120, 'v');
  for (const double b : fRun["b"])
    fRun.Text("s").push_back(b > 1 ? "w" : value);
  fRun.Run("y BY s /OUTFILE COVB='out.vdt'");
  Read("out.vdt");
  std::map<std::string, std::string> rowTypes;
  for (const auto& [cells, text] : Column("rowtype_").variable.GetValueLabels().Pairs()) {
    const std::string name(reinterpret_cast<const char*>(cells.data()), 8);
    rowTypes[name.substr(0, name.find_last_not_of(' ') + 1)] = text;
  }
  for (const auto& [name, key] : {std::pair<const char*, const char*>{"COV", "Covariances"},
                                  {"CORR", "Correlations"},
                                  {"EST", "Parameter estimates"},
                                  {"SE", "Standard errors"},
                                  {"SIG", "Significance levels"},
                                  {"DF", "Sampling design degrees of freedom"}}) {
    EXPECT_EQ(rowTypes[name], test_support::T(key)) << name;
  }
  std::map<std::string, std::string> parameters;
  for (const auto& [cells, text] : Column("varname_").variable.GetValueLabels().Pairs()) {
    const std::string name(reinterpret_cast<const char*>(cells.data()), 8);
    parameters[name.substr(0, name.find_last_not_of(' ') + 1)] = text;
  }
  EXPECT_EQ(parameters["P1"], "(Intercept)");
  EXPECT_EQ(parameters["P2"], "[s=" + value + "]");
  EXPECT_EQ(Column("P2").variable.GetLabel(), parameters["P2"]);
}

TEST_F(MatrixFile, AsTextHoldsTheSameNumbers) {
  fRun.Run("y WITH x /OUTFILE COVB='out.vdt'");
  Read("out.vdt");
  const std::vector<double> expected = Row(1);
  fRun.Run("y WITH x /OUTFILE COVB='out.csv'");
  Read("out.csv");
  EXPECT_EQ(Row(1), expected);
  EXPECT_EQ(Keys()[0], "COV P1");
}

TEST_F(MatrixFile, IsNotedByItsName) {
  const auto notes = [&] {
    Lines lines;
    for (const standalone::CommandNote& note : fRun.Output().notes) {
      if (note.group == 2) lines.push_back(note.label + ": " + note.text);
    }
    return lines;
  };
  fRun.Run("y WITH x /OUTFILE COVB='out.vdt'");
  EXPECT_THAT(notes(), ElementsAre(test_support::T("Parameter Covariance Matrix File") + ": out.vdt"));
  fRun.Run("y WITH x /OUTFILE CORB='out.vdt'");
  EXPECT_THAT(notes(), ElementsAre(test_support::T("Parameter Correlation Matrix File") + ": out.vdt"));
}

TEST_F(MatrixFile, BothMatricesCantBeAskedForInACommand) {
  fRun.Run("y WITH x /OUTFILE COVB='cov.vdt' CORB='cor.vdt'");
  EXPECT_TRUE(fRun.Output().failed);
  EXPECT_FALSE(std::filesystem::exists(fRun.Folder().Path("cor.vdt")));
}

TEST_F(MatrixFile, ThatCantBeWrittenIsAnErrorAndLeavesTheTables) {
  fRun.Run("y WITH x /STATISTICS PARAMETER /OUTFILE COVB='nowhere/out.vdt'");
  EXPECT_TRUE(fRun.Output().failed);
  ASSERT_EQ(fRun.Output().messages.size(), 1U);
  EXPECT_THAT(fRun.Output().messages[0].text, HasSubstr("nowhere"));
}

// The document.

TEST_F(MatrixFile, CarriesADocumentThatSaysHowItCameAbout) {
  fRun.WritePlan(test_support::PlanOf(test_support::PlanStage(
      1, "wr", test_support::PlanStrata("h") + test_support::PlanClusters("psu"), "towns")));
  fRun.prepare = [](standalone::Table& table) {
    table.At(static_cast<std::size_t>(table.Find("y"))).variable.SetLabel("Answer");
  };
  fRun.Run("y BY b WITH x /MODEL b x b*x /DOMAIN VARIABLE=d(2) /OUTFILE COVB='out.vdt'");
  Read("out.vdt");
  const Lines lines = fFile.table.Documents();
  ASSERT_EQ(lines.size(), 10U);
  EXPECT_EQ(lines[0], "document Plan File: plan.xml");
  const char* const rest[] = {"Weight Variable: w",
                              "Stage 1: towns",
                              "Stratification Variables: h",
                              "Cluster Variables: psu",
                              "Estimator Assumption: Sampling with replacement",
                              "Dependent Variable: y (reference category = 1)",
                              "Model: Answer = (Intercept) + b + x + b * x",
                              "Subpopulation: d = 2"};
  for (std::size_t i = 0; i < 8; ++i) {
    std::string line = lines[i + 1];
    line.erase(line.find_last_not_of(' ') + 1);
    EXPECT_EQ(line, "         " + std::string(rest[i]));
  }
  EXPECT_THAT(lines[9], testing::MatchesRegex(".*[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9].*"));
}

TEST_F(MatrixFile, DocumentNamesThePopulationSizesOfAStage) {
  const auto estimator = [&](const std::string& inside) {
    fRun.WritePlan(test_support::PlanOf(test_support::PlanStage(
        1, "equal_wor", test_support::PlanStrata("h") + test_support::PlanClusters("psu") + inside)));
    fRun.Run("y WITH x /INTERCEPT INCLUDE=NO /OUTFILE COVB='out.vdt'");
    Read("out.vdt");
    Lines lines = fFile.table.Documents();
    for (std::string& line : lines) {
      line.erase(0, 9);
      line.erase(line.find_last_not_of(' ') + 1);
    }
    return lines;
  };
  const std::string equal = "Estimator Assumption: Equal probability sampling without replacement";
  Lines lines = estimator("<PopulationSize><Variable name='n'/></PopulationSize>");
  EXPECT_THAT(lines, testing::Contains("Stage 1"));
  EXPECT_THAT(lines, testing::Contains(equal));
  EXPECT_THAT(lines, testing::Contains("Population Size: Obtained from variable n"));
  EXPECT_THAT(lines, testing::Contains("Model: y = x")) << "without an intercept and without a label";
}

TEST_F(MatrixFile, LogitsThatPrintTheSameAreToldApart) {
  for (double& y : fRun["y3"])
    y = y == 1 ? 0.41 : y == 2 ? 0.42 : 2;
  fRun.prepare = [](standalone::Table& table) {
    table.At(static_cast<std::size_t>(table.Find("y3"))).variable.SetFormat({5, 8, 1});
  };
  fRun.Run("y3 WITH x /OUTFILE COVB='out.vdt'");
  Read("out.vdt");
  EXPECT_EQ(Keys()[0], "COV P1 0.41,0.41");
  EXPECT_EQ(Keys()[2], "COV P1 0.41,0.42");
}

TEST_F(MatrixFile, LogitsThatDifferBehindTheUsualWidthAreWhole) {
  const std::string begin(64, 'v');
  for (const double y : fRun["y3"])
    fRun.Text("vote").push_back(y == 3 ? "none" : begin + (y == 1 ? "left" : "right"));
  fRun.Run("vote (LOW) WITH x /OUTFILE COVB='out.vdt'");
  Read("out.vdt");
  EXPECT_EQ(Column("RowLogit_").variable.GetType(), 69);
  EXPECT_EQ(Keys()[2], "COV P1 " + begin + "left," + begin + "right");
}

}  // namespace
}  // namespace tavo
