// Odds ratio requests after the first pass: values become codes, variables become record columns.
#include "module/frame/odds_ratio_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include "component/numerics/missing_value.h"
#include "module/command/command_parser.h"
#include "module/frame/procedure_driver.h"
#include "module_run.h"
#include "standalone/command/command_file.h"
#include "standalone/output/template.h"

namespace tavo {
namespace {

using test_support::PlanClusters;
using test_support::PlanOf;
using test_support::PlanStage;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* kReferenceKey = "For OddsRatio ^1 reference category out of range [%1:, ^1:]2";
constexpr const char* kControlKey = "For OddsRatio ^1 factor value out of range on Control [%1:, ^1:]2";

/// Six cases: y 1 or 2; factor a with 30, 10, 20 in this order; factor g with "b", "a"; covariates x and z;
/// units psu and weight w. Sorted, the codes of 10, 20, 30 are 1, 2, 3, and those of "a", "b" are 1, 2.
class OddsRatioCheck : public ::testing::Test {
 protected:
  OddsRatioCheck() {
    fOptions.baseFolder = fFolder.Path();
    fFolder.Write("plan.xml", PlanOf(PlanStage(1, "wr", PlanClusters("psu"))));
    fTable.SetCaseCount(6);
    AddNumbers("y", {1, 2, 1, 2, 1, 2});
    AddNumbers("a", {30, 10, 20, 30, 10, 20});
    AddNumbers("x", {1, 2, 3, 4, 5, 6});
    AddNumbers("z", {6, 5, 4, 3, 2, 1});
    AddNumbers("psu", {1, 1, 1, 2, 2, 2});
    AddNumbers("w", {1, 1, 1, 1, 1, 1});
    standalone::Column& text = fTable.Add(host::VORN_Variable("g", 4));
    for (std::size_t i = 0; i < 6; ++i)
      std::memcpy(static_cast<void*>(&text.cells[i]), i % 2 == 0 ? "b       " : "a       ", 8);
  }

  void AddNumbers(const char* name, const std::vector<double>& values) {
    host::VORN_Variable variable(name, 0);
    variable.SetFormat({5, 8, 0});
    standalone::Column& column = fTable.Add(variable);
    for (std::size_t i = 0; i < values.size(); ++i)
      column.cells[i].number = values[i];
  }

  /// Parses a command and makes the first pass. Gives the record forms.
  const std::vector<OrvOddsRatioSpec>& Check(const std::string& requests) {
    const standalone::SourceText text("test.tvs",
                                      "TAVOREG y BY a g WITH x z /PLAN FILE='plan.xml' " + requests + ".");
    const std::vector<standalone::CommandTokens> commands = standalone::ReadCommands(text);
    fpSession = std::make_unique<standalone::Session>(fOptions);
    fpSession->SetTable(&fTable);
    const standalone::SessionScope scope(*fpSession);
    fpSession->BeginCommand(commands.at(0), text);
    const auto tokens = fpSession->MakeTokenSequence();
    const auto source = fpSession->MakeDataSource();
    TavoCommandParser parser(*tokens, fSpecs, *source);
    EXPECT_NE(parser.Parse(), 0);
    TavoProcedureDriver driver(fSpecs, *source);
    std::optional<FirstPassFindings> found = driver.ProcessDataPass();
    EXPECT_TRUE(found);
    if (found) fFound = std::move(*found);
    fMessages = fpSession->CurrentOutput()->messages;
    fColumnA = fSpecs.FactorColumns().at(0);
    fColumnG = fSpecs.FactorColumns().at(1);
    fColumnX = fSpecs.CovariateColumns().at(0);
    fColumnZ = fSpecs.CovariateColumns().at(1);
    fCodeOf10 = CodeOf(driver, *source, "a", 10);
    fpSession->EndCommand();
    return fFound.oddsRatios;
  }

  static int CodeOf(const TavoProcedureDriver& driver, const host::VORN_DataSource& source, const char* name,
                    double value) {
    const int variable = source.FindVarIndex(name);
    for (int code = 1; code <= driver.Adapter().CategoryCount(variable); ++code) {
      if (driver.Adapter().ValueForCode(variable, code)->number == value) return code;
    }
    return 0;
  }

  TestFolder fFolder;
  standalone::SessionOptions fOptions;
  standalone::Table fTable;
  std::unique_ptr<standalone::Session> fpSession;
  TavoValidSpecs fSpecs;
  std::vector<standalone::Message> fMessages;
  int fColumnA = -1, fColumnG = -1, fColumnX = -1, fColumnZ = -1, fCodeOf10 = 0;
  FirstPassFindings fFound;
};

/// (variable, reference) of each factor, and (variable, value) of each control.
std::vector<std::pair<int, int>> FactorsOf(const OrvOddsRatioSpec& request) {
  std::vector<std::pair<int, int>> pairs;
  for (const auto& [variable, reference] : request.Factors())
    pairs.emplace_back(variable, reference);
  return pairs;
}

std::vector<std::pair<int, double>> ControlsOf(const OrvOddsRatioSpec& request) {
  std::vector<std::pair<int, double>> pairs;
  for (const auto& [variable, value] : request.Controls())
    pairs.emplace_back(variable, value);
  return pairs;
}

TEST_F(OddsRatioCheck, LowGivesMinusOneHighZeroAndAValueItsCode) {
  const auto& records = Check("/ODDSRATIOS FACTOR=[a(LOW) g(HIGH)] /ODDSRATIOS FACTOR=[g('a') a(20)]");
  ASSERT_THAT(records, SizeIs(2));
  EXPECT_THAT(FactorsOf(records[0]), ElementsAre(std::pair(fColumnA, -1), std::pair(fColumnG, 0)));
  EXPECT_THAT(FactorsOf(records[1]), ElementsAre(std::pair(fColumnG, 1), std::pair(fColumnA, 2)));
  EXPECT_THAT(fMessages, IsEmpty());
}

TEST_F(OddsRatioCheck, LowInQuotesIsLookedUpAsACategory) {
  const auto& records = Check("/ODDSRATIOS FACTOR=[g('LOW')]");
  EXPECT_THAT(FactorsOf(records[0]), ElementsAre(std::pair(fColumnG, 0)));
  ASSERT_THAT(fMessages, SizeIs(1));
  EXPECT_EQ(fMessages[0].key, kReferenceKey);
}

TEST_F(OddsRatioCheck, AFactorValueAbsentFromTheDataGivesTheFirstWarningAndTheReferenceOfCodeZero) {
  const auto& records = Check("/ODDSRATIOS FACTOR=[a] /ODDSRATIOS FACTOR=[a(99) g(zz)]");
  ASSERT_THAT(records, SizeIs(2));
  EXPECT_THAT(FactorsOf(records[1]), ElementsAre(std::pair(fColumnA, 0), std::pair(fColumnG, 0)));
  ASSERT_THAT(fMessages, SizeIs(1)) << "one for the request";
  EXPECT_EQ(fMessages[0].key, kReferenceKey);
  EXPECT_FALSE(fMessages[0].isError);
  EXPECT_EQ(fMessages[0].text,
            standalone::FillTemplate(test_support::T(kReferenceKey),
                                     {std::string("2"), std::vector<std::string>{"a", "g"}}));
}

TEST_F(OddsRatioCheck, AControlValueAbsentFromTheDataGivesTheSecondWarningAndCodeZero) {
  const auto& records = Check("/ODDSRATIOS FACTOR=[a(99)] CONTROL=[x(1) a(10) g(zz)]");
  EXPECT_THAT(ControlsOf(records[0]),
              ElementsAre(std::pair(fColumnX, 1.0), std::pair(fColumnA, 1.0), std::pair(fColumnG, 0.0)));
  ASSERT_THAT(fMessages, SizeIs(2));
  EXPECT_EQ(fMessages[0].key, kReferenceKey);
  EXPECT_EQ(fMessages[1].key, kControlKey);
  EXPECT_FALSE(fMessages[1].isError);
  EXPECT_EQ(fMessages[1].text, standalone::FillTemplate(test_support::T(kControlKey),
                                                        {std::string("1"), std::vector<std::string>{"g"}}));
}

TEST_F(OddsRatioCheck, ControlsOfFactorsBecomeCodesAndThoseOfCovariatesStay) {
  const auto& records = Check("/ODDSRATIOS COVARIATE=[z(-2 3) x] CONTROL=[a(LOW) g(HIGH) x(MEAN) z(-7.5)]");
  EXPECT_THAT(records[0].Covariates(), ElementsAre(fColumnZ, fColumnX));
  EXPECT_THAT(records[0].Changes(), ElementsAre(ElementsAre(-2, 3), ElementsAre(1)));
  EXPECT_THAT(ControlsOf(records[0]),
              ElementsAre(std::pair(fColumnA, -1.0), std::pair(fColumnG, 0.0),
                          std::pair(fColumnX, MCCommonMath::MCMV::gMissingValue), std::pair(fColumnZ, -7.5)));
  EXPECT_THAT(fMessages, IsEmpty());
}

TEST_F(OddsRatioCheck, SortingAgainKeepsCodesAndLevels) {
  Check("/ODDSRATIOS FACTOR=[a(10)] CONTROL=[a(10)] /ODDSRATIOS FACTOR=[a(10)]");
  EXPECT_EQ(fCodeOf10, 1);
  EXPECT_THAT(fFound.factorLevels, ElementsAre(3, 2));
  for (const OrvOddsRatioSpec& record : fFound.oddsRatios)
    EXPECT_THAT(FactorsOf(record), ElementsAre(std::pair(fColumnA, 1)));
}

TEST_F(OddsRatioCheck, WithoutRequestsThereIsNothingInRecordForm) {
  EXPECT_THAT(Check(""), IsEmpty());
}

}  // namespace
}  // namespace tavo
