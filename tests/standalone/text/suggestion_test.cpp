#include "standalone/text/suggestion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using standalone::EditDistance;
using standalone::NearestWord;

/// The definition, letter by letter: slow and obvious.
std::size_t DistanceByDefinition(const std::string& a, const std::string& b) {
  if (a.empty() || b.empty()) return a.size() + b.size();
  const std::string a1 = a.substr(1), b1 = b.substr(1);
  std::size_t best = std::min(DistanceByDefinition(a1, b) + 1, DistanceByDefinition(a, b1) + 1);
  best = std::min(best, DistanceByDefinition(a1, b1) + (a[0] == b[0] ? 0 : 1));
  if (!a1.empty() && !b1.empty() && a[0] == b[1] && a[1] == b[0]) {
    best = std::min(best, DistanceByDefinition(a.substr(2), b.substr(2)) + 1);
  }
  return best;
}

TEST(EditDistance, CountsInsertionsDeletionsReplacementsAndExchanges) {
  EXPECT_EQ(EditDistance("PLAN", "plan", 9), 0u);
  EXPECT_EQ(EditDistance("PLN", "PLAN", 9), 1u);
  EXPECT_EQ(EditDistance("PLAAN", "PLAN", 9), 1u);
  EXPECT_EQ(EditDistance("PLIN", "PLAN", 9), 1u);
  EXPECT_EQ(EditDistance("PALN", "PLAN", 9), 1u);
  EXPECT_EQ(EditDistance("kitten", "sitting", 9), 3u);
  EXPECT_EQ(EditDistance("", "abc", 9), 3u);
  EXPECT_EQ(EditDistance("\xC3\xA9t\xC3\xA9", "ete", 9), 2u);  // characters, not bytes
}

TEST(EditDistance, AgreesWithItsDefinitionAndStopsAtTheLimit) {
  std::mt19937 random(20240611);
  const auto word = [&] {
    std::string text(random() % 7, 'a');
    for (char& c : text)
      c = static_cast<char>('a' + random() % 3);
    return text;
  };
  for (int trial = 0; trial < 2000; ++trial) {
    const std::string a = word(), b = word();
    const std::size_t limit = random() % 6;
    EXPECT_EQ(EditDistance(a, b, limit), std::min(DistanceByDefinition(a, b), limit + 1))
        << a << " " << b << " " << limit;
  }
}

TEST(NearestWord, SuggestsWhatLiesWithinAThirdOfTheLength) {
  const std::vector<std::string> known = {"PLAN", "PRINT", "CRITERIA", "STATISTICS", "SE", "DF"};
  EXPECT_EQ(NearestWord("PLNA", known), "PLAN");
  EXPECT_EQ(NearestWord("print", known), "PRINT");
  EXPECT_EQ(NearestWord("CRITERA", known), "CRITERIA");
  EXPECT_EQ(NearestWord("STATISITC", known), "STATISTICS");
  EXPECT_EQ(NearestWord("CRUD", known), "");
  EXPECT_EQ(NearestWord("SD", known), "");  // two letters leave no room for a mistake
  EXPECT_EQ(NearestWord("", known), "");
  EXPECT_EQ(NearestWord("PLAN", {}), "");
}

TEST(NearestWord, TakesTheNearestAndTheFirstOfEquals) {
  const std::vector<std::string> known = {"COVB", "CORB", "CORBA"};
  EXPECT_EQ(NearestWord("COLB", known), "COVB");
  EXPECT_EQ(NearestWord("CORBB", known), "CORB");
  EXPECT_EQ(NearestWord("CORB", known), "CORB");
}

TEST(NearestWord, CompletesAWordThatBeginsExactlyOneCandidate) {
  const std::vector<std::string> known = {"STATISTICS", "CRITERIA", "PREDPROB", "PREDVAL"};
  EXPECT_EQ(NearestWord("stat", known), "STATISTICS");
  EXPECT_EQ(NearestWord("CR", known), "");
  EXPECT_EQ(NearestWord("PRED", known), "");
}

TEST(NearestWord, HasNoAnswerForWordsLongerThanAnyName) {
  const std::vector<std::string> known = {std::string(1000000, 'x'), "PLAN"};
  EXPECT_EQ(NearestWord(std::string(1000000, 'x'), known), "");
  EXPECT_EQ(NearestWord("PLN", known), "PLAN");
}

}  // namespace
