#include "standalone/output/renderers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "pivot_samples.h"

namespace {

using host::BpNumber;
using host::BpProcedure;
using host::Key;
using host::Plain;
using standalone::Document;

class Renderers : public testing::Test {
 protected:
  Renderers() {
    fDocument.version = "1.2.3";
    fOutput.name = "TAVOREG";
    fOutput.seconds = 0.125;
  }
  std::string Text(std::size_t width = 100) {
    std::ostringstream out;
    for (const auto& table : fOutput.tables)
      standalone::RenderTextTable(out, *table, width);
    return out.str();
  }
  std::string As(standalone::OutputFormat format) {
    std::ostringstream out;
    standalone::Render(out, fDocument, format);
    return out.str();
  }

  host::VORN_Variable fDependent = test_support::Stype();
  Document fDocument;
  standalone::CommandOutput& fOutput = fDocument.commands.emplace_back();
};

constexpr const char* kEstimatesText = R"(Parameter Estimates
───────────────────────────────────────────────────
                                     95% Confidence
                                        Interval
                                     ──────────────
School type / Parameter       B       Lower   Upper
───────────────────────────────────────────────────
E
  (Intercept)             1.250        .250   2.250
  meals                   -.031      -1.031    .969
High
  (Intercept)            12.500      11.500  13.500
  meals                    .000 (a)
───────────────────────────────────────────────────
Dependent Variable: School type (reference category = M)
Model: (Intercept), meals
a. The parameter is redundant and stands at zero.
)";

TEST_F(Renderers, TextAlignsNumbersAtTheirPointUnderSpanningLabels) {
  test_support::FillEstimates(fOutput, fDependent);
  EXPECT_EQ(Text(), kEstimatesText);
}

TEST_F(Renderers, TextSplitsATableThatIsTooWideAndRepeatsTheRowLabels) {
  const auto procedure = standalone::MakeProcedure(fOutput);
  auto table = procedure->Heading().PivotTable(Plain("Wide"), "Wide");
  auto& rows = table->Dimension(Plain("Row"));
  auto& columns = table->Dimension(Plain("Column"));
  columns.Position(host::BpPlace::kColumn, 1, true, false);
  for (const char* row : {"first", "second"}) {
    rows.Category(Plain(row));
    for (const char* column : {"Alpha", "Beta", "Gamma"}) {
      columns.Category(Plain(column)).Cell(BpNumber{12345678.5, BpProcedure::GeneralStat()});
    }
  }
  EXPECT_EQ(Text(40), R"(Wide
──────────────────────────────────
Row            Alpha          Beta
──────────────────────────────────
first   12345678.500  12345678.500
second  12345678.500  12345678.500
──────────────────────────────────

Wide (continued)
────────────────────
Row            Gamma
────────────────────
first   12345678.500
second  12345678.500
────────────────────
)");
}

TEST_F(Renderers, TextWrapsLongTextsAndCountsCharactersNotBytes) {
  const auto procedure = standalone::MakeProcedure(fOutput);
  auto table = procedure->Heading().PivotTable(Plain("Texte"), "T");
  auto& rows = table->Dimension(Plain("Straße"));
  auto& columns = table->Dimension(Plain("Column"));
  columns.Position(host::BpPlace::kColumn, 1, true, false);
  rows.Category(Plain("Größe")).Note(Plain("on a row"));
  columns.Category(Plain("Words")).Cell(Plain("one two three four five six seven eight nine ten"));
  rows.Category(Plain("x"));
  columns.Category(Plain("Words")).Cell(Plain("b"));
  table->Note(Plain("on the table"));
  EXPECT_EQ(Text(), R"(Texte (a)
──────────────────────────────────────────────────
Straße     Words
──────────────────────────────────────────────────
Größe (b)  one two three four five six seven eight
           nine ten
x          b
──────────────────────────────────────────────────
a. on the table
b. on a row
)");
}

TEST_F(Renderers, ATableWithoutCellsSaysSo) {
  const auto procedure = standalone::MakeProcedure(fOutput);
  procedure->Heading().PivotTable(Plain("Nothing"), "N")->Dimension(Plain("d"));
  EXPECT_EQ(Text(), "Nothing\n(no data)\n");
  EXPECT_NE(As(standalone::OutputFormat::kHtml).find("(no data)"), std::string::npos);
  EXPECT_NE(As(standalone::OutputFormat::kMarkdown).find("(no data)"), std::string::npos);
  EXPECT_TRUE(nlohmann::json::parse(As(standalone::OutputFormat::kJson))["commands"][0]["tables"][0]["cells"]
                  .empty());
}

TEST_F(Renderers, ADimensionThatHidesWhenSingleIsShownInJsonOnly) {
  const auto procedure = standalone::MakeProcedure(fOutput);
  auto table = procedure->Heading().PivotTable(Plain("T"), "T");
  auto& outer = table->Dimension(Plain("Outer"));
  outer.Position(host::BpPlace::kRow, 2, false, true);
  table->Dimension(Plain("Inner")).Category(Plain("a"));
  outer.Category(Plain("only")).Cell(BpNumber{1, BpProcedure::Count()});
  EXPECT_EQ(Text().find("only"), std::string::npos);
  const auto json = nlohmann::json::parse(As(standalone::OutputFormat::kJson));
  EXPECT_EQ(json["commands"][0]["tables"][0]["cells"][0]["row"], (nlohmann::json{"only", "a"}));
}

TEST_F(Renderers, MarkdownEscapesItsSignsAndNamesTheGroupsOfAColumn) {
  test_support::FillEstimates(fOutput, fDependent);
  const std::string text = As(standalone::OutputFormat::kMarkdown);
  EXPECT_NE(text.find("| School type | Parameter | B | 95% Confidence Interval: Lower | 95% Confidence "
                      "Interval: Upper |\n"
                      "| :--- | :--- | ---: | ---: | ---: |\n"
                      "| E | (Intercept) | 1.250 | .250 | 2.250 |\n"
                      "|  | meals | -.031 | -1.031 | .969 |\n"
                      "| High | (Intercept) | 12.500 | 11.500 | 13.500 |\n"
                      "|  | meals | .000<sup>a</sup> |  |  |\n"),
            std::string::npos)
      << text;
  fOutput.messages.push_back({true, "k", "a*b|c_[d]<e>", "", ""});
  EXPECT_NE(As(standalone::OutputFormat::kMarkdown).find(R"(> **Error:** a\*b\|c\_\[d\]&lt;e\>)"),
            std::string::npos);
}

TEST_F(Renderers, HtmlSpansItsHeadersAndEscapesTexts) {
  test_support::FillEstimates(fOutput, fDependent);
  fOutput.messages.push_back({false, "k", "<script>alert(\"x\")</script> & 'more'", "a<b:1:1", "x < y\n  ^"});
  const std::string page = As(standalone::OutputFormat::kHtml);
  for (const char* part :
       {"<th class=\"stub\" scope=\"col\" rowspan=\"2\">School type</th>",
        "<th scope=\"col\" rowspan=\"2\">B</th>",
        "<th class=\"group\" scope=\"colgroup\" colspan=\"2\">95% Confidence Interval</th>",
        "<th scope=\"rowgroup\" rowspan=\"2\">E</th><th scope=\"row\">(Intercept)</th><td>1.250</td>",
        "<td>.000<sup>a</sup></td>", "<li>a. The parameter is redundant",
        "&lt;script&gt;alert(&quot;x&quot;)&lt;/script&gt; &amp; &#39;more&#39;", "at a&lt;b:1:1",
        "x &lt; y"}) {
    EXPECT_NE(page.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(page.find("<script>"), std::string::npos);
}

TEST_F(Renderers, TextShowsMessagesWithTheirPlaceAndNotesInColumns) {
  fOutput.failed = true;
  fOutput.messages.push_back({true, "k", "Something is wrong.", "a.tvs:1:9", "TAVOREG yy\n        ^~"});
  fOutput.notes = {{1, "Plan File", "plan.xml"}, {2, "Parameter File", "p.xml"}};
  EXPECT_EQ(As(standalone::OutputFormat::kText), R"(TAVOREG, ended with an error  (0.12 s)
══════════════════════════════════════

Error: Something is wrong.
  at a.tvs:1:9
  | TAVOREG yy
  |         ^~

Plan File       plan.xml
Parameter File  p.xml
)");
}

TEST_F(Renderers, TextOnlyCountsMessagesThatStandAboveIt) {
  standalone::TextOptions options;
  options.messagesStandAbove = true;
  const auto text = [&] {
    std::ostringstream out;
    standalone::RenderText(out, fDocument, options);
    return out.str();
  };
  EXPECT_EQ(text(), "TAVOREG  (0.12 s)\n═════════════════\n");
  fDocument.messages.push_back({false, "k", "A variable was renamed.", "", ""});
  EXPECT_EQ(text(), "\nTAVOREG  (0.12 s)\n═════════════════\n");
  fOutput.messages = {
      {true, "k", "Wrong.", "", ""}, {false, "k", "Odd.", "", ""}, {false, "k", "Odder.", "", ""}};
  fOutput.notes = {{1, "Plan File", "plan.xml"}};
  EXPECT_EQ(text(),
            "\nTAVOREG  (0.12 s)\n═════════════════\n\n1 error and 2 warnings: see above.\n\n"
            "Plan File  plan.xml\n");
  fOutput.messages.erase(fOutput.messages.begin());
  EXPECT_NE(text().find("\n2 warnings: see above.\n"), std::string::npos);
}

TEST_F(Renderers, ACommandWithoutANameIsCalledSo) {
  fOutput.name.clear();
  fOutput.failed = true;
  EXPECT_TRUE(As(standalone::OutputFormat::kText)
                  .starts_with("Command without a name, ended with an error  (0.12 s)\n"));
  EXPECT_TRUE(As(standalone::OutputFormat::kMarkdown)
                  .starts_with("\n# Command without a name (ended with an error)\n"));
  EXPECT_NE(As(standalone::OutputFormat::kHtml).find("<h1>Command without a name</h1>"), std::string::npos);
  EXPECT_EQ(nlohmann::json::parse(As(standalone::OutputFormat::kJson))["commands"][0]["command"], "");
}

TEST_F(Renderers, JsonHoldsMessagesOfTheRunAndSurvivesInvalidText) {
  fDocument.messages.push_back({true, "Data file problem...", "bad \xff byte\x01", "", ""});
  const auto json = nlohmann::json::parse(As(standalone::OutputFormat::kJson));
  EXPECT_EQ(json.at("messages").at(0).at("text"), "bad \xEF\xBF\xBD byte\x01");
}

TEST(OutputFormats, FollowNamesAndEndings) {
  using standalone::FormatOfFile, standalone::FormatOfName, standalone::OutputFormat;
  EXPECT_EQ(FormatOfName("markdown"), OutputFormat::kMarkdown);
  EXPECT_FALSE(FormatOfName("pdf").has_value());
  EXPECT_EQ(FormatOfFile("a/b.JSON"), OutputFormat::kJson);
  EXPECT_EQ(FormatOfFile("b.htm"), OutputFormat::kHtml);
  EXPECT_EQ(FormatOfFile("b.md"), OutputFormat::kMarkdown);
  EXPECT_EQ(FormatOfFile("b.txt"), OutputFormat::kText);
  EXPECT_FALSE(FormatOfFile("json").has_value());
}

TEST_F(Renderers, JsonReadsBackWithFullPrecisionAndTheWholePaths) {
  test_support::FillEstimates(fOutput, fDependent);
  fOutput.messages.push_back({false, "Did you mean ^1?", "Quotes \" and \\ and\nlines", "f:1:2", ""});
  fOutput.notes.push_back({1, "Plan File", "plan.xml"});
  const nlohmann::json json = nlohmann::json::parse(As(standalone::OutputFormat::kJson));
  EXPECT_EQ(json.at("tavoreg"), "1.2.3");
  const auto& command = json.at("commands").at(0);
  EXPECT_EQ(command.at("status"), "ok");
  EXPECT_EQ(command.at("seconds"), 0.125);
  EXPECT_EQ(command.at("messages").at(0).at("text"), "Quotes \" and \\ and\nlines");
  EXPECT_EQ(command.at("messages").at(0).at("level"), "warning");
  EXPECT_EQ(command.at("notes").at(0).at("label"), "Plan File");
  const auto& table = command.at("tables").at(0);
  EXPECT_EQ(table.at("id"), "ParameterEstimates");
  EXPECT_EQ(table.at("heading"), nlohmann::json::array());
  EXPECT_EQ(table.at("row_dimensions"), (nlohmann::json{"School type", "Parameter"}));
  EXPECT_EQ(table.at("column_dimensions"), nlohmann::json{"Statistics"});
  ASSERT_EQ(table.at("cells").size(), 12u);
  const auto& lower = table.at("cells").at(4);
  EXPECT_EQ(lower.at("row"), (nlohmann::json{"E", "meals"}));
  EXPECT_EQ(lower.at("column"), (nlohmann::json{"95% Confidence Interval", "Lower"}));
  EXPECT_EQ(lower.at("value").get<double>(), -0.0314 - 1);
  EXPECT_EQ(lower.at("text"), "-1.031");
  EXPECT_TRUE(table.at("cells").at(10).at("value").is_null());
  EXPECT_EQ(table.at("cells").at(9).at("notes").size(), 1u);
}

}  // namespace
