// Files that the program itself reads.
#pragma once

#include <iosfwd>
#include <string>

namespace standalone {

/// Reads a text file whole, up to the size that a file of commands may have. The result says what went wrong;
/// empty on success.
std::string ReadWholeFile(const std::string& path, std::string& text);
std::string ReadWholeStream(std::istream& in, std::string& text);

}  // namespace standalone
