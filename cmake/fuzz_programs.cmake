# The targets of fuzz/ as programs: the fuzzers themselves, and the programs that run the kept inputs.

find_package(nlohmann_json REQUIRED)

set(TAVO_FUZZ_TARGETS command csv plan schema vdt)

# tavo_fuzz_programs(<prefix> <source…>): a program <prefix><target> for each target; the sources are added to each.
function(tavo_fuzz_programs prefix)
  set(fuzz ${CMAKE_SOURCE_DIR}/fuzz)
  set(tables ${CMAKE_SOURCE_DIR}/tests/standalone/files)
  add_library(${prefix}common STATIC ${fuzz}/target.cpp ${fuzz}/table_checks.cpp ${tables}/sample_tables.cpp)
  target_include_directories(${prefix}common PUBLIC ${fuzz} ${tables} ${CMAKE_SOURCE_DIR}/tests/support
                             ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${prefix}common PUBLIC tavo_module tavo_standalone nlohmann_json::nlohmann_json)
  foreach(target ${TAVO_FUZZ_TARGETS})
    add_executable(${prefix}${target} ${fuzz}/fuzz_${target}.cpp ${ARGN})
    target_link_libraries(${prefix}${target} PRIVATE ${prefix}common)
  endforeach()
endfunction()
