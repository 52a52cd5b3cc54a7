// ODDSRATIOS: from the text of a request to variables, changes and items.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"
#include "component/numerics/missing_value.h"

namespace command_parser_test {

namespace {

using tavo::FactorSpec;
using tavo::OddsRatioItems;
using tavo::OrvOddsRatioSpec;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class OddsRatios : public testing::Test {
 protected:
  /// Parses a command with factors a b g and covariates x z; gives its last request.
  const OrvOddsRatioSpec& Parse(const std::string& keywords) {
    EXPECT_TRUE(fRun.Parse("TAVOREG y BY a b g WITH x z /ODDSRATIOS " + keywords))
        << testing::PrintToString(fRun.Keys());
    static const OrvOddsRatioSpec none;
    return fRun.Specs().OddsRatios().empty() ? none : fRun.Specs().OddsRatios().back();
  }
  std::string Refusal(const std::string& keywords) {
    EXPECT_FALSE(fRun.Parse("TAVOREG y BY a b g WITH x z /ODDSRATIOS " + keywords));
    return fRun.Keys().empty() ? "" : fRun.Keys().back();
  }
  const OddsRatioItems& Items() { return fRun.Specs().OddsRatioItemLists().back(); }
  int Index(const char* name) const { return fRun.IndexOf(name); }

  CommandRun fRun;
};

TEST_F(OddsRatios, OfAFactorAndACovariateCannotBeGivenTogether) {
  EXPECT_EQ(Refusal("FACTOR=[a] COVARIATE=[x]"),
            "Parameter ^1 of subcommand ^3 cannot be given with parameter ^2...");
}

TEST_F(OddsRatios, WithControlAloneAskForAFactorOrACovariate) {
  EXPECT_EQ(Refusal("CONTROL=[a(1)]"), "Either ^1 or ^2, but not both, required for ^3...");
}

TEST_F(OddsRatios, LowIsAWordAndTheSameInQuotesAValue) {
  const OrvOddsRatioSpec& request = Parse("FACTOR=[a(LOW) g('LOW')]");
  ASSERT_EQ(request.FactorCount(), 2);
  ASSERT_THAT(Items().factors, SizeIs(2));
  const FactorSpec& low = Items().factors[0];
  EXPECT_FALSE(low.high);
  EXPECT_TRUE(low.value.Empty());
  EXPECT_EQ(fRun.Specs().FactorItemText(0, 0), "");
  EXPECT_FALSE(Items().factors[1].high);
  EXPECT_EQ(fRun.Specs().FactorItemText(1, 0), "LOW");
}

TEST_F(OddsRatios, AChangeOfZeroIsAnError) {
  EXPECT_EQ(Refusal("COVARIATE=[x(0)]"), "Parameter ^1 of subcommand ^2 cannot take value ^3...");
}

TEST_F(OddsRatios, ACovariateWithoutChangesChangesByOne) {
  EXPECT_THAT(Parse("COVARIATE=[x]").Changes(), ElementsAre(ElementsAre(1)));
}

TEST_F(OddsRatios, TheMeanOfACovariateIsAMissingControlValue) {
  const OrvOddsRatioSpec& request = Parse("FACTOR=[a] CONTROL=[x(Mean)]");
  ASSERT_THAT(request.Controls(), SizeIs(1));
  EXPECT_EQ(request.Controls()[0].variable, Index("x"));
  EXPECT_EQ(request.Controls()[0].value, MCCommonMath::MCMV::gMissingValue);
}

TEST_F(OddsRatios, AControlHasNoDefault) {
  EXPECT_EQ(Refusal("FACTOR=[a] CONTROL=[x]"),
            "Variable ^1 for parameter ^2 has invalid value, subcommand ^3...");
}

TEST_F(OddsRatios, AFactorWithoutAValueIsTakenAgainstItsHighestCategory) {
  const OrvOddsRatioSpec& request = Parse("FACTOR=[b a(high) g(' n')]");
  ASSERT_EQ(request.FactorCount(), 3);
  EXPECT_EQ(request.Factors()[0].variable, Index("b"));
  EXPECT_EQ(request.Factors()[1].variable, Index("a"));
  EXPECT_EQ(request.Factors()[2].variable, Index("g"));
  for (const OrvOddsRatioSpec::Factor& factor : request.Factors())
    EXPECT_EQ(factor.reference, 1) << "not coded yet";
  ASSERT_THAT(Items().factors, SizeIs(3));
  for (const std::size_t i : {0U, 1U}) {
    EXPECT_TRUE(Items().factors[i].high);
    EXPECT_TRUE(Items().factors[i].value.Empty());
  }
  EXPECT_EQ(Items().factors[1].variable, Index("a"));
  EXPECT_FALSE(Items().factors[2].high);
  EXPECT_EQ(fRun.Specs().FactorItemText(2, 0), " n") << "leading blanks belong to the value";
  EXPECT_THAT(request.Covariates(), IsEmpty());
}

TEST_F(OddsRatios, CovariatesHaveListsOfChanges) {
  const OrvOddsRatioSpec& request = Parse("COVARIATE=[z(-1 0.5 2e3) X] CONTROL=[z(3)]");
  EXPECT_THAT(request.Covariates(), ElementsAre(Index("z"), Index("x")));
  EXPECT_THAT(request.Changes(), ElementsAre(ElementsAre(-1, 0.5, 2000), ElementsAre(1)));
  EXPECT_THAT(request.Factors(), IsEmpty());
  ASSERT_THAT(request.Controls(), SizeIs(1)) << "a variable may be varied and controlled";
  EXPECT_EQ(request.Controls()[0].value, 3);
}

TEST_F(OddsRatios, ControlsKeepTheOrderOfTheCommandWithItemsBesideThem) {
  const OrvOddsRatioSpec& request = Parse("FACTOR=[a(1)] CONTROL=[x(-2.5) a(LOW) g(east) b(HIGH)]");
  ASSERT_THAT(request.Controls(), SizeIs(4));
  EXPECT_EQ(request.Controls()[0].variable, Index("x"));
  EXPECT_EQ(request.Controls()[0].value, -2.5);
  EXPECT_EQ(request.Controls()[1].variable, Index("a"));
  ASSERT_THAT(Items().controls, SizeIs(4));
  EXPECT_EQ(Items().controls[0].variable, -1) << "a covariate has no category";
  EXPECT_TRUE(Items().controls[0].value.Empty());
  EXPECT_FALSE(Items().controls[1].high);
  EXPECT_TRUE(Items().controls[1].value.Empty());
  EXPECT_EQ(Items().controls[2].variable, Index("g"));
  EXPECT_TRUE(Items().controls[3].high);
  EXPECT_EQ(fRun.Specs().ControlItemText(2, 0), "east");
}

TEST_F(OddsRatios, EachSubcommandIsARequestOfItsOwn) {
  // Names of one request don't count as repeated in the next.
  Parse("FACTOR=[a(1)] CONTROL=[b(2)] /ODDSRATIOS COVARIATE=[x] CONTROL=[b(2)] /ODDSRATIOS FACTOR=[a(3)]");
  ASSERT_THAT(fRun.Specs().OddsRatios(), SizeIs(3));
  ASSERT_THAT(fRun.Specs().OddsRatioItemLists(), SizeIs(3));
  EXPECT_EQ(fRun.Specs().OddsRatios()[1].CovariateCount(), 1);
  EXPECT_THAT(fRun.Specs().OddsRatioItemLists()[1].factors, IsEmpty());
  EXPECT_EQ(fRun.Specs().FactorItemText(0, 0), "1.00");
  EXPECT_EQ(fRun.Specs().FactorItemText(0, 2), "3.00");
}

TEST_F(OddsRatios, ItemsThatAreNotThereHaveNoText) {
  Parse("FACTOR=[a(1)] CONTROL=[x(1)]");
  const tavo::TavoValidSpecs& specs = fRun.Specs();
  EXPECT_EQ(specs.FactorItemText(0, 0), "1.00");
  EXPECT_EQ(specs.FactorItemText(-1, 0), "");
  EXPECT_EQ(specs.FactorItemText(1, 0), "");
  EXPECT_EQ(specs.FactorItemText(0, -1), "");
  EXPECT_EQ(specs.FactorItemText(0, 1), "");
  EXPECT_EQ(specs.ControlItemText(0, 0), "") << "a covariate";
  EXPECT_EQ(tavo::TavoValidSpecs().ControlItemText(0, 0), "");
}

TEST_F(OddsRatios, AFaultyRequestLeavesTheSpecificationWithoutRequests) {
  Refusal("FACTOR=[a] /ODDSRATIOS FACTOR=[x]");
  EXPECT_THAT(fRun.Specs().OddsRatios(), IsEmpty());
}

TEST(OddsRatioRequests, AndItemsOfDifferentNumbersAreIgnored) {
  tavo::TavoValidSpecs specs;
  specs.SetOddsRatios({OrvOddsRatioSpec()}, {});
  EXPECT_THAT(specs.OddsRatios(), IsEmpty());
  EXPECT_THAT(specs.OddsRatioItemLists(), IsEmpty());
}

}  // namespace

}  // namespace command_parser_test
