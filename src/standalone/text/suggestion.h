// "Did you mean …": the known word nearest to one that was not found.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace standalone {

/// Edits (insertion, deletion, replacement of a character, exchange of two neighbours) that turn one word
/// into the other, without regard to the case of ASCII letters; no pair of characters is edited twice (the
/// restricted distance of Damerau, 1964, and Levenshtein, 1966). A result above `limit` is given as limit
/// + 1.
std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t limit);

/// The candidate with the smallest distance to `word`, the first one of equal candidates. It must lie within
/// a third of the longer word's length; failing that, a word of at least three characters that begins exactly
/// one candidate suggests it. Empty when nothing is near, and for words that are longer than any name.
std::string NearestWord(std::string_view word, std::span<const std::string> candidates);

}  // namespace standalone
