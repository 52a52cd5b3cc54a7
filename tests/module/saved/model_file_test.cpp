// OUTFILE MODEL and PARAMETER through whole commands.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "module_run.h"
#include "output_query.h"
#include "pmml_scorer.h"

namespace {

using test_support::ModuleRun;
using test_support::PmmlScorer;
using test_support::XmlNode;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string ReadFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class ModelFile : public ::testing::Test {
 protected:
  XmlNode Read(const std::string& name) {
    const std::string text = ReadFile(fRun.Folder().Path(name));
    EXPECT_NE(text, "");
    return text.empty() ? XmlNode() : test_support::ParseXml(text);
  }
  XmlNode ReadModel(const std::string& name = "m.xml") {
    const XmlNode document = Read(name);
    const XmlNode* model = document.Child("GeneralRegressionModel");
    return model == nullptr ? XmlNode() : *model;
  }
  XmlNode Field(const std::string& field, const std::string& name = "m.xml") {
    const XmlNode document = Read(name);
    for (const XmlNode* each : document.Child("DataDictionary")->Children("DataField")) {
      if (each->At("name") == field) return *each;
    }
    return {};
  }
  static std::vector<std::string> Each(const XmlNode& parent, const std::string& attribute) {
    std::vector<std::string> values;
    for (const XmlNode& child : parent.children)
      values.push_back(child.At(attribute));
    return values;
  }
  std::vector<std::string> Files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(fRun.Folder().Path()))
      names.push_back(entry.path().filename());
    return names;
  }
  /// Texts of the notes with that label.
  std::vector<std::string> Notes(const std::string& label) const {
    std::vector<std::string> texts;
    for (const standalone::CommandNote& note : fRun.Output().notes) {
      if (note.label == label) texts.push_back(note.text);
    }
    return texts;
  }

  ModuleRun fRun;
};

TEST_F(ModelFile, ModelHasTheCovarianceAndParameterIsTheSameWithoutIt) {
  const std::string command = "y3 BY b WITH x /MODEL b x ";
  fRun.Run(command + "/OUTFILE MODEL='m.xml'");
  EXPECT_THAT(fRun.Keys(), IsEmpty());
  EXPECT_THAT(Notes("Model File"), ElementsAre("m.xml"));
  EXPECT_THAT(Notes("Parameter File"), IsEmpty());
  fRun.Run(command + "/OUTFILE PARAMETER='p.xml'");
  EXPECT_THAT(Notes("Parameter File"), ElementsAre("p.xml"));
  EXPECT_THAT(Notes("Model File"), IsEmpty());
  const std::string model = ReadFile(fRun.Folder().Path("m.xml"));
  const std::string parameter = ReadFile(fRun.Folder().Path("p.xml"));
  EXPECT_EQ(ReadModel("p.xml").Child("PCovMatrix"), nullptr);
  const std::size_t begin = model.find("    <PCovMatrix>");
  const std::size_t end = model.find("    <ParamMatrix>");
  ASSERT_NE(begin, std::string::npos);
  EXPECT_EQ(model.substr(0, begin) + model.substr(end), parameter);
}

TEST_F(ModelFile, TheHeaderNamesTheProgram) {
  fRun.Options().version = "9.8";
  fRun.Run("y /OUTFILE MODEL='m.xml'");
  const XmlNode document = Read("m.xml");
  const XmlNode& header = *document.Child("Header");
  EXPECT_TRUE(header.Has("copyright"));
  EXPECT_EQ(header.Child("Application")->At("name"), "tavoreg");
  EXPECT_EQ(header.Child("Application")->At("version"), "9.8");
}

TEST_F(ModelFile, EstimatesAndStandardErrorsAreThoseOfTheTables) {
  fRun.Run("y WITH x /STATISTICS PARAMETER SE /OUTFILE MODEL='m.xml'");
  const XmlNode model = ReadModel();
  const standalone::PivotTable* table = fRun.Output().FindTable("ParameterEstimates");
  const XmlNode& last = model.Child("ParamMatrix")->children.back();
  ASSERT_EQ(last.At("parameterName"), model.Child("ParameterList")->children.back().At("name"));
  const std::string label = model.Child("ParameterList")->children.back().At("label");
  EXPECT_EQ(std::strtod(last.At("beta").c_str(), nullptr),
            test_support::NumberAt(table, {label}, {test_support::T("B")}));
  const double variance =
      std::strtod(model.Child("PCovMatrix")->children.back().At("value").c_str(), nullptr);
  EXPECT_DOUBLE_EQ(std::sqrt(variance),
                   test_support::NumberAt(table, {label}, {test_support::T("Std. Error")}));
}

TEST_F(ModelFile, ModelDfIsTheDesignsDegreesOfFreedomForConfidenceIntervals) {
  fRun.Run("y WITH x /OUTFILE MODEL='m.xml'");
  EXPECT_EQ(ReadModel().At("modelDF"), "6");  // 8 units in 2 strata
  fRun.Run("y WITH x /CRITERIA DF=11 /OUTFILE MODEL='m.xml'");
  EXPECT_EQ(ReadModel().At("modelDF"), "11");
  fRun.Run("y WITH x /CRITERIA DF=12.5 /OUTFILE MODEL='m.xml'");
  EXPECT_EQ(ReadModel().At("modelDF"), "12.5");
}

TEST_F(ModelFile, ASubpopulationIsAFieldWithTheDomainValueOnly) {
  fRun.Run("y BY a /DOMAIN VARIABLE=d(2) /OUTFILE MODEL='m.xml'");
  EXPECT_THAT(Each(Field("d"), "value"), ElementsAre("2"));
  EXPECT_THAT(Each(ReadModel(), "value"), Contains("d"));
  fRun.Run("y BY a /OUTFILE MODEL='m.xml'");
  EXPECT_EQ(Field("d").name, "");
}

TEST_F(ModelFile, AFactorLevelWithNoCaseInTheSubpopulationIsAbsent) {
  for (std::size_t i = 0; i < fRun["a"].size(); ++i) {
    if (fRun["a"][i] == 2) fRun["d"][i] = 1;
  }
  fRun.Run("y BY a /DOMAIN VARIABLE=d(2) /OUTFILE MODEL='m.xml'");
  EXPECT_THAT(Each(Field("a"), "value"), ElementsAre("1", "3"));
}

TEST_F(ModelFile, LabelsLevelsAndMissingValuesOfTheDictionaryAreTold) {
  fRun.prepare = [](standalone::Table& table) {
    host::VORN_Variable& a = table.At(static_cast<std::size_t>(table.Find("a"))).variable;
    const auto cell = [](double number) {
      host::OBS value{};
      value.number = number;
      return std::vector<host::OBS>{value};
    };
    a.SetLabel("Age group");
    a.SetMeasurementLevel(host::MeasurementLevel::kOrdinal);
    host::VORN_ValueLabelMap labels;
    labels.AddPair(cell(1), "young");
    labels.AddPair(cell(9), "refused");
    a.SetValueLabels(labels);
    host::VORN_MissingValues missing;
    missing.values = {cell(9)};
    missing.hasRange = true;
    missing.rangeLow = 97;
    missing.rangeHigh = 99.5;
    a.SetMissingValues(missing);
  };
  fRun.Run("y BY a /OUTFILE MODEL='m.xml'");
  XmlNode a = Field("a");
  EXPECT_EQ(a.At("displayName"), "Age group");
  EXPECT_EQ(a.At("optype"), "ordinal");
  EXPECT_EQ(a.At("dataType"), "double");
  EXPECT_THAT(Each(a, "value"), ElementsAre("97", "99.5", "1", "2", "3", "9"));
  EXPECT_THAT(Each(a, "displayValue"), ElementsAre("", "", "young", "", "", "refused"));
  EXPECT_THAT(Each(a, "property"), ElementsAre("", "", "valid", "valid", "valid", "missing"));

  fRun["a"][0] = 9;
  fRun.Run("y BY a /MISSING CLASSMISSING=INCLUDE /OUTFILE MODEL='m.xml'");
  a = Field("a");
  EXPECT_THAT(Each(a, "value"), ElementsAre("1", "2", "3", "9"));
  EXPECT_THAT(Each(a, "property"), ElementsAre("valid", "valid", "valid", "valid"));
}

TEST_F(ModelFile, CategoriesThatTheirFormatWouldMixUpKeepTheirDigits) {
  std::vector<double>& a = fRun["a"];  // printed without decimals
  for (double& value : a)
    value = value == 1 ? 1.2 : value == 2 ? 1.4 : 3;
  fRun.Run("y BY a /OUTFILE MODEL='m.xml'");
  EXPECT_THAT(Each(Field("a"), "value"), ElementsAre("1.2", "1.4", "3"));
}

TEST_F(ModelFile, AFileThatIsThereIsReplacedAndNothingElseIsLeftBeside) {
  fRun.Folder().Write("m.xml", "old");
  const std::vector<std::string> before = Files();
  fRun.Run("y WITH x /OUTFILE MODEL='m.xml'");
  EXPECT_EQ(ReadModel().At("modelName"), "TavoReg");
  EXPECT_THAT(Files(), ::testing::UnorderedElementsAreArray(before));
}

TEST_F(ModelFile, APathThatCannotBeWrittenIsAnErrorAndTheTablesStay) {
  for (const std::string name : {"no-such-folder/m.xml", ".", "/dev/full"}) {
    fRun.Run("y WITH x /STATISTICS PARAMETER /OUTFILE MODEL='" + name + "'");
    EXPECT_THAT(fRun.Keys(), ElementsAre("Model file could not be saved ^1...")) << name;
    if (fRun.Output().messages.size() != 1) continue;
    EXPECT_TRUE(fRun.Output().messages[0].isError) << name;
    EXPECT_THAT(fRun.Output().messages[0].text, HasSubstr(name)) << name;
    EXPECT_THAT(fRun.TableIds(), Contains("ParameterEstimates")) << name;
    EXPECT_THAT(Notes("Model File"), IsEmpty()) << name;
  }
}

/// Scores the survey with the document alone and compares with the probabilities that the program saved.
class Scoring : public ModelFile {
 protected:
  using Row = PmmlScorer::Row;

  static std::string TextOf(const standalone::Column& column, std::size_t row) {
    const auto width = static_cast<std::size_t>(column.variable.GetType());
    std::string text(reinterpret_cast<const char*>(&column.cells[row * column.Stride()]), width);
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
  }
  static Row RowOf(const standalone::Table& table, std::size_t row) {
    Row values;
    for (std::size_t i = 0; i < table.ColumnCount(); ++i) {
      const standalone::Column& column = table.At(i);
      if (column.variable.IsNumeric()) {
        values[column.variable.GetName()] = column.cells[row].number;
      } else {
        values[column.variable.GetName()] = TextOf(column, row);
      }
    }
    return values;
  }

  /// Runs the command; `categories` are the response's texts in code order.
  void ExpectSameProbabilities(const std::string& command, const std::vector<std::string>& categories) {
    SCOPED_TRACE(command);
    fRun.Run(command + " /SAVE PREDPROB(prob:20) /OUTFILE PARAMETER='p.xml'");
    ASSERT_THAT(fRun.Keys(), ::testing::Not(Contains("Model file could not be saved ^1...")));
    const PmmlScorer scorer(Read("p.xml"));
    const standalone::Table& table = *fRun.Host().ActiveTable();
    std::size_t compared = 0;
    for (std::size_t row = 0; row < table.CaseCount(); ++row) {
      const std::map<std::string, double> scored = scorer.Probabilities(RowOf(table, row));
      ASSERT_EQ(scored.size(), categories.size());
      for (std::size_t k = 0; k < categories.size(); ++k) {
        const int column = table.Find("prob_" + std::to_string(k + 1));
        ASSERT_GE(column, 0);
        const double saved = table.At(static_cast<std::size_t>(column)).cells[row].number;
        if (saved == host::kSystemMissing) continue;
        ASSERT_EQ(scored.count(categories[k]), 1U) << categories[k];
        EXPECT_NEAR(scored.at(categories[k]), saved, 1e-12) << "case " << row << " category " << k;
        ++compared;
      }
    }
    EXPECT_EQ(compared, table.CaseCount() * categories.size());
  }
};

TEST_F(Scoring, ModelsWithInteractionsPowersAndNestingGiveTheSavedProbabilities) {
  for (const std::string model :
       {"a", "a b", "x z", "a b x", "a*b", "a b a*b", "x x*x", "x x*x*x z*z", "x*z", "a a*x", "a x a*x*x",
        "a b(a)", "a x(a)", "a x*x(a)", "c b(c) a(b(c))", "a*b(c)", "a b x a*b*x*z"}) {
    ExpectSameProbabilities("y BY a b c WITH x z /MODEL " + model, {"0", "1"});
    ExpectSameProbabilities("y3 BY a b c WITH x z /MODEL " + model, {"1", "2", "3"});
  }
}

TEST_F(Scoring, AnyReferenceAndAModelWithoutInterceptGiveTheSavedProbabilities) {
  for (const std::string reference : {"(LOW)", "(HIGH)", "(2)"}) {
    ExpectSameProbabilities("y3 " + reference + " BY a WITH x", {"1", "2", "3"});
  }
  ExpectSameProbabilities("y3 BY a b WITH x /INTERCEPT INCLUDE=NO", {"1", "2", "3"});
  ExpectSameProbabilities("y3", {"1", "2", "3"});
}

TEST_F(Scoring, ValuesThatTheirFormatsRoundAndTextsGiveTheSavedProbabilities) {
  for (double& value : fRun["a"])
    value = value == 1 ? -0.5 : value == 2 ? 1.0 / 3 : 0.4;
  for (double& value : fRun["y3"])
    value = value == 1 ? 0.25 : value == 2 ? 0.5 : 1e9;
  std::vector<std::string>& town = fRun.Text("town");
  for (const double value : fRun["b"])
    town.push_back(value == 1 ? "<a & \"b\">" : " M\xC3\xBCnchen");
  ExpectSameProbabilities("y3 BY a town WITH x /MODEL a town a*town x*town", {"0.25", "0.5", "1000000000"});
}

TEST_F(Scoring, AStringResponseGivesTheSavedProbabilities) {
  std::vector<std::string>& vote = fRun.Text("vote");
  for (const double value : fRun["y3"])
    vote.push_back(value == 1 ? "left" : value == 2 ? "middle" : " none");
  ExpectSameProbabilities("vote BY a WITH x", {" none", "left", "middle"});
}

TEST_F(ModelFile, ACategoryThatItsFormatCutsIsWhole) {
  for (const double a : fRun["a"])
    fRun.Text("town").push_back(a == 1 ? "Bern-North" : a == 2 ? "Bern-South" : "Uri");
  fRun.prepare = [](standalone::Table& table) {
    table.At(static_cast<std::size_t>(table.Find("town"))).variable.SetFormat({1, 4, 0});
  };
  fRun.Run("y BY town /OUTFILE MODEL='m.xml'");
  EXPECT_THAT(Each(Field("town"), "value"), ElementsAre("Bern-North", "Bern-South", "Uri"));
}

}  // namespace
