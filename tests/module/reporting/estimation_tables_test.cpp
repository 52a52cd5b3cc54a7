#include <cmath>

#include "module/reporting/termination_texts.h"
#include "reporting_fixture.h"

namespace tavo {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kAllStatistics = " /STATISTICS PARAMETER EXP SE TTEST CINTERVAL DEFF DEFFSQRT";

// Parameter estimates.

TEST_F(Reporting, ColumnsComeInAFixedOrderWhateverTheOrderOfTheKeywords) {
  fRun.Run("y WITH x /STATISTICS EXP DEFFSQRT DEFF CINTERVAL TTEST SE PARAMETER /CRITERIA CILEVEL=90");
  EXPECT_THAT(
      PathsOf(DimensionOf(*Table("ParameterEstimates"), "Statistics")),
      ElementsAre("B", "Std. Error", "90% Confidence Interval/Lower", "90% Confidence Interval/Upper",
                  "Hypothesis Test/t", "Hypothesis Test/degrees of freedom", "Hypothesis Test/Significance",
                  "Design Effect", "Square Root Design Effect", "Exp(B)",
                  "90% Confidence Interval for Exp(B)/Lower", "90% Confidence Interval for Exp(B)/Upper"));
}

TEST_F(Reporting, OnlyTheColumnsThatWereAskedForAreThere) {
  fRun.Run("y WITH x /STATISTICS EXP");
  EXPECT_THAT(PathsOf(DimensionOf(*Table("ParameterEstimates"), "Statistics")), ElementsAre("Exp(B)"));
  fRun.Run("y WITH x /STATISTICS CINTERVAL SE");
  EXPECT_THAT(PathsOf(DimensionOf(*Table("ParameterEstimates"), "Statistics")),
              ElementsAre("Std. Error", "95% Confidence Interval/Lower", "95% Confidence Interval/Upper"));
}

TEST_F(Reporting, StatisticsOfAParameterBelongTogether) {
  fRun.Run(std::string("y BY a WITH x") + kAllStatistics);
  const standalone::PivotTable* table = Table("ParameterEstimates");
  for (const char* name : {"(Intercept)", "x", "[a=1]"}) {
    const auto at = [&](const Labels& column) { return NumberAt(table, {name}, column); };
    const double b = at({"B"});
    EXPECT_NEAR(at({"t"}), b / at({"Std. Error"}), 1e-12);
    EXPECT_EQ(at({"degrees of freedom"}), 6);
    EXPECT_NEAR(at({"95% Confidence Interval", "Lower"}) + at({"95% Confidence Interval", "Upper"}), 2 * b,
                1e-12);
    // 2.446912 is the 97.5 percent point of Student's t with 6 degrees of freedom (any table).
    EXPECT_NEAR(at({"95% Confidence Interval", "Upper"}), b + 2.446912 * at({"Std. Error"}), 1e-5);
    EXPECT_NEAR(at({"Exp(B)"}), std::exp(b), 1e-12);
    EXPECT_NEAR(std::log(at({"95% Confidence Interval for Exp(B)", "Lower"})),
                at({"95% Confidence Interval", "Lower"}), 1e-12);
    EXPECT_NEAR(at({"Square Root Design Effect"}), std::sqrt(at({"Design Effect"})), 1e-12);
    EXPECT_THAT(CellNotes(table, {name}, {"B"}), IsEmpty());
  }
}

// With one factor the model is saturated: each logit is the log of the ratio of weights.
TEST_F(Reporting, EstimatesOfASaturatedModelAreLogRatiosOfWeights) {
  double weight[2][4] = {};
  for (std::size_t i = 0; i < 80; ++i) {
    weight[static_cast<int>(fRun["y"][i])][static_cast<int>(fRun["a"][i])] += fRun["w"][i];
  }
  fRun.Run("y BY a /STATISTICS PARAMETER");
  const standalone::PivotTable* table = Table("ParameterEstimates");
  const double last = std::log(weight[0][3] / weight[1][3]);
  EXPECT_NEAR(NumberAt(table, {"(Intercept)"}, {"B"}), last, 1e-6);
  EXPECT_NEAR(NumberAt(table, {"[a=2]"}, {"B"}), std::log(weight[0][2] / weight[1][2]) - last, 1e-6);
}

TEST_F(Reporting, ARedundantParameterShows0WithItsNoteAndExp1AndItsBoundsAreEmpty) {
  fRun.Run(std::string("y BY a") + kAllStatistics);
  const standalone::PivotTable* table = Table("ParameterEstimates");
  const Labels row = {"[a=3]"};
  EXPECT_EQ(NumberAt(table, row, {"B"}), 0);
  EXPECT_THAT(CellNotes(table, row, {"B"}), ElementsAre(T("Parameter is redundant")));
  EXPECT_EQ(NumberAt(table, row, {"Exp(B)"}), 1);
  EXPECT_THAT(CellNotes(table, row, {"Exp(B)"}), IsEmpty());
  for (const Labels& column :
       {Labels{"Std. Error"}, Labels{"95% Confidence Interval", "Lower"},
        Labels{"95% Confidence Interval", "Upper"}, Labels{"t"}, Labels{"degrees of freedom"},
        Labels{"Significance"}, Labels{"Design Effect"}, Labels{"Square Root Design Effect"},
        Labels{"95% Confidence Interval for Exp(B)", "Lower"},
        Labels{"95% Confidence Interval for Exp(B)", "Upper"}}) {
    EXPECT_TRUE(IsMissingAt(table, row, column)) << column.front();
  }
  EXPECT_EQ(FormatAt(table, row, {"degrees of freedom"}), host::BpFormatSpec::Kind::kCount);
  EXPECT_EQ(FormatAt(table, {"[a=1]"}, {"degrees of freedom"}), host::BpFormatSpec::Kind::kGeneralStat);
}

TEST_F(Reporting, WithoutBARedundantParameterHasNoNote) {
  fRun.Run("y BY a /STATISTICS SE");
  EXPECT_TRUE(IsMissingAt(Table("ParameterEstimates"), {"[a=3]"}, {"Std. Error"}));
  EXPECT_THAT(CellNotes(Table("ParameterEstimates"), {"[a=3]"}, {"Std. Error"}), IsEmpty());
}

// A covariate in tiny units has a large estimate; its interval reaches below the largest exponent.
TEST_F(Reporting, AnExponentThatOverflowsIsMissingWithItsNoteWhileTheLowerBoundPrints) {
  for (std::size_t i = 0; i < 80; ++i)
    fRun["x"][i] += 4 * (1 - fRun["y"][i]);
  fRun.Run("y WITH x /STATISTICS PARAMETER CINTERVAL /PRINT NONE");
  const double b = NumberAt(Table("ParameterEstimates"), {"x"}, {"B"});
  ASSERT_GT(b, 0);
  for (double& x : fRun["x"])
    x *= b / 720;  // the new estimate is 720, and exp(709.8) is the largest double
  fRun.Run("y WITH x /STATISTICS PARAMETER EXP CINTERVAL /PRINT NONE");
  const standalone::PivotTable* table = Table("ParameterEstimates");
  ASSERT_NEAR(NumberAt(table, {"x"}, {"B"}), 720, 1e-3);
  const double lower = NumberAt(table, {"x"}, {"95% Confidence Interval", "Lower"});
  ASSERT_LT(lower, 709);
  EXPECT_TRUE(IsMissingAt(table, {"x"}, {"Exp(B)"}));
  EXPECT_THAT(CellNotes(table, {"x"}, {"Exp(B)"}), ElementsAre(T("Set to system missing due to overflow")));
  const Labels lowerBound = {"95% Confidence Interval for Exp(B)", "Lower"};
  EXPECT_NEAR(std::log(NumberAt(table, {"x"}, lowerBound)), lower, 1e-9);
  EXPECT_THAT(CellNotes(table, {"x"}, lowerBound), IsEmpty());
  const Labels upperBound = {"95% Confidence Interval for Exp(B)", "Upper"};
  EXPECT_TRUE(IsMissingAt(table, {"x"}, upperBound));
  EXPECT_THAT(CellNotes(table, {"x"}, upperBound), ElementsAre(T("Set to system missing due to overflow")));
}

TEST_F(Reporting, ParametersRepeatInEachLogitAndTheReferenceHasNone) {
  fRun.Run("y3 (2) WITH x /STATISTICS PARAMETER");
  const standalone::PivotTable* table = Table("ParameterEstimates");
  const standalone::PivotDimension& logits = DimensionOf(*table, "y3");
  EXPECT_EQ(logits.level, 2);
  EXPECT_EQ(logits.place, host::BpPlace::kRow);
  EXPECT_THAT(CategoriesOf(logits), ElementsAre("1", "3"));
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Parameter")), ElementsAre("(Intercept)", "x"));
  EXPECT_EQ(table->CellCount(), 4U);
  EXPECT_NE(NumberAt(table, {"1", "x"}, {"B"}), NumberAt(table, {"3", "x"}, {"B"}));
}

TEST_F(Reporting, AHiddenInterceptAppearsInNoTable) {
  fRun.Run("y3 WITH x /INTERCEPT SHOW=NO /STATISTICS PARAMETER /PRINT HISTORY COVB CORB");
  EXPECT_THAT(CategoriesOf(DimensionOf(*Table("ParameterEstimates"), "Parameter")), ElementsAre("x"));
  for (const char* id : {"CovariancesOfParameterEstimates", "CorrelationsOfParameterEstimates"}) {
    for (const char* dimension : {"Parameter 1", "Parameter 2"}) {
      EXPECT_THAT(CategoriesOf(DimensionOf(*Table(id), dimension)), ElementsAre("x")) << id;
    }
    EXPECT_EQ(Table(id)->CellCount(), 4U);
  }
  EXPECT_THAT(PathsOf(DimensionOf(*Table("IterationHistory"), "Statistics")),
              ElementsAre("N Step-halving", "Pseudo -2 Log Likelihood", "y3/1/x", "y3/2/x"));
}

TEST_F(Reporting, AModelOfTheInterceptAloneWithItHiddenHasAnEmptyTable) {
  fRun.Run("y /INTERCEPT SHOW=NO /STATISTICS PARAMETER");
  EXPECT_EQ(fRun.Output().FindTable("ParameterEstimates"), nullptr) << "no cells";
  EXPECT_FALSE(fRun.Output().failed);
}

// Covariances and correlations.

TEST_F(Reporting, CovariancesOfSeveralEquationsFitTheStandardErrors) {
  fRun.Run("y3 BY b WITH x /STATISTICS PARAMETER SE /PRINT COVB CORB");
  const standalone::PivotTable* covariances = Table("CovariancesOfParameterEstimates");
  const standalone::PivotTable* correlations = Table("CorrelationsOfParameterEstimates");
  EXPECT_EQ(covariances->CellCount(), 64U);  // 2 logits of 4 parameters, on both sides
  const standalone::PivotDimension& rowLogits = covariances->dimensions.at(1);
  EXPECT_EQ(rowLogits.Label(), "y3");
  EXPECT_EQ(rowLogits.place, host::BpPlace::kRow);
  EXPECT_EQ(rowLogits.level, 2);
  const std::vector<Labels> places = {{"1", "(Intercept)"}, {"1", "x"}, {"1", "[b=1]"},
                                      {"2", "(Intercept)"}, {"2", "x"}, {"2", "[b=1]"}};
  for (const Labels& row : places) {
    const double rowError = NumberAt(Table("ParameterEstimates"), row, {"Std. Error"});
    EXPECT_NEAR(NumberAt(covariances, row, row), rowError * rowError, 1e-12);
    EXPECT_EQ(NumberAt(correlations, row, row), 1.0);
    for (const Labels& column : places) {
      const double columnError = NumberAt(Table("ParameterEstimates"), column, {"Std. Error"});
      const double covariance = NumberAt(covariances, row, column);
      EXPECT_EQ(covariance, NumberAt(covariances, column, row));
      if (row == column) continue;
      EXPECT_NEAR(NumberAt(correlations, row, column), covariance / (rowError * columnError), 1e-12);
    }
  }
}

TEST_F(Reporting, CovariancesOfRedundantParametersAreMissingWithTheirNote) {
  fRun.Run("y BY b /PRINT COVB CORB");
  for (const char* id : {"CovariancesOfParameterEstimates", "CorrelationsOfParameterEstimates"}) {
    for (const auto& [row, column] : {std::pair<const char*, const char*>{"[b=2]", "(Intercept)"},
                                      {"(Intercept)", "[b=2]"},
                                      {"[b=2]", "[b=2]"}}) {
      EXPECT_TRUE(IsMissingAt(Table(id), {row}, {column})) << id << row << column;
      EXPECT_THAT(CellNotes(Table(id), {row}, {column}), ElementsAre(T("Parameter estimates was redundant")));
    }
    EXPECT_FALSE(IsMissingAt(Table(id), {"(Intercept)"}, {"[b=1]"}));
  }
}

TEST_F(Reporting, WithASingleEquationTheCovariancesLoopOverTheParametersOnly) {
  fRun.Run("y WITH x /PRINT COVB");
  const standalone::PivotTable* table = Table("CovariancesOfParameterEstimates");
  EXPECT_EQ(table->CellCount(), 4U);
  EXPECT_THAT(CategoriesOf(table->dimensions.at(1)), ElementsAre("0"));
  EXPECT_THAT(CategoriesOf(table->dimensions.at(3)), ElementsAre("0"));
}

// One unit for each stratum gives the design no variance at all.
TEST_F(Reporting, CorrelationsWithoutVarianceAreMissing) {
  fRun["psu"] = std::vector<double>(80, 1.0);
  fRun.Run("y WITH x /PRINT CORB COVB");
  const standalone::PivotTable* table = Table("CorrelationsOfParameterEstimates");
  EXPECT_THAT(fRun.Keys(), ElementsAre("Variance for all parameters is zero"));
  EXPECT_EQ(NumberAt(Table("CovariancesOfParameterEstimates"), {"x"}, {"x"}), 0);
  EXPECT_TRUE(IsMissingAt(table, {"x"}, {"x"}));
  EXPECT_TRUE(IsMissingAt(table, {"x"}, {"(Intercept)"}));
}

// Classification.

TEST_F(Reporting, ClassificationAddsUp) {
  fRun.Run("y3 (2) BY a WITH x /PRINT CLASSTABLE");
  const standalone::PivotTable* table = Table("Classification");
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Observed")), ElementsAre("1", "3", "2", "Overall Percent"));
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Predicted")), ElementsAre("1", "3", "2", "Percent Correct"));
  double total = 0;
  double diagonal = 0;
  for (const char* observed : {"1", "3", "2"}) {
    double row = 0;
    for (const char* predicted : {"1", "3", "2"})
      row += NumberAt(table, {observed}, {predicted});
    double weight = 0;
    for (std::size_t i = 0; i < 80; ++i)
      weight += fRun["y3"][i] == std::stod(observed) ? fRun["w"][i] : 0;
    EXPECT_NEAR(row, weight, 1e-9) << observed;
    EXPECT_NEAR(NumberAt(table, {observed}, {"Percent Correct"}),
                NumberAt(table, {observed}, {observed}) / row * 100, 1e-9);
    total += row;
    diagonal += NumberAt(table, {observed}, {observed});
  }
  for (const char* predicted : {"1", "3", "2"}) {
    double column = 0;
    for (const char* observed : {"1", "3", "2"})
      column += NumberAt(table, {observed}, {predicted});
    EXPECT_NEAR(NumberAt(table, {"Overall Percent"}, {predicted}), column / total * 100, 1e-9);
  }
  EXPECT_NEAR(NumberAt(table, {"Overall Percent"}, {"Percent Correct"}), diagonal / total * 100, 1e-9);
}

TEST_F(Reporting, ACategoryThatIsNeverPredictedHasPercents0) {
  for (std::size_t i = 0; i < 80; ++i)
    fRun["y"][i] = i % 8 == 0 ? 1 : 0;
  fRun.Run("y /PRINT CLASSTABLE");
  const standalone::PivotTable* table = Table("Classification");
  EXPECT_EQ(NumberAt(table, {"0"}, {"1"}), 0);
  EXPECT_EQ(NumberAt(table, {"1"}, {"1"}), 0);
  EXPECT_EQ(NumberAt(table, {"1"}, {"Percent Correct"}), 0);
  EXPECT_EQ(NumberAt(table, {"Overall Percent"}, {"1"}), 0);
  EXPECT_EQ(NumberAt(table, {"0"}, {"Percent Correct"}), 100);
  EXPECT_EQ(NumberAt(table, {"Overall Percent"}, {"0"}), 100);
}

// Pseudo R squares.

TEST_F(Reporting, PseudoRSquaresOfAnInterceptAloneAreZero) {
  fRun.Run("y");
  for (const char* label : {"Cox and Snell", "Nagelkerke", "McFadden"}) {
    EXPECT_NEAR(NumberAt(Table("PseudoRSquares"), {label}, {}), 0, 1e-9) << label;
  }
}

// Iteration history.

Labels LastIterationNotes(const standalone::PivotTable& table) {
  const standalone::PivotDimension& iterations = DimensionOf(table, "Iteration Number");
  return iterations.labels[static_cast<std::size_t>(iterations.Categories().back())].notes;
}

TEST_F(Reporting, HistoryShowsEachIterationAndItsNoteOnTheLast) {
  fRun.Run("y BY b WITH x /PRINT HISTORY /STATISTICS PARAMETER");
  const standalone::PivotTable* table = Table("IterationHistory");
  EXPECT_THAT(
      PathsOf(DimensionOf(*table, "Statistics")),
      ElementsAre("N Step-halving", "Pseudo -2 Log Likelihood", "y/0/(Intercept)", "y/0/x", "y/0/[b=1]"))
      << "redundant parameters are left out";
  const Labels iterations = CategoriesOf(DimensionOf(*table, "Iteration Number"));
  ASSERT_GE(iterations.size(), 3U);
  EXPECT_EQ(iterations[0], "0");
  EXPECT_EQ(iterations[1], "1");
  EXPECT_THAT(NotesOf(DimensionOf(*table, "Iteration Number"), "0"), IsEmpty());
  EXPECT_THAT(LastIterationNotes(*table), ElementsAre(HasSubstr("parameter estimates have converged")));
  EXPECT_EQ(NumberAt(table, {iterations.back()}, {"x"}), NumberAt(Table("ParameterEstimates"), {"x"}, {"B"}));
  for (std::size_t i = 1; i < iterations.size(); ++i) {
    EXPECT_LE(NumberAt(table, {iterations[i]}, {"Pseudo -2 Log Likelihood"}),
              NumberAt(table, {iterations[i - 1]}, {"Pseudo -2 Log Likelihood"}) + 1e-9);
  }
}

TEST_F(Reporting, HistoryOfEveryThirdIterationEndsWithTheLast) {
  fRun.Run("y BY b WITH x /CRITERIA MXITER=7 PCONVERGE=[0] LCONVERGE=[0] /PRINT HISTORY(3)");
  const standalone::PivotTable* table = Table("IterationHistory");
  const Labels iterations = CategoriesOf(DimensionOf(*table, "Iteration Number"));
  ASSERT_GE(iterations.size(), 3U);
  EXPECT_EQ(iterations[0], "0");
  EXPECT_EQ(iterations[1], "3");
  EXPECT_EQ(iterations[2], "6");
}

TEST_F(Reporting, WithoutHISTORYThereIsNoTable) {
  fRun.Run("y WITH x /PRINT SUMMARY");
  EXPECT_EQ(fRun.Output().FindTable("IterationHistory"), nullptr);
}

TEST_F(Reporting, NoIterationsAllowedIsSaidInTheNote) {
  fRun.Run("y WITH x /CRITERIA MXITER=0 /PRINT HISTORY");
  EXPECT_THAT(LastIterationNotes(*Table("IterationHistory")), ElementsAre(T("Number of iterations is zero")));
}

TEST_F(Reporting, TheNoteTellsRelativeFromAbsoluteChanges) {
  fRun.Run("y WITH x /CRITERIA PCONVERGE=[1E-8 ABSOLUTE] LCONVERGE=[0 RELATIVE] /PRINT HISTORY");
  EXPECT_THAT(LastIterationNotes(*Table("IterationHistory")).at(0),
              HasSubstr("relative change of the log-likelihood"));
  EXPECT_THAT(LastIterationNotes(*Table("IterationHistory")).at(0),
              HasSubstr("last absolute change of a parameter"));
  fRun.Run("y WITH x /CRITERIA PCONVERGE=[0] LCONVERGE=[1E-6 ABSOLUTE] /PRINT HISTORY");
  EXPECT_THAT(LastIterationNotes(*Table("IterationHistory")).at(0),
              HasSubstr("The log-likelihood has converged"));
  EXPECT_THAT(LastIterationNotes(*Table("IterationHistory")).at(0), HasSubstr("absolute change"));
}

TEST_F(Reporting, BothCriteriaMetAtOnceAreToldTogetherWithoutAWarning) {
  fRun.Run("y WITH x /CRITERIA PCONVERGE=[0.01] LCONVERGE=[1E-5] /PRINT HISTORY");
  EXPECT_THAT(LastIterationNotes(*Table("IterationHistory")).at(0),
              HasSubstr("The log-likelihood and the parameter estimates have converged"));
  EXPECT_THAT(fRun.Keys(), IsEmpty());
}

TEST_F(Reporting, TheMaximumOfIterationsGivesNoteAndWarningPairInOrder) {
  fRun.Run("y WITH x /CRITERIA MXITER=1 /PRINT HISTORY");
  EXPECT_THAT(LastIterationNotes(*Table("IterationHistory")).at(0),
              HasSubstr("maximum number of iterations"));
  EXPECT_THAT(fRun.Keys(),
              ElementsAre("Maximum iterations was reached", "Tavoreg continues despite warnings"));
  for (const standalone::Message& message : fRun.Output().messages)
    EXPECT_FALSE(message.isError);
  EXPECT_FALSE(fRun.Output().failed);
}

TEST_F(Reporting, TheWarningPairComesAlsoWithoutTheTable) {
  fRun.Run("y WITH x /CRITERIA MXITER=1 /PRINT NONE");
  EXPECT_THAT(fRun.Keys(),
              ElementsAre("Maximum iterations was reached", "Tavoreg continues despite warnings"));
}

struct TerminationCase {
  int state;
  const char* note;
  bool hasChanges;
  const char* warning;
};

class Termination : public ::testing::TestWithParam<TerminationCase> {};

TEST_P(Termination, HasItsNoteAndItsWarning) {
  const TerminationTexts& texts = TextsOf(static_cast<TerminationState>(GetParam().state));
  EXPECT_STREQ(texts.note, GetParam().note);
  EXPECT_EQ(texts.hasChanges, GetParam().hasChanges);
  EXPECT_STREQ(texts.warning, GetParam().warning);
  for (const char* key : {texts.note, texts.warning}) {
    EXPECT_TRUE(key == nullptr || standalone::HasCatalogueText(key)) << key;
  }
}

INSTANTIATE_TEST_SUITE_P(
    EveryState, Termination,
    ::testing::Values(
        TerminationCase{0, nullptr, false, nullptr},
        TerminationCase{1, "Log-likelihood value converges ^1 ^2 ^3 ^4", true, nullptr},
        TerminationCase{2, "Parameter estimates converge ^1 ^2 ^3 ^4", true, nullptr},
        TerminationCase{3, "Both converge ^1 ^2 ^3 ^4", true, nullptr},
        TerminationCase{4, "Unexpected singularities in Hessian matrix are encountered ^1 ^2 ^3 ^4", true,
                        "Unexpected singularities in Hessian matrix are encountered"},
        TerminationCase{5, "Cannot increase log-likelihood", false,
                        "Log-likelihood value cannot be increased"},
        TerminationCase{6, "Maximum iterations was reached ^1 ^2 ^3 ^4", true,
                        "Maximum iterations was reached"},
        TerminationCase{7, "Log-likelihood value is zero ^1 ^2 ^3 ^4", true, "Log-likelihood value is zero"},
        TerminationCase{8, "Quasi complete separation exists ^1 ^2 ^3 ^4", true,
                        "Quasi-complete separation may exist in data"},
        TerminationCase{9, "No iterations are necessary", false, nullptr},
        TerminationCase{10, nullptr, false, nullptr}, TerminationCase{-1, nullptr, false, nullptr}));

}  // namespace
}  // namespace tavo
