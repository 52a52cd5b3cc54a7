// Custom hypotheses: headings, contrasts, results, and what a test that fails leaves.
#include <cmath>

#include "reporting_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

constexpr const char* kContrasts = "ContrastCoefficients";
constexpr const char* kIndividual = "IndividualTestResults";
constexpr const char* kOverall = "OverallTestResults";

class CustomTests : public Reporting {
 protected:
  /// Heading and id of each table of a custom test, joined by ": ".
  Labels Structure() {
    Labels structure;
    for (const auto& table : fRun.Output().tables) {
      if (!table->heading.empty()) structure.push_back(table->heading.back() + ": " + table->id);
    }
    return structure;
  }
  /// The last table of contrasts, which has no cells when its test failed.
  const standalone::PivotTable* LastContrasts() {
    const standalone::PivotTable* last = nullptr;
    for (const auto& table : fRun.Output().tables) {
      if (table->id == kContrasts) last = table.get();
    }
    EXPECT_NE(last, nullptr);
    return last;
  }
};

// Headings.

TEST_F(CustomTests, OfNoSubcommandThereIsNothing) {
  fRun.Run("y BY a");
  EXPECT_EQ(fRun.Output().FindTable(kContrasts), nullptr);
}

TEST_F(CustomTests, TheLabelOfASingleTestGoesIntoTheHeading) {
  fRun.Run("y BY a /CUSTOM LABEL='first against last' LMATRIX=a 1 0 -1");
  const std::string heading = Table(kContrasts)->heading.back();
  EXPECT_THAT(heading, HasSubstr("first against last"));
  EXPECT_THAT(heading, testing::Not(HasSubstr("1")));
  EXPECT_EQ(Table(kIndividual)->heading.back(), heading);
  EXPECT_EQ(Table(kOverall)->heading.back(), heading);
}

TEST_F(CustomTests, WithoutALabelTheHeadingOfASingleTestHasNoNumber) {
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 0 -1");
  EXPECT_EQ(Table(kContrasts)->heading.back(), T("Custom Hypothesis Tests"));
}

TEST_F(CustomTests, SeveralTestsAreNumberedAndLabelled) {
  fRun.Run("y BY a /CUSTOM LABEL='p' LMATRIX=a 1 0 -1 /CUSTOM LMATRIX=a 0 1 -1");
  const Labels structure = Structure();
  ASSERT_THAT(structure, SizeIs(6));
  EXPECT_THAT(structure[0], HasSubstr("1"));
  EXPECT_THAT(structure[0], HasSubstr("p: Contrast"));
  EXPECT_THAT(structure[3], HasSubstr("2: Contrast"));
  EXPECT_THAT(structure[3], testing::StartsWith(T("Custom Hypothesis Tests")));
}

// Contrast coefficients.

TEST_F(CustomTests, CoefficientsAreThoseOfTheCommandByParameter) {
  fRun.Run("y BY a WITH x /MODEL a x /CUSTOM LMATRIX=a 1 -1/2 -1/2; a 0 1 -1 /DOMAIN VARIABLE=d(2)");
  const standalone::PivotTable* table = Table(kContrasts);
  EXPECT_EQ(table->title, "Contrast Coefficients");
  EXPECT_THAT(table->caption, HasSubstr("d = 2"));
  EXPECT_EQ(Caption(kIndividual), table->caption);
  EXPECT_EQ(Caption(kOverall), table->caption);
  EXPECT_THAT(table->notes, IsEmpty());
  EXPECT_EQ(table->dimensions.size(), 2U);
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Contrast")), ElementsAre("L1", "L2"));
  const double expected[5][2] = {{0, 0}, {1, 0}, {-0.5, 1}, {-0.5, -1}, {0, 0}};
  const char* const rows[] = {"(Intercept)", "[a=1]", "[a=2]", "[a=3]", "x"};
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(NumberAt(table, {rows[i]}, {"L1"}), expected[i][0]) << rows[i];
    EXPECT_EQ(NumberAt(table, {rows[i]}, {"L2"}), expected[i][1]) << rows[i];
  }
}

TEST_F(CustomTests, WithoutASubpopulationThereIsNoCaption) {
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 0 -1");
  EXPECT_EQ(Caption(kContrasts), "");
  EXPECT_EQ(Caption(kIndividual), "");
  EXPECT_EQ(Caption(kOverall), "");
}

TEST_F(CustomTests, ContrastsBelongToALogitWithThreeCategories) {
  fRun.Run("y3 BY b /CUSTOM LMATRIX=b 1 -1");
  const standalone::PivotTable* table = Table(kContrasts);
  ASSERT_EQ(table->dimensions.size(), 4U);
  EXPECT_EQ(table->CellCount(), 12U);
  for (const char* row : {"1", "2"}) {
    for (const char* column : {"1", "2"}) {
      EXPECT_EQ(NumberAt(table, {row, "[b=1]"}, {column, "L1"}), std::string(row) == column ? 1 : 0);
    }
  }
}

TEST_F(CustomTests, RowsOverAllParametersAreShownTransposedAndBelongToNoLogit) {
  fRun.Run("y3 BY b /CUSTOM LMATRIX=ALL 0 1 -1 0 -1 1; ALL 0 0 0 0 2 -2");
  const standalone::PivotTable* table = Table(kContrasts);
  ASSERT_EQ(table->notes.size(), 1U);
  EXPECT_THAT(table->notes[0], HasSubstr("L"));
  EXPECT_EQ(table->notes[0], "The matrix shown is the transpose of the L matrix.");
  ASSERT_EQ(table->dimensions.size(), 3U) << "no logits on the columns";
  EXPECT_EQ(NumberAt(table, {"1", "[b=1]"}, {"L1"}), 1);
  EXPECT_EQ(NumberAt(table, {"2", "[b=2]"}, {"L1"}), 1);
  EXPECT_EQ(NumberAt(table, {"2", "[b=1]"}, {"L2"}), 2);
  EXPECT_EQ(NumberAt(table, {"1", "[b=1]"}, {"L2"}), 0);
  EXPECT_EQ(Table(kIndividual)->dimensions.size(), 2U);
  EXPECT_THAT(CategoriesOf(DimensionOf(*Table(kIndividual), "Contrast")), ElementsAre("L1", "L2"));
}

// Results.

TEST_F(CustomTests, IndividualResultsAreContrastsOfTheEstimates) {
  fRun.Run(
      "y BY a /CUSTOM LMATRIX=a 1 -1 0; a 0 1 -1 KMATRIX=0.25; -1 /TEST TYPE=CHISQUARE "
      "/STATISTICS PARAMETER SE /PRINT COVB");
  const auto b = [&](const char* name) { return NumberAt(Table("ParameterEstimates"), {name}, {"B"}); };
  const standalone::PivotTable* covariances = Table("CovariancesOfParameterEstimates");
  const auto v = [&](const char* p, const char* q) { return NumberAt(covariances, {p}, {q}); };
  const standalone::PivotTable* table = Table(kIndividual);
  const auto at = [&](const char* row, const char* column) { return NumberAt(table, {row}, {column}); };
  EXPECT_NEAR(at("L1", "Contrast Estimate"), b("[a=1]") - b("[a=2]"), 1e-12);
  EXPECT_NEAR(at("L2", "Contrast Estimate"), b("[a=2]"), 1e-12);
  EXPECT_EQ(at("L1", "Hypothesized Value"), 0.25);
  EXPECT_EQ(at("L2", "Hypothesized Value"), -1);
  const double variance = v("[a=1]", "[a=1]") + v("[a=2]", "[a=2]") - 2 * v("[a=1]", "[a=2]");
  EXPECT_NEAR(at("L1", "Std. Error"), std::sqrt(variance), 1e-12);
  for (const char* row : {"L1", "L2"}) {
    const double difference = at(row, "Contrast Estimate") - at(row, "Hypothesized Value");
    EXPECT_NEAR(at(row, "Difference (Estimate - Hypothesized)"), difference, 1e-12);
    EXPECT_NEAR(at(row, "Wald Chi-Square"), std::pow(difference / at(row, "Std. Error"), 2), 1e-9);
    EXPECT_EQ(at(row, "degrees of freedom"), 1);
  }
  EXPECT_EQ(FormatAt(table, {"L1"}, {"Contrast Estimate"}), host::BpFormatSpec::Kind::kCoefficient);
  EXPECT_EQ(FormatAt(table, {"L1"}, {"Std. Error"}), host::BpFormatSpec::Kind::kGeneralStat);
  EXPECT_EQ(NumberAt(Table(kOverall), {}, {"degrees of freedom"}), 2);
}

TEST_F(CustomTests, WithThreeCategoriesTheHypothesizedValuesRepeatInEachLogit) {
  fRun.Run("y3 BY a /CUSTOM LMATRIX=a 1 -1 0; a 0 1 -1 KMATRIX=0.5; 2 /STATISTICS PARAMETER");
  const standalone::PivotTable* table = Table(kIndividual);
  EXPECT_EQ(table->dimensions.size(), 3U);
  EXPECT_EQ(table->dimensions[2].level, 2);
  const auto b = [&](const char* logit, const char* name) {
    return NumberAt(Table("ParameterEstimates"), {logit, name}, {"B"});
  };
  for (const char* logit : {"1", "2"}) {
    EXPECT_EQ(NumberAt(table, {logit, "L1"}, {"Hypothesized Value"}), 0.5);
    EXPECT_EQ(NumberAt(table, {logit, "L2"}, {"Hypothesized Value"}), 2);
    EXPECT_NEAR(NumberAt(table, {logit, "L1"}, {"Contrast Estimate"}), b(logit, "[a=1]") - b(logit, "[a=2]"),
                1e-12);
    EXPECT_NEAR(NumberAt(table, {logit, "L2"}, {"Contrast Estimate"}), b(logit, "[a=2]"), 1e-12);
  }
  EXPECT_EQ(NumberAt(Table(kOverall), {}, {"df1"}), 4);
}

TEST_F(CustomTests, RowsOverAllParametersHaveAHypothesizedValueEach) {
  fRun.Run("y3 BY b /CUSTOM LMATRIX=ALL 0 1 -1 0 0 0; ALL 0 0 0 0 1 -1; ALL 0 1 -1 0 -1 1 KMATRIX=1; 2; 3");
  const standalone::PivotTable* table = Table(kIndividual);
  for (const auto& [row, value] : {std::pair<const char*, double>{"L1", 1}, {"L2", 2}, {"L3", 3}}) {
    EXPECT_EQ(NumberAt(table, {row}, {"Hypothesized Value"}), value);
  }
}

TEST_F(CustomTests, ATestWithoutRowsIsThatOfTheInterceptWithItsNote) {
  fRun.Run("y3 BY a /CUSTOM KMATRIX=0.5 /STATISTICS PARAMETER");
  const standalone::PivotTable* table = Table(kIndividual);
  EXPECT_THAT(DimensionOf(*table, "Contrast").labels[0].notes,
              ElementsAre(T("Estimable Function for Intercept")));
  for (const char* logit : {"1", "2"}) {
    EXPECT_EQ(NumberAt(table, {logit, "L1"}, {"Hypothesized Value"}), 0.5);
    EXPECT_NEAR(NumberAt(table, {logit, "L1"}, {"Contrast Estimate"}),
                NumberAt(Table("ParameterEstimates"), {logit, "(Intercept)"}, {"B"}) +
                    NumberAt(Table("ParameterEstimates"), {logit, "[a=3]"}, {"B"}),
                1e-10);
  }
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 0 -1");
  EXPECT_THAT(DimensionOf(*Table(kIndividual), "Contrast").labels[0].notes, IsEmpty());
}

// Dependent rows.

TEST_F(CustomTests, WithARankDeficientLTheOverallTableListsTheContrastsInUse) {
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 -1 0; a 2 -2 0; a 1 0 -1");
  const standalone::PivotTable* table = Table(kOverall);
  ASSERT_EQ(table->notes.size(), 1U);
  EXPECT_THAT(table->notes[0], HasSubstr("L1, L3"));
  EXPECT_EQ(NumberAt(table, {}, {"df1"}), 2);
}

TEST_F(CustomTests, WithALOfFullRankTheOverallTableHasNoNote) {
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 -1 0; a 1 0 -1");
  EXPECT_THAT(Table(kOverall)->notes, IsEmpty());
}

TEST_F(CustomTests, TheContrastsInUseNameTheirLogit) {
  fRun.Run("y3 BY a /CUSTOM LMATRIX=a 1 -1 0; a 2 -2 0");
  ASSERT_EQ(Table(kOverall)->notes.size(), 1U);
  EXPECT_THAT(Table(kOverall)->notes[0], HasSubstr("L1 (y3 = 1), L1 (y3 = 2)"));
}

TEST_F(CustomTests, WithProportionalRowsTheAdjustedColumnSaysHowManyContrastsWereCounted) {
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 -1 0; a 2 -2 0; a 1 0 -1 /TEST PADJUST=BONFERRONI");
  const Labels notes = NotesOf(DimensionOf(*Table(kIndividual), "Statistics"), "Bonferroni Sig.");
  ASSERT_THAT(notes, SizeIs(1));
  EXPECT_THAT(notes[0], HasSubstr("2"));
  EXPECT_THAT(NotesOf(DimensionOf(*Table(kOverall), "Statistics"), "Bonferroni Sig."), IsEmpty());
  for (const char* row : {"L1", "L2", "L3"}) {
    const double p = NumberAt(Table(kIndividual), {row}, {"Sig."});
    EXPECT_NEAR(NumberAt(Table(kIndividual), {row}, {"Bonferroni Sig."}), std::min(1.0, 2 * p), 1e-12);
  }
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 -1 0; a 1 0 -1 /TEST PADJUST=BONFERRONI");
  EXPECT_THAT(NotesOf(DimensionOf(*Table(kIndividual), "Statistics"), "Bonferroni Sig."), IsEmpty());
}

TEST_F(CustomTests, WithoutAdjustmentThereIsNoColumnForThatNote) {
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 -1 0; a 2 -2 0 /TEST PADJUST=LSD");
  for (const auto& label : DimensionOf(*Table(kIndividual), "Statistics").labels)
    EXPECT_THAT(label.notes, IsEmpty()) << label.text;
}

// Failures.

TEST_F(CustomTests, OfTwoTestsTheOneThatFailsHasOnlyItsContrastTableWithItsNote) {
  fRun.Run("y BY a /CUSTOM LMATRIX=a 1 0 -1 /CUSTOM LMATRIX=a 1 1 0");
  const std::string first = T("Custom Hypothesis Tests") + " 1: ";
  const std::string second = T("Custom Hypothesis Tests") + " 2: ";
  EXPECT_THAT(Structure(),
              ElementsAre(first + kContrasts, first + kIndividual, first + kOverall, second + kContrasts));
  EXPECT_EQ(LastContrasts()->CellCount(), 0U);
  EXPECT_THAT(LastContrasts()->notes, ElementsAre("This L matrix is not estimable."));
  EXPECT_THAT(fRun.Keys(), ElementsAre("For ^1 L matrix is not estimable ^2"));
  EXPECT_FALSE(fRun.Output().messages[0].isError);
  EXPECT_THAT(fRun.Output().messages[0].text, HasSubstr("2"));
}

TEST_F(CustomTests, EachFailureHasItsMessageAndItsNote) {
  const struct {
    const char* command;
    const char* message;
    const char* note;
  } cases[] = {
      {"y BY a /CUSTOM LMATRIX=ALL 0 1 -1",
       "For ^1 no of values after ALL must be equal to no of parameters ^2",
       "Number of values is not equal to the number of parameters"},
      {"y BY a /CUSTOM LMATRIX=a 1 1 0", "For ^1 L matrix is not estimable ^2", ""},
      {"y3 BY a /CUSTOM LMATRIX=ALL 0 1 -1 0 0 1 1 0", "For ^1 L matrix is not estimable ^2", ""},
      {"y BY a /CUSTOM LMATRIX=a 1 -1", "For ^1 number of values must be equal to number of parameters ^2",
       "Number of values is not equal to number of parameters for that effect"}};
  for (const auto& c : cases) {
    fRun.Run(c.command);
    EXPECT_THAT(fRun.Keys(), ElementsAre(c.message)) << c.command;
    EXPECT_FALSE(fRun.Output().failed);
    EXPECT_THAT(Structure(), SizeIs(1)) << "no results";
    EXPECT_EQ(LastContrasts()->dimensions.size(), 2U);
    EXPECT_THAT(LastContrasts()->notes,
                ElementsAre(*c.note == 0 ? "This L matrix is not estimable." : T(c.note)));
  }
}

// A model whose only covariate is constant at zero has nothing to estimate without its intercept.
TEST_F(CustomTests, OfAModelWithoutAnyKeptParameterHaveZeroDegreesOfFreedom) {
  fRun["x"].assign(80, 0);
  fRun.Run("y WITH x /INTERCEPT INCLUDE=NO /CUSTOM LMATRIX=x 1");
  EXPECT_THAT(fRun.Keys(), ElementsAre("For ^1 matrix cannot be constructed because zero DF ^2"));
  EXPECT_THAT(LastContrasts()->notes, ElementsAre(T("Matrix not constructed due to zero DF")));
}

}  // namespace
}  // namespace tavo
