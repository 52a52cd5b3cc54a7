// Case files through the program: converting, describing, analysing, saving.
#include <gtest/gtest.h>

#include "program.h"
#include "survey_files.h"

namespace {

constexpr const char* kSchema = R"({"fields": [
  {"name": "x", "type": "number", "title": "Höhe", "x-format": "F10.3", "x-measure": "scale",
   "missingValues": [-9], "x-missing-range": [null, -99.5], "categories": [{"value": 1, "label": "eins"}]},
  {"name": "s", "type": "string", "x-format": "A9", "x-measure": "ordinal", "missingValues": ["x"]}],
  "x-documents": ["made by hand"]})";

class CaseFiles : public testing::Test {
 protected:
  ProgramRun Run(const std::vector<std::string>& arguments) const {
    return RunProgram(arguments, fFolder.Path());
  }
  bool Has(const std::string& name) const { return std::filesystem::exists(fFolder.Path() / name); }
  std::size_t FileCount() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(fFolder.Path()), {}));
  }
  /// The dictionary of a file as the program describes it, without the file's name.
  std::string Dictionary(const std::string& name) const {
    const ProgramRun run = Run({"describe", name, "--format", "json"});
    EXPECT_EQ(run.exitStatus, 0) << run.messages;
    nlohmann::json document = run.Json();
    document.erase("file");
    return document.dump();
  }
  void WriteSmall() const {
    fFolder.Write("a.csv", "x,s\n1,\"say \"\"no\"\"\"\n,\n2.5,\" lead\"\n");
    fFolder.Write("a.schema.json", kSchema);
  }

  TemporaryFolder fFolder;
};

TEST_F(CaseFiles, ConvertingToACaseFileAndBackKeepsDataAndDictionary) {
  WriteSmall();
  const ProgramRun there = Run({"convert", "a.csv", "b.vdt"});
  EXPECT_EQ(there.exitStatus, 0) << there.messages;
  EXPECT_EQ(there.messages + there.output, "");
  const ProgramRun back = Run({"convert", "b.vdt", "c.csv"});
  EXPECT_EQ(back.exitStatus, 0) << back.messages;
  EXPECT_EQ(ReadText(fFolder.Path() / "c.csv"), ReadText(fFolder.Path() / "a.csv"));
  EXPECT_EQ(Dictionary("b.vdt"), Dictionary("a.csv"));
  EXPECT_EQ(Dictionary("c.csv"), Dictionary("a.csv"));
  EXPECT_NE(Dictionary("b.vdt").find("made by hand"), std::string::npos);
}

TEST_F(CaseFiles, ConvertingUsesTheSchemaThatIsNamed) {
  fFolder.Write("a.csv", "x\n1\n");
  fFolder.Write("other.json", R"({"fields": [{"name": "x", "title": "A label"}]})");
  EXPECT_EQ(Run({"convert", "a.csv", "b.vdt", "--schema", "other.json"}).exitStatus, 0);
  EXPECT_NE(Dictionary("b.vdt").find("A label"), std::string::npos);
}

TEST_F(CaseFiles, ConvertingTellsWhatIsWrong) {
  WriteSmall();
  const ProgramRun none = Run({"convert", "none.csv", "b.vdt"});
  EXPECT_EQ(none.exitStatus, 2);
  EXPECT_NE(none.messages.find("none.csv"), std::string::npos);
  const ProgramRun ending = Run({"convert", "a.csv", "b.xlsx"});
  EXPECT_EQ(ending.exitStatus, 2);
  EXPECT_NE(ending.messages.find("b.xlsx cannot be written: the file's ending tells its form"),
            std::string::npos);
  const ProgramRun folder = Run({"convert", "a.csv", "none/b.vdt"});
  EXPECT_EQ(folder.exitStatus, 3);
  EXPECT_NE(folder.messages.find("The data file none/b.vdt cannot be written: No such file or directory."),
            std::string::npos)
      << folder.messages;
  EXPECT_EQ(Run({"convert", "a.csv"}).exitStatus, 2);
  EXPECT_EQ(FileCount(), 2u);
}

TEST_F(CaseFiles, ADamagedCaseFileIsAFileThatCantBeRead) {
  fFolder.Write("a.vdt", "no database");
  for (const auto& arguments :
       {std::vector<std::string>{"describe", "a.vdt"}, {"convert", "a.vdt", "b.csv"}}) {
    const ProgramRun run = Run(arguments);
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_NE(run.messages.find("a.vdt: the case file can't be read: it is no case file"), std::string::npos)
        << run.messages;
  }
  EXPECT_EQ(FileCount(), 1u);
}

/// A survey with its plan and a command that fits a model.
class SavedData : public CaseFiles {
 protected:
  SavedData() {
    fFolder.Write("data.csv", SurveyData().Text());
    fFolder.Write("plan.xml", SimplePlan());
    fFolder.Write("run.tvs", "TAVOREG y BY g WITH x\n  /PLAN FILE='plan.xml'\n  /STATISTICS PARAMETER SE.\n");
  }
  ProgramRun Analyse(const std::string& data, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments = {"run", "run.tvs", "--data", data, "--format", "json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(arguments);
  }
};

TEST_F(SavedData, AnAnalysisOfTheCaseFileGivesWhatTheTextGives) {
  ASSERT_EQ(Run({"convert", "data.csv", "data.vdt"}).exitStatus, 0);
  const ProgramRun text = Analyse("data.csv");
  const ProgramRun cases = Analyse("data.vdt");
  ASSERT_EQ(text.exitStatus, 0) << text.messages;
  ASSERT_EQ(cases.exitStatus, 0) << cases.messages;
  EXPECT_GT(EstimatesOf(text.Json()).size(), 3u);
  EXPECT_EQ(EstimatesOf(cases.Json()), EstimatesOf(text.Json()));
}

TEST_F(SavedData, TheWholeTableIsSavedAfterTheCommands) {
  for (const std::string name : {"saved.vdt", "saved.csv", "saved.tsv"}) {
    const ProgramRun run = Analyse("data.csv", {"--save", name});
    ASSERT_EQ(run.exitStatus, 0) << run.messages;
    EXPECT_EQ(Dictionary(name), Dictionary("data.csv"));
  }
  ASSERT_EQ(Run({"convert", "data.csv", "plain.csv"}).exitStatus, 0);
  EXPECT_EQ(ReadText(fFolder.Path() / "saved.csv"), ReadText(fFolder.Path() / "plain.csv"));
  ASSERT_EQ(Run({"convert", "saved.vdt", "back.csv"}).exitStatus, 0);
  EXPECT_EQ(ReadText(fFolder.Path() / "back.csv"), ReadText(fFolder.Path() / "plain.csv"));
}

TEST_F(SavedData, DataThatCantBeSavedAreAFailedOutputAndTheResultsAreShown) {
  const ProgramRun run = Analyse("data.csv", {"--save", "none/saved.vdt"});
  EXPECT_EQ(run.exitStatus, 3);
  EXPECT_NE(run.messages.find("The data file none/saved.vdt cannot be written"), std::string::npos)
      << run.messages;
  EXPECT_FALSE(EstimatesOf(run.Json()).empty());
}

TEST_F(SavedData, ANameWithoutAFormIsRefusedBeforeTheRun) {
  const ProgramRun run = Analyse("data.csv", {"--save", "saved.txt"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_NE(run.messages.find("must be .csv, .tsv or .vdt"), std::string::npos) << run.messages;
  EXPECT_EQ(run.output, "");
}

TEST_F(SavedData, AfterAFailedCommandTheDataAreNotSavedAndTheOldFileStays) {
  fFolder.Write("run.tvs", "TAVOREG nix BY g\n  /PLAN FILE='plan.xml'.\n");
  fFolder.Write("saved.vdt", "old");
  const ProgramRun run = Analyse("data.csv", {"--save", "saved.vdt"});
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_NE(run.messages.find("The data were not saved to saved.vdt"), std::string::npos) << run.messages;
  EXPECT_EQ(ReadText(fFolder.Path() / "saved.vdt"), "old");
}

}  // namespace
