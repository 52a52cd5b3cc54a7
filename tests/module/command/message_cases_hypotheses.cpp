#include "message_cases.h"

namespace command_parser_test {

namespace {

constexpr const char* kNumberKey = "Symbol ^1 in parameter ^2 is not a number, subcommand ^3 ...";
constexpr const char* kValueKey = "Variable ^1 for parameter ^2 has invalid value, subcommand ^3...";
constexpr const char* kSyntaxKey = "Invalid syntax in parameter ^2, symbol ^1, subcommand ^3 ...";
constexpr const char* kBracketKey = "Square brackets required for parameter ^1 in subcommand ^2...";

/// A model of a, b, a*b, b*c and x, with the matrices behind LMATRIX=.
std::string Rows(const std::string& matrices) {
  return "TAVOREG y BY a b c WITH x /MODEL a b a*b b*c x /CUSTOM LMATRIX=" + matrices;
}

/// A command with factors a b g and covariates x z, with the keywords of one ODDSRATIOS.
std::string Odds(const std::string& keywords) {
  return "TAVOREG y BY a b g WITH x z /ODDSRATIOS " + keywords;
}

}  // namespace

std::vector<MessageCase> HypothesisCases() {
  return {
      // CUSTOM as a whole.
      {"Either ^1 or ^2, or both, required for ^3...",
       {"LMATRIX", "KMATRIX", "CUSTOM"},
       "TAVOREG y BY a /^CUSTOM LABEL=''"},
      {"Either ^1 or ^2, or both, required for ^3...",
       {"LMATRIX", "KMATRIX", "CUSTOM 2"},
       "TAVOREG y BY a /CUSTOM KMATRIX=1 /^CUSTOM LABEL='p'"},
      {"Empty label in subcommand ^1 ...", {"CUSTOM"}, "TAVOREG y BY a /CUSTOM LMATRIX=nonsense LABEL=^''"},

      // The rows of L.
      {kSyntaxKey, {";", "LMATRIX", "CUSTOM"}, Rows("a 1 -1 ^;")},
      {kSyntaxKey, {"ALL", "LMATRIX", "CUSTOM"}, Rows("^ALL")},
      {"Invalid type of ^2 row ^1, subcommand ^3 ...", {"*", "LMATRIX", "CUSTOM"}, Rows("^* 1")},
      {"Invalid type of ^2 row ^1, subcommand ^3 ...", {"[", "LMATRIX", "CUSTOM"}, Rows("^[a 1]")},
      {"Intercept cannot be used in ^1, subcommand ^2 ...",
       {"LMATRIX", "CUSTOM"},
       "TAVOREG y BY a /INTERCEPT INCLUDE=NO /CUSTOM LMATRIX=^1"},
      {"Intercept value was expected in ^2 row but ^1 was found, subcommand ^3 ...",
       {"a", "LMATRIX", "CUSTOM"},
       Rows("1; ^a 1 -1")},
      {"Model effect was expected in ^2 row but ^1 was found, subcommand ^3 ...",
       {"ALL", "LMATRIX", "CUSTOM"},
       Rows("a 1 -1; ^ALL 1")},
      {"Model effect was expected in ^2 row but ^1 was found, subcommand ^3 ...",
       {"2", "LMATRIX", "CUSTOM"},
       Rows("a 1 -1; ^2 a 1 -1")},
      {"ALL was expected in ^2 row but ^1 was found, subcommand ^3 ...",
       {"1", "LMATRIX", "CUSTOM"},
       Rows("ALL 1; ^1")},
      {"Effect ^1 in ^2 not in MODEL, subcommand ^3 ...", {"c", "LMATRIX", "CUSTOM"}, Rows("a 1 -1 ^c 1")},
      {"Effect ^1 in ^2 not in MODEL, subcommand ^3 ...", {"a(b)", "LMATRIX", "CUSTOM"}, Rows("^a(b) 1")},
      {"Duplicate effect ^1 in ^2 row, subcommand ^3 ...",
       {"a", "LMATRIX", "CUSTOM"},
       Rows("a 1 -1 ^a 1 -1")},
      {"Duplicate effect ^1 in ^2 row, subcommand ^3 ...",
       {"b BY a", "LMATRIX", "CUSTOM"},
       Rows("a*b 1 ^b BY a 1")},
      {"Different number of values in ^1 for the same effect, subcommand ^2 ...",
       {"LMATRIX", "CUSTOM"},
       Rows("a 1 2; ^a 1 2 3")},
      {"Different number of values in ^1 for the same effect, subcommand ^2 ...",
       {"LMATRIX", "CUSTOM"},
       Rows("ALL 1 2; ALL ^1 2 3")},
      {"Only intercept can be used in ^1, subcommand ^2 ...",
       {"LMATRIX", "CUSTOM"},
       "TAVOREG y /CUSTOM LMATRIX=ALL ^1 2"},
      {"Model effect is opening with ^1, subcommand ^2 ...", {"/", "CUSTOM"}, Rows("1^/3")},
      {"Model effect is opening with ^1, subcommand ^2 ...", {"y", "CUSTOM"}, Rows("^y 1")},
      {"Syntax error in effect ^1, subcommand ^2 ...", {"1", "CUSTOM"}, Rows("a*^1")},

      // Numbers and fractions.
      {"No valid number after symbol ^1 in parameter ^2, subcommand ^3 ...",
       {"a", "LMATRIX", "CUSTOM"},
       Rows("^a")},
      {kNumberKey, {";", "LMATRIX", "CUSTOM"}, Rows("a ^; b 1")},
      {kNumberKey, {"b", "LMATRIX", "CUSTOM"}, Rows("a ^b 1")},
      {kNumberKey, {"a", "LMATRIX", "CUSTOM"}, Rows("ALL 1 2 ^a")},
      {kNumberKey, {"'1'", "LMATRIX", "CUSTOM"}, Rows("ALL ^\"'1'\"")},
      {"No denominator for numerator ^1 in fraction for ^2, subcommand ^3 ...",
       {"-1", "LMATRIX", "CUSTOM"},
       Rows("a 1 ^-1/")},
      {"No denominator for numerator ^1 in fraction for ^2, subcommand ^3 ...",
       {"2", "LMATRIX", "CUSTOM"},
       Rows("a ^2/; a 1")},
      {"Denominator ^1 in fraction for ^2 is not a valid number, subcommand ^3 ...",
       {"x", "LMATRIX", "CUSTOM"},
       Rows("a 1/^x")},
      {"Not positive denominator ^1 in fraction for ^2, subcommand ^3 ...",
       {"0", "LMATRIX", "CUSTOM"},
       Rows("a 1/^0")},
      {"Not positive denominator ^1 in fraction for ^2, subcommand ^3 ...",
       {"-3", "LMATRIX", "CUSTOM"},
       Rows("ALL 1/^-3")},

      // The rows of K.
      {kSyntaxKey, {";", "KMATRIX", "CUSTOM"}, Rows("a 1 -1 KMATRIX=1^;")},
      {kNumberKey, {"a", "KMATRIX", "CUSTOM"}, Rows("a 1 -1 KMATRIX=1; ^a")},
      {"Different number of values in ^1, subcommand ^2 ...",
       {"KMATRIX", "CUSTOM"},
       Rows("a 1 -1 KMATRIX=1; ^2 3")},
      {"Different number of values in ^1, subcommand ^2 ...",
       {"KMATRIX", "CUSTOM"},
       Rows("a 1 -1; a 0 1 KMATRIX=; ^1")},
      {"^2 row should contain ^1 value, subcommand ^3 ...",
       {"1", "KMATRIX", "CUSTOM"},
       Rows("a 1 -1 KMATRIX=1 ^2; 3 4")},
      {"Parameter ^1 is required when parameter ^2 takes value ^4, subcommand ^3...",
       {"LMATRIX", "INTERCEPT INCLUDE", "CUSTOM", "NO"},
       "TAVOREG y BY a /INTERCEPT INCLUDE=NO /CUSTOM ^KMATRIX=3"},
      {"^1 should be scalar when ^2 is not used, subcommand ^3...",
       {"KMATRIX", "LMATRIX", "CUSTOM"},
       "TAVOREG y BY a /CUSTOM ^KMATRIX=1; 2"},
      {"^1 and ^2 different number of rows, subcommand ^3 ...",
       {"LMATRIX", "KMATRIX", "CUSTOM"},
       Rows("a 1 -1; a 0 1 ^KMATRIX=1")},

      // ODDSRATIOS as a whole.
      {"Parameter ^1 of subcommand ^3 cannot be given with parameter ^2...",
       {"FACTOR", "COVARIATE", "ODDSRATIOS"},
       Odds("FACTOR=[a] ^COVARIATE=[x]")},
      {"Either ^1 or ^2, but not both, required for ^3...",
       {"FACTOR", "COVARIATE", "ODDSRATIOS"},
       "TAVOREG y BY a /^ODDSRATIOS CONTROL=[a(1)]"},
      {"Either ^1 or ^2, but not both, required for ^3...",
       {"FACTOR", "COVARIATE", "ODDSRATIOS 2"},
       "TAVOREG y BY a /ODDSRATIOS FACTOR=[a] /^ODDSRATIOS"},

      // Brackets, in each of the three keywords.
      {kBracketKey, {"FACTOR", "ODDSRATIOS"}, Odds("^FACTOR=a")},
      {kBracketKey, {"COVARIATE", "ODDSRATIOS"}, Odds("^COVARIATE=x]")},
      {kBracketKey, {"CONTROL", "ODDSRATIOS"}, Odds("FACTOR=[a] ^CONTROL=[b(1)")},
      {"Parameter ^1 of subcommand ^2 has incorrect value type...",
       {"FACTOR", "ODDSRATIOS"},
       Odds("FACTOR=^[]")},

      // FACTOR.
      {"Variable name ^1 for parameter ^2 of subcommand ^3 is not valid...",
       {"1", "FACTOR", "ODDSRATIOS"},
       Odds("FACTOR=[^1]")},
      {"^1 for ^2 is not a factor variable name, subcommand ^3 ...",
       {"x", "FACTOR", "ODDSRATIOS"},
       Odds("FACTOR=[a ^x]")},
      {"Repeated factor ^1 in parameter ^2, subcommand ^3 ...",
       {"A", "FACTOR", "ODDSRATIOS"},
       Odds("FACTOR=[a(1) b ^A(2)]")},
      {kValueKey, {"a", "FACTOR", "ODDSRATIOS"}, Odds("FACTOR=[^a(]")},
      {kValueKey, {"a", "FACTOR", "ODDSRATIOS"}, Odds("FACTOR=[^a()]")},
      {kValueKey, {"a", "FACTOR", "ODDSRATIOS"}, Odds("FACTOR=[^a(*)]")},
      {kValueKey, {"a", "FACTOR", "ODDSRATIOS"}, Odds("FACTOR=[^a(1]")},
      {kValueKey, {"a", "FACTOR", "ODDSRATIOS"}, Odds("FACTOR=[^a(1 2)]")},
      {"^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...",
       {"a", "one", "FACTOR", "ODDSRATIOS"},
       Odds("FACTOR=[a(^one)]")},
      {"^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...",
       {"a", "LOW", "FACTOR", "ODDSRATIOS 2"},
       Odds("FACTOR=[a] /ODDSRATIOS FACTOR=[a(^'LOW')]")},

      // COVARIATE.
      {"Variable name ^1 for parameter ^2 of subcommand ^3 is not valid...",
       {"(", "COVARIATE", "ODDSRATIOS"},
       Odds("COVARIATE=[x(1) ^(2)]")},
      {"^1 for ^2 is not a covariate variable name, subcommand ^3 ...",
       {"a", "COVARIATE", "ODDSRATIOS"},
       Odds("COVARIATE=[^a]")},
      {"Repeated covariate ^1 in parameter ^2, subcommand ^3 ...",
       {"x", "COVARIATE", "ODDSRATIOS"},
       Odds("COVARIATE=[x(1 2) z ^x]")},
      {kSyntaxKey, {"]", "COVARIATE x", "ODDSRATIOS"}, Odds("COVARIATE=[x(^]")},
      {kSyntaxKey, {"]", "COVARIATE x", "ODDSRATIOS"}, Odds("COVARIATE=[x(1 2^]")},
      {kNumberKey, {")", "COVARIATE x", "ODDSRATIOS"}, Odds("COVARIATE=[x(^)]")},
      {kNumberKey, {"MEAN", "COVARIATE z", "ODDSRATIOS"}, Odds("COVARIATE=[x z(1 ^MEAN)]")},
      {"Parameter ^1 of subcommand ^2 cannot take value ^3...",
       {"COVARIATE x", "ODDSRATIOS", "0", "any other number"},
       Odds("COVARIATE=[x(1 ^-0.0)]")},
      {"^1 for ^2 is not a covariate variable name, subcommand ^3 ...",
       {"q", "COVARIATE", "ODDSRATIOS"},
       Odds("COVARIATE=[x(1 2) ^q]")},

      // CONTROL.
      {"Variable name ^1 for parameter ^2 of subcommand ^3 is not valid...",
       {"=", "CONTROL", "ODDSRATIOS"},
       Odds("FACTOR=[a] CONTROL=[^= 1]")},
      {"^1 specified for ^2 is not a factor or covariate variable name, subcommand ^3 ...",
       {"y", "CONTROL", "ODDSRATIOS"},
       Odds("FACTOR=[a] CONTROL=[^y(1)]")},
      {"Repeated factor ^1 in parameter ^2, subcommand ^3 ...",
       {"b", "CONTROL", "ODDSRATIOS"},
       Odds("FACTOR=[a] CONTROL=[b(1) ^b(2)]")},
      {"Repeated covariate ^1 in parameter ^2, subcommand ^3 ...",
       {"X", "CONTROL", "ODDSRATIOS"},
       Odds("FACTOR=[a] CONTROL=[x(1) ^X(2)]")},
      {kValueKey, {"x", "CONTROL", "ODDSRATIOS"}, Odds("FACTOR=[a] CONTROL=[^x]")},
      {kValueKey, {"b", "CONTROL", "ODDSRATIOS"}, Odds("FACTOR=[a] CONTROL=[^b]")},
      {kValueKey, {"b", "CONTROL", "ODDSRATIOS"}, Odds("FACTOR=[a] CONTROL=[^b(*)]")},
      {kValueKey, {"x", "CONTROL", "ODDSRATIOS"}, Odds("FACTOR=[a] CONTROL=[^x(1]")},
      {kValueKey, {"x", "CONTROL", "ODDSRATIOS"}, Odds("FACTOR=[a] CONTROL=[^x('MEAN')]")},
      {kValueKey, {"x", "CONTROL", "ODDSRATIOS"}, Odds("FACTOR=[a] CONTROL=[^x(HIGH)]")},
      {"^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...",
       {"a", "MEAN", "CONTROL", "ODDSRATIOS"},
       Odds("FACTOR=[b] CONTROL=[a(^MEAN)]")},
      {"^3 variable ^1 has value ^2 of invalid type or format, subcommand ^4...",
       {"g", "north", "CONTROL", "ODDSRATIOS"},
       Odds("FACTOR=[b] CONTROL=[g(^north)]")},
  };
}

}  // namespace command_parser_test
