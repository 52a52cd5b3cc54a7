// Cutting a long delimited text into slices that hold whole rows, so that threads can read them side by side.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace standalone {

/// Whole rows of a text, which owns them.
struct RowSlice {
  const char* begin = nullptr;
  const char* end = nullptr;
  std::size_t rowBound = 0;  // no more rows than this
};

/// Offset of the first byte that is NUL or no valid UTF-8, or the text's size (see FindBadByte), with
/// `threads`.
std::size_t FindBadByteInParts(std::string_view text, int threads);

/// Cuts the rows of a text (which a line feed follows) into at most `count` slices of about equal size.
///
/// A line feed ends a row when the number of quotes before it is even: quotes around a cell and the doubled
/// ones inside both come in pairs. In a text whose quotes are wrong the cuts may be too, but only behind the
/// first wrong quote, and the slice that holds it reports it; a reader therefore takes the fault of the
/// earliest slice. `cellsPerRow` bounds the rows: a row of k cells takes at least k bytes.
std::vector<RowSlice> CutIntoSlices(std::string_view text, std::size_t count, std::size_t cellsPerRow,
                                    int threads);

}  // namespace standalone
