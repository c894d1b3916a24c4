# vok_mutation_tests, for scripts/mutate.py: the tests of text, CSV and DBF in one small program, which is built and
# run anew for every mutant. All is optimised a little and has no debug information: compiling, linking and the
# slow twins take about the same time then.

include(cmake/googletest.cmake)

file(GLOB mutation_sources CONFIGURE_DEPENDS
  tests/twins_test.cpp
  tests/core/tableReader*_test.cpp
  tests/core/valueTable_test.cpp
  tests/platform/asciiSteps_test.cpp
  tests/platform/codePages_contract_test.cpp
  tests/platform/singleByteEncoder_test.cpp
  tests/readers/csv*_test.cpp
  tests/readers/tableReader_csv*_test.cpp
  tests/readers/tableReader_dbf*_test.cpp
  tests/suite/dbf*_test.cpp
  tests/text/*_test.cpp
  tests/writers/tableWriter_csv_test.cpp
  tests/writers/tableWriter_dbf_test.cpp
  tests/support/*.cpp
  tests/support/${vok_system}/*.cpp)
list(REMOVE_ITEM mutation_sources ${fuzz_support} ${PROJECT_SOURCE_DIR}/tests/support/odbcScript.cpp)
add_executable(vok_mutation_tests ${mutation_sources})
target_compile_definitions(vok_mutation_tests PRIVATE VOK_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
target_link_libraries(vok_mutation_tests PRIVATE vok_fuzz_targets gtest_main)
target_precompile_headers(vok_mutation_tests PRIVATE
  <gtest/gtest.h> <algorithm> <array> <cstdint> <functional> <memory> <random> <string> <string_view> <vector>)
foreach(target IN ITEMS vok_platform vok_objects vok_fuzz_targets vok_mutation_tests)
  target_compile_options(${target} PRIVATE -O1)
endforeach()
