#include "standalone/text/suggestion.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "standalone/text/utf8.h"

namespace standalone {

namespace {

// Names hold at most 64 bytes: a longer word is no misspelt name, and a hostile one must not cost its length
// squared.
constexpr std::size_t kMaxLength = 80;
constexpr std::size_t kMinPrefix = 3;

std::u32string Folded(std::string_view word) {
  std::u32string codes = DecodeAll(word);
  for (char32_t& code : codes) {
    if (code >= U'a' && code <= U'z') code -= U'a' - U'A';
  }
  return codes;
}

std::size_t LengthDifference(const std::u32string& a, const std::u32string& b) {
  return a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
}

std::size_t Distance(const std::u32string& a, const std::u32string& b, std::size_t limit) {
  if (LengthDifference(a, b) > limit) return limit + 1;
  // Rows i-2, i-1 and i of the table whose cell (i, j) is the distance of a's first i and b's first j
  // characters.
  std::vector<std::size_t> before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    std::size_t smallest = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
      const bool isExchange = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isExchange) row[j] = std::min(row[j], before[j - 2] + 1);
      smallest = std::min(smallest, row[j]);
    }
    // An exchange may still reach back over one row, at the price of one more edit.
    const std::size_t smallestOfLast = *std::min_element(last.begin(), last.end());
    if (smallest > limit && smallestOfLast >= limit) return limit + 1;
    std::swap(before, last);
    std::swap(last, row);
  }
  return std::min(last[b.size()], limit + 1);
}

/// The one candidate that begins with the word, or empty.
std::string OnlyCompletion(const std::u32string& word, std::span<const std::string> candidates) {
  if (word.size() < kMinPrefix) return {};
  std::string completion;
  for (const std::string& candidate : candidates) {
    if (!Folded(candidate).starts_with(word)) continue;
    if (!completion.empty()) return {};
    completion = candidate;
  }
  return completion;
}

}  // namespace

std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit) {
  return Distance(Folded(a), Folded(b), limit);
}

std::string NearestWord(std::string_view word, std::span<const std::string> candidates) {
  if (word.empty() || word.size() > kMaxLength * 4) return {};
  const std::u32string sought = Folded(word);
  if (sought.size() > kMaxLength) return {};

  const std::string* nearest = nullptr;
  std::size_t smallest = kMaxLength;
  for (const std::string& candidate : candidates) {
    if (candidate.empty() || candidate.size() > kMaxLength * 4) continue;
    const std::u32string known = Folded(candidate);
    const std::size_t limit = std::max(sought.size(), known.size()) / 3;
    const std::size_t distance = Distance(sought, known, limit);
    if (distance <= limit && distance < smallest) {
      smallest = distance;
      nearest = &candidate;
    }
  }
  return nearest != nullptr ? *nearest : OnlyCompletion(sought, candidates);
}

}  // namespace standalone
