#include "reporting_fixture.h"

namespace tavo {
namespace {

using test_support::PlanClusters;
using test_support::PlanOf;
using test_support::PlanStage;
using test_support::PlanStrata;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const kN = "N";

double Sum(const std::vector<double>& values) {
  double sum = 0;
  for (const double value : values)
    sum += value;
  return sum;
}

TEST_F(Reporting, SampleDesignHasCasesSizesUnitsAndDegreesOfFreedom) {
  fRun["x"][5] = host::kSystemMissing;
  fRun["x"][50] = host::kSystemMissing;
  const double dropped = fRun["w"][5] + fRun["w"][50];
  fRun.Run("y BY a WITH x");
  const standalone::PivotTable* table = Table("SampleDesignInformation");
  EXPECT_THAT(PathsOf(DimensionOf(*table, "Content")),
              ElementsAre("Unweighted Cases/Valid", "Unweighted Cases/Invalid", "Unweighted Cases/Total",
                          "Population Size", "Stage 1/Strata", "Stage 1/Units", "Sampling Design DF"));
  EXPECT_EQ(NumberAt(table, {"Valid"}, {kN}), 78);
  EXPECT_EQ(NumberAt(table, {"Invalid"}, {kN}), 2);
  EXPECT_EQ(NumberAt(table, {"Total"}, {kN}), 80);
  EXPECT_EQ(NumberAt(table, {"Population Size"}, {kN}), Sum(fRun["w"]) - dropped);
  EXPECT_EQ(NumberAt(table, {"Stage 1", "Strata"}, {kN}), 2);
  EXPECT_EQ(NumberAt(table, {"Stage 1", "Units"}, {kN}), 8);
  EXPECT_EQ(NumberAt(table, {"Sampling Design DF"}, {kN}), 6);
  EXPECT_THAT(CellNotes(table, {"Sampling Design DF"}, {kN}), IsEmpty());
  EXPECT_EQ(table->caption, "");
}

TEST_F(Reporting, SampleDesignOfASubpopulationHasItsSizeWithANote) {
  double size = 0;
  for (std::size_t i = 0; i < fRun["d"].size(); ++i)
    size += fRun["d"][i] == 2 ? fRun["w"][i] : 0;
  fRun.Run("y BY a /DOMAIN VARIABLE=d(2)");
  const standalone::PivotTable* table = Table("SampleDesignInformation");
  EXPECT_EQ(NumberAt(table, {"Population Size"}, {kN}), Sum(fRun["w"]));
  EXPECT_EQ(NumberAt(table, {"Subpopulation Size"}, {kN}), size);
  EXPECT_THAT(NotesOf(DimensionOf(*table, "Content"), "Subpopulation Size"),
              ElementsAre("Subpopulation: d = 2"));
}

TEST_F(Reporting, ATwoStagePlanPrintsOneStageWithTheFirstLabel) {
  fRun["hh"] = {};
  for (int i = 0; i < 80; ++i)
    fRun["hh"].push_back(i / 2);
  fRun.WritePlan(PlanOf(PlanStage(1, "wr", PlanStrata("h") + PlanClusters("psu"), "Schools") +
                        PlanStage(2, "wr", PlanClusters("hh"), "Classes")));
  fRun.Run("y BY a");
  EXPECT_THAT(PathsOf(DimensionOf(*Table("SampleDesignInformation"), "Content")),
              ElementsAre("Unweighted Cases/Valid", "Unweighted Cases/Invalid", "Unweighted Cases/Total",
                          "Population Size", "Stage 1: Schools/Strata", "Stage 1: Schools/Units",
                          "Sampling Design DF"));
}

TEST_F(Reporting, DegreesOfFreedomOfTheUserAreMarked) {
  fRun.Run("y BY a /CRITERIA DF=11.5 /STATISTICS PARAMETER TTEST");
  const standalone::PivotTable* table = Table("SampleDesignInformation");
  EXPECT_EQ(NumberAt(table, {"Sampling Design DF"}, {kN}), 11.5);
  EXPECT_THAT(CellNotes(table, {"Sampling Design DF"}, {kN}), ElementsAre(T("User specified")));
  EXPECT_EQ(NumberAt(Table("ParameterEstimates"), {"[a=1]"}, {"degrees of freedom"}), 11.5);
}

TEST_F(Reporting, ZeroAndNegativeWeightsCountAsValidButCarryNoWeight) {
  fRun["w"][0] = 0;
  fRun["w"][1] = -3;
  double size = 0;
  for (const double w : fRun["w"])
    size += w > 0 ? w : 0;
  const standalone::CommandOutput& output = fRun.Run("y BY a");
  EXPECT_EQ(NumberAt(Table("SampleDesignInformation"), {"Valid"}, {kN}), 80);
  EXPECT_EQ(NumberAt(Table("SampleDesignInformation"), {"Population Size"}, {kN}), size);
  EXPECT_THAT(output.messages, IsEmpty()) << "they are left out silently";
}

TEST_F(Reporting, CategoricalVariablesHaveWeightedCountsAndPercents) {
  fRun.Run("y BY a b");
  const standalone::PivotTable* table = Table("CategoricalVariableInformation");
  const standalone::PivotDimension& rows = DimensionOf(*table, "Variables");
  EXPECT_THAT(PathsOf(rows), ElementsAre("y/0", "y/1", "a/1", "a/2", "a/3", "b/1", "b/2", "Population Size"));
  const double total = Sum(fRun["w"]);
  for (const char* name : {"y", "a", "b"}) {
    std::map<double, double> counts;
    for (std::size_t i = 0; i < 80; ++i)
      counts[fRun[name][i]] += fRun["w"][i];
    for (const auto& [value, count] : counts) {
      const Labels row = {name, std::to_string(static_cast<int>(value))};
      EXPECT_EQ(NumberAt(table, row, {"Weighted Count"}), count);
      EXPECT_DOUBLE_EQ(NumberAt(table, row, {"Weighted Percent"}), count / total * 100);
    }
  }
  EXPECT_EQ(NumberAt(table, {"Population Size"}, {"Weighted Count"}), total);
  EXPECT_EQ(NumberAt(table, {"Population Size"}, {"Weighted Percent"}), 100);
  EXPECT_THAT(NotesOf(rows, "y"), ElementsAre(T("Dependent Variable")));
  EXPECT_THAT(NotesOf(rows, "1"), ElementsAre(T("Reference Category")));
  EXPECT_THAT(NotesOf(rows, "0"), IsEmpty());
  EXPECT_EQ(FormatAt(table, {"y", "0"}, {"Weighted Percent"}), host::BpFormatSpec::Kind::kPercent);
}

TEST_F(Reporting, TheReferenceIsTheLastDependentCategory) {
  fRun.Run("y3 (2)");
  EXPECT_THAT(PathsOf(DimensionOf(*Table("CategoricalVariableInformation"), "Variables")),
              ElementsAre("y3/1", "y3/3", "y3/2", "Population Size"));
}

TEST_F(Reporting, AFactorCategoryWithoutWeightDoesNotAppear) {
  for (std::size_t i = 0; i < 80; ++i) {
    if (fRun["a"][i] == 2) fRun["d"][i] = 1;  // category 2 lies outside of the subpopulation
  }
  fRun.Run("y BY a /DOMAIN VARIABLE=d(2)");
  const standalone::PivotTable* table = Table("CategoricalVariableInformation");
  EXPECT_THAT(PathsOf(DimensionOf(*table, "Variables")),
              ElementsAre("y/0", "y/1", "a/1", "a/3", "Subpopulation Size"));
  EXPECT_EQ(table->caption, "Subpopulation: d = 2");
  EXPECT_EQ(NumberAt(table, {"Subpopulation Size"}, {"Weighted Percent"}), 100);
  EXPECT_DOUBLE_EQ(
      NumberAt(table, {"a", "1"}, {"Weighted Percent"}) + NumberAt(table, {"a", "3"}, {"Weighted Percent"}),
      100);
}

TEST_F(Reporting, FactorsThatTheModelLeavesOutAreListedAllTheSame) {
  fRun.Run("y BY a b /MODEL b");
  const standalone::PivotTable* table = Table("CategoricalVariableInformation");
  EXPECT_THAT(PathsOf(DimensionOf(*table, "Variables")),
              ElementsAre("y/0", "y/1", "a/1", "a/2", "a/3", "b/1", "b/2", "Population Size"));
  double count = 0;
  for (std::size_t i = 0; i < 80; ++i)
    count += fRun["a"][i] == 3 ? fRun["w"][i] : 0;
  EXPECT_EQ(NumberAt(table, {"a", "3"}, {"Weighted Count"}), count);
}

TEST_F(Reporting, CovariateMeansAreWeightedAndFollowTheSubpopulation) {
  double sum = 0;
  double weight = 0;
  for (std::size_t i = 0; i < 80; ++i) {
    if (fRun["d"][i] != 1) continue;
    sum += fRun["w"][i] * fRun["z"][i];
    weight += fRun["w"][i];
  }
  fRun.Run("y WITH x z /MODEL z /DOMAIN VARIABLE=d(1)");
  const standalone::PivotTable* table = Table("CovariateInformation");
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Covariate")), ElementsAre("x", "z"));
  EXPECT_NEAR(NumberAt(table, {"z"}, {"Mean"}), sum / weight, 1e-12);
  EXPECT_EQ(table->caption, "Subpopulation: d = 1");
  const auto& number = std::get<host::BpNumber>(FindCell(table, {"x"}, {"Mean"})->content);
  EXPECT_EQ(number.format.kind, host::BpFormatSpec::Kind::kMean);
  EXPECT_EQ(number.format.decimals, 3) << "two more than the variable's own";
}

TEST_F(Reporting, WithoutCovariatesThereIsNoCovariateTable) {
  fRun.Run("y BY a");
  EXPECT_EQ(fRun.Output().FindTable("CovariateInformation"), nullptr);
}

TEST_F(Reporting, WithoutFactorsTheTableHasTheDependentVariableAlone) {
  fRun.Run("y WITH x");
  EXPECT_THAT(PathsOf(DimensionOf(*Table("CategoricalVariableInformation"), "Variables")),
              ElementsAre("y/0", "y/1", "Population Size"));
}

}  // namespace
}  // namespace tavo
