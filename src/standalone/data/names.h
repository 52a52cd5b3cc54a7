// Variable names: making legal ones from what a file's header holds.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace standalone {

/// The variables' names for a header.
struct NameList {
  std::vector<std::string> names;    // one per header text: legal, and unique without regard to case
  std::vector<std::size_t> renamed;  // indices of those that differ from their header text
};

/// Makes names from header texts. A text that is a legal name keeps it, the first of equal ones in case of
/// doubt. Illegal characters become underscores, a first character that can't start a name is preceded by
/// "V", an empty text becomes "V" and its place (counted from 1), long ones are cut to 64 bytes, and what is
/// taken then gets "_1", "_2" and so on.
NameList MakeNames(const std::vector<std::string>& headers);

}  // namespace standalone
