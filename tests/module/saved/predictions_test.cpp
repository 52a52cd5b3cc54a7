// Predictions that SAVE writes into the data.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>

#include "../input/scripted_source.h"
#include "module/saved/predicted_variables.h"
#include "module_run.h"
#include "output_query.h"

namespace tavo {
namespace {

using test_support::ModuleRun;
using test_support::NumberAt;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr double kEmpty = host::kSystemMissing;
using Names = std::vector<std::string>;

// Names.

ScriptedSource With(const Names& taken) {
  ScriptedSource source;
  for (const std::string& name : taken)
    source.AddVariable(name);
  return source;
}

TEST(ProbabilityNames, AreTheRootAndANumberPaddedToTheDigitsOfTheirCount) {
  const ScriptedSource source = With({"y"});
  EXPECT_THAT(MakeProbabilityNames("R", 4, source), ElementsAre("R_1", "R_2", "R_3", "R_4"));
  const Names twelve = MakeProbabilityNames("R", 12, source);
  ASSERT_EQ(twelve.size(), 12U);
  EXPECT_EQ(twelve.front(), "R_01");
  EXPECT_EQ(twelve.back(), "R_12");
}

TEST(ProbabilityNames, AClashOnTheLastNameDropsAllNamesAndStartsTheRetry) {
  EXPECT_THAT(MakeProbabilityNames("R", 3, With({"R_3"})), ElementsAre("R_1_1", "R_2_1", "R_3_1"));
  EXPECT_THAT(MakeProbabilityNames("R", 2, With({"R_2", "R_1_1", "R_2_2"})), ElementsAre("R_1_3", "R_2_3"));
  EXPECT_EQ(MakeProbabilityNames("R", 12, With({"R_07"})).front(), "R_01_1");
}

TEST(ProbabilityNames, ARootOf64CharactersIsCutSoThatTheSuffixFits) {
  const std::string root(64, 'r');
  const ScriptedSource source = With({"y"});
  EXPECT_THAT(MakeProbabilityNames(root, 2, source),
              ElementsAre(std::string(62, 'r') + "_1", std::string(62, 'r') + "_2"));
  EXPECT_EQ(MakeProbabilityNames(std::string(62, 'r'), 2, source)[0], std::string(62, 'r') + "_1") << "whole";
  const std::string clash = std::string(62, 'r') + "_2";
  EXPECT_EQ(MakeProbabilityNames(root, 2, With({clash}))[1], std::string(60, 'r') + "_2_1");
}

TEST(ProbabilityNames, ACutDoesNotSplitACharacter) {
  std::string root;
  while (root.size() < 64)
    root += "ä";  // two bytes
  const Names names = MakeProbabilityNames("a" + root.substr(0, 62), 2, With({"y"}));
  EXPECT_EQ(names[0], "a" + root.substr(0, 60) + "_1");
}

// Variables and values.

class Predictions : public ::testing::Test {
 protected:
  const standalone::Column& Column(const std::string& name) {
    const int index = fRun.Table().Find(name);
    if (index < 0) throw std::runtime_error("no variable " + name);
    return fRun.Table().At(static_cast<std::size_t>(index));
  }
  bool Has(const std::string& name) { return fRun.Table().Find(name) >= 0; }
  double Number(const std::string& name, std::size_t row) { return Column(name).cells[row].number; }
  std::vector<double> Numbers(const std::string& name) {
    std::vector<double> values;
    for (std::size_t i = 0; i < fRun.Table().CaseCount(); ++i)
      values.push_back(Number(name, i));
    return values;
  }
  std::string TextIn(const std::string& name, std::size_t row) {
    const standalone::Column& column = Column(name);
    const char* bytes = reinterpret_cast<const char*>(&column.cells[row * column.Stride()]);
    return {bytes, static_cast<std::size_t>(column.variable.GetType())};
  }
  double Estimate(const test_support::ModuleRun& run, const std::vector<std::string>& row) {
    return NumberAt(run.Output().FindTable("ParameterEstimates"), row, {"B"});
  }
  Names Notes(const std::string& label) {
    Names texts;
    for (const standalone::CommandNote& note : fRun.Output().notes) {
      if (note.label == test_support::T(label)) texts.push_back(note.text);
    }
    return texts;
  }

  ModuleRun fRun;
};

TEST_F(Predictions, AreTheProbabilitiesOfTheEstimatesAndTheLikelierCategory) {
  fRun.Run("y WITH x /STATISTICS PARAMETER /SAVE PREDPROB(p:10) PREDVAL(best)");
  const double intercept = Estimate(fRun, {"(Intercept)"});
  const double slope = Estimate(fRun, {"x"});
  for (std::size_t i = 0; i < 80; ++i) {
    const double first = 1 / (1 + std::exp(-intercept - slope * fRun["x"][i]));
    EXPECT_NEAR(Number("p_1", i), first, 1e-12);
    EXPECT_NEAR(Number("p_2", i), 1 - first, 1e-12);
    EXPECT_EQ(Number("best", i), first > 0.5 ? 0 : 1);
  }
  EXPECT_THAT(fRun.Keys(), IsEmpty());
}

TEST_F(Predictions, StandByAscendingCategoriesWhateverTheReference) {
  fRun.Run("y3 (1) WITH x /SAVE PREDPROB(low:10)");
  const std::vector<double> low[] = {Numbers("low_1"), Numbers("low_2"), Numbers("low_3")};
  fRun.Run("y3 (3) WITH x /SAVE PREDPROB(high:10)");
  for (std::size_t i = 0; i < 80; ++i) {
    EXPECT_NEAR(low[0][i], Number("high_1", i), 1e-6);
    EXPECT_NEAR(low[1][i], Number("high_2", i), 1e-6);
    EXPECT_NEAR(low[2][i], Number("high_3", i), 1e-6);
    EXPECT_NEAR(low[0][i] + low[1][i] + low[2][i], 1, 1e-12);
  }
}

TEST_F(Predictions, LabelsAndNotesTellCategoriesThatPrintTheSameApart) {
  for (double& y : fRun["y"])
    y = y == 0 ? 0.41 : 0.42;
  fRun.prepare = [](standalone::Table& table) {
    table.At(static_cast<std::size_t>(table.Find("y"))).variable.SetFormat({5, 8, 1});
  };
  fRun.Run("y WITH x /SAVE PREDPROB(p:10)");
  EXPECT_EQ(Column("p_1").variable.GetLabel(), "Predicted Values for y = 0.41");
  EXPECT_EQ(Column("p_2").variable.GetLabel(), "Predicted Values for y = 0.42");
  EXPECT_THAT(Notes("Predicted Probabilities"), ElementsAre("y = 0.41: p_1", "y = 0.42: p_2"));
}

TEST_F(Predictions, VariablesHaveFormatsLabelsAndNotes) {
  fRun.prepare = [](standalone::Table& table) {
    host::VORN_Variable& y = table.At(static_cast<std::size_t>(table.Find("y"))).variable;
    y.SetFormat({5, 6, 2});
    y.SetMeasurementLevel(host::MeasurementLevel::kOrdinal);
  };
  fRun.Run("y WITH x /SAVE PREDPROB(p:10) PREDVAL(best)");
  const host::VORN_Variable& best = Column("best").variable;
  EXPECT_EQ(best.GetType(), 0);
  EXPECT_EQ(best.GetFormat().width, 6);
  EXPECT_EQ(best.GetFormat().decimals, 2);
  EXPECT_EQ(best.GetMeasurementLevel(), host::MeasurementLevel::kOrdinal);
  EXPECT_EQ(best.GetLabel(), test_support::T("Predicted Values for Population"));
  const host::VORN_Variable& p = Column("p_2").variable;
  EXPECT_EQ(p.GetFormat().type, 5);
  EXPECT_EQ(p.GetFormat().width, 8);
  EXPECT_EQ(p.GetFormat().decimals, 6);
  EXPECT_EQ(p.GetMeasurementLevel(), host::MeasurementLevel::kScale);
  EXPECT_EQ(p.GetLabel(), "Predicted Values for y = 1.00");
  EXPECT_THAT(Notes("Predicted Values"), ElementsAre("best"));
  EXPECT_THAT(Notes("Predicted Probabilities"), ElementsAre("y = 0.00: p_1", "y = 1.00: p_2"));
  EXPECT_EQ(fRun.Table().ColumnCount(), 12U + 3U);
}

TEST_F(Predictions, OnlyWhatIsAskedForIsMade) {
  fRun.Run("y WITH x /SAVE PREDVAL(best)");
  EXPECT_EQ(fRun.Table().ColumnCount(), 13U);
  EXPECT_THAT(Numbers("best"), Each(testing::AnyOf(0, 1)));
  fRun.Run("y WITH x /SAVE PREDPROB(p:10)");
  EXPECT_EQ(fRun.Table().ColumnCount(), 14U);
  fRun.Run("y WITH x");
  EXPECT_EQ(fRun.Table().ColumnCount(), 12U);
}

TEST_F(Predictions, ALimitBelowTheCategoriesSavesTheFirstAndWarnsOnce) {
  fRun.Run("y3 WITH x /SAVE PREDPROB(p:2)");
  EXPECT_TRUE(Has("p_1"));
  EXPECT_TRUE(Has("p_2"));
  EXPECT_FALSE(Has("p_3"));
  EXPECT_EQ(Column("p_2").variable.GetLabel(), "Predicted Values for y3 = 2");
  EXPECT_THAT(fRun.Keys(), ElementsAre("Predicted probabilities exceeds limit ^1"));
  EXPECT_FALSE(fRun.Output().messages[0].isError);
  EXPECT_THAT(fRun.Output().messages[0].text, HasSubstr("2"));
}

TEST_F(Predictions, TheLargestLimitIsTaken) {
  fRun.Run("y WITH x /SAVE PREDPROB(p:2147483647) PREDVAL(best)");
  EXPECT_FALSE(fRun.Output().failed);
  EXPECT_TRUE(Has("p_2"));
}

TEST_F(Predictions, TakenNamesAreAvoided) {
  fRun["p_2"].assign(80, 0);
  fRun.Run("y WITH x /SAVE PREDPROB(p:10)");
  EXPECT_FALSE(Has("p_1"));
  EXPECT_NEAR(Number("p_1_1", 5) + Number("p_2_1", 5), 1, 1e-12);
  EXPECT_EQ(Number("p_2", 5), 0) << "untouched";
}

TEST_F(Predictions, ThePredictedValueMayTakeTheNameOfAProbability) {
  fRun.Run("y WITH x /SAVE PREDVAL(p_1) PREDPROB(p:10)");
  EXPECT_THAT(Numbers("p_1"), Each(testing::AnyOf(0, 1)));
  EXPECT_TRUE(Has("p_1_1"));
  EXPECT_TRUE(Has("p_2_1"));
}

TEST_F(Predictions, OfAStringDependentAreAStringOfTheSameFormat) {
  fRun.Text("s");
  for (const double y : fRun["y"])
    fRun.Text("s").push_back(y > 0 ? "yes, of course" : "no");
  fRun.Run("s WITH x /SAVE PREDVAL(best) PREDPROB(p:10)");
  EXPECT_EQ(Column("best").variable.GetType(), 14);
  EXPECT_EQ(Column("best").variable.GetFormat().type, Column("s").variable.GetFormat().type);
  EXPECT_EQ(Column("best").variable.GetFormat().width, Column("s").variable.GetFormat().width);
  EXPECT_EQ(Column("p_1").variable.GetLabel(), "Predicted Values for s = no");
  for (std::size_t i = 0; i < 80; ++i) {
    EXPECT_EQ(TextIn("best", i), Number("p_1", i) > 0.5 ? "no            " : "yes, of course") << i;
  }
}

// Ties.

TEST_F(Predictions, ATieGoesToTheWeightedCountThenTheCasesThenTheSmallerCode) {
  // The intercept alone, equal weighted counts: the predictor is 0, a tie with the reference.
  const struct {
    std::size_t ones;
    double weightOfOnes, weightOfZeros;
    double expected;
  } cases[] = {{40, 1, 1, 0},   // all equal
               {20, 3, 1, 0},   // more cases of 0
               {60, 1, 3, 1}};  // more cases of 1
  for (const auto& c : cases) {
    for (std::size_t i = 0; i < 80; ++i) {
      const bool isOne = i * c.ones / 80 != (i + 1) * c.ones / 80;  // spread evenly
      fRun["y"][i] = isOne ? 1 : 0;
      fRun["w"][i] = isOne ? c.weightOfOnes : c.weightOfZeros;
    }
    for (const char* reference : {"0", "1"}) {
      fRun.Run(std::string("y (") + reference + ") /SAVE PREDVAL(best) PREDPROB(p:10)");
      ASSERT_NEAR(Number("p_1", 0), 0.5, 1e-15);
      EXPECT_THAT(Numbers("best"), Each(c.expected)) << c.ones << " reference " << reference;
    }
  }
}

// Cases.

TEST_F(Predictions, ACaseThatLacksDependentWeightOrDesignIsScored) {
  fRun["y"][3] = kEmpty;
  fRun["w"][13] = kEmpty;
  fRun["w"][14] = 0;
  fRun["w"][15] = -2;
  fRun["psu"][23] = kEmpty;
  fRun["h"][33] = kEmpty;
  fRun.Run("y WITH x /STATISTICS PARAMETER /SAVE PREDPROB(p:10) PREDVAL(best)");
  const double intercept = Estimate(fRun, {"(Intercept)"});
  const double slope = Estimate(fRun, {"x"});
  for (const std::size_t row : {3U, 13U, 14U, 15U, 23U, 33U, 50U}) {
    EXPECT_NEAR(Number("p_1", row), 1 / (1 + std::exp(-intercept - slope * fRun["x"][row])), 1e-12) << row;
    EXPECT_NE(Number("best", row), kEmpty) << row;
  }
  EXPECT_THAT(fRun.Keys(), IsEmpty());
}

TEST_F(Predictions, ACaseThatLacksAPredictorStaysEmpty) {
  fRun["x"][7] = kEmpty;
  fRun["a"][8] = kEmpty;
  fRun["z"][9] = kEmpty;  // not in the model
  fRun.Run("y BY a WITH x z /MODEL a x /SAVE PREDPROB(p:10) PREDVAL(best)");
  for (const std::size_t row : {7U, 8U}) {
    EXPECT_EQ(Number("p_1", row), kEmpty) << row;
    EXPECT_EQ(Number("p_2", row), kEmpty) << row;
    EXPECT_EQ(Number("best", row), kEmpty) << row;
  }
  for (const std::size_t row : {6U, 9U, 10U})
    EXPECT_NE(Number("p_1", row), kEmpty) << row;
}

TEST_F(Predictions, ACaseThatOverflowsStaysEmpty) {
  for (const double x : fRun["x"])
    fRun["small"].push_back(x / 1000);  // so that its slope is far above 1
  for (const std::size_t row : {20U, 21U})
    fRun["y"][row] = kEmpty;  // they are scored only
  fRun["small"][20] = 1e308;
  fRun["small"][21] = -1e308;
  fRun.Run("y WITH small /SAVE PREDPROB(p:10) PREDVAL(best)");
  EXPECT_FALSE(fRun.Output().failed);
  EXPECT_TRUE(Number("p_1", 20) == kEmpty || Number("p_1", 21) == kEmpty) << "the one above 0";
  for (std::size_t i = 0; i < 80; ++i) {
    EXPECT_TRUE(std::isfinite(Number("p_1", i)) && std::isfinite(Number("p_2", i))) << i;
    EXPECT_EQ(Number("p_1", i) == kEmpty, Number("best", i) == kEmpty) << i;
    EXPECT_EQ(Number("p_1", i) == kEmpty, Number("p_2", i) == kEmpty) << i;
  }
}

TEST_F(Predictions, AFactorValueUnseenInTheFitLeavesTheCaseEmpty) {
  fRun["a"][11] = 9;  // the only case of its category, and it can't be in the fit
  fRun["y"][11] = kEmpty;
  fRun.Run("y BY a /SAVE PREDPROB(p:10) PREDVAL(best)");
  EXPECT_EQ(Number("p_1", 11), kEmpty);
  EXPECT_EQ(Number("best", 11), kEmpty);
  EXPECT_NE(Number("p_1", 12), kEmpty);
}

TEST_F(Predictions, CasesOutsideTheSubpopulationStayEmptyWithoutAMessage) {
  fRun["d"][5] = kEmpty;
  fRun.Run("y WITH x /DOMAIN VARIABLE=d(2) /SAVE PREDPROB(p:10) PREDVAL(best)");
  for (std::size_t i = 0; i < 80; ++i)
    EXPECT_EQ(Number("p_1", i) != kEmpty, fRun["d"][i] == 2) << i;
  EXPECT_THAT(Column("best").variable.GetLabel(),
              test_support::T("Predicted Values for Subpopulation:") + " d = 2");
  EXPECT_THAT(fRun.Keys(), IsEmpty());
}

TEST_F(Predictions, DeclaredMissingFactorValuesAreScoredOnlyWhenTheyAreCategories) {
  fRun.prepare = [](standalone::Table& table) {
    host::VORN_MissingValues missing;
    missing.values.push_back(tavo::Number(3));
    table.At(static_cast<std::size_t>(table.Find("a"))).variable.SetMissingValues(missing);
  };
  for (const bool included : {false, true}) {
    fRun.Run(std::string("y BY a /SAVE PREDPROB(p:10) /MISSING CLASSMISSING=") +
             (included ? "INCLUDE" : "EXCLUDE"));
    for (std::size_t i = 0; i < 80; ++i)
      EXPECT_EQ(Number("p_1", i) != kEmpty, included || fRun["a"][i] != 3) << i;
  }
}

TEST_F(Predictions, OfARunThatFailedAreNotMade) {
  fRun["y"].assign(80, 1);
  fRun.Run("y WITH x /SAVE PREDPROB(p:10) PREDVAL(best)");
  EXPECT_TRUE(fRun.Output().failed);
  EXPECT_FALSE(Has("best"));
  EXPECT_FALSE(Has("p_1"));
}

}  // namespace
}  // namespace tavo
