// Tests of model effects, their contrasts, and the general estimable function.
#include "reporting_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kEffects = "TestsOfModelEffects";

struct Choice {
  const char* keyword;
  Labels columns;
};
const Choice kTypes[] = {{"F", {"df1", "df2", "Wald F"}},
                         {"ADJF", {"df1", "df2", "Adjusted Wald F"}},
                         {"CHISQUARE", {"degrees of freedom", "Wald Chi-Square"}},
                         {"ADJCHISQUARE", {"degrees of freedom", "Adjusted Wald Chi-Square"}}};
const Choice kAdjustments[] = {{"LSD", {}},
                               {"BONFERRONI", {"Bonferroni Sig."}},
                               {"SEQBONFERRONI", {"Sequential Bonferroni Sig."}},
                               {"SIDAK", {"Sidak Sig."}},
                               {"SEQSIDAK", {"Sequential Sidak Sig."}}};

Labels ColumnsOf(const Choice& type, const Choice& adjustment) {
  Labels columns = type.columns;
  columns.push_back("Sig.");
  columns.insert(columns.end(), adjustment.columns.begin(), adjustment.columns.end());
  return columns;
}

std::string TestOf(const Choice& type, const Choice& adjustment) {
  return std::string(" /TEST TYPE=") + type.keyword + " PADJUST=" + adjustment.keyword;
}

class EffectTests : public Reporting {
 protected:
  /// The contrast tables by title.
  std::map<std::string, const standalone::PivotTable*> Contrasts() {
    std::map<std::string, const standalone::PivotTable*> tables;
    for (const auto& table : fRun.Output().tables) {
      if (table->id == "EffectsContrast") tables[table->title] = table.get();
    }
    return tables;
  }
};

TEST_F(EffectTests, ColumnsFollowTheTestTypeAndTheAdjustment) {
  for (const Choice& type : kTypes) {
    for (const Choice& adjustment : kAdjustments) {
      fRun.Run("y BY a WITH x /CUSTOM LMATRIX=a 1 -1 0; a 1 0 -1" + TestOf(type, adjustment));
      const Labels columns = ColumnsOf(type, adjustment);
      EXPECT_THAT(PathsOf(DimensionOf(*Table(kEffects), "Statistics")), ElementsAreArray(columns));
      EXPECT_THAT(PathsOf(DimensionOf(*Table("OverallTestResults"), "Statistics")),
                  ElementsAreArray(columns));
      Labels individual = {"Contrast Estimate", "Hypothesized Value", "Difference (Estimate - Hypothesized)",
                           "Std. Error"};
      individual.insert(individual.end(), columns.begin(), columns.end());
      EXPECT_THAT(PathsOf(DimensionOf(*Table("IndividualTestResults"), "Statistics")),
                  ElementsAreArray(individual));
    }
  }
}

// A rank of r and d = 6 degrees of freedom: F = chi-square (d - r + 1) / (d r).
TEST_F(EffectTests, StatisticsOfTheFourTypesBelongTogether) {
  std::map<std::string, double> wald;
  for (const Choice& type : kTypes) {
    fRun.Run("y BY a WITH x" + TestOf(type, kAdjustments[0]));
    const Labels column = {type.columns.back()};
    wald[type.keyword] = NumberAt(Table(kEffects), {"a"}, column);
    EXPECT_EQ(FormatAt(Table(kEffects), {"a"}, column), host::BpFormatSpec::Kind::kGeneralStat);
    EXPECT_EQ(FormatAt(Table(kEffects), {"a"}, {"Sig."}), host::BpFormatSpec::Kind::kSignificance);
    const bool isAdjusted = std::string(type.keyword).starts_with("ADJ");
    const double df = NumberAt(Table(kEffects), {"a"}, {type.columns.front()});
    if (isAdjusted) {
      EXPECT_GT(df, 0);
      EXPECT_LE(df, 2);
    } else {
      EXPECT_EQ(df, 2);
    }
  }
  EXPECT_NEAR(wald["F"], wald["CHISQUARE"] * 5 / 12, 1e-10);
  EXPECT_EQ(NumberAt(Table(kEffects), {"a"}, {"df2"}), host::kSystemMissing) << "chi-square has one";
}

TEST_F(EffectTests, RowsAreTheModelTheInterceptAndTheEffectsInModelOrder) {
  const struct {
    const char* command;
    Labels rows;
  } cases[] = {
      {"y BY a b WITH x /MODEL x a*b b", {"(Corrected Model)", "(Intercept)", "x", "a * b", "b"}},
      {"y BY a WITH x /MODEL a x /INTERCEPT SHOW=NO", {"(Corrected Model)", "a", "x"}},
      {"y BY a WITH x /MODEL a x /INTERCEPT INCLUDE=NO", {"(Model)", "a", "x"}},
  };
  for (const auto& c : cases) {
    fRun.Run(c.command);
    const standalone::PivotTable* table = Table(kEffects);
    EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Source")), ElementsAreArray(c.rows));
    EXPECT_EQ(table->title, "Tests of Model Effects");
    EXPECT_THAT(table->heading, IsEmpty());
    EXPECT_FALSE(fRun.Output().FindTable("EffectsContrast")) << "only with LMATRIX";
    EXPECT_FALSE(fRun.Output().FindTable("GeneralEstimableFunction")) << "only with GEF";
    EXPECT_THAT(table->caption, HasSubstr("y"));
  }
}

TEST_F(EffectTests, AreThereWhateverIsPrinted) {
  fRun.Run("y BY a /PRINT NONE");
  EXPECT_THAT(fRun.TableIds(), ElementsAre(kEffects));
}

TEST_F(EffectTests, AnInterceptOnlyModelHasARowOfMissingStatisticsAndNoMessage) {
  fRun.Run("y /TEST TYPE=ADJF PADJUST=SIDAK");
  const standalone::PivotTable* table = Table(kEffects);
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Source")), ElementsAre("(Corrected Model)", "(Intercept)"));
  for (const char* column : {"Adjusted Wald F", "Sig.", "Sidak Sig."}) {
    EXPECT_TRUE(IsMissingAt(table, {"(Corrected Model)"}, {column})) << column;
    EXPECT_FALSE(IsMissingAt(table, {"(Intercept)"}, {column})) << column;
  }
  EXPECT_THAT(fRun.Keys(), IsEmpty());
  EXPECT_FALSE(fRun.Output().failed);
}

// One unit in each stratum: the run ends with the warning that no parameter has a variance.
TEST_F(EffectTests, OfARunWithoutVarianceKeepTheColumnsOfTheCommandOverEmptyCells) {
  fRun["psu"].assign(80, 1);
  fRun.Run(
      "y3 BY a /TEST TYPE=CHISQUARE PADJUST=SIDAK /PRINT LMATRIX GEF /CUSTOM LMATRIX=a 1 -1 0 "
      "/CUSTOM LMATRIX=ALL 0 1 -1 0 0 0 0 0 /CUSTOM KMATRIX=1");
  const Labels columns = {"degrees of freedom", "Wald Chi-Square", "Sig.", "Sidak Sig."};
  EXPECT_THAT(PathsOf(DimensionOf(*Table(kEffects), "Statistics")), ElementsAreArray(columns));
  EXPECT_THAT(PathsOf(DimensionOf(*Table("OverallTestResults"), "Statistics")), ElementsAreArray(columns));
  for (const auto& table : fRun.Output().tables) {
    if (table->id != kEffects && table->id != "IndividualTestResults") continue;
    const standalone::PivotTable* each = table.get();
    for (const auto& [coordinates, cell] : each->AllCells()) {
      const Labels path = test_support::PathOf(*each, coordinates, host::BpPlace::kColumn);
      if (path.back() == "Hypothesized Value") continue;
      EXPECT_EQ(std::get<host::BpNumber>(cell.content).value, host::kSystemMissing) << path.back();
    }
  }
  EXPECT_FALSE(fRun.Output().failed);
}

// Contrasts of effects.

TEST_F(EffectTests, ContrastsOfEachEffectStandUnderTheirHeading) {
  fRun.Run("y BY a WITH x /MODEL a x /PRINT LMATRIX");
  const auto tables = Contrasts();
  ASSERT_EQ(tables.size(), 3U) << "none of the model";
  for (const auto& [title, table] : tables) {
    EXPECT_THAT(table->heading, ElementsAre("Effect Contrast Coefficients")) << title;
    EXPECT_EQ(table->caption, Caption(kEffects)) << title;
    EXPECT_EQ(table->dimensions.size(), 2U);
    EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Parameter")),
                ElementsAre("(Intercept)", "[a=1]", "[a=2]", "[a=3]", "x"));
  }
  // Levels against the last; the labels are those of the parameters behind them, of all five.
  const standalone::PivotTable* a = tables.at("a");
  EXPECT_THAT(CategoriesOf(DimensionOf(*a, "Contrast")), ElementsAre("L2", "L3"));
  for (const auto& [row, column, value] : {std::tuple{"[a=1]", "L2", 1.0},
                                           {"[a=2]", "L2", 0.0},
                                           {"[a=3]", "L2", -1.0},
                                           {"[a=2]", "L3", 1.0},
                                           {"[a=3]", "L3", -1.0},
                                           {"(Intercept)", "L2", 0.0},
                                           {"x", "L2", 0.0}}) {
    EXPECT_NEAR(NumberAt(a, {row}, {column}), value, 1e-12) << row << column;
  }
  EXPECT_EQ(FormatAt(a, {"[a=1]"}, {"L2"}), host::BpFormatSpec::Kind::kCoefficient);
  EXPECT_NEAR(NumberAt(tables.at("x"), {"x"}, {"L5"}), 1, 1e-12);
  EXPECT_NEAR(NumberAt(tables.at("(Intercept)"), {"(Intercept)"}, {"L1"}), 1, 1e-12);
}

TEST_F(EffectTests, OfAHiddenInterceptTheContrastsAreThereWithoutARow) {
  fRun.Run("y WITH x /INTERCEPT SHOW=NO /PRINT LMATRIX");
  EXPECT_EQ(Contrasts().count("(Intercept)"), 1U);
  EXPECT_THAT(CategoriesOf(DimensionOf(*Table(kEffects), "Source")), ElementsAre("(Corrected Model)", "x"));
}

TEST_F(EffectTests, ContrastsOfSeveralLogitsAreBlockDiagonal) {
  fRun.Run("y3 BY b /PRINT LMATRIX");
  const standalone::PivotTable* table = Contrasts().at("b");
  ASSERT_EQ(table->dimensions.size(), 4U);
  EXPECT_EQ(table->dimensions[2].place, host::BpPlace::kRow);
  EXPECT_EQ(table->dimensions[3].place, host::BpPlace::kColumn);
  for (const std::size_t d : {2U, 3U}) {
    EXPECT_EQ(table->dimensions[d].level, 2);
    EXPECT_EQ(table->dimensions[d].Label(), "y3");
    EXPECT_THAT(CategoriesOf(table->dimensions[d]), ElementsAre("1", "2"));
  }
  for (const char* row : {"1", "2"}) {
    for (const char* column : {"1", "2"}) {
      const double diagonal = std::string(row) == column ? 1 : 0;
      EXPECT_NEAR(NumberAt(table, {row, "[b=1]"}, {column, "L2"}), diagonal, 1e-12) << row << column;
      EXPECT_NEAR(NumberAt(table, {row, "[b=2]"}, {column, "L2"}), -diagonal, 1e-12) << row << column;
    }
  }
  EXPECT_EQ(table->CellCount(), 12U);
}

// The general estimable function.

TEST_F(EffectTests, TheGeneralEstimableFunctionHasAColumnForEachKeptParameter) {
  fRun.Run("y BY a /PRINT GEF");
  const standalone::PivotTable* table = Table("GeneralEstimableFunction");
  EXPECT_EQ(table->title, "General Estimable Function");
  EXPECT_THAT(table->notes, IsEmpty());
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Contrast")), ElementsAre("L1", "L2", "L3"));
  // x'b of each level: the last level is the intercept less the others.
  const double expected[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, -1, -1}};
  const char* const rows[] = {"(Intercept)", "[a=1]", "[a=2]", "[a=3]"};
  const char* const columns[] = {"L1", "L2", "L3"};
  for (std::size_t i = 0; i < 4; ++i) {
    for (std::size_t j = 0; j < 3; ++j)
      EXPECT_NEAR(NumberAt(table, {rows[i]}, {columns[j]}), expected[i][j], 1e-12) << rows[i] << columns[j];
  }
}

TEST_F(EffectTests, TheGeneralEstimableFunctionOfSeveralLogitsIsThatOfOneWithItsNote) {
  fRun.Run("y3 BY a /PRINT GEF");
  const standalone::PivotTable* table = Table("GeneralEstimableFunction");
  EXPECT_THAT(table->notes, ElementsAre(T("Coefficients used across logits")));
  EXPECT_EQ(table->dimensions.size(), 2U);
  EXPECT_EQ(table->CellCount(), 12U);
}

}  // namespace
}  // namespace tavo
