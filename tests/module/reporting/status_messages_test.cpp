#include "module/reporting/status_messages.h"

#include "reporting_fixture.h"

namespace tavo {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(StatusMessages, CodesHaveTheirKeysAndTheOthersNone) {
  const std::vector<std::pair<std::uint32_t, const char*>> keys = {
      {StatusCode::kClusterNotInJointFile, "Some levels not in joint prob file ..."},
      {StatusCode::kJointFileHasMoreUnits, "Some cluster levels not in sample file ..."},
      {StatusCode::kEmptySubpopulation, "There are no valid cases in the subpopulation"},
      {StatusCode::kVarianceZero, "Variance for all parameters is zero"},
      {StatusCode::kNegativeVariance, "Atleast one estimate was negative"},
      {StatusCode::kVarianceZeroSomeNegative, "Variance for all parameters is zero"},
      {StatusCode::kOneDependentValue, "Dependant variable has only one value"},
      {StatusCode::kReferenceNotInUse, "Highest factor level is used"},
      {StatusCode::kDesignCovarianceSingular, "Design based covariance matrix is singular"}};
  for (const auto& [code, key] : keys) {
    const StatusMessage message = MessageOfStatus(OrvStatus::Warning(code), nullptr);
    EXPECT_EQ(message.key, key);
    EXPECT_EQ(message.stage, 0);
    EXPECT_TRUE(standalone::HasCatalogueText(key)) << key;
  }
  for (const std::uint32_t code :
       {0U,     1U,     91000U, 91001U, 91002U, 91003U, 91004U, 91005U, 91006U, 91007U, 91012U,
        91021U, 91024U, 91030U, 95001U, 95008U, 95018U, 95037U, 95041U, 95049U, 4711U}) {
    EXPECT_EQ(MessageOfStatus(OrvStatus::Error(code), nullptr).key, "") << code;
  }
}

TEST(StatusMessages, TheSRSVarianceIsToldOnlyWhenItWasAskedFor) {
  const OrvStatus status = OrvStatus::Warning(StatusCode::kSRSVarianceZero);
  EXPECT_EQ(MessageOfStatus(status, nullptr).key, "");
  TavoCompSettings settings;
  settings.SetNeedSRS(false);
  const TavoComponent without(settings);
  EXPECT_EQ(MessageOfStatus(status, &without).key, "");
  settings.SetNeedSRS(true);
  const TavoComponent with(settings);
  EXPECT_EQ(MessageOfStatus(status, &with).key, "Parameter variance for SRS design is zero");
}

class StatusReport : public ::testing::Test {
 protected:
  StatusReport() : fScope(fSession) { fSession.BeginCommand(fCommand, fText); }
  const std::vector<standalone::Message>& Send(const OrvStatus& status) {
    ReportStatusMessage(status, nullptr);
    return fSession.CurrentOutput()->messages;
  }

  standalone::CommandTokens fCommand;
  standalone::SourceText fText;
  standalone::Session fSession;
  standalone::SessionScope fScope;
};

TEST_F(StatusReport, TheSeverityDecidesTheLevel) {
  Send(OrvStatus::Warning(StatusCode::kDesignCovarianceSingular));
  const auto& messages = Send(OrvStatus::Error(StatusCode::kEmptySubpopulation));
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_FALSE(messages[0].isError);
  EXPECT_TRUE(messages[1].isError);
}

TEST_F(StatusReport, TooManyParametersHasCountAndLimit) {
  const auto& messages =
      Send(OrvStatus::Error(StatusCode::kTooManyParameters).SetInteger(0, 60099).SetInteger(1, 46340));
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].key, "Number of parameters ^1 exceeds limit ^2");
  EXPECT_THAT(messages[0].text, HasSubstr("46340"));
  EXPECT_THAT(messages[0].text, HasSubstr("60099"));
  EXPECT_TRUE(messages[0].isError);
}

TEST_F(StatusReport, WithoutALimitTheMemoryIsTooSmall) {
  const auto& messages = Send(OrvStatus::Error(StatusCode::kTooManyParameters).SetInteger(0, 9000));
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].key, "Number params ^1 too large for available memory");
  EXPECT_THAT(messages[0].text, HasSubstr("9000"));
}

TEST_F(StatusReport, MemoryThatEndsBeforeTheParametersAreKnownIsNotBlamedOnTheirNumber) {
  const auto& messages = Send(OutOfMemory(0));
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(messages[0].key, "Not enough memory...");
  EXPECT_THAT(messages[0].text, ::testing::Not(HasSubstr("0 parameters")));
  EXPECT_TRUE(messages[0].isError);
}

TEST_F(StatusReport, APartThatMemoryDoesNotSufficeForIsNamedInAWarning) {
  const struct {
    const char* key;
    const char* says;
  } parts[] = {{"Custom test ^1 not done for lack of memory...", "Custom test 2 was not done"},
               {"Odds ratios ^1 not estimated for lack of memory...", "Odds ratios 2 were not estimated"},
               {"Test of effect ^1 not done for lack of memory...", "test of effect 2 of the model"}};
  for (const auto& [key, says] : parts) {
    ReportLackOfMemory(OutOfMemory(9000), key, host::Plain("2"));
    ReportLackOfMemory(OrvStatus::Error(StatusCode::kNotEstimable), key, host::Plain("2"));
    const standalone::Message& last = fSession.CurrentOutput()->messages.back();
    EXPECT_EQ(last.key, key);
    EXPECT_THAT(last.text, HasSubstr(says));
    EXPECT_FALSE(last.isError);
  }
  EXPECT_EQ(fSession.CurrentOutput()->messages.size(), 3U);
}

TEST_F(StatusReport, OKAndCodesWithoutATextAreSilent) {
  Send(OrvStatus());
  Send(OrvStatus::Error(StatusCode::kCancelled));
  EXPECT_THAT(Send(OrvStatus::Error(StatusCode::kNoRecords)), IsEmpty());
}

// Design values, through a run: the component tells stage and stratum.

struct DesignCase {
  const char* name;
  bool hasStrata;
  const char* element;  // of the stage
  double bad;           // written into one case of the variable v
  bool everywhere;      // or into all
  const char* key;
  bool isError;
};

class DesignStatus : public ::testing::TestWithParam<DesignCase> {};

TEST_P(DesignStatus, PicksTheKeyWithTheWordStratumWhenThereIsOne) {
  const DesignCase& c = GetParam();
  ModuleRun run;
  const bool isSize = std::string(c.element) == "PopulationSize";
  run["v"] = std::vector<double>(80, isSize ? 20.0 : 0.5);
  for (std::size_t i = 0; i < 80; ++i) {
    if (!c.hasStrata) run["psu"][i] += 10 * run["h"][i];  // units apart without strata
    if (c.everywhere || i == 3) run["v"][i] = c.bad;
  }
  const std::string inside = (c.hasStrata ? test_support::PlanStrata("h") : "") +
                             test_support::PlanClusters("psu") + "<" + c.element + ">" +
                             test_support::PlanVariable("v") + "</" + c.element + ">";
  run.WritePlan(test_support::PlanOf(test_support::PlanStage(1, "equal_wor", inside)));
  const standalone::CommandOutput& output = run.Run("y BY a");
  ASSERT_EQ(run.Keys(), std::vector<std::string>{c.key});
  EXPECT_EQ(output.messages[0].isError, c.isError);
  EXPECT_EQ(output.failed, c.isError);
  EXPECT_THAT(output.messages[0].text, ::testing::AnyOf(HasSubstr("stage 1"), HasSubstr("Stage 1")));
  EXPECT_EQ(output.FindTable("SampleDesignInformation") == nullptr, c.isError);
}

INSTANTIATE_TEST_SUITE_P(
    AllKeys, DesignStatus,
    ::testing::Values(
        DesignCase{"SizeStratum", true, "PopulationSize", 21, false,
                   "Unequal pop size in stage ^1 stratum ...", false},
        DesignCase{"Size", false, "PopulationSize", 21, false, "Unequal pop size in stage ^1 ...", false},
        DesignCase{"RateStratum", true, "IncProb", 0.4, false, "Unequal incl prob in stage ^1 stratum ...",
                   false},
        DesignCase{"Rate", false, "IncProb", 0.4, false, "Unequal incl prob in stage ^1 ...", false},
        DesignCase{"NoneStratum", true, "IncProb", host::kSystemMissing, true,
                   "No incl prob in active in stage ^1 stratum ...", true},
        DesignCase{"None", false, "IncProb", host::kSystemMissing, true,
                   "No incl prob in active in stage ^1 ...", true},
        DesignCase{"TooSmallStratum", true, "PopulationSize", 3, true,
                   "Pop size too big in stage ^1 stratum ...", true},
        DesignCase{"TooSmall", false, "PopulationSize", 7, true, "Pop size too big in stage ^1 ...", true}),
    [](const ::testing::TestParamInfo<DesignCase>& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace tavo
