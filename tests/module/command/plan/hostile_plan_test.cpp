// Files that mean harm, or that are no plans at all.

#include "plan_fixture.h"

namespace tavo {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class HostilePlan : public PlanReading {
 protected:
  void ExpectRefused(const std::string& document) {
    EXPECT_EQ(ReadText(document), PlanStatus::kInvalidFile);
    EXPECT_THAT(fDetail, StartsWith(fFolder.Path("plan.xml") + ":"));
    EXPECT_TRUE(fPlan.stages.empty());
  }
};

std::string Repeated(const std::string& text, int times) {
  std::string all;
  all.reserve(text.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i)
    all += text;
  return all;
}

TEST_F(HostilePlan, WhatIsNoXMLIsRefusedWithLineAndColumn) {
  ExpectRefused("STAGE one\nSTAGE two\n");
  EXPECT_THAT(fDetail, StartsWith(fFolder.Path("plan.xml") + ":1:1: "));
}

TEST_F(HostilePlan, TruncatedXMLIsRefusedAtEveryLength) {
  const std::string whole = Plan(SmallAnalysis());
  const std::size_t end = whole.rfind('>');
  for (std::size_t length = 0; length <= end; ++length) {
    ASSERT_EQ(ReadText(whole.substr(0, length)), PlanStatus::kInvalidFile) << length;
  }
  EXPECT_EQ(ReadText(whole), PlanStatus::kOK);
}

TEST_F(HostilePlan, AnErrorIsToldWithItsLine) {
  ExpectRefused("<a>\n<b>\n</c>\n</a>\n");
  EXPECT_THAT(fDetail, StartsWith(fFolder.Path("plan.xml") + ":3:"));
}

TEST_F(HostilePlan, EmptyFileIsRefused) {
  ExpectRefused("");
}

TEST_F(HostilePlan, MissingFileAndFolderAndDeviceAreRefused) {
  for (const std::string& path : {fFolder.Path("nothing.xml"), fFolder.Path(), std::string("/dev/zero"),
                                  std::string(""), std::string("http://example.invalid/plan.xml")}) {
    EXPECT_EQ(ReadFile(path), PlanStatus::kInvalidFile) << path;
    EXPECT_THAT(fDetail, StartsWith(path + ":"));
    EXPECT_GT(fDetail.size(), path.size() + 2) << "a reason is given";
  }
}

TEST_F(HostilePlan, NameOfAFileIsNeverTakenForAnAddress) {
  std::filesystem::create_directories(fFolder.Path("http:/example.invalid"));
  std::filesystem::create_directories(fFolder.Path("file:"));
  const std::filesystem::path before = std::filesystem::current_path();
  for (const char* name :
       {"http:/example.invalid/plan.xml", "file:/plan.xml", "a%20b#c?d.xml", "Größe.xml", "a b.xml"}) {
    fFolder.Write(name, Plan(SmallAnalysis()));
    EXPECT_EQ(ReadFile(fFolder.Path(name)), PlanStatus::kOK) << name << ": " << fDetail;
    std::filesystem::current_path(fFolder.Path());
    EXPECT_EQ(ReadFile(name), PlanStatus::kOK) << name << ": " << fDetail;
    std::filesystem::current_path(before);
  }
}

TEST_F(HostilePlan, FileAbove64MegabytesIsRefusedUnread) {
  const std::string path = fFolder.Write("large.xml", "<a/>");
  std::filesystem::resize_file(path, (std::uintmax_t{64} << 20U) + 1);
  EXPECT_EQ(ReadFile(path), PlanStatus::kInvalidFile);
  EXPECT_THAT(fDetail, HasSubstr("too large"));
}

TEST_F(HostilePlan, ExponentialEntitiesAreRefused) {
  std::string declarations = "<!ENTITY e0 \"boom\">";
  for (int i = 1; i < 30; ++i) {
    const std::string inner = "&e" + std::to_string(i - 1) + ";";
    declarations += "<!ENTITY e" + std::to_string(i) + " \"" + Repeated(inner, 10) + "\">";
  }
  ExpectRefused("<!DOCTYPE p [" + declarations + "]><p a=\"&e29;\">&e29;</p>");
}

TEST_F(HostilePlan, QuadraticEntitiesAreRefused) {
  const std::string megabyte(1U << 20U, 'x');
  ExpectRefused("<!DOCTYPE p [<!ENTITY e \"" + megabyte + "\">]><p>" + Repeated("&e;", 900) + "</p>");
  EXPECT_THAT(fDetail, HasSubstr("declarations"));
}

TEST_F(HostilePlan, QuadraticDefaultValuesAreRefused) {
  const std::string megabyte(1U << 20U, 'x');
  ExpectRefused("<!DOCTYPE p [<!ATTLIST q a CDATA \"" + megabyte + "\">]><p>" + Repeated("<q/>", 100000) +
                "</p>");
}

TEST_F(HostilePlan, ParameterEntitiesAreRefused) {
  ExpectRefused("<!DOCTYPE p [<!ENTITY % a SYSTEM \"file:///etc/passwd\"> %a;]><p/>");
  ExpectRefused("<!DOCTYPE p [<!ENTITY % a \"<!ENTITY b 'c'>\"> %a;]><p>&b;</p>");
}

TEST_F(HostilePlan, ExternalEntitiesReachNoFileAndNoNetwork) {
  const std::string secret = fFolder.Write("secret.txt", "SECRET");
  for (const std::string& address : {"file://" + secret, secret, std::string("file:///etc/passwd"),
                                     std::string("http://example.invalid/x")}) {
    ExpectRefused("<!DOCTYPE p [<!ENTITY e SYSTEM \"" + address +
                  "\">]><VORNTessel><AnalysisDesign><AnalysisStage "
                  "label=\"x\">&e;</AnalysisStage></AnalysisDesign></VORNTessel>");
    EXPECT_THAT(fDetail, Not(HasSubstr("SECRET")));
    EXPECT_THAT(fDetail, Not(HasSubstr("root:")));
  }
}

TEST_F(HostilePlan, UndeclaredEntitiesAreRefused) {
  ExpectRefused("<p>&nothing;</p>");
}

TEST_F(HostilePlan, BytesThatAreNotTheStatedEncodingAreRefused) {
  ExpectRefused("<?xml version=\"1.0\" encoding=\"utf-8\"?><p a=\"\xff\xfe\xe4\"/>");
  ExpectRefused("<?xml version=\"1.0\" encoding=\"utf-8\"?><p a=\"\xc3\"/>");
  ExpectRefused("<?xml version=\"1.0\" encoding=\"utf-16\"?><p/>");
  ExpectRefused("<?xml version=\"1.0\" encoding=\"no-such-encoding\"?><p/>");
  ExpectRefused(std::string("<p>\0</p>", 8));
}

TEST_F(HostilePlan, OtherEncodingsAreConverted) {
  const std::string latin =
      "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><p><AnalysisDesign><AnalysisStage "
      "label=\"Gr\xf6\xdf"
      "e\"/></AnalysisDesign></p>";
  ASSERT_EQ(ReadText(latin), PlanStatus::kOK) << fDetail;
  EXPECT_EQ(FirstStage().label, "Größe");
}

std::string Utf16(const std::string& ascii, bool bigEndian) {
  std::string bytes = bigEndian ? "\xfe\xff" : "\xff\xfe";
  for (const char c : ascii)
    bytes += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  return bytes;
}

TEST_F(HostilePlan, Utf16AndUtf8WithByteOrderMarksRead) {
  const std::string document = "<?xml version=\"1.0\"?><p>" + SmallAnalysis() + "</p>";
  EXPECT_EQ(ReadText(Utf16(document, true)), PlanStatus::kOK) << fDetail;
  EXPECT_EQ(ReadText(Utf16(document, false)), PlanStatus::kOK) << fDetail;
  EXPECT_EQ(fPlan.weight.Text(), "w");
  EXPECT_EQ(ReadText("\xef\xbb\xbf" + document), PlanStatus::kOK) << fDetail;
}

TEST_F(HostilePlan, AHundredThousandNestedElementsDoNoHarm) {
  const int depth = 100000;
  EXPECT_EQ(ReadText("<p>" + Repeated("<d>", depth) + Repeated("</d>", depth) + SmallAnalysis() + "</p>"),
            PlanStatus::kOK);
  EXPECT_EQ(ReadText("<p><AnalysisDesign>" + Repeated("<d>", depth) + "<AnalysisStage/>" +
                     Repeated("</d>", depth) + "</AnalysisDesign></p>"),
            PlanStatus::kOK);
  EXPECT_EQ(fPlan.stages.size(), 1U);
  ExpectRefused(Repeated("<d>", depth));
}

TEST_F(HostilePlan, AMillionStagesAreTooMany) {
  EXPECT_EQ(ReadText("<p><AnalysisDesign>" + Repeated("<AnalysisStage/>", 1000000) + "</AnalysisDesign></p>"),
            PlanStatus::kTooManyStages);
  EXPECT_TRUE(fPlan.stages.empty());
}

TEST_F(HostilePlan, NestedStagesCountAsStages) {
  EXPECT_EQ(ReadText("<p><AnalysisDesign>" + Repeated("<AnalysisStage>", 5000) +
                     Repeated("</AnalysisStage>", 5000) + "</AnalysisDesign></p>"),
            PlanStatus::kTooManyStages);
}

TEST_F(HostilePlan, ADocumentThatUnfoldsIntoGigabytesIsRefused) {
  const std::string dense = "<p>" + Repeated("<a/>", 12 << 20) + "</p>";  // about 50 MB
  ExpectRefused(dense);
  EXPECT_THAT(fDetail, HasSubstr("too large"));
  EXPECT_EQ(ReadText(Plan(SmallAnalysis())), PlanStatus::kOK) << "the next plan reads";
}

TEST_F(HostilePlan, LongNamesAndManyVariablesAreBounded) {
  EXPECT_EQ(ReadText("<p><AnalysisDesign><Weight>" + Variable(std::string(10U << 20U, 'w')) +
                     "</Weight></AnalysisDesign></p>"),
            PlanStatus::kInvalidName);
  EXPECT_LT(fDetail.size(), 200U) << "what is told of it is short";
  std::string variables;
  for (int i = 0; i < 100000; ++i)
    variables += Variable("v" + std::to_string(i));
  EXPECT_EQ(ReadText("<p><AnalysisDesign><AnalysisStage>" + Strata(variables) +
                     "</AnalysisStage></AnalysisDesign></p>"),
            PlanStatus::kOK);
  EXPECT_EQ(FirstStage().strata.size(), 100000U);
}

// Documents that name a definition are validated against the module's own.

class ValidatedPlan : public HostilePlan {
 protected:
  PlanStatus ReadValidated(const std::string& content, const std::string& identifier) {
    return ReadText(Plan(content, "<!DOCTYPE VORNTessel " + identifier + ">\n"));
  }
  static constexpr const char* kElsewhere = "SYSTEM \"http://example.invalid/x.dtd\"";
};

TEST_F(ValidatedPlan, AValidPlanReadsWhateverAddressItsDefinitionHas) {
  for (const char* identifier : {kElsewhere, "SYSTEM \"file:///etc/passwd\"",
                                 "SYSTEM \"vorn-tessel-1.0.dtd\"", "PUBLIC \"-//x//y\" \"nowhere.dtd\""}) {
    EXPECT_EQ(ReadValidated(SmallAnalysis(), identifier), PlanStatus::kOK) << identifier << ": " << fDetail;
    EXPECT_EQ(fPlan.weight.Text(), "w");
  }
}

TEST_F(ValidatedPlan, AnUnknownElementIsRefusedWithLineAndColumn) {
  EXPECT_EQ(ReadValidated("\n<AnalysisDesign>\n  <Unknown/>\n</AnalysisDesign>", kElsewhere),
            PlanStatus::kInvalidFile);
  EXPECT_THAT(fDetail, StartsWith(fFolder.Path("plan.xml") + ":5:11: "));
  EXPECT_THAT(fDetail, HasSubstr("Unknown"));
}

TEST_F(ValidatedPlan, AnUnknownAttributeIsRefused) {
  EXPECT_EQ(ReadValidated("<AnalysisDesign weight=\"w\"/>", kElsewhere), PlanStatus::kInvalidFile);
  EXPECT_THAT(fDetail, HasSubstr("weight"));
}

TEST_F(ValidatedPlan, AnotherRootIsRefused) {
  EXPECT_EQ(ReadText("<!DOCTYPE VORNTessel SYSTEM \"x\"><plan/>"), PlanStatus::kInvalidFile);
}

TEST_F(ValidatedPlan, ReadersStatusesComeThroughValidation) {
  const std::string stage = Stage("wr", "");
  EXPECT_EQ(ReadValidated(Analysis(stage + stage + stage + stage), kElsewhere), PlanStatus::kTooManyStages);
  EXPECT_EQ(ReadValidated(Analysis("", "SRSestimator=\"?\""), kElsewhere), PlanStatus::kIllegalSRSEstimator);
  EXPECT_EQ(ReadValidated(Analysis("", "SRSestimator=\"\""), kElsewhere), PlanStatus::kOK);
  EXPECT_EQ(ReadValidated("", kElsewhere), PlanStatus::kNoAnalysisDesign);
}

TEST_F(ValidatedPlan, DeclarationsBesideTheDefinitionAreRefused) {
  EXPECT_EQ(ReadValidated(SmallAnalysis(), "SYSTEM \"x\" [<!ENTITY e \"f\">]"), PlanStatus::kInvalidFile);
  EXPECT_THAT(fDetail, HasSubstr("declarations"));
}

TEST_F(ValidatedPlan, EveryElementAndAttributeOfTheFormatIsDefined) {
  const std::string slot = "<Variable name=\"v\"/>";
  const auto element = [](const std::string& name, const std::string& content) {
    return "<" + name + ">" + content + "</" + name + ">";
  };
  const std::string single = "<SingleValue value=\"1\"/>";
  const std::string matrix =
      "<Matrix numberOfValues=\"1\"><MatrixVarList numberOfVariables=\"1\">" + slot +
      "</MatrixVarList><MatrixValue sizeValue=\"2\"><Category value=\"1\"/></MatrixValue></Matrix>";
  const std::string bounds = element("MinSize", single) + element("MaxSize", single);
  std::string sample;
  int number = 0;
  for (const char* method :
       {"simple_wor", "simple_wr", "simple_systematic", "simple_chromy", "pps_wor", "pps_wr",
        "pps_systematic", "pps_brewer", "pps_murthy", "pps_sampford", "pps_chromy"}) {
    std::string content = Strata(slot) + Clusters(slot) + element("InputSampleSize", matrix) +
                          element("InputSampleRate", single + bounds) + "<MOS fromData=\"no\">" + slot +
                          bounds + "</MOS>";
    for (const char* output :
         {"Index", "IncProb", "InclusionProbability", "PopulationSize", "OutputSampleSize",
          "OutputSampleRate", "Weight", "CumulativeWeight", "SampleWeightCumulative"}) {
      content += element(output, slot);
    }
    sample += "<SampleStage label=\"l\" stageNumber=\"" + std::to_string(++number) + "\" selectionMethod=\"" +
              method + "\">" + content + "</SampleStage>";
  }
  const std::string document =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?><!DOCTYPE VORNTessel SYSTEM \"vorn-tessel-1.0.dtd\">"
      "<VORNTessel version=\"12.0\"><Header copyright=\"c\" description=\"d\">"
      "<Application name=\"a\" version=\"1.0\"/><Annotation>n</Annotation><Timestamp>t</Timestamp></Header>"
      "<SampleDesign wrEstimation=\"yes\" numberOfStages=\"2\">" +
      sample + element("PreviousWeight", slot) + element("Weight", slot) +
      "</SampleDesign><AnalysisDesign SRSestimator=\"wor\" numberOfStages=\"1\">"
      "<AnalysisStage label=\"l\" stageNumber=\"1\" estimationMethod=\"equal_wor\">" +
      Strata(Variable("h")) + Clusters(Variable("psu")) + element("PopulationSize", Variable("n")) +
      element("InclusionProbability", Variable("p")) + "</AnalysisStage>" + element("Weight", Variable("w")) +
      "</AnalysisDesign></VORNTessel>";
  EXPECT_EQ(ReadText(document), PlanStatus::kOK) << fDetail;
  EXPECT_EQ(FirstStage().valueVariable.Text(), "n");
}

TEST_F(ValidatedPlan, TheFirstSectionMayBeEither) {
  EXPECT_EQ(ReadValidated(SmallAnalysis() + "<SampleDesign/>", kElsewhere), PlanStatus::kOK) << fDetail;
  EXPECT_EQ(ReadValidated("<SampleDesign/>" + SmallAnalysis(), kElsewhere), PlanStatus::kOK) << fDetail;
  EXPECT_EQ(ReadValidated(SmallAnalysis() + SmallAnalysis(), kElsewhere), PlanStatus::kInvalidFile);
}

// A warning of the XML parser: an entity's text that isn't whole in a definition is an error there, so the
// one that can be had without declarations of one's own is a document type that differs from the root.
TEST_F(ValidatedPlan, AWarningOrErrorOfTheXMLParserRejectsTheFile) {
  EXPECT_EQ(ReadText("<!DOCTYPE other SYSTEM \"x\"><VORNTessel/>"), PlanStatus::kInvalidFile);
  EXPECT_EQ(ReadText("<?xml version=\"1.7\"?><VORNTessel/>"), PlanStatus::kInvalidFile);
}

}  // namespace
}  // namespace tavo
