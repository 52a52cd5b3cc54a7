#include "standalone/data/row_slices.h"

#include <algorithm>

#include "standalone/data/parallel.h"
#include "standalone/text/utf8.h"

namespace standalone {

namespace {

constexpr std::size_t kLeastPart = std::size_t{1} << 20;

struct PartCounts {
  std::size_t quotes = 0;
  std::size_t lineFeeds = 0;
};

/// Counts in blocks whose counters fit a byte, which compilers turn into vector instructions.
PartCounts CountPart(std::string_view text) {
  constexpr std::size_t kBlock = 240;
  PartCounts counts;
  std::size_t offset = 0;
  while (offset < text.size()) {
    const std::size_t stop = std::min(offset + kBlock, text.size());
    unsigned char quotes = 0;
    unsigned char lineFeeds = 0;
    for (; offset < stop; ++offset) {
      quotes = static_cast<unsigned char>(quotes + (text[offset] == '"'));
      lineFeeds = static_cast<unsigned char>(lineFeeds + (text[offset] == '\n'));
    }
    counts.quotes += quotes;
    counts.lineFeeds += lineFeeds;
  }
  return counts;
}

std::size_t PartStart(std::size_t part, std::size_t count, std::size_t size) {
  return size / count * part;
}

std::string_view Part(std::string_view text, std::size_t part, std::size_t count) {
  const std::size_t begin = PartStart(part, count, text.size());
  const std::size_t end = part + 1 == count ? text.size() : PartStart(part + 1, count, text.size());
  return text.substr(begin, end - begin);
}

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// Start of a part, moved on to the start of a character; a run of more than 3 continuation bytes is no
/// character.
std::size_t CharacterStart(std::string_view text, std::size_t offset) {
  for (int i = 0; i < 3 && offset > 0 && offset < text.size() && IsContinuation(text[offset]); ++i)
    ++offset;
  return offset;
}

/// The place behind the row that is under way at `offset`, with `quotes` quotes before it.
std::size_t RowEndBehind(std::string_view text, std::size_t offset, std::size_t quotes) {
  bool isQuoted = quotes % 2 != 0;
  for (; offset < text.size(); ++offset) {
    if (text[offset] == '"') isQuoted = !isQuoted;
    if (text[offset] == '\n' && !isQuoted) return offset + 1;
  }
  return text.size();
}

}  // namespace

std::size_t FindBadByteInParts(std::string_view text, int threads) {
  const std::size_t count =
      std::clamp<std::size_t>(text.size() / kLeastPart, 1, static_cast<std::size_t>(threads));
  std::vector<std::size_t> found(count, text.size());
  RunParts(count, threads, [&](std::size_t i) {
    const std::size_t begin = CharacterStart(text, PartStart(i, count, text.size()));
    const std::size_t end =
        i + 1 == count ? text.size() : CharacterStart(text, PartStart(i + 1, count, text.size()));
    const std::size_t bad = FindBadByte(text.substr(begin, end - begin));
    if (bad < end - begin) found[i] = begin + bad;
  });
  return *std::min_element(found.begin(), found.end());
}

std::vector<RowSlice> CutIntoSlices(std::string_view text, std::size_t count, std::size_t cellsPerRow,
                                    int threads) {
  std::vector<PartCounts> counts(count);
  RunParts(count, threads, [&](std::size_t i) { counts[i] = CountPart(Part(text, i, count)); });

  std::vector<RowSlice> slices;
  std::size_t begin = 0;
  std::size_t quotes = 0;
  for (std::size_t i = 0; i < count; ++i) {
    quotes += counts[i].quotes;
    const std::size_t partEnd = PartStart(i + 1, count, text.size());
    const std::size_t end = i + 1 == count    ? text.size()
                            : begin > partEnd ? begin
                                              : RowEndBehind(text, partEnd, quotes);
    if (end == begin) continue;
    // The slice's own line feeds: those of its part, and at most one row's worth at the borders.
    const std::size_t lineFeeds = begin == 0 && end == text.size()
                                      ? counts[i].lineFeeds
                                      : CountPart(text.substr(begin, end - begin)).lineFeeds;
    const std::size_t rowBound = std::min(lineFeeds, (end - begin) / cellsPerRow) + 1;
    slices.push_back({text.data() + begin, text.data() + end, rowBound});
    begin = end;
  }
  return slices;
}

}  // namespace standalone
