// What the export refuses, and the metadata.
#include <functional>

#include "pmml_fixture.h"

namespace tavo {
namespace {

TEST(PMMLMetadata, TakesAVariableOnceAndOnlyWithNameAndIndex) {
  OrvPMMLMetadata metadata;
  OrvPMMLVariable variable;
  variable.index = 4;
  EXPECT_FALSE(metadata.AddVariable(variable));  // no name
  variable.name = "x";
  EXPECT_TRUE(metadata.AddVariable(variable));
  variable.index = 5;
  EXPECT_FALSE(metadata.AddVariable(variable));  // the name is there
  variable.name = "z";
  variable.index = 4;
  EXPECT_FALSE(metadata.AddVariable(variable));  // the index is there
  variable.index = -1;
  EXPECT_FALSE(metadata.AddVariable(variable));
  ASSERT_EQ(metadata.Variables().size(), 1U);
  EXPECT_EQ(metadata.Find(4), &metadata.Variables()[0]);
  for (const int index : {-1, 0, 5})
    EXPECT_EQ(metadata.Find(index), nullptr);
}

TEST_F(Pmml, ASoundModelPassesTheChecks) {
  EXPECT_TRUE(Check().IsOK());
  EXPECT_TRUE(exporter->IsConsistencyChecked());
}

TEST_F(Pmml, WithoutADependentOrWithListsThatDifferTheExporterIsAFailureFromTheStart) {
  model.dependent = -1;
  EXPECT_EQ(Exporter().Status(), OrvStatus::Error(StatusCode::kNoDependent));
  model.dependent = kY;
  model.parameterCount = 9;
  EXPECT_TRUE(Exporter().Status().IsError());
  model.parameterCount = 0;  // no parameters: nothing to compare
  EXPECT_TRUE(Exporter().Status().IsOK());
  model.parameterCount = 10;
  targetParameters.resize(11);
  EXPECT_TRUE(Exporter().Status().IsError());
  EXPECT_EQ(Text(), "");
}

TEST_F(Pmml, EachCheckHasItsCodeAndNamesTheVariable) {
  struct Fault {
    const char* what;
    std::function<void()> make;
    std::uint32_t code;
    int index;
  };
  const auto drop = [this](std::size_t position) {
    variables.erase(variables.begin() + static_cast<std::ptrdiff_t>(position));
  };
  const auto subpopulation = [this](Level level, std::vector<std::string> values) {
    Add(kD, "d", level, std::move(values));
    model.subpopulation = kD;
  };
  const Fault faults[] = {
      {"a factor that is unknown", [&] { drop(2); }, 95013, kB},
      {"a factor that is continuous", [&] { variables[1].level = Level::kContinuous; }, 95014, kA},
      {"a factor without categories", [&] { variables[2].categoryValues.clear(); }, 95014, kB},
      {"a covariate that is unknown", [&] { drop(4); }, 95013, kZ},
      {"a dependent that is unknown", [&] { drop(0); }, 95013, kY},
      {"a dependent that is continuous", [&] { variables[0].level = Level::kContinuous; }, 95015, kY},
      {"a last target above the categories",
       [&] {
         targets = {1, 2, 4};
       },
       95015, kY},
      {"a target that is no category",
       [&] {
         targets = {0, 1, 2};
       },
       95015, kY},
      {"no targets", [&] { targets.clear(); }, 95015, kY},
      {"a subpopulation that is unknown", [&] { model.subpopulation = kD; }, 95013, kD},
      {"a subpopulation with two categories",
       [&] {
         subpopulation(Level::kNominal, {"1", "2"});
       },
       95011, kD},
      {"a subpopulation without category", [&] { subpopulation(Level::kOrdinal, {}); }, 95011, kD},
      {"a continuous subpopulation", [&] { subpopulation(Level::kContinuous, {"1"}); }, 95011, kD},
      {"a level out of range", [&] { targetParameters[1].levels = {4}; }, 95014, kA},
      {"a parameter without level", [&] { targetParameters[1].levels = {}; }, 95012, -1},
      {"a parameter of an unknown factor", [&] { targetParameters[1].factors = {99}; }, 95013, 99},
      {"a parameter of an unknown covariate", [&] { targetParameters[4].covariates = {99}; }, 95013, 99},
      {"too few estimates for the targets",
       [&] {
         targets = {1, 2, 3, 1};
       },
       95012, -1},
  };
  const auto soundVariables = variables;
  const auto soundParameters = targetParameters;
  const auto soundTargets = targets;
  for (const Fault& fault : faults) {
    fault.make();
    const OrvStatus found = Check();
    EXPECT_TRUE(found.IsError()) << fault.what;
    EXPECT_EQ(found.Code(), fault.code) << fault.what;
    EXPECT_EQ(found.Integer(0), fault.index) << fault.what;
    EXPECT_FALSE(exporter->IsConsistencyChecked()) << fault.what;
    EXPECT_EQ(Text(), "") << fault.what;  // the write checks by itself
    variables = soundVariables;
    targetParameters = soundParameters;
    targets = soundTargets;
    model.subpopulation = -1;
  }
  EXPECT_TRUE(Check().IsOK());
}

TEST_F(Pmml, ACovarianceOfAnotherSizeIsRefused) {
  covariance.SetNRows(9);
  EXPECT_EQ(Text(), "");
  EXPECT_EQ(status.Code(), 95012U);
  SetEstimates(10);
  covariance.SetNBlocks(5);  // not one block per target
  std::ostringstream out;
  EXPECT_EQ(Exporter().Write(out, counts, &covariance).Code(), 95012U);
}

TEST_F(Pmml, ACancelledWriteLeavesTheStreamEmpty) {
  cancel.Cancel();
  EXPECT_EQ(Check().Code(), StatusCode::kCancelled);
  EXPECT_FALSE(exporter->IsConsistencyChecked());
  EXPECT_EQ(Text(), "");
  EXPECT_EQ(status.Code(), StatusCode::kCancelled);
}

/// Says stop when it has been asked so often.
class LateStop final : public host::MCStopProcessor {
 public:
  explicit LateStop(int asked) : fLeft(asked) {}
  bool IsStopRequested() override { return fLeft-- <= 0; }

 private:
  int fLeft;
};

TEST_F(Pmml, ACancelWhileTheTreeGrowsLeavesTheStreamEmpty) {
  Exporter();
  covariance.SetNBlocks(2);
  for (int asked = 0; asked < 12; ++asked) {
    LateStop stop(asked);
    const OrvCancelInfo late(&stop);
    OrvPMMLExporter writer(metadata, model, late);
    writer.SetTargets(targets, reference);
    std::ostringstream out;
    EXPECT_EQ(writer.Write(out, counts, &covariance).Code(), StatusCode::kCancelled) << asked;
    EXPECT_EQ(out.str(), "") << asked;
  }
}

}  // namespace
}  // namespace tavo
