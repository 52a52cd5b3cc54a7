// Print formats by their names.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/data.h"

namespace standalone {

/// "F8.2", "A12", "AHEX24" in any case; none for anything else, and for formats beyond the limits: numbers
/// are at most 40 wide with at most 16 decimals, fewer than the width; strings have at most 32767 bytes.
std::optional<host::VORN_Format> FormatFromText(std::string_view text);

/// The name of a format. Formats of other types print as F and have its name.
std::string FormatText(const host::VORN_Format& format);

/// Bytes of a string format's values.
int FormatBytes(const host::VORN_Format& format);

}  // namespace standalone
