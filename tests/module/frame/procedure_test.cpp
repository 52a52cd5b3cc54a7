// A command from its tokens to its tables: what ends it, what it says then, and what it leaves behind.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <streambuf>

#include "module/frame/procedure_driver.h"
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
using test_support::PlanVariable;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kNames[] = {"y", "y3", "a", "b", "c", "x", "z", "w", "d", "n", "h", "psu"};

class Procedure : public ::testing::Test {
 protected:
  /// Runs, and expects that one error ended the run without tables.
  void ExpectError(const std::string& command, const std::string& key) {
    const standalone::CommandOutput& output = fRun.Run(command);
    ASSERT_THAT(fRun.Keys(), ElementsAre(key));
    EXPECT_TRUE(output.messages[0].isError);
    EXPECT_NE(output.messages[0].text, key) << "a sentence for people";
    EXPECT_TRUE(output.failed);
    EXPECT_THAT(fRun.TableIds(), IsEmpty());
  }
  double Estimate(const standalone::CommandOutput& output, const std::string& parameter,
                  const char* column = "B") {
    return NumberAt(output.FindTable("ParameterEstimates"), {parameter}, {column});
  }

  ModuleRun fRun;
};

TEST_F(Procedure, ASoundCommandHasTablesAndNoMessages) {
  const standalone::CommandOutput& output = fRun.Run("y BY a WITH x /STATISTICS PARAMETER SE");
  EXPECT_THAT(fRun.Keys(), IsEmpty());
  EXPECT_FALSE(output.failed);
  EXPECT_THAT(fRun.TableIds(), Contains("ParameterEstimates"));
}

// No cases.

TEST_F(Procedure, ColumnsWithoutAnAcceptedCaseGiveOneErrorAndNoTablesBeyondTheNotes) {
  fRun["x"] = std::vector<double>(80, host::kSystemMissing);
  ExpectError("y WITH x", "There are no valid cases ...");
  EXPECT_EQ(fRun.Output().notes.size(), 1U) << "the plan file was noted before";
}

TEST_F(Procedure, ColumnsWithoutACaseGiveTheSameError) {
  for (const char* name : kNames)
    fRun[name].clear();
  ExpectError("y WITH x", "There are no valid cases ...");
}

TEST_F(Procedure, CasesWithoutAPositiveWeightAreNoCasesOfThePopulation) {
  fRun["w"] = std::vector<double>(80, 0.0);
  const standalone::CommandOutput& output = fRun.Run("y WITH x");
  EXPECT_TRUE(output.failed);
  ASSERT_EQ(output.messages.size(), 1U);
  EXPECT_TRUE(output.messages[0].isError);
  EXPECT_THAT(fRun.TableIds(), IsEmpty());
}

TEST(Driver, WithoutAnAcceptedCaseItsStatusIs91001AndThereIsNoComponent) {
  standalone::Table table;
  table.SetCaseCount(1);
  for (const char* name : {"y", "w"})
    table.Add(host::VORN_Variable(name, 0));  // system-missing
  standalone::Session session;
  session.SetTable(&table);
  const standalone::SessionScope scope(session);
  const standalone::CommandTokens command;
  const standalone::SourceText text;
  session.BeginCommand(command, text);
  const auto source = session.MakeDataSource();
  TavoValidSpecs specs;
  specs.SetDependent(0, true, {});
  specs.SetWeightVariable(1);
  specs.NumberColumns();
  TavoProcedureDriver driver(specs, *source);
  EXPECT_TRUE(driver.Status().IsError());
  EXPECT_EQ(driver.Status().Code(), StatusCode::kNoRecords);
  EXPECT_FALSE(driver.ProcessDataPass());
  EXPECT_FALSE(driver.RunModel({}));
  EXPECT_EQ(driver.Component(), nullptr);
  driver.ReportWarnings();
  EXPECT_EQ(session.CurrentOutput()->messages.size(), 1U) << "told once, by the constructor";
}

// The dependent variable.

TEST_F(Procedure, ADependentVariableWithOneValueIsAnError) {
  fRun["y"] = std::vector<double>(80, 1.0);
  ExpectError("y WITH x", "Dependant variable has only one value");
}

TEST_F(Procedure, ADependentVariableWithOneValueInTheSubpopulationIsAnError) {
  for (std::size_t i = 0; i < 80; ++i) {
    if (fRun["d"][i] == 2) fRun["y"][i] = 1;
  }
  ExpectError("y WITH x /DOMAIN VARIABLE=d(2)", "Dependant variable has only one value");
}

TEST(Driver, WithOneDependentValueItsStatusIs95028AndTheModelIsNotRun) {
  standalone::Table table;
  table.SetCaseCount(2);
  for (const char* name : {"y", "w"}) {
    for (host::OBS& cell : table.Add(host::VORN_Variable(name, 0)).cells)
      cell.number = 1;
  }
  standalone::Session session;
  session.SetTable(&table);
  const standalone::SessionScope scope(session);
  const standalone::CommandTokens command;
  const standalone::SourceText text;
  session.BeginCommand(command, text);
  const auto source = session.MakeDataSource();
  TavoValidSpecs specs;
  specs.SetDependent(0, true, {});
  specs.SetWeightVariable(1);
  specs.NumberColumns();
  TavoProcedureDriver driver(specs, *source);
  EXPECT_TRUE(driver.Status().IsOK());
  EXPECT_FALSE(driver.ProcessDataPass());
  EXPECT_EQ(driver.Status().Code(), StatusCode::kOneDependentValue);
  EXPECT_FALSE(driver.RunModel({}));
  EXPECT_EQ(driver.Component(), nullptr);
}

TEST_F(Procedure, AReferenceValueThatDoesNotOccurGivesAWarningAndTheHighestIsUsed) {
  const standalone::CommandOutput& output = fRun.Run("y3 (7) WITH x /STATISTICS PARAMETER");
  EXPECT_THAT(fRun.Keys(), ElementsAre("Highest factor level is used"));
  EXPECT_FALSE(output.messages[0].isError);
  EXPECT_FALSE(output.failed);
  EXPECT_THAT(output.FindTable("ParameterEstimates")->caption, HasSubstr("reference category = 3"));
}

TEST_F(Procedure, AReferenceValueOutsideOfTheSubpopulationGivesAWarningAndTheHighestIsUsed) {
  for (std::size_t i = 0; i < 80; ++i) {
    if (fRun["d"][i] == 2 && fRun["y3"][i] == 2) fRun["y3"][i] = 1;
  }
  const standalone::CommandOutput& output = fRun.Run("y3 (2) /DOMAIN VARIABLE=d(2) /STATISTICS PARAMETER");
  EXPECT_THAT(fRun.Keys(), ElementsAre("Highest factor level is used"));
  EXPECT_THAT(output.FindTable("ParameterEstimates")->caption, HasSubstr("reference category = 3"));
}

TEST_F(Procedure, ReferencesLowHighAndByValueAreTaken) {
  for (const auto& [reference, category] :
       {std::pair<const char*, const char*>{"", "3"}, {"(HIGH)", "3"}, {"(LOW)", "1"}, {"(2)", "2"}}) {
    const standalone::CommandOutput& output =
        fRun.Run(std::string("y3 ") + reference + " /STATISTICS PARAMETER");
    EXPECT_THAT(output.FindTable("ParameterEstimates")->caption,
                HasSubstr(std::string("reference category = ") + category))
        << reference;
  }
}

// The other reference turns every sign of a binary model round.
TEST_F(Procedure, TheOtherReferenceTurnsTheSigns) {
  const double high = Estimate(fRun.Run("y WITH x /STATISTICS PARAMETER"), "x");
  const double low = Estimate(fRun.Run("y (LOW) WITH x /STATISTICS PARAMETER"), "x");
  EXPECT_NEAR(high, -low, 1e-9);
}

TEST_F(Procedure, ResultsDoNotDependOnTheOrderOfTheCases) {
  ModuleRun reversed;
  for (const char* name : kNames)
    std::reverse(reversed[name].begin(), reversed[name].end());
  const char* command = "y3 BY a WITH x /STATISTICS PARAMETER SE";
  const standalone::PivotTable* forwards = fRun.Run(command).FindTable("ParameterEstimates");
  const standalone::PivotTable* backwards = reversed.Run(command).FindTable("ParameterEstimates");
  for (const char* logit : {"1", "2"}) {
    for (const char* parameter : {"(Intercept)", "[a=1]", "[a=2]", "x"}) {
      for (const char* column : {"B", "Std. Error"}) {
        const double value = NumberAt(forwards, {logit, parameter}, {column});
        ASSERT_NE(value, host::kSystemMissing);
        EXPECT_NEAR(value, NumberAt(backwards, {logit, parameter}, {column}), 1e-9);
      }
    }
  }
}

// The subpopulation.

TEST_F(Procedure, ADomainValueThatNoCaseHasIsAnError) {
  ExpectError("y WITH x /DOMAIN VARIABLE=d(5)", "Invalid domain variable value");
}

TEST_F(Procedure, ASubpopulationWithoutWeightIsAnError) {
  for (std::size_t i = 0; i < 80; ++i) {
    if (fRun["d"][i] == 2) fRun["w"][i] = 0;
  }
  ExpectError("y WITH x /DOMAIN VARIABLE=d(2)", "There are no valid cases in the subpopulation");
}

TEST_F(Procedure, ASubpopulationOfAStringVariableIsFound) {
  for (const double d : fRun["d"])
    fRun.Text("area").push_back(d == 1 ? "north" : "south west");
  const double byText = Estimate(
      fRun.Run("y WITH x /DOMAIN VARIABLE=area('south west') /STATISTICS PARAMETER SE"), "x", "Std. Error");
  const double byNumber =
      Estimate(fRun.Run("y WITH x /DOMAIN VARIABLE=d(2) /STATISTICS PARAMETER SE"), "x", "Std. Error");
  EXPECT_EQ(byText, byNumber);
  EXPECT_GT(byText, 0);
}

// The host's split files and case weight.

TEST_F(Procedure, HostWeightAndSplitFilesGiveOneWarningEachAndComeBackAsTheyStood) {
  fRun.initial.splitFileCount = 3;
  fRun.initial.weightVariable = 7;
  const standalone::CommandOutput& output = fRun.Run("y WITH x");
  EXPECT_THAT(fRun.Keys(), ::testing::UnorderedElementsAre("No split file ...", "No VORN weight ..."));
  for (const standalone::Message& message : output.messages)
    EXPECT_FALSE(message.isError);
  EXPECT_FALSE(output.failed);
  EXPECT_EQ(fRun.Host().Common().splitFileCount, 3);
  EXPECT_EQ(fRun.Host().Common().weightVariable, 7);
}

TEST_F(Procedure, HostFieldsComeBackAfterAnErrorToo) {
  fRun.initial.splitFileCount = 1;
  fRun.initial.weightVariable = 2;
  EXPECT_TRUE(fRun.Run("y WITH x /DOMAIN VARIABLE=d(5)").failed);
  EXPECT_EQ(fRun.Host().Common().splitFileCount, 1);
  EXPECT_EQ(fRun.Host().Common().weightVariable, 2);
  EXPECT_TRUE(fRun.Run("nothing WITH x").failed);
  EXPECT_EQ(fRun.Host().Common().splitFileCount, 1);
  EXPECT_EQ(fRun.Host().Common().weightVariable, 2);
}

// Stopping.

/// A terminal that asks the session to stop as soon as something is shown on it.
class StoppingTerminal final : public std::streambuf {
 public:
  standalone::Session* session = nullptr;

 protected:
  int_type overflow(int_type c) override {
    if (session != nullptr) session->RequestStop();
    return traits_type::not_eof(c);
  }
};

TEST(Cancelling, DuringARunPrintsNoTableAndNoMessageOfTheModule) {
  StoppingTerminal terminal;
  std::ostream stream(&terminal);
  ModuleRun run;
  run.Options().progress = &stream;
  run.prepare = [&](standalone::Table&) { terminal.session = &run.Host(); };  // the session is there by then
  run.Run("y WITH x");
  EXPECT_TRUE(run.result.interrupted);
  EXPECT_THAT(run.TableIds(), IsEmpty());
  EXPECT_THAT(run.Keys(), ElementsAre("Run was interrupted...")) << "the host's own";
}

TEST(Cancelling, LeavesTheStatusInTheDriverAndNothingElse) {
  ModuleRun run;
  run.Run("y WITH x");  // fills the table
  standalone::Session& session = run.Host();
  const standalone::SessionScope scope(session);
  const standalone::CommandTokens command;
  const standalone::SourceText text;
  session.BeginCommand(command, text);
  const auto source = session.MakeDataSource();
  TavoValidSpecs specs;
  specs.SetDependent(source->FindVarIndex("y"), true, {});
  specs.SetCovariates({source->FindVarIndex("x")});
  specs.SetWeightVariable(source->FindVarIndex("w"));
  PlanStageSpec stage;
  stage.stage.stageNumber = 1;
  stage.stage.estimator = StageEstimator::kWithReplacement;
  stage.stage.clusters = {source->FindVarIndex("psu")};
  specs.AddStage(std::move(stage));
  specs.NumberColumns();
  TavoProcedureDriver driver(specs, *source);
  const std::optional<FirstPassFindings> found = driver.ProcessDataPass();
  ASSERT_TRUE(found);
  session.RequestStop();
  EXPECT_FALSE(driver.RunModel(*found));
  EXPECT_EQ(driver.Status().Code(), StatusCode::kCancelled);
  driver.ReportWarnings();
  EXPECT_THAT(session.CurrentOutput()->messages, IsEmpty());
}

// Designs.

TEST_F(Procedure, APopulationBelowItsSampleIsAnErrorThatNamesTheStage) {
  fRun.WritePlan(PlanOf(PlanStage(
      1, "equal_wor",
      PlanStrata("h") + PlanClusters("psu") + "<PopulationSize><SingleValue value='3'/></PopulationSize>")));
  ExpectError("y WITH x", "Pop size too big in stage ^1 stratum ...");
  EXPECT_THAT(fRun.Output().messages[0].text, HasSubstr("tage 1"));
}

TEST_F(Procedure, APopulationBelowItsSampleInTheSecondStageNamesThatStage) {
  for (int i = 0; i < 80; ++i)
    fRun["hh"].push_back(i);
  fRun.WritePlan(
      PlanOf(PlanStage(1, "equal_wor",
                       PlanStrata("h") + PlanClusters("psu") +
                           "<PopulationSize><SingleValue value='40'/></PopulationSize>") +
             PlanStage(2, "equal_wor",
                       PlanClusters("hh") + "<PopulationSize><SingleValue value='9'/></PopulationSize>")));
  const standalone::CommandOutput& output = fRun.Run("y WITH x");
  ASSERT_EQ(output.messages.size(), 1U);
  EXPECT_THAT(output.messages[0].key, ::testing::StartsWith("Pop size too big in stage ^1"));
  EXPECT_THAT(output.messages[0].text, HasSubstr("tage 2"));
  EXPECT_THAT(fRun.TableIds(), IsEmpty());
}

TEST_F(Procedure, APopulationAsLargeAsItsSampleHasNoVarianceInThatStage) {
  fRun.WritePlan(PlanOf(PlanStage(
      1, "equal_wor",
      PlanStrata("h") + PlanClusters("psu") + "<PopulationSize><SingleValue value='4'/></PopulationSize>")));
  const standalone::CommandOutput& output = fRun.Run("y WITH x /STATISTICS PARAMETER SE");
  EXPECT_FALSE(output.failed);
  EXPECT_THAT(fRun.Keys(), ElementsAre("Variance for all parameters is zero"));
}

TEST_F(Procedure, SizesThatDifferInsideAStratumGiveOneWarningAndTheRunGoesOn) {
  fRun["n"][0] += 1;
  fRun.WritePlan(PlanOf(PlanStage(
      1, "equal_wor",
      PlanStrata("h") + PlanClusters("psu") + "<PopulationSize>" + PlanVariable("n") + "</PopulationSize>")));
  const standalone::CommandOutput& output = fRun.Run("y WITH x /STATISTICS PARAMETER SE");
  EXPECT_THAT(fRun.Keys(), ElementsAre("Unequal pop size in stage ^1 stratum ..."));
  EXPECT_FALSE(output.messages[0].isError);
  EXPECT_GT(Estimate(output, "x", "Std. Error"), 0);
}

TEST_F(Procedure, AMissingProbabilityOfAUnitIsAnError) {
  fRun["p"] = std::vector<double>(80, host::kSystemMissing);
  fRun.WritePlan(PlanOf(
      PlanStage(1, "equal_wor",
                PlanStrata("h") + PlanClusters("psu") + "<IncProb>" + PlanVariable("p") + "</IncProb>")));
  ExpectError("y WITH x", "No incl prob in active in stage ^1 stratum ...");
}

TEST_F(Procedure, AnInvalidProbabilityOfACaseEndsTheRunAfterTheFirstPass) {
  fRun["p"] = std::vector<double>(80, 0.5);
  fRun["p"][3] = 1.5;
  fRun.WritePlan(PlanOf(
      PlanStage(1, "equal_wor",
                PlanStrata("h") + PlanClusters("psu") + "<IncProb>" + PlanVariable("p") + "</IncProb>")));
  ExpectError("y WITH x", "Invalid value in incl. prob. variable ^1 ...");
  EXPECT_THAT(fRun.Output().messages[0].text, HasSubstr("4")) << "cases count from 1";
}

TEST_F(Procedure, APopulationMatrixThatLacksAStratumEndsTheRun) {
  fRun.WritePlan(
      PlanOf(PlanStage(1, "equal_wor",
                       PlanStrata("h") + PlanClusters("psu") +
                           "<PopulationSize><Matrix numberOfValues='1'><MatrixVarList>" + PlanVariable("h") +
                           "</MatrixVarList><MatrixValue sizeValue='12'><Category "
                           "value='1'/></MatrixValue></Matrix></PopulationSize>")));
  const standalone::CommandOutput& output = fRun.Run("y WITH x");
  EXPECT_TRUE(output.failed);
  EXPECT_THAT(fRun.Keys(), Contains("No population size ^1 [%1 = %2:, ^1 = ^2:]2 ..."));
  EXPECT_THAT(output.messages[0].text, HasSubstr("h = 2"));
  EXPECT_THAT(fRun.TableIds(), IsEmpty());
}

// A matrix, a variable and a constant that say the same give the same result.
TEST_F(Procedure, SizesFromAMatrixAVariableOrAConstantAreTheSame) {
  const std::string matrix = "<Matrix numberOfValues='2'><MatrixVarList>" + PlanVariable("h") +
                             "</MatrixVarList><MatrixValue sizeValue='12'><Category value='1'/></MatrixValue>"
                             "<MatrixValue sizeValue='16'><Category value='2'/></MatrixValue></Matrix>";
  const auto errorWith = [&](const std::string& value) {
    fRun.WritePlan(PlanOf(
        PlanStage(1, "equal_wor",
                  PlanStrata("h") + PlanClusters("psu") + "<PopulationSize>" + value + "</PopulationSize>")));
    return Estimate(fRun.Run("y WITH x /STATISTICS PARAMETER SE"), "x", "Std. Error");
  };
  EXPECT_EQ(errorWith(matrix), errorWith(PlanVariable("n")));
  fRun["n"] = std::vector<double>(80, 12.0);
  EXPECT_EQ(errorWith(PlanVariable("n")), errorWith("<SingleValue value='12'/>"));
}

// The model.

TEST(LargeModel, OfMoreParametersThan46340IsRefusedWithItsCountAndTheLimit) {
  ModuleRun run;
  for (const char* name : kNames)
    run[name].clear();
  for (int i = 0; i < 300; ++i) {
    run["big"].push_back(i);
    run["wide"].push_back(i % 200);
    run["w"].push_back(1);
    run["h"].push_back(i % 2);
    run["psu"].push_back(i % 10);
    for (const char* name : {"y", "y3", "a", "b", "c", "x", "z", "d", "n"})
      run[name].push_back(1);
  }
  const standalone::CommandOutput& output = run.Run("big BY wide");
  ASSERT_THAT(run.Keys(), ElementsAre("Number of parameters ^1 exceeds limit ^2"));
  EXPECT_TRUE(output.messages[0].isError);
  EXPECT_THAT(output.messages[0].text, HasSubstr("60099")) << "299 logits of 201 parameters";
  EXPECT_THAT(output.messages[0].text, HasSubstr("46340"));
  EXPECT_THAT(run.TableIds(), IsEmpty());
}

TEST_F(Procedure, CompleteSeparationIsTold) {
  for (std::size_t i = 0; i < 80; ++i)
    fRun["x"][i] = static_cast<double>(i % 7) + (fRun["y"][i] == 1 ? 100 : 0);
  const standalone::CommandOutput& output = fRun.Run("y WITH x /STATISTICS PARAMETER");
  EXPECT_THAT(fRun.Keys(), ::testing::IsSupersetOf(
                               {"Log-likelihood value is zero", "Tavoreg continues despite warnings"}));
  EXPECT_FALSE(output.failed) << "a warning";
}

TEST_F(Procedure, QuasiCompleteSeparationIsToldBeforeTheTables) {
  for (std::size_t i = 0; i < 80; ++i) {
    if (fRun["a"][i] == 1) fRun["y"][i] = 0;
  }
  const standalone::CommandOutput& output =
      fRun.Run("y BY a /CRITERIA CHKSEP=2 PCONVERGE=[0] /STATISTICS PARAMETER");
  const std::vector<std::string> keys = fRun.Keys();
  ASSERT_GE(keys.size(), 2U);
  EXPECT_EQ(keys[0], "Quasi-complete separation may exist in data");
  EXPECT_EQ(keys[1], "Tavoreg continues despite warnings");
  EXPECT_FALSE(output.failed);
}

TEST_F(Procedure, ZeroAndNegativeWeightsLeaveTheCasesOutSilently) {
  const std::vector<double> weights = fRun["w"];
  for (const std::size_t i : {0U, 17U, 40U})
    fRun["w"][i] = 0;
  fRun["w"][5] = -2;
  const standalone::CommandOutput& kept = fRun.Run("y WITH x /STATISTICS PARAMETER SE");
  EXPECT_THAT(fRun.Keys(), IsEmpty());
  const double estimate = Estimate(kept, "x");
  const double error = Estimate(kept, "x", "Std. Error");
  for (const std::size_t i : {0U, 17U, 40U, 5U})
    fRun["w"][i] = host::kSystemMissing;
  const standalone::CommandOutput& dropped = fRun.Run("y WITH x /STATISTICS PARAMETER SE");
  EXPECT_EQ(Estimate(dropped, "x"), estimate);
  EXPECT_EQ(Estimate(dropped, "x", "Std. Error"), error);
}

TEST_F(Procedure, DeclaredMissingCategoriesFollowTheMissingSubcommand) {
  fRun.prepare = [](standalone::Table& table) {
    host::VORN_MissingValues missing;
    host::OBS three{};
    three.number = 3;
    missing.values.push_back({three});
    table.At(static_cast<std::size_t>(table.Find("a"))).variable.SetMissingValues(missing);
  };
  const auto count = std::count(fRun["a"].begin(), fRun["a"].end(), 3.0);
  const auto invalid = [&](const char* missing) {
    const standalone::CommandOutput& output = fRun.Run(std::string("y BY a") + missing);
    return NumberAt(output.FindTable("SampleDesignInformation"), {"Invalid"}, {"N"});
  };
  EXPECT_EQ(invalid(""), count);
  EXPECT_EQ(invalid(" /MISSING CLASSMISSING=EXCLUDE"), count);
  EXPECT_EQ(invalid(" /MISSING CLASSMISSING=INCLUDE"), 0);
}

TEST_F(Procedure, SeveralThreadsFindTheSame) {
  const standalone::CommandOutput& one = fRun.Run("y3 BY a WITH x /STATISTICS PARAMETER SE");
  std::vector<double> alone;
  for (const char* column : {"B", "Std. Error"}) {
    alone.push_back(NumberAt(one.FindTable("ParameterEstimates"), {"2", "[a=1]"}, {column}));
  }
  fRun.Options().threads = 4;
  const standalone::CommandOutput& four = fRun.Run("y3 BY a WITH x /STATISTICS PARAMETER SE");
  EXPECT_NEAR(NumberAt(four.FindTable("ParameterEstimates"), {"2", "[a=1]"}, {"B"}), alone[0], 1e-9);
  EXPECT_NEAR(NumberAt(four.FindTable("ParameterEstimates"), {"2", "[a=1]"}, {"Std. Error"}), alone[1], 1e-9);
}

TEST_F(Procedure, ACommandThatFailsLeavesTheSessionReadyForTheNext) {
  standalone::Session& first = (fRun.Run("y WITH nothing"), fRun.Host());
  EXPECT_TRUE(first.Output().commands.back().failed);
  const standalone::SourceText text("again.tvs", "TAVOREG y WITH x /PLAN FILE='plan.xml'.");
  const standalone::RunResult result = standalone::RunCommands(first, text, {{"TAVOREG", TAVOMAIN}});
  EXPECT_EQ(result.failed, 0);
}

TEST(StatusText, OfACodeWithoutOneIsErrorCodeNotFound) {
  EXPECT_EQ(StatusCodeText(StatusCode::kNotEstimable), "Error code not found.");
  EXPECT_EQ(StatusCodeText(4711), "Error code not found.");
  EXPECT_EQ(StatusCodeText(StatusCode::kNoRecords), "No records found in the data source.");
}

}  // namespace
}  // namespace tavo
