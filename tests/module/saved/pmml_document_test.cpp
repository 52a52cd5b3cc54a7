// What the document of a multinomial model holds.
#include <map>

#include "module/saved/pmml_sections.h"
#include "pmml_fixture.h"

namespace tavo {
namespace {

using test_support::XmlNode;
using ::testing::ElementsAre;

/// The children of a GeneralRegressionModel in the order of the PMML 4.3 schema; Extension may come first and
/// last.
const std::vector<std::string> kModelSequence = {
    "Extension",        "MiningSchema",         "Output",        "ModelStats",  "ModelExplanation",
    "Targets",          "LocalTransformations", "ParameterList", "FactorList",  "CovariateList",
    "PPMatrix",         "PCovMatrix",           "ParamMatrix",   "EventValues", "BaseCumHazardTables",
    "ModelVerification"};

/// Attributes that the schema knows, by element.
const std::map<std::string, std::vector<std::string>> kAttributes = {
    {"PMML", {"version", "xmlns", "xmlns:xsi", "xsi:schemaLocation"}},
    {"Header", {"copyright", "description", "modelVersion"}},
    {"Application", {"name", "version"}},
    {"DataDictionary", {"numberOfFields"}},
    {"DataField", {"name", "displayName", "optype", "dataType", "taxonomy", "isCyclic"}},
    {"Value", {"value", "displayValue", "property"}},
    {"Interval", {"closure", "leftMargin", "rightMargin"}},
    {"Extension", {"extender", "name", "value"}},
    {"GeneralRegressionModel",
     {"targetVariableName", "targetReferenceCategory", "modelType", "modelName", "algorithmName",
      "functionName", "cumulativeLink", "subjectIDVariable", "startTimeVariable", "endTimeVariable",
      "statusVariable", "baselineStrataVariable", "modelDF"}},
    {"MiningSchema", {}},
    {"Output", {}},
    {"OutputField", {"name", "optype", "dataType", "feature", "value"}},
    {"MiningField", {"name", "usageType", "missingValueTreatment", "invalidValueTreatment"}},
    {"ParameterList", {}},
    {"Parameter", {"name", "label", "referencePoint"}},
    {"FactorList", {}},
    {"CovariateList", {}},
    {"Predictor", {"name", "contrastMatrixType"}},
    {"PPMatrix", {}},
    {"PPCell", {"value", "predictorName", "parameterName", "targetCategory"}},
    {"PCovMatrix", {"type"}},
    {"PCovCell", {"pRow", "pCol", "tRow", "tCol", "value", "targetCategory"}},
    {"ParamMatrix", {}},
    {"PCell", {"targetCategory", "parameterName", "beta", "df"}}};

void ExpectKnownAttributes(const XmlNode& node) {
  const auto known = kAttributes.find(node.name);
  ASSERT_NE(known, kAttributes.end()) << node.name;
  for (const auto& [name, value] : node.attributes)
    EXPECT_THAT(known->second, ::testing::Contains(name)) << node.name;
  for (const XmlNode& child : node.children)
    ExpectKnownAttributes(child);
}

TEST_F(Pmml, TheDocumentFollowsThePublishedStructure) {
  const XmlNode document = Document();
  EXPECT_THAT(document.Names(), ElementsAre("Header", "DataDictionary", "GeneralRegressionModel"));
  const XmlNode& root = *document.Child("GeneralRegressionModel");
  std::size_t place = 0;
  for (const std::string& name : root.Names()) {
    while (place < kModelSequence.size() && kModelSequence[place] != name)
      ++place;
    ASSERT_LT(place, kModelSequence.size()) << name << " is out of order";
  }
  ExpectKnownAttributes(document);
}

TEST_F(Pmml, TheRootNamesVersionAndNamespaces) {
  EXPECT_THAT(Text(),
              ::testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<PMML version=\"4.3\" xmlns=\"http://www.dmg.org/PMML-4_3\" "
                                    "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                                    "xsi:schemaLocation=\"http://www.dmg.org/PMML-4_3 pmml-4-3.xsd\">"));
}

TEST_F(Pmml, TheHeaderNamesTheProgramOrTheFallback) {
  OrvPMMLMetadata named;
  named.applicationName = "program";
  named.applicationVersion = "1.2";
  named.copyright = "someone";
  MCCommonXML::XMLElement root("PMML");
  AddHeader(root, named);
  AddHeader(root, OrvPMMLMetadata());
  std::ostringstream out;
  WriteTreeUTF8(out, root);
  const XmlNode read = test_support::ParseXml(out.str());
  EXPECT_EQ(read.children[0].At("copyright"), "someone");
  EXPECT_EQ(read.children[0].Child("Application")->At("name"), "program");
  EXPECT_EQ(read.children[0].Child("Application")->At("version"), "1.2");
  EXPECT_TRUE(read.children[1].Has("copyright"));
  EXPECT_EQ(read.children[1].At("copyright"), "");
  EXPECT_EQ(read.children[1].Child("Application")->At("name"), "VORN Statistics 17.0");
  EXPECT_EQ(read.children[1].Child("Application")->At("version"), "17.0");
}

TEST_F(Pmml, TheModelSaysWhatItIs) {
  const std::string text = Text();
  EXPECT_THAT(text, ::testing::HasSubstr(
                        "<GeneralRegressionModel targetVariableName=\"y\" targetReferenceCategory=\"yes\" "
                        "modelType=\"multinomialLogistic\" modelName=\"TavoReg\" algorithmName=\"TavoReg\" "
                        "functionName=\"classification\" modelDF=\"6\">\n"
                        "    <Extension extender=\"tavoreg\" name=\"numberParameters\" value=\"10\"/>\n"));
}

TEST_F(Pmml, AReferenceBelowZeroIsTheLastTargetAndOneOutOfRangeIsNotNamed) {
  targets = {2, 3, 1};
  reference = -1;
  EXPECT_EQ(Model().At("targetReferenceCategory"), "no");
  reference = 0;
  EXPECT_FALSE(Model().Has("targetReferenceCategory"));
  reference = 4;
  EXPECT_FALSE(Model().Has("targetReferenceCategory"));
}

TEST_F(Pmml, TheDictionaryHoldsDependentFactorsCovariatesAndSubpopulationInThisOrder) {
  Add(kD, "d", Level::kNominal, {"7"});
  model.subpopulation = kD;
  const XmlNode document = Document();
  const XmlNode* dictionary = document.Child("DataDictionary");
  EXPECT_EQ(dictionary->At("numberOfFields"), "6");
  EXPECT_THAT(Each(dictionary, "name"), ElementsAre("y", "a", "b", "x", "z", "d"));
  EXPECT_THAT(Each(dictionary, "optype"), ElementsAre("categorical", "ordinal", "categorical", "continuous",
                                                      "continuous", "categorical"));
  EXPECT_THAT(Each(dictionary, "dataType"),
              ElementsAre("string", "double", "string", "double", "double", "double"));
  EXPECT_THAT(Each(&dictionary->children.back(), "value"), ElementsAre("7"));
}

TEST_F(Pmml, TheDependentListsItsTargetsInTheirOrderWithLabels) {
  targets = {3, 2, 1};
  const XmlNode field = Field("y");
  EXPECT_THAT(Each(&field, "value"), ElementsAre("yes", "maybe", "no"));
  EXPECT_THAT(Each(&field, "property"), ElementsAre("valid", "valid", "valid"));
  EXPECT_TRUE(field.children[1].Has("displayValue"));
  EXPECT_EQ(field.children[1].At("displayValue"), "Perhaps");
  EXPECT_FALSE(field.children[0].Has("displayValue"));
}

TEST_F(Pmml, AFactorLevelWithNoCaseIsAbsentFromTheDataField) {
  counts[0] = {1, 0, 2};
  const XmlNode field = Field("a");
  EXPECT_THAT(Each(&field, "value"), ElementsAre("1", "3"));
}

TEST_F(Pmml, MissingValuesFollowTheCategoriesAndAnIntervalStandsInExtensionsBeforeThem) {
  OrvPMMLVariable& a = variables[1];
  a.missingValues = {"8", "9"};
  a.missingLabels = {"refused", ""};
  a.hasMissingInterval = true;
  a.missingLow = "97";
  a.missingHigh = "99";
  const XmlNode field = Field("a");
  EXPECT_THAT(field.Names(),
              ElementsAre("Extension", "Extension", "Value", "Value", "Value", "Value", "Value"));
  EXPECT_THAT(Each(&field, "value"), ElementsAre("97", "99", "1", "2", "3", "8", "9"));
  EXPECT_THAT(Each(&field, "property"), ElementsAre("", "", "valid", "valid", "valid", "missing", "missing"));
  EXPECT_EQ(field.children[5].At("displayValue"), "refused");
  EXPECT_FALSE(field.children[6].Has("displayValue"));
  EXPECT_EQ(field.children[0].At("name"), "invalidRangeLower");
  EXPECT_EQ(field.children[1].At("name"), "invalidRangeUpper");
  EXPECT_EQ(field.children[1].At("extender"), "tavoreg");
}

TEST_F(Pmml, AMissingRangeOfACovariateLeavesTheValidValuesAsIntervalsInTheOrderOfTheSchema) {
  OrvPMMLVariable& x = variables[3];
  x.missingValues = {"-1"};
  x.hasMissingInterval = true;
  x.missingLow = "97";
  x.missingHigh = "99.5";
  const XmlNode field = Field("x");
  EXPECT_THAT(field.Names(), ElementsAre("Extension", "Extension", "Interval", "Interval", "Value"));
  EXPECT_THAT(Each(&field, "closure"), ElementsAre("", "", "openOpen", "openOpen", ""));
  EXPECT_THAT(Each(&field, "rightMargin"), ElementsAre("", "", "97", "", ""));
  EXPECT_THAT(Each(&field, "leftMargin"), ElementsAre("", "", "", "99.5", ""));
}

TEST_F(Pmml, ValuesOfAMissingRangeAreMissingToThoseWhoScore) {
  for (const std::size_t variable : {0U, 1U, 3U}) {  // y, a, x
    variables[variable].hasMissingInterval = true;
    variables[variable].missingLow = "97";
    variables[variable].missingHigh = "99";
  }
  const XmlNode root = Model();
  EXPECT_THAT(Each(root.Child("MiningSchema"), "invalidValueTreatment"),
              ElementsAre("", "asMissing", "asMissing"));
}

TEST_F(Pmml, OutputFieldsAreThePredictedCategoryAndTheProbabilityOfEach) {
  variables[3].name = "predicted_y";
  const XmlNode root = Model();
  const XmlNode* output = root.Child("Output");
  ASSERT_NE(output, nullptr);
  EXPECT_THAT(Each(output, "name"),
              ElementsAre("predicted_y_", "probability_no", "probability_maybe", "probability_yes"));
  EXPECT_THAT(Each(output, "feature"),
              ElementsAre("predictedValue", "probability", "probability", "probability"));
  EXPECT_THAT(Each(output, "value"), ElementsAre("", "no", "maybe", "yes"));
  EXPECT_THAT(Each(output, "dataType"), ElementsAre("string", "double", "double", "double"));
}

TEST_F(Pmml, DegreesOfFreedomKeepTheirFraction) {
  model.degreesOfFreedom = 12.5;
  EXPECT_EQ(Model().At("modelDF"), "12.5");
}

TEST_F(Pmml, TheMiningSchemaHoldsOnlyVariablesOfTheModel) {
  const XmlNode root = Model();
  const XmlNode* schema = root.Child("MiningSchema");
  EXPECT_THAT(Each(schema, "name"), ElementsAre("y", "a", "x"));
  EXPECT_THAT(Each(schema, "usageType"), ElementsAre("predicted", "active", "active"));
  EXPECT_THAT(Each(schema, "missingValueTreatment"), ElementsAre("asIs", "asIs", "asIs"));
  EXPECT_THAT(Each(root.Child("FactorList"), "name"), ElementsAre("a"));
  EXPECT_THAT(Each(root.Child("CovariateList"), "name"), ElementsAre("x"));
}

TEST_F(Pmml, AModelWithoutCovariatesHasNoCovariateList) {
  targetParameters.pop_back();
  UseEffects({Effect({kA})});
  SetEstimates(8);
  const XmlNode root = Model();
  EXPECT_EQ(root.Child("CovariateList"), nullptr);
  EXPECT_NE(root.Child("FactorList"), nullptr);
}

TEST_F(Pmml, AModelWithoutFactorsHasNoFactorList) {
  factors.clear();
  covariates = predictors = {kX};
  UseEffects({Effect({}, {kX})});
  targetParameters = {OrvRegrParameter(), Parameter({}, {}, {kX}, {1})};
  SetEstimates(4);
  EXPECT_EQ(Model().Child("FactorList"), nullptr);
}

TEST_F(Pmml, WithoutASubpopulationThereIsNeitherTheExtensionNorTheMiningField) {
  const XmlNode root = Model();
  EXPECT_THAT(Each(&root, "name"), ::testing::Not(::testing::Contains("subpopulationVariable")));
  EXPECT_THAT(Each(root.Child("MiningSchema"), "name"), ::testing::Not(::testing::Contains("d")));
}

TEST_F(Pmml, ASubpopulationHasExtensionMiningFieldAndPredictor) {
  Add(kD, "d", Level::kNominal, {"7"});
  model.subpopulation = kD;
  const XmlNode root = Model();
  EXPECT_EQ(root.children[1].At("name"), "subpopulationVariable");
  EXPECT_EQ(root.children[1].At("value"), "d");
  EXPECT_THAT(Each(root.Child("MiningSchema"), "name"), ElementsAre("y", "a", "x", "d"));
  EXPECT_THAT(Each(root.Child("FactorList"), "name"), ElementsAre("a", "d"));
}

TEST_F(Pmml, TheFirstParameterIsP0000001AndTheHundredthP0000100) {
  const std::pair<std::size_t, const char*> cases[] = {
      {1, "P0000001"},     {9, "P0000009"},      {10, "P0000010"},   {99, "P0000099"},
      {100, "P0000100"},   {1000, "P0001000"},   {9999, "P0009999"}, {10000, "P0010000"},
      {99999, "P0099999"}, {100000, "P00100000"}};
  for (const auto& [number, name] : cases)
    EXPECT_EQ(PMMLParameterName(number), name);
  EXPECT_THAT(Each(Model().Child("ParameterList"), "name"),
              ElementsAre("P0000001", "P0000002", "P0000003", "P0000004", "P0000005"));
}

TEST_F(Pmml, LabelsAndCellsTellTheTermsOfAParameter) {
  OrvModelEffect xOfA = Effect({kA}, {kX});
  xOfA.MarkFactorAfterCovariates();
  UseEffects({Effect({kA, kB}), Effect({kA, kB}, {kX, kX, kZ}), xOfA});
  OrvRegrParameter crossed = Parameter({kA, kB}, {2, 1});
  OrvRegrParameter nested = crossed;
  nested.nestingLevels = {1, 0};
  OrvRegrParameter mixed = Parameter({kA}, {3}, {kX, kZ}, {2, 1});
  mixed.effectIndex = 1;
  OrvRegrParameter slope = Parameter({kA}, {1}, {kX}, {1});
  slope.effectIndex = 2;
  targetParameters = {OrvRegrParameter(), crossed, nested, mixed, slope};
  const XmlNode root = Model();
  EXPECT_THAT(Each(root.Child("ParameterList"), "label"),
              ElementsAre("Intercept", "[a=2] * [b=u]", "[a=2]([b=u])", "[a=3] * x * x * z", "x([a=1])"));
  std::vector<std::string> cells;
  for (const XmlNode& cell : root.Child("PPMatrix")->children)
    cells.push_back(cell.At("parameterName") + " " + cell.At("predictorName") + " " + cell.At("value"));
  EXPECT_THAT(cells,
              ElementsAre("P0000002 a 2", "P0000002 b u", "P0000003 a 2", "P0000003 b u", "P0000004 a 3",
                          "P0000004 x 2", "P0000004 z 1", "P0000005 a 1", "P0000005 x 1"));
}

TEST_F(Pmml, RedundantParametersStayInTheParamMatrixWithDf0) {
  const XmlNode root = Model();
  const XmlNode* matrix = root.Child("ParamMatrix");
  EXPECT_THAT(Each(matrix, "targetCategory"),
              ElementsAre("no", "no", "no", "no", "no", "maybe", "maybe", "maybe", "maybe", "maybe"));
  EXPECT_THAT(Each(matrix, "df"), ElementsAre("1", "1", "1", "0", "1", "1", "1", "1", "0", "1"));
  EXPECT_THAT(Each(matrix, "beta"), ElementsAre("1", "2", "3", "4", "5", "6", "7", "8", "9", "10"));
  EXPECT_EQ(matrix->children[5].At("parameterName"), "P0000001");
}

TEST_F(Pmml, WithoutACovarianceThereIsNoPCovMatrix) {
  EXPECT_EQ(Model(false).Child("PCovMatrix"), nullptr);
  EXPECT_NE(Model(false).Child("ParamMatrix"), nullptr);
}

TEST_F(Pmml, TheCovarianceIsWrittenOnceForEachPairOfParametersOfAPairOfTargets) {
  const XmlNode root = Model();
  const XmlNode* matrix = root.Child("PCovMatrix");
  ASSERT_EQ(matrix->children.size(), 15U + 25U + 15U);
  const auto place = [](const XmlNode& cell, const char* target, const char* parameter) {
    return (cell.At(target) == "no" ? 0 : 5) + std::atoi(cell.At(parameter).substr(1).c_str());
  };
  for (const XmlNode& cell : matrix->children) {
    const int i = place(cell, "tRow", "pRow");
    const int j = place(cell, "tCol", "pCol");
    EXPECT_GE(i, j);
    EXPECT_EQ(cell.At("value"), std::to_string(100 * i + j));
  }
  EXPECT_EQ(matrix->children[15].At("tRow"), "maybe");
  EXPECT_EQ(matrix->children[15].At("tCol"), "no");
}

TEST_F(Pmml, TextsOfUsersAreEscaped) {
  variables[3].name = "x\"<&";
  variables[0].categoryValues = {"<no>", "ma\tybe", "y&s"};
  const XmlNode root = Model();
  EXPECT_EQ(root.At("targetReferenceCategory"), "y&s");
  EXPECT_THAT(Each(root.Child("CovariateList"), "name"), ElementsAre("x\"<&"));
  EXPECT_EQ(root.Child("ParamMatrix")->children[5].At("targetCategory"), "ma\tybe");
}

TEST_F(Pmml, TheFlagForUTF8ChoosesTheWriter) {
  variables[3].name = "gr\xC3\xBC\xC3\x9F";
  EXPECT_THAT(Text(), ::testing::HasSubstr("gr&#252;&#223;"));
  OrvPMMLExporter& writer = Exporter();
  metadata.isUTF8 = true;
  std::ostringstream out;
  EXPECT_TRUE(writer.Write(out, counts, nullptr).IsOK());
  EXPECT_THAT(out.str(), ::testing::HasSubstr("gr\xC3\xBC\xC3\x9F"));
}

}  // namespace
}  // namespace tavo
