// Text on a grid of characters, as a terminal shows it: widths, padding, lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace standalone {

/// Columns that a UTF-8 text takes on a terminal: combining marks take none, wide East Asian characters and
/// pictographs two, all others one; an invalid byte takes one.
std::size_t DisplayWidth(std::string_view text);

/// The text cut to a width, with "…" in the place of what was cut.
std::string CutToWidth(std::string_view text, std::size_t width);

/// Padded with blanks to a width; longer text stays.
std::string PadRight(std::string_view text, std::size_t width);
std::string PadLeft(std::string_view text, std::size_t width);
std::string PadCentre(std::string_view text, std::size_t width);

/// Lines of at most `width` columns, broken at blanks and line feeds; a longer word stands on a line of its
/// own and is cut into pieces when it is longer than a line. At least one line, maybe empty.
std::vector<std::string> Wrap(std::string_view text, std::size_t width);

/// The lines of a text as they stand, without their line feeds; none for an empty text.
std::vector<std::string> LinesOf(std::string_view text);

/// Control characters other than line feeds become "?", so that a text from a file can't steer a terminal.
std::string WithoutControls(std::string_view text);

}  // namespace standalone
