// What every fuzz target is made of.
//
// A target takes any bytes, hands them to one entry of the program and checks what must hold whatever the
// bytes are. The fuzzer finds the bytes; the corpus programs (tests/corpus) run those that are kept, without
// the fuzzer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The target: always 0. The bytes are lent.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace fuzz {

/// Ends the program with a message when something that must hold does not: that is how a target reports a
/// finding beside the sanitizers.
void Require(bool holds, std::string_view what);

inline std::string_view TextOf(const std::uint8_t* bytes, std::size_t size) {
  return size == 0 ? std::string_view() : std::string_view(reinterpret_cast<const char*>(bytes), size);
}

}  // namespace fuzz
