// Captions, names and the order of the tables.

#include "module/reporting/table_frame.h"
#include "reporting_fixture.h"

namespace tavo {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsSupersetOf;
using ::testing::Not;

TEST_F(Reporting, WithoutASubpopulationTheCaptionHasDependentReferenceAndModel) {
  fRun.Run("y BY a WITH x /STATISTICS PARAMETER");
  EXPECT_EQ(Caption("ParameterEstimates"),
            "Dependent Variable: y (reference category = 1)\nModel: (Intercept), x, a");
  EXPECT_EQ(Caption("PseudoRSquares"), Caption("ParameterEstimates"));
}

TEST_F(Reporting, WithASubpopulationTheCaptionOpensWithIt) {
  fRun.Run("y BY a WITH x /DOMAIN VARIABLE=d(2) /STATISTICS PARAMETER");
  EXPECT_EQ(Caption("ParameterEstimates"),
            "Subpopulation: d = 2\nDependent Variable: y (reference category = 1)\nModel: (Intercept), x, a");
}

TEST_F(Reporting, ModelWithNoInterceptHasNoneInTheCaption) {
  fRun.Run("y BY a WITH x /INTERCEPT INCLUDE=NO /STATISTICS PARAMETER");
  EXPECT_EQ(Caption("ParameterEstimates"), "Dependent Variable: y (reference category = 1)\nModel: x, a");
}

TEST_F(Reporting, AHiddenInterceptStaysInTheCaption) {
  fRun.Run("y WITH x /INTERCEPT SHOW=NO /STATISTICS PARAMETER");
  EXPECT_THAT(Caption("ParameterEstimates"), HasSubstr("Model: (Intercept), x"));
}

TEST_F(Reporting, TheCaptionNamesTheReferenceThatIsUsed) {
  fRun.Run("y (LOW) /STATISTICS PARAMETER");
  EXPECT_THAT(Caption("ParameterEstimates"), HasSubstr("reference category = 0"));
  fRun.Run("y3 (2) /STATISTICS PARAMETER");
  EXPECT_THAT(Caption("ParameterEstimates"), HasSubstr("reference category = 2"));
}

TEST_F(Reporting, TheIterationCaptionSaysThatRedundantParametersAreNotShown) {
  fRun.Run("y BY a /PRINT HISTORY");
  EXPECT_EQ(Caption("IterationHistory"),
            "Redundant parameters are not shown; their values are zero in all iterations.\n"
            "Dependent Variable: y (reference category = 1)\nModel: (Intercept), a");
  fRun.Run("y BY a /DOMAIN VARIABLE=d(1) /PRINT HISTORY");
  EXPECT_EQ(Caption("IterationHistory"),
            "Redundant parameters are not shown; their values are zero in all iterations.\n"
            "Subpopulation: d = 1\nDependent Variable: y (reference category = 1)\nModel: (Intercept), a");
}

struct NameCase {
  const char* model;
  const char* effects;  // as the caption lists them
  std::vector<std::string> someParameters;
};

class EffectNames : public Reporting, public ::testing::WithParamInterface<NameCase> {};

TEST_P(EffectNames, AreBuiltFromNestingCrossingAndPowers) {
  fRun.Run(std::string("y BY a b c WITH x z /MODEL ") + GetParam().model + " /STATISTICS PARAMETER");
  EXPECT_THAT(Caption("ParameterEstimates"),
              ::testing::EndsWith(std::string("Model: (Intercept), ") + GetParam().effects));
  const standalone::PivotTable* table = Table("ParameterEstimates");
  ASSERT_NE(table, nullptr);
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Parameter")), IsSupersetOf(GetParam().someParameters));
}

INSTANTIATE_TEST_SUITE_P(AllForms, EffectNames,
                         ::testing::Values(NameCase{"a", "a", {"(Intercept)", "[a=1]", "[a=2]", "[a=3]"}},
                                           NameCase{"a b", "a, b", {"[a=3]", "[b=1]"}},
                                           NameCase{"b*a", "a * b", {"[a=1] * [b=2]", "[a=3] * [b=1]"}},
                                           NameCase{"a(b)", "a(b)", {"[a=1]([b=1])", "[a=3]([b=2])"}},
                                           NameCase{"a(b(c))", "a(b(c))", {"[a=2]([b=1]([c=2]))"}},
                                           NameCase{"a(b*c)", "a(b * c)", {"[a=2]([b=1] * [c=2])"}},
                                           NameCase{"x", "x", {"x"}}, NameCase{"x*x", "x * x", {"x * x"}},
                                           NameCase{"z*x", "x * z", {"x * z"}},
                                           NameCase{"x(a)", "x(a)", {"x([a=1])", "x([a=3])"}},
                                           NameCase{"a*x", "a * x", {"[a=2] * x"}},
                                           NameCase{"a*x*x", "a * x * x", {"[a=2] * x * x"}},
                                           NameCase{"x*z(a*b)", "x * z(a * b)", {"x * z([a=1] * [b=2])"}}));

TEST_F(Reporting, NamesAreShortNamesAndValuesGoByThePrintFormatNotByLabels) {
  fRun.prepare = [](standalone::Table& table) {
    host::VORN_Variable& a = table.At(static_cast<std::size_t>(table.Find("a"))).variable;
    a.SetLabel("Age group");
    a.SetFormat({5, 8, 2});
    host::VORN_ValueLabelMap labels;
    host::OBS one{};
    one.number = 1;
    labels.AddPair({one}, "young");
    a.SetValueLabels(labels);
  };
  fRun.Run("y BY a /STATISTICS PARAMETER");
  const standalone::PivotTable* table = Table("ParameterEstimates");
  EXPECT_THAT(CategoriesOf(DimensionOf(*table, "Parameter")),
              ElementsAre("(Intercept)", "[a=1.00]", "[a=2.00]", "[a=3.00]"));
}

TEST_F(Reporting, StringValuesStandInNamesWithoutTheirPadding) {
  for (const double a : fRun["a"])
    fRun.Text("g").push_back(a == 1 ? "left" : "a longer value");
  fRun.Run("y BY g /STATISTICS PARAMETER");
  EXPECT_THAT(CategoriesOf(DimensionOf(*Table("ParameterEstimates"), "Parameter")),
              ElementsAre("(Intercept)", "[g=a longer value]", "[g=left]"));
}

TEST_F(Reporting, NonePrintsOnlyTheTablesThatAlwaysPrint) {
  fRun.Run("y BY a WITH x /STATISTICS PARAMETER /PRINT NONE");
  const std::vector<std::string> ids = fRun.TableIds();
  EXPECT_THAT(ids, Contains("ParameterEstimates"));
  for (const char* id : {"SampleDesignInformation", "CategoricalVariableInformation", "CovariateInformation",
                         "IterationHistory", "PseudoRSquares", "CovariancesOfParameterEstimates",
                         "CorrelationsOfParameterEstimates", "Classification"}) {
    EXPECT_THAT(ids, Not(Contains(id)));
  }
}

TEST_F(Reporting, TablesComeInAFixedOrderWhateverTheOrderOfTheKeywords) {
  fRun.Run(
      "y BY a WITH x /STATISTICS PARAMETER /PRINT CLASSTABLE CORB COVB HISTORY SUMMARY VARIABLEINFO "
      "SAMPLEINFO");
  std::vector<std::string> ids = fRun.TableIds();
  ASSERT_GE(ids.size(), 9U);
  ids.resize(4);
  EXPECT_THAT(ids, ElementsAre("SampleDesignInformation", "CategoricalVariableInformation",
                               "CovariateInformation", "IterationHistory"));
  ids = fRun.TableIds();
  const auto place = [&](const char* id) { return std::find(ids.begin(), ids.end(), id) - ids.begin(); };
  EXPECT_LT(place("IterationHistory"), place("PseudoRSquares"));
  EXPECT_LT(place("PseudoRSquares"), place("ParameterEstimates"));
  EXPECT_LT(place("ParameterEstimates"), place("CovariancesOfParameterEstimates"));
  EXPECT_LT(place("CovariancesOfParameterEstimates"), place("CorrelationsOfParameterEstimates"));
  EXPECT_LT(place("CorrelationsOfParameterEstimates"), place("Classification"));
}

TEST_F(Reporting, WithoutAPrintSubcommandTheThreeDefaultsPrint) {
  fRun.Run("y WITH x");
  EXPECT_THAT(fRun.TableIds(), IsSupersetOf({"SampleDesignInformation", "CategoricalVariableInformation",
                                             "CovariateInformation", "PseudoRSquares"}));
  EXPECT_THAT(fRun.TableIds(), Not(Contains("ParameterEstimates"))) << "no statistic was asked for";
}

TEST_F(Reporting, ThePlanFileIsNoted) {
  const standalone::CommandOutput& output = fRun.Run("y");
  ASSERT_EQ(output.notes.size(), 1U);
  EXPECT_EQ(output.notes[0].label, T("Plan File"));
  EXPECT_EQ(output.notes[0].text, "plan.xml");
}

// The template with its pieces, as LongTextCell makes it; null for the plain form.
const host::BpComposite* PiecesOf(const host::BpCellText& cell) {
  const auto* composite = std::get_if<std::shared_ptr<const host::BpComposite>>(&cell.Get());
  return composite == nullptr ? nullptr : composite->get();
}

std::vector<std::string> PieceTexts(const host::BpComposite& composite) {
  std::vector<std::string> texts;
  for (const host::BpCellText& piece : std::get<std::vector<host::BpCellText>>(composite.Arguments().at(0))) {
    texts.push_back(std::get<host::BpString>(piece.Get()).text);
  }
  return texts;
}

TEST(LongText, Of255CharactersTakesThePlainForm) {
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{255}}) {
    const host::BpCellText cell = TavoOutputFrame::LongTextCell(std::string(length, 'n'));
    const auto* text = std::get_if<host::BpString>(&cell.Get());
    ASSERT_NE(text, nullptr) << length;
    EXPECT_EQ(text->text.size(), length);
    EXPECT_FALSE(text->translate);
  }
}

TEST(LongText, Of256CharactersHasTwoPieces) {
  const host::BpCellText cell = TavoOutputFrame::LongTextCell(std::string(255, 'n') + "e");
  const host::BpComposite* composite = PiecesOf(cell);
  ASSERT_NE(composite, nullptr);
  EXPECT_EQ(composite->Template(), "[:^1:]1");
  EXPECT_THAT(PieceTexts(*composite), ElementsAre(std::string(255, 'n'), "e"));
}

TEST(LongText, IsNeverCutInsideACharacter) {
  const std::string text = std::string(254, 'n') + "öä" + std::string(300, 'm');  // ö would be split at 255
  const host::BpCellText cell = TavoOutputFrame::LongTextCell(text);
  const std::vector<std::string> pieces = PieceTexts(*PiecesOf(cell));
  EXPECT_EQ(pieces.at(0), std::string(254, 'n'));
  std::string joined;
  for (const std::string& piece : pieces) {
    EXPECT_LE(piece.size(), 255U);
    joined += piece;
  }
  EXPECT_EQ(joined, text);
}

TEST_F(Reporting, ALongParameterNameIsShownWhole) {
  std::string model;
  std::string factors;
  std::string name;
  for (int i = 0; i < 5; ++i) {  // 5 factors with names of 60 characters, crossed
    const std::string factor(1, static_cast<char>('p' + i));
    const std::string variable = factor + std::string(59, 'q');
    fRun[variable] = std::vector<double>(fRun["y"].size(), 1.0);
    factors += " " + variable;
    model += (i == 0 ? "" : "*") + variable;
    name += (i == 0 ? "[" : " * [") + variable + "=1]";
  }
  ASSERT_GT(name.size(), 255U);
  fRun.Run("y BY" + factors + " /MODEL " + model + " /STATISTICS PARAMETER");
  EXPECT_THAT(CategoriesOf(DimensionOf(*Table("ParameterEstimates"), "Parameter")),
              ElementsAre("(Intercept)", name));
}

}  // namespace
}  // namespace tavo
