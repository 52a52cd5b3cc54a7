// Commands whose plan has unequal probabilities without replacement: where the file of joint inclusion
// probabilities is found, what its faults do to the run, and what comes of a sound one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "module_run.h"
#include "output_query.h"

namespace tavo {
namespace {

using test_support::ModuleRun;
using test_support::NumberAt;
using test_support::PlanClusters;
using test_support::PlanOf;
using test_support::PlanStage;
using test_support::PlanStrata;
using test_support::T;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// One row of the file: stratum, cluster, number, and the probabilities of its pairs with unit 1, 2, ….
std::string Line(int h, int psu, int number, double own, double pair, int units) {
  std::string line = std::to_string(h) + "," + std::to_string(psu) + "," + std::to_string(number);
  for (int j = 1; j <= units; ++j)
    line += "," + std::to_string(j == number ? own : pair);
  return line + "\n";
}

const std::string kHeader = "h,psu,Unit_No_,p1,p2,p3,p4\n";
constexpr double kRate = 0.5;
constexpr double kPair = 12.0 / 56.0;  // 4 of 8 units, two of them: 4 * 3 / (8 * 7)

/// The units of both strata under simple random sampling at rate 0.5, numbered downwards, the second stratum
/// first. `second`: the joint probability in stratum 2.
std::string EqualFile(double second = kPair) {
  std::string text = kHeader;
  for (const int h : {2, 1}) {
    for (int psu = 4; psu >= 1; --psu)
      text += Line(h, psu, 5 - psu, kRate, h == 1 ? kPair : second, 4);
  }
  return text;
}

class JointRun : public ::testing::Test {
 protected:
  JointRun() { SetPlan("unequal_wor"); }

  void SetPlan(const std::string& method, const std::string& inside = "") {
    fRun.WritePlan(PlanOf(PlanStage(1, method, PlanStrata("h") + PlanClusters("psu") + inside)));
  }
  void WriteFile(const std::string& text, const std::string& name = "plan.csv") {
    fRun.Folder().Write(name, text);
  }
  double StandardError(const std::string& parameter) {
    return NumberAt(fRun.Output().FindTable("ParameterEstimates"), {parameter}, {"Std. Error"});
  }
  std::vector<double> StandardErrors(const std::string& more = "") {
    fRun.Run("y BY a WITH x /STATISTICS PARAMETER SE" + more);
    if (fRun.Output().FindTable("ParameterEstimates") == nullptr) return {};
    return {StandardError("(Intercept)"), StandardError("[a=1]"), StandardError("x")};
  }
  std::vector<double> EqualProbabilityErrors() {
    SetPlan("equal_wor", "<IncProb><SingleValue value='0.5'/></IncProb>");
    const std::vector<double> errors = StandardErrors();
    SetPlan("unequal_wor");
    return errors;
  }
  void ExpectErrors(const std::vector<double>& errors, const std::vector<double>& wanted) {
    ASSERT_EQ(errors.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i)  // the file has 6 decimals
      EXPECT_NEAR(errors[i], wanted[i], 1e-5 * wanted[i]);
  }
  void ExpectError(const std::string& key) {
    fRun.Run("y WITH x");
    ASSERT_THAT(fRun.Keys(), ElementsAre(key));
    EXPECT_TRUE(fRun.Output().messages[0].isError);
    EXPECT_NE(fRun.Output().messages[0].text, key) << "a sentence for people";
    EXPECT_THAT(fRun.TableIds(), IsEmpty());
  }

  ModuleRun fRun;
};

TEST_F(JointRun, OfEqualProbabilitiesHasTheErrorsOfSamplingWithoutReplacement) {
  const std::vector<double> wanted = EqualProbabilityErrors();
  WriteFile(EqualFile());
  ExpectErrors(StandardErrors(), wanted);
  EXPECT_THAT(fRun.Keys(), IsEmpty());
  EXPECT_EQ(fRun.Output().notes.back().text, "plan.csv");
  WriteFile(EqualFile(0.1), "plan.csv");
  WriteFile(EqualFile(), "other.csv");
  ExpectErrors(StandardErrors(" /JOINTPROB FILE='other.csv'"), wanted);
  EXPECT_EQ(fRun.Output().notes.back().text, "other.csv");
}

TEST_F(JointRun, WithUnitsThatTheDataDoNotHaveWarnsAndLeavesThemOut) {
  const std::vector<double> wanted = EqualProbabilityErrors();
  std::string text = "h,psu,Unit_No_,p1,p2,p3,p4,p5\n";
  for (const int h : {1, 2, 3}) {
    for (int number = 1; number <= 5; ++number)  // unit 9 is in no sample
      text += Line(h, number == 2 ? 9 : number - (number > 2), number, kRate, kPair, 5);
  }
  WriteFile(text);
  ExpectErrors(StandardErrors(), wanted);
  EXPECT_THAT(fRun.Keys(), ElementsAre("Some cluster levels not in sample file ..."));
  EXPECT_FALSE(fRun.Output().messages[0].isError);
}

TEST_F(JointRun, WithRecordsAsUnitsOfASecondStageHasTheErrorsOfTwoStagesWithoutReplacement) {
  const auto plan = [&](const std::string& method, const std::string& inside) {
    const std::string rate = "<IncProb><SingleValue value='0.25'/></IncProb>";
    fRun.WritePlan(PlanOf(PlanStage(1, method, PlanStrata("h") + PlanClusters("psu") + inside) +
                          PlanStage(2, "equal_wor", rate)));
  };
  plan("equal_wor", "<IncProb><SingleValue value='0.5'/></IncProb>");
  const std::vector<double> wanted = StandardErrors();
  plan("unequal_wor", "");
  WriteFile(EqualFile());
  ExpectErrors(StandardErrors(), wanted);
}

TEST_F(JointRun, WithoutAUnitOrAStratumOfTheSampleEndsWithAnError) {
  std::string text = kHeader;
  for (int psu = 1; psu <= 4; ++psu)
    text += Line(1, psu, psu, kRate, kPair, 4);
  WriteFile(text);
  ExpectError("Some levels not in joint prob file ...");
  for (int psu = 1; psu <= 3; ++psu)
    text += Line(2, psu, psu, kRate, kPair, 4);
  WriteFile(text);
  ExpectError("Some levels not in joint prob file ...");
}

TEST_F(JointRun, WithAFaultInAStratumEndsWithItsMessage) {
  const struct {
    std::string text;
    const char* key;
  } kCases[] = {
      {Line(1, 1, 2, kRate, kPair, 4), "Invalid Unit_No_ value ..."},
      {Line(1, 1, 1, kRate, 1.5, 4) + Line(1, 2, 2, kRate, kPair, 4), "Invalid joint incl probability ..."},
      {Line(1, 1, 1, kRate, 0.6, 4) + Line(1, 2, 2, kRate, kPair, 4), "Joint incl prob out of range ..."},
      {Line(1, 1, 1, kRate, kPair, 4) + Line(1, 1, 2, kRate, kPair, 4), "Duplicate cluster or Unit_No_ ..."},
  };
  for (const auto& each : kCases) {
    WriteFile(kHeader + each.text);
    ExpectError(each.key);
  }
  WriteFile("h,psu,Unit_No_,p1\n1,1,1,0.5\n1,2,2,0.5\n");
  ExpectError("Unit_No_ value too big ...");
}

TEST_F(JointRun, WithAFaultOfTheFileWarnsAndEndsBeforeTheFit) {
  const struct {
    std::string text;
    const char* key;
  } kCases[] = {
      {"psu,h,Unit_No_,p1\n1,1,1,0.5\n", "Some strata or cluster variable not in joint prob file ..."},
      {"h,psu,Unit_No_,p1\n1,one,1,0.5\n",
       "Some strata or cluster variable have wrong types in joint prob file ..."},
      {"h,psu,Unit_No_,p1\n1,,1,0.5\n1,2,2,0.5\n", "No missing joint incl prob ..."},
      {"h,psu,Unit_No_,p1\n1,1,1,0.5\n1,2,1,0.5\n", "Duplicate cluster or Unit_No_ ..."},
  };
  for (const auto& each : kCases) {
    WriteFile(each.text);
    fRun.Run("y WITH x");
    ASSERT_THAT(fRun.Keys(), ElementsAre(each.key, "The joint inclusion probabilities cannot be used ..."));
    EXPECT_FALSE(fRun.Output().messages[0].isError);
    EXPECT_TRUE(fRun.Output().messages[1].isError);
    EXPECT_TRUE(fRun.Output().failed);
    EXPECT_THAT(fRun.TableIds(), IsEmpty());
  }
}

TEST_F(JointRun, WithAFileThatCannotBeReadEndsWithTheWordsOfTheHost) {
  for (const auto& [name, text] :
       {std::pair("plan.csv", "h,psu,Unit_No_,p1\n1,1,1\n"), {"plan.vdt", "no case file"}}) {
    WriteFile(text, name);
    const standalone::CommandOutput& output = fRun.Run("y WITH x");
    ASSERT_EQ(output.messages.size(), 1U);
    EXPECT_TRUE(output.messages[0].isError);
    EXPECT_THAT(output.messages[0].text, HasSubstr(name));
    EXPECT_THAT(fRun.TableIds(), IsEmpty());
  }
}

TEST_F(JointRun, OfPairsThatAreTooLikelyMarksItsNegativeVariances) {
  WriteFile(EqualFile(0.3));  // in stratum 2, weights of 0.25 / 0.3 - 1
  const standalone::CommandOutput& output =
      fRun.Run("y BY a WITH x /STATISTICS PARAMETER SE TTEST /PRINT COVB");
  ASSERT_THAT(fRun.Keys(), ElementsAre("Atleast one estimate was negative"));
  EXPECT_FALSE(output.failed);
  int marked = 0;
  for (const char* parameter : {"(Intercept)", "[a=1]", "[a=2]", "x"}) {
    const auto* error =
        test_support::FindCell(output.FindTable("ParameterEstimates"), {parameter}, {"Std. Error"});
    ASSERT_NE(error, nullptr);
    const bool isNegative = error->notes == std::vector<std::string>{T("Estimate was negative")};
    marked += isNegative ? 1 : 0;
    EXPECT_EQ(StandardError(parameter) == 0.0, isNegative) << parameter;
    const auto* variance =
        test_support::FindCell(output.FindTable("CovariancesOfParameterEstimates"), {parameter}, {parameter});
    ASSERT_NE(variance, nullptr);
    EXPECT_EQ(variance->notes == std::vector<std::string>{T("Variance estimate was negative")}, isNegative);
  }
  EXPECT_GT(marked, 0);
  EXPECT_LT(marked, 4);
}

}  // namespace
}  // namespace tavo
