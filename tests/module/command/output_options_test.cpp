// SAVE and OUTFILE: names of new variables and of files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_run.h"

namespace command_parser_test {

namespace {

using testing::Contains;
using testing::Not;

constexpr const char* kFileKey = "File ^1 cannot be used for both ^2 and ^3...";

struct RootCase {
  const char* save;
  const char* root;
  int count;
};

class PredProb : public testing::TestWithParam<RootCase> {};

TEST_P(PredProb, HasARootAndACount) {
  CommandRun run;
  ASSERT_TRUE(run.Parse(std::string("TAVOREG y /SAVE ") + GetParam().save));
  EXPECT_EQ(run.Specs().PredictedProbabilityRoot(), GetParam().root);
  EXPECT_EQ(run.Specs().MaximumPredictedProbabilities(), GetParam().count);
  EXPECT_EQ(run.Specs().NewVariableCount(), GetParam().count);
  EXPECT_EQ(run.Specs().PredictedValueName(), "");
}

INSTANTIATE_TEST_SUITE_P(Forms, PredProb,
                         testing::Values(RootCase{"PREDPROB", "PredictedProbability", 25},
                                         RootCase{"PREDPROB(p)", "p", 25}, RootCase{"PREDPROB(p:3)", "p", 3},
                                         RootCase{"PREDPROB(:7)", "PredictedProbability", 7},
                                         RootCase{"PREDPROB=p : 4", "p", 4}));

TEST(Save, NothingIsAddedWithoutIt) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y"));
  EXPECT_EQ(run.Specs().NewVariableCount(), 0);
  EXPECT_EQ(run.Specs().PredictedProbabilityRoot(), "");
  EXPECT_EQ(run.Specs().PredictedValueName(), "");
}

TEST(Save, PredValAloneTakesTheFirstDefaultNameThatIsFree) {
  const auto name = [](const std::vector<const char*>& existing) {
    CommandRun run;
    for (const char* variable : existing)
      run.AddVariable(variable);
    EXPECT_TRUE(run.Parse("TAVOREG y /SAVE PREDVAL"));
    EXPECT_EQ(run.Specs().PredictedValueVariable(), -1);
    EXPECT_EQ(run.Specs().NewVariableCount(), 1);
    return run.Specs().PredictedValueName();
  };
  EXPECT_EQ(name({}), "PredictedValue");
  EXPECT_EQ(name({"predictedvalue"}), "PredictedValue_1");
  EXPECT_EQ(name({"PredictedValue", "PREDICTEDVALUE_1"}), "PredictedValue_2");
}

TEST(Save, PredValTakesANewName) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y /SAVE PREDVAL(best) PREDPROB(p:2)"));
  EXPECT_EQ(run.Specs().PredictedValueName(), "best");
  EXPECT_EQ(run.Specs().NewVariableCount(), 3);
}

TEST(Save, TheLargestCountOfProbabilitiesLeavesRoomForThePredictedValue) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y /SAVE PREDVAL(best) PREDPROB(p:2147483647)"));
  EXPECT_EQ(run.Specs().NewVariableCount(), 2147483648);
}

TEST(Outfile, NamesReachTheSpecification) {
  CommandRun run;
  ASSERT_TRUE(run.Parse("TAVOREG y /OUTFILE COVB='c.vdt' MODEL=m.xml"));
  EXPECT_TRUE(run.Specs().CovarianceFile().IsInit());
  EXPECT_EQ(run.Specs().CovarianceFile().DocumentationString(), "c.vdt");
  EXPECT_FALSE(run.Specs().CorrelationFile().IsInit());
  EXPECT_EQ(run.Specs().ModelFileName(), "m.xml");
  EXPECT_EQ(run.Specs().ParameterFileName(), "");
  CommandRun other;
  ASSERT_TRUE(other.Parse("TAVOREG y /OUTFILE CORB=r.vdt PARAMETER='p.xml'"));
  EXPECT_FALSE(other.Specs().CovarianceFile().IsInit());
  EXPECT_EQ(other.Specs().CorrelationFile().DocumentationString(), "r.vdt");
  EXPECT_EQ(other.Specs().ModelFileName(), "");
  EXPECT_EQ(other.Specs().ParameterFileName(), "p.xml");
}

TEST(Outfile, FilesThatDifferOnlyInCaseAreRejected) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y /OUTFILE COVB='out.vdt' PARAMETER='OUT.VDT'"));
  EXPECT_THAT(run.Keys(), testing::ElementsAre(kFileKey));
}

TEST(Outfile, CovbEqualToThePlanIsRejectedAndAJointProbFileEqualToItIsAccepted) {
  CommandRun run;
  EXPECT_FALSE(run.Parse("TAVOREG y /OUTFILE COVB='plan.xml'"));
  EXPECT_THAT(run.Keys(), testing::ElementsAre(kFileKey));
  CommandRun joint;
  EXPECT_TRUE(
      joint.Parse("TAVOREG y /PLAN FILE='plan.xml' /JOINTPROB FILE='plan.xml' "
                  "/OUTFILE COVB='c.vdt'"));
}

TEST(Outfile, TheDefaultFileOfJointProbabilitiesIsProtectedToo) {
  CommandRun run;
  run.WriteFile("plan.vdt", "");
  run.WritePlan(Plan(Stage(1, "unequal_wor", {}, {"psu"})));
  EXPECT_FALSE(run.Parse("TAVOREG y /OUTFILE CORB='PLAN.VDT'"));
  EXPECT_THAT(run.Keys(), testing::ElementsAre(kFileKey));
}

TEST(Outfile, AnErrorShowsOnlyOnceModelAndCriteriaAreClean) {
  const std::string outfile = " /OUTFILE COVB='a' CORB='b'";
  const std::string key = "Parameter ^1 of subcommand ^3 cannot be given with parameter ^2...";
  for (const char* earlier : {"/MODEL a*a", "/CRITERIA MXSTEP=0"}) {
    CommandRun run;
    EXPECT_FALSE(run.Parse("TAVOREG y BY a " + std::string(earlier) + outfile));
    EXPECT_THAT(run.Keys(), Not(Contains(key)));
  }
  CommandRun clean;
  EXPECT_FALSE(clean.Parse("TAVOREG y BY a" + outfile));
  EXPECT_THAT(clean.Keys(), Contains(key));
}

}  // namespace

}  // namespace command_parser_test
