#include "standalone/command/parser_keys.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

/// The arguments ^1 to ^9 that a text names.
std::set<char> ArgumentsOf(std::string_view text) {
  std::set<char> arguments;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '^') arguments.insert(text[i + 1]);
  }
  return arguments;
}

TEST(ParserCatalogue, HasASentenceOfItsOwnForEachKey) {
  std::set<std::string> seen;
  for (const standalone::CatalogueEntry& entry : standalone::ParserCatalogue()) {
    const std::string text = entry.text;
    EXPECT_TRUE(seen.insert(entry.key).second) << entry.key;
    EXPECT_NE(text, entry.key);
    EXPECT_TRUE(text.ends_with('.')) << text;
    EXPECT_EQ(text.find("..."), std::string::npos) << text;
    // Every argument of the key is told, and none that the key hasn't.
    EXPECT_EQ(ArgumentsOf(text), ArgumentsOf(entry.key)) << text;
  }
  EXPECT_EQ(seen.size(), standalone::ParserCatalogue().size());
  EXPECT_TRUE(seen.contains(standalone::keys::kParenthesisNotClosed));
}

}  // namespace
