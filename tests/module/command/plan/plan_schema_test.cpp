// The schema of plan files: plans against it, and plans that name it.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include "module/command/plan/plan_definitions.h"
#include "plan_fixture.h"
#include "source_folder.h"

namespace tavo {
// What the XML library itself leaves behind when it is used without a memory of its own, as these checks do.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libxerces-c-3.2\n";
}

namespace {

namespace xml = XERCES_CPP_NAMESPACE;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string kFolder = TAVO_SOURCE_DIR "/src/module/command/plan/";

/// Keeps the first fault; external entities are those of the module's folder.
class Validation final : public xml::HandlerBase {
 public:
  explicit Validation(std::string definition) : fDefinition(std::move(definition)) {}
  void warning(const xml::SAXParseException& e) override { Keep(e); }
  void error(const xml::SAXParseException& e) override { Keep(e); }
  void fatalError(const xml::SAXParseException& e) override { Keep(e); }
  xml::InputSource* resolveEntity(const XMLCh* const, const XMLCh* const) override {
    XMLCh* const path = xml::XMLString::transcode((kFolder + fDefinition).c_str());
    auto source = std::make_unique<xml::LocalFileInputSource>(path);
    xml::XMLString::release(const_cast<XMLCh**>(&path));
    return source.release();
  }
  const std::string& Fault() const { return fFault; }

 private:
  void Keep(const xml::SAXParseException& e) {
    if (!fFault.empty()) return;
    char* text = xml::XMLString::transcode(e.getMessage());
    fFault = std::to_string(e.getLineNumber()) + ": " + text;
    xml::XMLString::release(&text);
  }

  std::string fDefinition;
  std::string fFault;
};

std::string Validate(const std::string& document, bool bySchema) {
  xml::XMLPlatformUtils::Initialize();
  std::string fault;
  {
    Validation validation(bySchema ? "vorntessel.xsd" : "vorn-tessel-1.0.dtd");
    xml::SAXParser parser;
    parser.setValidationScheme(xml::SAXParser::Val_Always);
    parser.setDoNamespaces(bySchema);
    parser.setDoSchema(bySchema);
    parser.setValidationSchemaFullChecking(bySchema);
    if (bySchema) parser.setExternalNoNamespaceSchemaLocation("vorntessel.xsd");
    parser.setErrorHandler(&validation);
    parser.setEntityResolver(&validation);
    const xml::MemBufInputSource source(reinterpret_cast<const XMLByte*>(document.data()), document.size(),
                                        "plan");
    parser.parse(source);
    fault = validation.Fault();
  }
  xml::XMLPlatformUtils::Terminate();
  return fault;
}

/// The document with no document type of its own.
std::string WithoutDefinition(std::string document) {
  const std::size_t begin = document.find("<!DOCTYPE");
  if (begin != std::string::npos) document.erase(begin, document.find('>', begin) + 1 - begin);
  return document;
}

std::string AgainstSchema(const std::string& document) {
  return Validate(WithoutDefinition(document), true);
}

std::string AgainstDefinition(const std::string& document) {
  std::string text = WithoutDefinition(document);
  const std::size_t place = text.starts_with("<?xml") ? text.find("?>") + 2 : 0;
  return Validate(text.insert(place, "<!DOCTYPE VORNTessel SYSTEM \"x\">"), false);
}

std::string Content(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(PlanSchema, EveryPlanOfTheExamplesAndReferenceCasesIsValid) {
  int count = 0;
  for (const char* folder : {"/tests/reference", "/examples", "/bench"}) {
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(TAVO_SOURCE_DIR + std::string(folder))) {
      if (entry.path().extension() != ".xml") continue;
      const std::string document = Content(entry.path());
      if (document.find("<VORNTessel") == std::string::npos) continue;
      EXPECT_EQ(AgainstSchema(document), "") << entry.path();
      EXPECT_EQ(AgainstDefinition(document), "") << entry.path();
      ++count;
    }
  }
  EXPECT_GE(count, 13);
}

TEST(PlanSchema, EveryWholeDocumentOfTheManualIsValid) {
  const std::string manual = Content(TAVO_SOURCE_DIR "/docs/plan-files.md");
  int count = 0;
  for (std::size_t at = manual.find("<?xml"); at != std::string::npos; at = manual.find("<?xml", at + 1)) {
    const std::string document = manual.substr(at, manual.find("```", at) - at);
    EXPECT_EQ(AgainstSchema(document), "") << document;
    EXPECT_EQ(AgainstDefinition(document), "") << document;
    ++count;
  }
  EXPECT_GE(count, 4);
}

std::string InPlan(const std::string& content) {
  return "<VORNTessel>" + content + "</VORNTessel>";
}
std::string InStage(const std::string& content, const std::string& attributes = "") {
  return InPlan("<AnalysisDesign><AnalysisStage " + attributes + ">" + content +
                "</AnalysisStage></AnalysisDesign>");
}

TEST(PlanSchema, RefusesWhatTheFormatDoesNotHave) {
  const std::string stage = "<AnalysisStage/>";
  const std::vector<std::pair<std::string, const char*>> documents = {
      {"<plan/>", "another root"},
      {InPlan("<Unknown/>"), "an unknown element"},
      {"<VORNTessel weight=\"w\"/>", "an unknown attribute"},
      {InPlan("<AnalysisDesign/>"), "no stage"},
      {InPlan("<AnalysisDesign>" + stage + stage + stage + stage + "</AnalysisDesign>"), "four stages"},
      {InPlan("<AnalysisDesign SRSestimator=\"x\">" + stage + "</AnalysisDesign>"), "another estimator"},
      {InStage("", "estimationMethod=\"pps_wor\""), "a selection method of an analysis"},
      {InStage("", "stageNumber=\"0\""), "stage 0"},
      {InStage("<StrataVarList/><StrataVarList/>"), "two lists of strata"},
      {InStage("<StrataVarList><Variable/></StrataVarList>"), "a variable without name"},
      {InStage("<PopulationSize/>"), "a size without value"},
      {InStage("<PopulationSize><SingleValue value=\"0\"/></PopulationSize>"), "a size of 0"},
      {InStage("<PopulationSize><SingleValue value=\"1\"/><Variable name=\"a\"/></PopulationSize>"),
       "two forms"},
      {InStage("<IncProb><SingleValue value=\"1.5\"/></IncProb>"), "a probability of 1.5"},
      {InStage("<IncProb><Matrix numberOfValues=\"1\"><MatrixVarList><Variable name=\"h\"/></MatrixVarList>"
               "<MatrixValue sizeValue=\"1.5\"><Category value=\"1\"/></MatrixValue></Matrix></IncProb>"),
       "a probability of 1.5 in a matrix"},
      {InPlan("<SampleDesign><SampleStage selectionMethod=\"wr\"/></SampleDesign>"),
       "a method of estimation"},
      {InPlan("<SampleDesign><SampleStage><Index/></SampleStage></SampleDesign>"),
       "an output without variable"},
      {InPlan("<SampleDesign><SampleStage><MOS/></SampleStage></SampleDesign>"), "a measure without source"},
  };
  for (const auto& [document, what] : documents)
    EXPECT_NE(AgainstSchema(document), "") << what;
  EXPECT_EQ(AgainstSchema(InStage("<IncProb><SingleValue value=\" +1.0 \"/></IncProb>")), "");
  EXPECT_EQ(AgainstSchema(InStage("<PopulationSize><SingleValue value=\"1e3\"/></PopulationSize>"
                                  "<StrataVarList><Variable name=\"h\"/></StrataVarList>")),
            "")
      << "the order within a stage is free";
}

// Plans that name the schema.

class SchemaPlan : public PlanReading {
 protected:
  static std::string Naming(const std::string& location, const std::string& content,
                            const std::string& more = "") {
    return "<?xml version=\"1.0\"?>\n<VORNTessel xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
           "xsi:noNamespaceSchemaLocation=\"" +
           location + "\" " + more + ">" + content + "</VORNTessel>";
  }
};

TEST_F(SchemaPlan, AValidPlanReadsWhateverLocationItsSchemaHas) {
  for (const char* location :
       {"vorntessel.xsd", "http://example.invalid/x.xsd", "file:///etc/passwd", "", "a b"}) {
    EXPECT_EQ(ReadText(Naming(location, SmallAnalysis())), PlanStatus::kOK) << location << ": " << fDetail;
    EXPECT_EQ(fPlan.weight.Text(), "w");
  }
}

TEST_F(SchemaPlan, WhatTheSchemaForbidsIsToldWithLineAndColumnAndReadsNevertheless) {
  const std::string plan = Naming("vorntessel.xsd", SmallAnalysis() + "\n<Header unknown=\"1\"/>");
  EXPECT_EQ(ReadText(plan), PlanStatus::kOK) << fDetail;
  EXPECT_EQ(fPlan.weight.Text(), "w");
  const std::string fault = OrvPlanReader::SchemaFault(fFolder.Path("plan.xml"));
  EXPECT_THAT(fault, StartsWith(fFolder.Path("plan.xml") + ":3:"));
  EXPECT_THAT(fault, HasSubstr("unknown"));
  EXPECT_EQ(OrvPlanReader::SchemaFaultOfText(Plan(SmallAnalysis() + "<Unknown/>"), "p"), "")
      << "a plan that names none is free";
  EXPECT_EQ(OrvPlanReader::SchemaFaultOfText(Naming("x", SmallAnalysis()), "p"), "");
}

TEST_F(SchemaPlan, AnotherNameOfTheRootReadsWhetherOrNotTheSchemaIsNamed) {
  std::string plan = Naming("x", SmallAnalysis());
  for (std::size_t at = plan.find("VORNTessel"); at != std::string::npos; at = plan.find("VORNTessel"))
    plan.replace(at, 10, "Design");
  EXPECT_EQ(ReadText(plan), PlanStatus::kOK) << fDetail;
  EXPECT_NE(OrvPlanReader::SchemaFaultOfText(plan, "p"), "");
}

TEST_F(SchemaPlan, WhatAStatusSaysIsToldWhateverTheSchema) {
  const std::string stage = Stage("wr", "");
  EXPECT_EQ(ReadText(Naming("x", Analysis(stage + stage + stage + stage))), PlanStatus::kTooManyStages);
  EXPECT_EQ(ReadText(Naming("x", Analysis(stage, "SRSestimator=\"?\""))), PlanStatus::kIllegalSRSEstimator);
  EXPECT_EQ(ReadText(Naming("x", Analysis(stage, "SRSestimator=\"\""))), PlanStatus::kOK);
  EXPECT_EQ(ReadText(Naming("x", "")), PlanStatus::kNoAnalysisDesign);
}

TEST_F(SchemaPlan, NoOtherSchemaIsEverRead) {
  const std::string other =
      fFolder.Write("other.xsd", "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"/>");
  const std::string plan =
      Naming("vorntessel.xsd", SmallAnalysis(), "xsi:schemaLocation=\"urn:other " + other + "\"");
  EXPECT_EQ(ReadText(plan), PlanStatus::kOK) << fDetail;
  EXPECT_THAT(OrvPlanReader::SchemaFaultOfText(plan, "p"), HasSubstr("no schema but its own"));
  EXPECT_NE(OrvPlanReader::SchemaFaultOfText(Naming(other, SmallAnalysis() + "<Unknown/>"), "p"), "");
}

TEST_F(SchemaPlan, TheProgramHoldsTheTextsOfTheFiles) {
  const std::filesystem::path folder = kFolder;
  EXPECT_EQ(kPlanDefinition, Content(folder / "vorn-tessel-1.0.dtd"));
  EXPECT_EQ(kPlanSchema, Content(folder / "vorntessel.xsd"));
  EXPECT_FALSE(kPlanSchema.empty());
}

TEST_F(SchemaPlan, ReadingDoesNotAskTheSchema) {
  fPlan = OrvPlanData();
  OrvPlanReader reader(fPlan);
  EXPECT_EQ(
      reader.ReadAnalysisUnchecked(fFolder.Write("plan.xml", Naming("x", SmallAnalysis() + "<Unknown/>"))),
      PlanStatus::kOK);
  EXPECT_EQ(fPlan.stages.size(), 1U);
}

TEST_F(SchemaPlan, DeepAndWideDocumentsDoNoHarm) {
  std::string deep, wide;
  for (int i = 0; i < 100000; ++i)
    deep += "<d>";
  for (int i = 0; i < 100000; ++i)
    deep += "</d>";
  for (int i = 0; i < 100000; ++i)
    wide += Variable("v" + std::to_string(i));
  EXPECT_EQ(ReadText(Naming("x", SmallAnalysis() + deep)), PlanStatus::kOK) << fDetail;
  EXPECT_NE(OrvPlanReader::SchemaFault(fFolder.Path("plan.xml")), "");
  EXPECT_EQ(ReadText(Naming("x", Analysis(Stage("wr", Strata(wide))))), PlanStatus::kOK) << fDetail;
  EXPECT_EQ(OrvPlanReader::SchemaFault(fFolder.Path("plan.xml")), "");
}

}  // namespace
}  // namespace tavo
