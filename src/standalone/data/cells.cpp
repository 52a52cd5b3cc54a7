#include "standalone/data/cells.h"

#include <algorithm>
#include <cstring>

#include "standalone/text/ascii.h"
#include "standalone/text/utf8.h"

namespace standalone {

void PadText(std::string_view text, int width, host::OBS* cells) {
  const std::string_view kept = CutText(text, static_cast<std::size_t>(width));
  // Through all cells, beyond the width: values are compared and hashed cell by cell.
  const std::size_t bytes = static_cast<std::size_t>(host::CellCount(width)) * sizeof(host::OBS);
  char* out = reinterpret_cast<char*>(cells);
  std::memset(std::copy(kept.begin(), kept.end(), out), ' ', bytes - kept.size());
}

std::vector<host::OBS> TextValue(std::string_view text, int width) {
  std::vector<host::OBS> value(static_cast<std::size_t>(host::CellCount(width)));
  PadText(text, width, value.data());
  return value;
}

std::string_view UnpaddedText(const host::OBS* cells, int width) {
  return WithoutTrailingBlanks({reinterpret_cast<const char*>(cells), static_cast<std::size_t>(width)});
}

std::vector<host::OBS> NumberValue(double number) {
  host::OBS cell;
  cell.number = number;
  return {cell};
}

}  // namespace standalone
