// Writing a file so that it is either whole or not there.
#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>

namespace standalone {

/// Calls `write` on a temporary file beside the target, then renames it over the target. On failure nothing
/// of the new text is left, a target that was there before is untouched, and the text says what went wrong;
/// empty on success. The target keeps its permissions when it was there. A target that is no regular file (a
/// device or a pipe) is written directly. A symbolic link is followed.
std::string WriteFileAtomically(const std::filesystem::path& target,
                                const std::function<void(std::ostream&)>& write);

}  // namespace standalone
