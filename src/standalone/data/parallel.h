// Work in equal parts on a few threads, for readers.
#pragma once

#include <cstddef>
#include <functional>

namespace standalone {

/// Runs `part(0)` … `part(count - 1)`, each once, on at most `threads` threads, the caller's among them, and
/// waits. The first exception of a part, by number, is thrown again here.
void RunParts(std::size_t count, int threads, const std::function<void(std::size_t)>& part);

}  // namespace standalone
