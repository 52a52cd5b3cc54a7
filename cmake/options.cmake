# Flags of every target, and the compiler cache.

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# Missing values and tie rules compare doubles exactly, so no flag may relax floating point.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -fno-fast-math -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  add_compile_options(-Wno-restrict)  # false positives of g++ 12 on "text" + std::string(...), its bug 105651
endif()

if(TAVO_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    message(FATAL_ERROR "TAVO_FUZZ needs clang: -DCMAKE_CXX_COMPILER=clang++ (scripts/fuzz sees to it)")
  endif()
  if(NOT TAVO_SANITIZE)
    set(TAVO_SANITIZE address,undefined)
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# The assertions of calling orders and invariants run wherever a fault is looked for.
if(TAVO_SANITIZE)
  add_compile_options(-UNDEBUG)
  add_compile_options(-fsanitize=${TAVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g1 -O1)
  add_link_options(-fsanitize=${TAVO_SANITIZE})
endif()
