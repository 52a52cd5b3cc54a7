// Conversion between the host's text encoding (UTF-8) and UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// UTF-16 to UTF-8; an unpaired surrogate becomes U+FFFD.
std::string VORNMBU16ToGeneric(std::u16string_view text);
/// UTF-8 to UTF-16; an invalid byte becomes U+FFFD.
std::u16string VORNMBGenericToU16(std::string_view text);

}  // namespace host
