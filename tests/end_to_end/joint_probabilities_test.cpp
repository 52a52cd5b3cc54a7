// The program on designs with unequal probabilities without replacement.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "survey_files.h"

namespace {

using nlohmann::json;

/// Data, a plan with unequal probabilities in the strata st and the file of their units' joint probabilities.
class JointAnalysis {
 public:
  JointAnalysis() {
    fFolder.Write("data.csv", SurveyData().Text());
    fFolder.Write("plan.xml", PlanText({{"unequal_wor", {"st"}, {"psu"}}}));
    fFolder.Write("command.tvs",
                  "TAVOREG y BY g WITH x\n  /PLAN FILE='plan.xml'\n"
                  "  /STATISTICS PARAMETER SE TTEST DEFF\n  /PRINT COVB.\n");
  }
  void WriteJoint(const std::string& name, const std::string& text) { fFolder.Write(name, text); }
  const std::filesystem::path& Folder() const { return fFolder.Path(); }
  ProgramRun Run(const std::string& format = "json") const {
    return RunProgram({"run", "command.tvs", "--data", "data.csv", "--format", format}, fFolder.Path());
  }

 private:
  TemporaryFolder fFolder;
};

/// Five units a stratum with the own probability 0.4. `pairs`: the joint probability by stratum.
std::string JointText(const std::array<double, 4>& pairs) {
  std::string text = "st,psu,Unit_No_,p1,p2,p3,p4,p5\n";
  for (int stratum = 1; stratum <= 4; ++stratum) {
    for (int unit = 1; unit <= 5; ++unit) {
      text += std::to_string(stratum) + "," + std::to_string(unit) + "," + std::to_string(unit);
      for (int other = 1; other <= 5; ++other)
        text += "," + NumberText(other == unit ? 0.4 : pairs[static_cast<std::size_t>(stratum) - 1]);
      text += "\n";
    }
  }
  return text;
}

constexpr std::array<double, 4> kUsual = {0.15, 0.14, 0.13, 0.12};

std::vector<std::string> MessageKeys(const json& document) {
  std::vector<std::string> keys;
  for (const json& message : document["commands"][0]["messages"])
    keys.push_back(message["key"]);
  return keys;
}

double StandardErrorOf(const json& document, const std::string& parameter) {
  return FindCell(document, "ParameterEstimates", {"0", parameter}, {"Std. Error"}).at("value").get<double>();
}

// For five units with the weight w_h of every pair the sum is w_h times 5 times the sum of squares, as in
// sampling without replacement with (1 - f) / 4 = w_h: the covariances of strata add up linearly.
TEST(JointProbabilities, ChangeTheVarianceInProportionToTheWeightsOfThePairs) {
  JointAnalysis analysis;
  analysis.WriteJoint("plan.csv", JointText({0.15, 0.15, 0.15, 0.15}));  // weight 1/15
  const json one = analysis.Run().Json();
  analysis.WriteJoint("plan.csv", JointText({0.128, 0.128, 0.128, 0.128}));  // weight 1/4
  const json other = analysis.Run().Json();
  EXPECT_TRUE(MessageKeys(one).empty());
  for (const char* parameter : {"(Intercept)", "[g=low]", "x"}) {
    EXPECT_NEAR(StandardErrorOf(other, parameter) / StandardErrorOf(one, parameter), std::sqrt(15.0 / 4.0),
                1e-8)
        << parameter;
  }
}

TEST(JointProbabilities, InAnotherOrderOfRowsGiveTheSameResults) {
  JointAnalysis analysis;
  analysis.WriteJoint("plan.csv", JointText(kUsual));
  const ProgramRun sorted = analysis.Run("text");
  std::string text = JointText(kUsual);
  const std::size_t header = text.find('\n') + 1;
  std::string reversed;
  for (std::size_t line = header; line < text.size(); line = text.find('\n', line) + 1)
    reversed.insert(0, text.substr(line, text.find('\n', line) + 1 - line));
  analysis.WriteJoint("plan.csv", text.substr(0, header) + reversed);
  const ProgramRun other = analysis.Run("text");
  EXPECT_EQ(sorted.exitStatus, 0) << sorted.messages;
  EXPECT_GT(sorted.output.size(), 500U);
  EXPECT_EQ(WithoutSeconds(sorted.output), WithoutSeconds(other.output));
}

TEST(JointProbabilities, BelowTheDiagonalAreTheOnesThatCount) {
  JointAnalysis analysis;
  analysis.WriteJoint("plan.csv", JointText(kUsual));
  const ProgramRun symmetric = analysis.Run("text");
  std::string text = "st,psu,Unit_No_,p1,p2,p3,p4,p5\n";
  for (int stratum = 1; stratum <= 4; ++stratum) {
    for (int unit = 1; unit <= 5; ++unit) {
      text += std::to_string(stratum) + "," + std::to_string(unit) + "," + std::to_string(unit);
      for (int other = 1; other <= 5; ++other) {
        const double pair = other < unit ? kUsual[static_cast<std::size_t>(stratum) - 1] : 0.01 * other;
        text += "," + NumberText(other == unit ? 0.4 : pair);
      }
      text += "\n";
    }
  }
  analysis.WriteJoint("plan.csv", text);
  const ProgramRun asymmetric = analysis.Run("text");
  EXPECT_EQ(asymmetric.exitStatus, 0) << asymmetric.messages;
  EXPECT_EQ(WithoutSeconds(symmetric.output), WithoutSeconds(asymmetric.output));
}

TEST(JointProbabilities, OfPairsThatAreTooLikelyMarkNegativeVariancesInTheTables) {
  JointAnalysis analysis;
  analysis.WriteJoint("plan.csv", JointText({0.3, 0.15, 0.1, 0.25}));
  const ProgramRun run = analysis.Run();
  EXPECT_EQ(run.exitStatus, 0) << run.messages;
  const json document = run.Json();
  ASSERT_EQ(MessageKeys(document), std::vector<std::string>{"Atleast one estimate was negative"});
  int marked = 0;
  for (const char* parameter : {"(Intercept)", "[g=low]", "[g=high]", "x"}) {
    const json error = FindCell(document, "ParameterEstimates", {"0", parameter}, {"Std. Error"});
    if (!error.contains("notes") || error["notes"].empty() || error["value"].is_null()) continue;
    ++marked;
    EXPECT_EQ(error["notes"][0], "Zero because the estimated variance is negative.");
    EXPECT_EQ(error["value"], 0.0);
    const json test = FindCell(document, "ParameterEstimates", {"0", parameter}, {"t"});
    EXPECT_TRUE(test["value"].is_null());
    const json variance =
        FindCell(document, "CovariancesOfParameterEstimates", {"0", parameter}, {"0", parameter});
    EXPECT_TRUE(variance["value"].is_null());
    EXPECT_EQ(variance["notes"][0], "Left empty because an estimated variance is negative.");
  }
  EXPECT_GT(marked, 0);
}

TEST(JointProbabilities, ThatLackAUnitEndTheCommandWithAnError) {
  JointAnalysis analysis;
  std::string text = JointText(kUsual);
  analysis.WriteJoint("plan.csv", text.substr(0, text.find("4,5,5")));
  const ProgramRun run = analysis.Run();
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(MessageKeys(run.Json()), std::vector<std::string>{"Some levels not in joint prob file ..."});
  EXPECT_NE(
      run.messages.find("stratum or cluster that the file of joint inclusion probabilities does not list"),
      std::string::npos)
      << run.messages;
}

}  // namespace
