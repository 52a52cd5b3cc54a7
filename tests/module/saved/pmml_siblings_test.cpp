// Documents of the other kinds of models.
#include "pmml_fixture.h"

namespace tavo {
namespace {

using test_support::XmlNode;
using ::testing::ElementsAre;

TEST_F(Pmml, AGeneralLinearModelHasOneBlockAndNoTargets) {
  model.kind = ModelKind::kGeneralLinear;
  variables[0].level = Level::kContinuous;
  variables[0].categoryValues.clear();
  targets.clear();
  SetEstimates(5);
  const XmlNode root = Model();
  EXPECT_EQ(root.At("modelType"), "generalLinear");
  EXPECT_EQ(root.At("modelName"), "OrvGLM");
  EXPECT_EQ(root.At("algorithmName"), "OrvGLM");
  EXPECT_EQ(root.At("functionName"), "regression");
  EXPECT_FALSE(root.Has("targetReferenceCategory"));
  ASSERT_EQ(root.Child("PCovMatrix")->children.size(), 15U);
  const XmlNode& cell = root.Child("PCovMatrix")->children[4];
  EXPECT_EQ(cell.At("pRow"), "P0000003");
  EXPECT_EQ(cell.At("pCol"), "P0000002");
  EXPECT_EQ(cell.At("value"), "302");
  EXPECT_FALSE(cell.Has("tRow"));
  EXPECT_THAT(Each(root.Child("ParamMatrix"), "beta"), ElementsAre("1", "2", "3", "4", "5"));
  EXPECT_FALSE(root.Child("ParamMatrix")->children[0].Has("targetCategory"));
}

TEST_F(Pmml, AnOrdinalModelTurnsTheSignWhereThresholdsMeetParameters) {
  model.kind = ModelKind::kOrdinal;
  SetEstimates(6);  // thresholds of no and maybe, then a=1, a=2, a=3, x
  const XmlNode root = Model();
  EXPECT_EQ(root.At("modelType"), "ordinalMultinomial");
  EXPECT_EQ(root.At("modelName"), "OrvOrdinal");
  EXPECT_EQ(root.At("functionName"), "classification");
  const XmlNode* estimatesOf = root.Child("ParamMatrix");
  EXPECT_THAT(Each(estimatesOf, "targetCategory"), ElementsAre("no", "maybe", "", "", "", ""));
  EXPECT_THAT(Each(estimatesOf, "parameterName"),
              ElementsAre("P0000001", "P0000001", "P0000002", "P0000003", "P0000004", "P0000005"));
  EXPECT_THAT(Each(estimatesOf, "beta"), ElementsAre("1", "2", "-3", "-4", "-5", "-6"));
  const XmlNode* cells = root.Child("PCovMatrix");
  ASSERT_EQ(cells->children.size(), 21U);
  const std::vector<std::string> values = Each(cells, "value");
  EXPECT_THAT(std::vector<std::string>(values.begin(), values.begin() + 6),
              ElementsAre("101", "201", "202", "-301", "-302", "303"));
  EXPECT_EQ(cells->children[1].At("tRow"), "maybe");
  EXPECT_EQ(cells->children[1].At("tCol"), "no");
  EXPECT_FALSE(cells->children[3].Has("tRow"));
  EXPECT_EQ(cells->children[3].At("tCol"), "no");
}

TEST_F(Pmml, AnEstimateOfZeroStaysZeroUnderATurnedSign) {
  model.kind = ModelKind::kOrdinal;
  SetEstimates(6);
  estimates[5] = 0;
  EXPECT_EQ(Model().Child("ParamMatrix")->children[5].At("beta"), "0");
}

TEST_F(Pmml, AnOrdinalModelNamesItsLink) {
  model.kind = ModelKind::kOrdinal;
  SetEstimates(6);
  const std::pair<CumulativeLink, const char*> links[] = {{CumulativeLink::kLogit, "logit"},
                                                          {CumulativeLink::kCauchit, "cauchit"},
                                                          {CumulativeLink::kCloglog, "cloglog"},
                                                          {CumulativeLink::kLoglog, "loglog"},
                                                          {CumulativeLink::kProbit, "probit"}};
  for (const auto& [link, text] : links) {
    model.link = link;
    EXPECT_EQ(Model().At("cumulativeLink"), text);
  }
}

class CoxPmml : public Pmml {
 protected:
  CoxPmml() {
    model.kind = ModelKind::kCox;
    variables[0].level = Level::kContinuous;
    variables[0].categoryValues.clear();
    Add(kStatus, "died", Level::kNominal, {"0", "1"});
    Add(kStart, "entry", Level::kContinuous, {});
    Add(kStrata, "site", Level::kNominal, {"n", "s"});
    Add(kSubject, "id", Level::kNominal, {});
    targets.clear();
    targetParameters.erase(targetParameters.begin());
    SetEstimates(4);
    events.statusVariable = kStatus;
    events.values = {"1"};
    events.intervals = {{5, 9}};
    model.cox.startTime = kStart;
    model.cox.strata = kStrata;
    model.cox.subject = kSubject;
    model.cox.referencePoints = {0, 0, 0, 2.5};
    model.cox.baselineStrata = {"n", "s"};
    model.cox.baselineMaximumTimes = {10, 12};
    model.cox.baselineTimes = {{1, 2}, {3}};
    model.cox.baselineHazards = {{0.1, 0.4}, {0.25}};
  }
};

TEST_F(CoxPmml, ACoxModelNamesItsVariablesAndPredictsTheStatus) {
  const XmlNode document = Document();
  EXPECT_EQ(document.Child("DataDictionary")->At("numberOfFields"), "9");
  EXPECT_THAT(Each(document.Child("DataDictionary"), "name"),
              ElementsAre("y", "a", "b", "x", "z", "died", "entry", "site", "id"));
  const XmlNode& root = *document.Child("GeneralRegressionModel");
  EXPECT_EQ(root.At("modelType"), "CoxRegression");
  EXPECT_EQ(root.At("modelName"), "OrvCox");
  EXPECT_EQ(root.At("subjectIDVariable"), "id");
  EXPECT_EQ(root.At("startTimeVariable"), "entry");
  EXPECT_EQ(root.At("endTimeVariable"), "y");
  EXPECT_EQ(root.At("statusVariable"), "died");
  EXPECT_EQ(root.At("baselineStrataVariable"), "site");
  EXPECT_THAT(Each(root.Child("MiningSchema"), "name"),
              ElementsAre("y", "died", "a", "x", "entry", "site", "id"));
  EXPECT_THAT(Each(root.Child("MiningSchema"), "usageType"),
              ElementsAre("active", "predicted", "active", "active", "active", "active", "active"));
  EXPECT_THAT(Each(root.Child("ParameterList"), "referencePoint"), ElementsAre("0", "0", "0", "2.5"));
}

TEST_F(CoxPmml, EventsAndBaselineHazardsFollowTheEstimates) {
  const XmlNode root = Model();
  const std::vector<std::string> names = root.Names();
  EXPECT_THAT(std::vector<std::string>(names.end() - 3, names.end()),
              ElementsAre("ParamMatrix", "EventValues", "BaseCumHazardTables"));
  EXPECT_EQ(root.Child("EventValues")->children[0].At("value"), "1");
  EXPECT_EQ(root.Child("EventValues")->children[1].At("rightMargin"), "9");
  const XmlNode* tables = root.Child("BaseCumHazardTables");
  EXPECT_FALSE(tables->Has("maxTime"));
  EXPECT_THAT(Each(tables, "value"), ElementsAre("n", "s"));
  EXPECT_THAT(Each(tables, "maxTime"), ElementsAre("10", "12"));
  EXPECT_THAT(Each(&tables->children[0], "time"), ElementsAre("1", "2"));
  EXPECT_THAT(Each(&tables->children[0], "cumHazard"), ElementsAre("0.1", "0.4"));
}

TEST_F(CoxPmml, WithoutStrataTheBaselineCellsStandInTheTableItself) {
  model.cox.strata = -1;
  model.cox.baselineStrata.resize(1);
  model.cox.baselineMaximumTimes.resize(1);
  model.cox.baselineTimes.resize(1);
  model.cox.baselineHazards.resize(1);
  const XmlNode root = Model();
  EXPECT_EQ(root.Child("BaseCumHazardTables")->At("maxTime"), "10");
  EXPECT_THAT(root.Child("BaseCumHazardTables")->Names(), ElementsAre("BaselineCell", "BaselineCell"));
}

TEST_F(CoxPmml, ReferencePointsAndBaselineListsMustHaveMatchingSizes) {
  const OrvPMMLCox sound = model.cox;
  EXPECT_TRUE(Check().IsOK());
  model.cox.referencePoints.pop_back();
  EXPECT_EQ(Check().Code(), 95012U);
  model.cox = sound;
  model.cox.baselineHazards[1].push_back(1);
  EXPECT_EQ(Check().Code(), 95012U);
  model.cox = sound;
  model.cox.baselineMaximumTimes.pop_back();
  EXPECT_EQ(Check().Code(), 95012U);
  model.cox = sound;
  model.cox.strata = -1;  // two tables and nothing to tell them apart
  EXPECT_EQ(Check().Code(), 95012U);
  model.cox = sound;
  events.statusVariable = 99;
  EXPECT_EQ(Check().Code(), 95013U);
  EXPECT_EQ(Check().Integer(0), 99);
}

}  // namespace
}  // namespace tavo
