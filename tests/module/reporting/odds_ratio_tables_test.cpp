// Tables of odds ratios.
#include <cmath>

#include "reporting_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kOdds = "OddsRatios";

class OddsRatioTables : public Reporting {
 protected:
  std::vector<const standalone::PivotTable*> All() {
    std::vector<const standalone::PivotTable*> tables;
    for (const auto& table : fRun.Output().tables) {
      if (table->id == kOdds) tables.push_back(table.get());
    }
    return tables;
  }
};

TEST_F(OddsRatioTables, OfNoSubcommandThereAreNone) {
  fRun.Run("y BY a");
  EXPECT_THAT(All(), IsEmpty());
}

TEST_F(OddsRatioTables, EachRequestHasItsTableAndSeveralAreNumbered) {
  fRun.Run("y BY a WITH x /ODDSRATIOS FACTOR=[a]");
  ASSERT_THAT(All(), SizeIs(1));
  EXPECT_EQ(All()[0]->title, T("Odds Ratios"));
  EXPECT_EQ(All()[0]->caption, Caption("TestsOfModelEffects"));
  fRun.Run("y BY a WITH x /ODDSRATIOS FACTOR=[a] /ODDSRATIOS COVARIATE=[x]");
  ASSERT_THAT(All(), SizeIs(2));
  EXPECT_EQ(All()[0]->title, T("Odds Ratios") + " 1");
  EXPECT_EQ(All()[1]->title, T("Odds Ratios") + " 2");
}

TEST_F(OddsRatioTables, OfAFactorCompareEachCategoryWithTheReference) {
  fRun.Run("y BY a WITH x /ODDSRATIOS FACTOR=[a(2)] /STATISTICS PARAMETER /CRITERIA CILEVEL=90");
  const standalone::PivotTable* table = All().at(0);
  ASSERT_EQ(table->dimensions.size(), 3U);
  EXPECT_EQ(table->dimensions[0].Label(), "y");
  EXPECT_EQ(table->dimensions[0].level, 1);
  EXPECT_EQ(table->dimensions[1].Label(), "Ratio Pairs");
  EXPECT_EQ(table->dimensions[1].level, 2);
  EXPECT_TRUE(table->dimensions[1].hideLabel);
  EXPECT_THAT(PathsOf(table->dimensions[1]), ElementsAre("a/1 vs. 2", "a/3 vs. 2"));
  EXPECT_THAT(CategoriesOf(table->dimensions[0]), ElementsAre("0"));
  EXPECT_THAT(PathsOf(DimensionOf(*table, "Statistics")),
              ElementsAre("Odds Ratio", "90% Confidence Interval/Lower", "90% Confidence Interval/Upper"));
  const auto b = [&](const char* name) { return NumberAt(Table("ParameterEstimates"), {name}, {"B"}); };
  EXPECT_NEAR(NumberAt(table, {"1 vs. 2"}, {"Odds Ratio"}), std::exp(b("[a=1]") - b("[a=2]")), 1e-10);
  EXPECT_NEAR(NumberAt(table, {"3 vs. 2"}, {"Odds Ratio"}), std::exp(-b("[a=2]")), 1e-10);
  for (const char* pair : {"1 vs. 2", "3 vs. 2"}) {
    const double ratio = NumberAt(table, {pair}, {"Odds Ratio"});
    EXPECT_NEAR(NumberAt(table, {pair}, {"Lower"}) * NumberAt(table, {pair}, {"Upper"}) / (ratio * ratio), 1,
                1e-10);
  }
  EXPECT_EQ(FormatAt(table, {"1 vs. 2"}, {"Odds Ratio"}), host::BpFormatSpec::Kind::kCoefficient);
}

TEST_F(OddsRatioTables, TheReferenceIsTheHighestTheLowestOrTheNamedCategory) {
  const std::pair<const char*, Labels> cases[] = {{"a", {"a/1 vs. 3", "a/2 vs. 3"}},
                                                  {"a(HIGH)", {"a/1 vs. 3", "a/2 vs. 3"}},
                                                  {"a(LOW)", {"a/2 vs. 1", "a/3 vs. 1"}},
                                                  {"a(3)", {"a/1 vs. 3", "a/2 vs. 3"}}};
  for (const auto& [item, pairs] : cases) {
    fRun.Run(std::string("y BY a /ODDSRATIOS FACTOR=[") + item + "]");
    EXPECT_EQ(PathsOf(DimensionOf(*All().at(0), "Ratio Pairs")), pairs) << item;
  }
}

TEST_F(OddsRatioTables, OfACovariateHaveARowForEachChange) {
  fRun.Run("y WITH x z /ODDSRATIOS COVARIATE=[x(1 -2) z] /STATISTICS PARAMETER");
  const standalone::PivotTable* table = All().at(0);
  const standalone::PivotDimension& changes = DimensionOf(*table, "Units of Change");
  EXPECT_EQ(changes.level, 2);
  EXPECT_FALSE(changes.hideLabel);
  ASSERT_THAT(PathsOf(changes), SizeIs(3));
  const double b = NumberAt(Table("ParameterEstimates"), {"x"}, {"B"});
  const Labels labels = CategoriesOf(changes);
  EXPECT_NEAR(NumberAt(table, {"x", labels[0]}, {"Odds Ratio"}), std::exp(b), 1e-10);
  EXPECT_NEAR(NumberAt(table, {"x", labels[1]}, {"Odds Ratio"}), std::exp(-2 * b), 1e-10);
  EXPECT_NEAR(NumberAt(table, {"z"}, {"Odds Ratio"}),
              std::exp(NumberAt(Table("ParameterEstimates"), {"z"}, {"B"})), 1e-10);
}

TEST_F(OddsRatioTables, HaveARowForEachLogit) {
  fRun.Run("y3 (2) BY b /ODDSRATIOS FACTOR=[b] /STATISTICS PARAMETER");
  const standalone::PivotTable* table = All().at(0);
  EXPECT_THAT(CategoriesOf(table->dimensions[0]), ElementsAre("1", "3"));
  EXPECT_THAT(PathsOf(table->dimensions[1]), ElementsAre("b/1 vs. 2"));
  for (const char* logit : {"1", "3"}) {
    EXPECT_NEAR(NumberAt(table, {"1 vs. 2", logit}, {"Odds Ratio"}),
                std::exp(NumberAt(Table("ParameterEstimates"), {logit, "[b=1]"}, {"B"})), 1e-10);
  }
}

TEST_F(OddsRatioTables, SayWhereThePredictorsAreHeld) {
  fRun.Run("y BY a b WITH x z /ODDSRATIOS FACTOR=[a(2)] CONTROL=[b(1) x(3) z(MEAN)] /PRINT VARIABLEINFO");
  ASSERT_THAT(All().at(0)->notes, SizeIs(1));
  const std::string note = All()[0]->notes[0];
  EXPECT_THAT(note, HasSubstr("a = 3, b = 1")) << "a factor without a control is at its highest category";
  EXPECT_THAT(note, HasSubstr("x = 3"));
  EXPECT_THAT(note, HasSubstr("z = ")) << "by its own format";
}

TEST_F(OddsRatioTables, AControlDecidesTheRatiosOfAnInteraction) {
  fRun.Run(
      "y BY a b /MODEL a b a*b /ODDSRATIOS FACTOR=[a(3)] CONTROL=[b(1)] "
      "/ODDSRATIOS FACTOR=[a(3)] CONTROL=[b(2)] /STATISTICS PARAMETER");
  const standalone::PivotTable* estimates = Table("ParameterEstimates");
  const double main = NumberAt(estimates, {"[a=1]"}, {"B"});
  const double both = NumberAt(estimates, {"[a=1] * [b=1]"}, {"B"});
  ASSERT_NE(both, host::kSystemMissing);
  EXPECT_NEAR(NumberAt(All().at(0), {"1 vs. 3"}, {"Odds Ratio"}), std::exp(main + both), 1e-9);
  EXPECT_NEAR(NumberAt(All().at(1), {"1 vs. 3"}, {"Odds Ratio"}), std::exp(main), 1e-9);
}

TEST_F(OddsRatioTables, OfOnlyAFactorWithOneLevelAreEmptyAndSaySo) {
  fRun["c"].assign(80, 1);
  fRun.Run("y BY a c /ODDSRATIOS FACTOR=[a] /ODDSRATIOS FACTOR=[c]");
  EXPECT_THAT(fRun.Keys(), ElementsAre("For ^1 factor has only one level ^2"));
  EXPECT_FALSE(fRun.Output().messages[0].isError);
  EXPECT_THAT(fRun.Output().messages[0].text, HasSubstr("2"));
  ASSERT_THAT(All(), SizeIs(2));
  EXPECT_GT(All()[0]->CellCount(), 0U);
  EXPECT_EQ(All()[1]->CellCount(), 0U);
  EXPECT_THAT(All()[1]->notes, IsEmpty());
}

TEST_F(OddsRatioTables, AFactorWithOneLevelBesideOthersHasANoteWithItsName) {
  fRun["c"].assign(80, 1);
  fRun.prepare = [](standalone::Table& table) {
    for (std::size_t i = 0; i < table.ColumnCount(); ++i) {
      if (table.At(i).variable.GetName() == "c") table.At(i).variable.SetLabel("the label of c");
    }
  };
  fRun.Run("y BY a c /ODDSRATIOS FACTOR=[c a]");
  EXPECT_THAT(fRun.Keys(), IsEmpty());
  EXPECT_THAT(PathsOf(DimensionOf(*All().at(0), "Ratio Pairs")), ElementsAre("a/1 vs. 3", "a/2 vs. 3"));
  ASSERT_THAT(All()[0]->notes, SizeIs(2));
  EXPECT_THAT(All()[0]->notes[1], testing::StartsWith("c has only one category"));
}

TEST_F(OddsRatioTables, OfARunWithoutVarianceHaveNoIntervalButTheRatio) {
  fRun["psu"].assign(80, 1);
  fRun.Run("y BY a /ODDSRATIOS FACTOR=[a]");
  const standalone::PivotTable* table = All().at(0);
  EXPECT_FALSE(IsMissingAt(table, {"1 vs. 3"}, {"Odds Ratio"}));
  EXPECT_TRUE(IsMissingAt(table, {"1 vs. 3"}, {"Lower"}));
  EXPECT_TRUE(IsMissingAt(table, {"1 vs. 3"}, {"Upper"}));
}

TEST_F(OddsRatioTables, ANumberThatOverflowsIsAnEmptyCell) {
  fRun.Run("y WITH x /STATISTICS PARAMETER");
  const double b = NumberAt(Table("ParameterEstimates"), {"x"}, {"B"});
  const std::string change = std::to_string(720 / b);
  fRun.Run("y WITH x /ODDSRATIOS COVARIATE=[x(" + change + ")]");
  const standalone::PivotTable* table = All().at(0);
  EXPECT_TRUE(IsMissingAt(table, {"x"}, {"Odds Ratio"}));
  EXPECT_FALSE(IsMissingAt(table, {"x"}, {"Lower"}));
  EXPECT_TRUE(IsMissingAt(table, {"x"}, {"Upper"}));
}

TEST_F(OddsRatioTables, CategoriesAreShownByTheirLabels) {
  fRun.Text("s");
  for (std::size_t i = 0; i < 80; ++i)
    fRun.Text("s").push_back(fRun["a"][i] < 2 ? "low" : "high");
  fRun.Run("y BY s /ODDSRATIOS FACTOR=[s('high')]");
  EXPECT_THAT(PathsOf(DimensionOf(*All().at(0), "Ratio Pairs")), ElementsAre("s/low vs. high"));
}

}  // namespace
}  // namespace tavo
