#include "standalone/output/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "catalogue_keys.h"

namespace {

using standalone::CatalogueEntry;
using standalone::CatalogueText;

std::vector<CatalogueEntry> AllEntries() {
  std::vector<CatalogueEntry> all;
  for (const auto family :
       {standalone::ParserCatalogue(), standalone::CommandCatalogue(), standalone::ModelCatalogue(),
        standalone::DesignCatalogue(), standalone::RunCatalogue(), standalone::TableCatalogue()}) {
    all.insert(all.end(), family.begin(), family.end());
  }
  return all;
}

/// The indices behind ^ in a template, those inside list groups left out.
std::set<char> Arguments(std::string_view text) {
  std::set<char> found;
  bool inGroup = false;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '[') inGroup = true;
    if (text[i] == ':' && text[i + 1] == ']') {
      inGroup = false;
      if (i + 2 < text.size()) found.insert(text[i + 2]);
    }
    if (text[i] == '^' && !inGroup && text[i + 1] >= '1' && text[i + 1] <= '9') found.insert(text[i + 1]);
  }
  return found;
}

TEST(Catalogue, HasEveryKeyThatCanBeSent) {
  for (const char* key : test_support::kCommandKeys)
    EXPECT_TRUE(standalone::HasCatalogueText(key)) << key;
  for (const char* key : test_support::kPlanKeys)
    EXPECT_TRUE(standalone::HasCatalogueText(key)) << key;
  for (const char* key : test_support::kRunKeys)
    EXPECT_TRUE(standalone::HasCatalogueText(key)) << key;
  for (const char* key : test_support::kTableKeys)
    EXPECT_TRUE(standalone::HasCatalogueText(key)) << key;
}

TEST(Catalogue, MessagesAreSentencesAndNotTheirKeys) {
  for (const char* key : test_support::kCommandKeys) {
    const std::string text = CatalogueText(key);
    EXPECT_NE(text, key);
    EXPECT_FALSE(text.ends_with("...")) << key;
  }
  for (const char* key : test_support::kPlanKeys)
    EXPECT_TRUE(CatalogueText(key).ends_with(".")) << key;
}

TEST(Catalogue, NoKeyStandsTwice) {
  std::map<std::string_view, int> counts;
  for (const CatalogueEntry& entry : AllEntries())
    EXPECT_EQ(++counts[entry.key], 1) << entry.key;
}

/// Some keys are sent with a detail that their template doesn't name: what a plan was refused for, the case
/// of an invalid value, and what a keyword takes.
bool HasDetail(std::string_view key, char index) {
  if (key.starts_with("Invalid value in ")) return index == '2';
  if (key == "Parameter ^1 of subcommand ^2 cannot take value ^3...") return index == '4';
  return index == '1' && std::any_of(std::begin(test_support::kPlanKeys), std::end(test_support::kPlanKeys),
                                     [key](const char* known) { return key == known; });
}

TEST(Catalogue, TextsUseNoArgumentThatTheirKeyIsSentWithout) {
  for (const CatalogueEntry& entry : AllEntries()) {
    const std::set<char> given = Arguments(entry.key);
    for (const char index : Arguments(entry.text)) {
      EXPECT_TRUE(given.contains(index) || HasDetail(entry.key, index)) << entry.key << " -> ^" << index;
    }
  }
}

TEST(Catalogue, TheLabelsOfTheReferenceValuesAreShownAsTheyStand) {
  for (const char* label : {"B",
                            "Std. Error",
                            "Lower",
                            "Upper",
                            "t",
                            "degrees of freedom",
                            "Significance",
                            "Exp(B)",
                            "Design Effect",
                            "Square Root Design Effect",
                            "Valid",
                            "Sampling Design DF",
                            "N",
                            "Weighted Count",
                            "Mean",
                            "Overall Percent",
                            "Percent Correct",
                            "Wald F",
                            "df1",
                            "Sig.",
                            "(Intercept)",
                            "(Corrected Model)",
                            "(Model)",
                            "Pseudo -2 Log Likelihood",
                            "L^1",
                            "Difference (Estimate - Hypothesized)",
                            "Odds Ratio",
                            "^1 vs. ^2"}) {
    EXPECT_EQ(CatalogueText(label), label);
  }
}

TEST(Catalogue, AKeyWithoutAnEntryIsItsOwnText) {
  EXPECT_EQ(CatalogueText("no such key"), "no such key");
}

}  // namespace
