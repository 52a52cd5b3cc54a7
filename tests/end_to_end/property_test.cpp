// What must hold whatever the data are: the same analysis written in another way gives the same numbers.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "survey_files.h"

namespace {

const char* const kB = "B";
const char* const kSE = "Std. Error";

/// A fit to full precision, so that two ways to the same estimates meet.
std::string Fit(const std::string& list, const std::string& more = {}) {
  return "TAVOREG " + list +
         "\n  /PLAN FILE='plan.xml'\n  /CRITERIA PCONVERGE=[1E-11]\n"
         "  /STATISTICS PARAMETER SE TTEST CINTERVAL EXP DEFF" +
         more + ".\n";
}

nlohmann::json RunJson(const Analysis& analysis) {
  const ProgramRun run = RunAnalysis(analysis);
  EXPECT_EQ(run.exitStatus, 0) << run.messages;
  return run.Json();
}

Estimates RunEstimates(const Analysis& analysis) {
  Estimates estimates = EstimatesOf(RunJson(analysis));
  EXPECT_GE(estimates.size(), 2U);
  return estimates;
}

void ExpectSame(double a, double b, double tolerance = 1e-7) {
  EXPECT_NEAR(a, b, tolerance * std::max({1.0, std::abs(a), std::abs(b)}));
}

/// The same rows with the same statistics.
void ExpectSame(const Estimates& a, const Estimates& b, double tolerance = 1e-7) {
  ASSERT_EQ(a.size(), b.size());
  for (const auto& [row, statistics] : a) {
    SCOPED_TRACE(row);
    ASSERT_TRUE(b.contains(row));
    ASSERT_EQ(statistics.size(), b.at(row).size());
    for (const auto& [name, value] : statistics) {
      SCOPED_TRACE(name);
      ASSERT_TRUE(b.at(row).contains(name));
      ExpectSame(value, b.at(row).at(name), tolerance);
    }
  }
}

double LastLikelihood(const nlohmann::json& document) {
  double last = std::nan("");
  for (const auto& table : document["commands"][0]["tables"]) {
    if (table["id"] != "IterationHistory") continue;
    for (const auto& cell : table["cells"]) {
      if (cell["column"].back() == "Pseudo -2 Log Likelihood") last = cell["value"];
    }
  }
  return last;
}

const std::string kByPopulation = SizedPlan(SizeVariable("PopulationSize", "pop"));

class Property : public testing::TestWithParam<std::string> {
 protected:
  const std::string& Plan() const { return GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Plans, Property, testing::Values(SimplePlan(), kByPopulation), [](const auto& each) {
  return each.param == SimplePlan() ? "WithReplacement" : "WithoutReplacement";
});

TEST_P(Property, TheOrderOfTheCasesDoesNotMatter) {
  const DataFile data = SurveyData();
  DataFile reversed = data;
  std::reverse(reversed.rows.begin(), reversed.rows.end());
  DataFile sorted = data;
  std::sort(sorted.rows.begin(), sorted.rows.end());
  const std::string command = Fit("y3 BY g b WITH x");
  const Estimates expected = RunEstimates({command, data.Text(), Plan()});
  ExpectSame(expected, RunEstimates({command, reversed.Text(), Plan()}));
  ExpectSame(expected, RunEstimates({command, sorted.Text(), Plan()}));
}

TEST_P(Property, TheNamesOfCategoriesDoNotMatter) {
  const DataFile data = SurveyData();
  DataFile renamed = data;
  // The new names stand in the same order, so that the same categories are the references.
  const std::map<std::string, std::string> names = {
      {"high", "a very long name of a category"}, {"low", "b"}, {"mid", "c"}};
  renamed.Fill("g", [&](std::size_t i) { return names.at(data.Cell(i, "g")); });
  renamed.Fill("st", [&](std::size_t i) { return "region " + data.Cell(i, "st"); });
  renamed.Fill("psu", [&](std::size_t i) { return NumberText(1000 - 7.5 * std::stod(data.Cell(i, "psu"))); });
  renamed.Fill("y", [&](std::size_t i) { return data.Cell(i, "y") == "1" ? "yes" : "no"; });
  const std::string command = Fit("y BY g b WITH x");
  Estimates expected;
  for (const auto& [row, statistics] : RunEstimates({command, data.Text(), Plan()})) {
    std::string name = "no" + row.substr(1);
    for (const auto& [from, to] : names) {
      const auto at = name.find("[g=" + from + "]");
      if (at != std::string::npos) name = name.substr(0, at) + "[g=" + to + "]";
    }
    expected[name] = statistics;
  }
  ExpectSame(expected, RunEstimates({command, renamed.Text(), Plan()}));
}

TEST_P(Property, TheUnitOfACovariateScalesItsEstimateOnly) {
  constexpr double kFactor = 1e4;
  const DataFile data = SurveyData();
  DataFile scaled = data;
  scaled.Fill("x", [&](std::size_t i) { return NumberText(std::stod(data.Cell(i, "x")) * kFactor); });
  const std::string command = Fit("y BY g WITH x z");
  Estimates expected = RunEstimates({command, data.Text(), Plan()});
  for (const char* name :
       {"B", "Std. Error", "95% Confidence Interval Lower", "95% Confidence Interval Upper"}) {
    expected.at("0 / x").at(name) /= kFactor;
  }
  Estimates found = RunEstimates({command, scaled.Text(), Plan()});
  EXPECT_NEAR(found.at("0 / x").at(kB), expected.at("0 / x").at(kB),
              1e-8 * std::abs(expected.at("0 / x").at(kB)));
  EXPECT_NEAR(found.at("0 / x").at(kSE), expected.at("0 / x").at(kSE), 1e-8 * expected.at("0 / x").at(kSE));
  // Odds ratios of another unit are other numbers.
  for (Estimates* estimates : {&expected, &found}) {
    for (const char* name :
         {"Exp(B)", "95% Confidence Interval for Exp(B) Lower", "95% Confidence Interval for Exp(B) Upper"}) {
      ASSERT_EQ(estimates->at("0 / x").erase(name), 1U) << name;
    }
  }
  ExpectSame(expected, found);
}

TEST(Weights, TimesAConstantChangeNoEstimateAndNoStandardErrorWithReplacement) {
  const DataFile data = SurveyData();
  DataFile heavy = data;
  heavy.Fill("w", [&](std::size_t i) { return NumberText(std::stod(data.Cell(i, "w")) * 1000); });
  const std::string command =
      "TAVOREG y3 BY g WITH x\n  /PLAN FILE='plan.xml'\n  /CRITERIA PCONVERGE=[1E-11]\n  /STATISTICS "
      "PARAMETER SE TTEST.";
  ExpectSame(RunEstimates({command, data.Text()}), RunEstimates({command, heavy.Text()}));
}

TEST_P(Property, ACaseSplitIntoTwoHalvesOfItsWeightIsTheSameCase) {
  const DataFile data = SurveyData();
  DataFile halves = data;
  halves.rows.clear();
  for (const auto& row : data.rows) {
    halves.rows.push_back(row);
    std::string& weight = halves.rows.back()[halves.ColumnOf("w")];
    weight = NumberText(std::stod(weight) / 2);
    halves.rows.push_back(halves.rows.back());
  }
  const std::string command =
      "TAVOREG y BY g WITH x\n  /PLAN FILE='plan.xml'\n  /CRITERIA PCONVERGE=[1E-11]\n"
      "  /STATISTICS PARAMETER SE TTEST CINTERVAL EXP.";
  ExpectSame(RunEstimates({command, data.Text(), Plan()}), RunEstimates({command, halves.Text(), Plan()}));
}

TEST_P(Property, AFactorIsTheSameAsItsDummies) {
  DataFile data = SurveyData();
  for (const std::string level : {"high", "low", "mid"}) {
    data.Fill("is_" + level, [&](std::size_t i) { return data.Cell(i, "g") == level ? "1" : "0"; });
  }
  const std::string history = "\n  /PRINT HISTORY";
  const auto factor = RunJson({Fit("y BY g WITH x z", history), data.Text(), Plan()});
  const auto dummies = RunJson({Fit("y WITH is_high is_low x z", history), data.Text(), Plan()});
  EXPECT_NEAR(LastLikelihood(factor), LastLikelihood(dummies), 1e-8);
  Estimates expected = EstimatesOf(factor);
  EXPECT_EQ(expected.erase("0 / [g=mid]"), 1U);
  for (const std::string level : {"high", "low"}) {
    auto row = expected.extract("0 / [g=" + level + "]");
    ASSERT_FALSE(row.empty());
    row.key() = "0 / is_" + level;
    expected.insert(std::move(row));
  }
  ExpectSame(expected, EstimatesOf(dummies));
}

TEST_P(Property, AnotherReferenceCategoryGivesTheSameLogOdds) {
  const std::string data = SurveyData().Text();
  const Estimates toThree = RunEstimates({Fit("y3 BY g WITH x"), data, Plan()});
  const Estimates toOne = RunEstimates({Fit("y3(LOW) BY g WITH x"), data, Plan()});
  for (const std::string parameter : {"(Intercept)", "[g=high]", "[g=low]", "x"}) {
    SCOPED_TRACE(parameter);
    const auto three = [&](const std::string& category) { return toThree.at(category + " / " + parameter); };
    const auto one = [&](const std::string& category) { return toOne.at(category + " / " + parameter); };
    // log(2:1) is log(2:3) - log(1:3), and log(3:1) the opposite of log(1:3).
    ExpectSame(one("2").at(kB), three("2").at(kB) - three("1").at(kB));
    ExpectSame(one("3").at(kB), -three("1").at(kB));
    ExpectSame(one("3").at(kSE), three("1").at(kSE));
    ExpectSame(one("3").at("Exp(B)"), 1 / three("1").at("Exp(B)"));
  }
}

TEST_P(Property, TwoThreadsFindWhatOneFinds) {
  const std::string data = SurveyData(4000).Text();
  const std::string command = Fit("y3 BY g b WITH x z", "\n  /MODEL g*b x z x*z");
  ExpectSame(RunEstimates({command, data, Plan(), {"--threads", "1"}}),
             RunEstimates({command, data, Plan(), {"--threads", "2"}}), 1e-9);
}

TEST_P(Property, ADomainOfAllCasesIsTheWholePopulation) {
  DataFile data = SurveyData();
  data.Fill("whole", [](std::size_t) { return "1"; });
  ExpectSame(RunEstimates({Fit("y BY g WITH x"), data.Text(), Plan()}),
             RunEstimates({Fit("y BY g WITH x", "\n  /DOMAIN VARIABLE=whole(1)"), data.Text(), Plan()}));
}

TEST(AnOrdinaryFit, ConvergesWithoutAWarning) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    const ProgramRun run =
        RunAnalysis({"TAVOREG y BY g b WITH x z\n  /PLAN FILE='plan.xml'.", SurveyData(300, seed).Text()});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.messages, "") << "seed " << seed;
  }
}

/// The tables of an analysis of the sample survey, written into a file in one way.
nlohmann::json TablesOf(const std::string& name, const std::string& text) {
  return RunJson({Fit("y BY g WITH x", "\n  /PRINT SAMPLEINFO VARIABLEINFO HISTORY CLASSTABLE"),
                  text,
                  SimplePlan(),
                  {},
                  name})["commands"][0]["tables"];
}

TEST(DataFiles, AreTheSameDataInEachWayOfWritingThem) {
  const DataFile data = SurveyData();
  const auto expected = TablesOf("data.csv", data.Text());
  EXPECT_GE(expected.size(), 5U);
  EXPECT_EQ(expected, TablesOf("data.tsv", data.Text('\t')));
  EXPECT_EQ(expected, TablesOf("semicolons.csv", data.Text(';')));
  EXPECT_EQ(expected, TablesOf("dos.csv", data.Text(',', "\r\n")));
  EXPECT_EQ(expected, TablesOf("mark.csv", "\xEF\xBB\xBF" + data.Text()));
  EXPECT_EQ(expected, TablesOf("mark.tsv", "\xEF\xBB\xBF" + data.Text('\t', "\r\n")));
  DataFile quoted = data;
  for (const std::string& name : data.names) {
    quoted.Fill(name, [&](std::size_t i) { return '"' + data.Cell(i, name) + '"'; });
  }
  EXPECT_EQ(expected, TablesOf("quoted.csv", quoted.Text()));
  std::string withoutLastBreak = data.Text();
  withoutLastBreak.pop_back();
  EXPECT_EQ(expected, TablesOf("short.csv", withoutLastBreak));
}

}  // namespace
