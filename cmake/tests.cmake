# vok_tests: the unit tests, one program over the static library, so that inner parts can be tested too.

include(cmake/googletest.cmake)

# WHY not as the library: optimising the tests and GoogleTest fully would double the time that a full
# run spends compiling. -O1 for the tests, because the library may end up with their copies of its own
# inline functions, and those are to be optimised ones.
set(vok_less_debug_information $<$<CONFIG:RelWithDebInfo>:-g1>)
target_compile_options(gtest PRIVATE -O0 ${vok_less_debug_information})
if(VOK_COVERAGE)
  target_compile_options(gtest PRIVATE -fno-profile-arcs -fno-test-coverage)
  target_compile_options(gtest_main PRIVATE -fno-profile-arcs -fno-test-coverage)
endif()

file(GLOB test_sources CONFIGURE_DEPENDS
  tests/*.cpp
  tests/core/*.cpp
  tests/database/*.cpp
  tests/text/*.cpp
  tests/readers/*_test.cpp
  tests/writers/*.cpp
  tests/writers/xlsx/*.cpp
  tests/suite/*.cpp
  tests/converter/*.cpp
  tests/platform/*_test.cpp
  tests/capi/*_test.cpp
  tests/reference/*.cpp
  tests/support/*.cpp
  tests/support/${vok_system}/*.cpp)
list(REMOVE_ITEM test_sources ${fuzz_support})
add_executable(vok_tests ${test_sources})
target_compile_definitions(vok_tests PRIVATE
  VOK_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
  VOK_TEST_FIXTURES="${PROJECT_SOURCE_DIR}/tests/fixtures"
  VOK_EXAMPLES="${PROJECT_SOURCE_DIR}/examples"
  VOK_ODBC_TESTS="${PROJECT_BINARY_DIR}/odbc_tests")
target_link_libraries(vok_tests PRIVATE vok_fuzz_targets gtest_main)
vok_options(vok_tests)
target_compile_options(vok_tests PRIVATE $<$<NOT:$<CONFIG:Debug>>:-O1>
  ${vok_less_debug_information})

# What every test includes is parsed once: a third of the time that a full run spends compiling.
target_precompile_headers(vok_tests PRIVATE
  <gtest/gtest.h> <algorithm> <array> <cstdint> <functional> <memory> <random> <string> <string_view> <vector>)
# g++ 12 takes moves of strings for accesses out of bounds. It keeps that to itself in headers of the system, but not
# in those that come from the precompiled one.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vok_tests PRIVATE -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
endif()

# A child program for the tests of process.h: it prints the arguments that it was given.
add_executable(echo_arguments tests/platform/echo_arguments.cpp)
target_link_libraries(echo_arguments PRIVATE vok_platform)
vok_options(echo_arguments)
add_dependencies(vok_tests echo_arguments)

# A child program for the tests of the spreadsheet reader: it records how it was called and leaves files, as
# the converter does. And the converter itself, for the tests that go through it.
add_executable(fake_converter tests/readers/fake_converter.cpp)
target_link_libraries(fake_converter PRIVATE vok_converter_parts)
vok_options(fake_converter)
add_dependencies(vok_tests fake_converter vok_xls2csv)

include(cmake/odbc_tests.cmake)

# Tests are listed when ctest starts, not while building: under Wine a build has no session to run in.
include(GoogleTest)
# Parameter values stay out of the names: a structure is shown as its bytes, which hold addresses.
# Real files are no part of the project; tests that want them are skipped where the folder is missing.
set(VOK_REAL_FILES ${PROJECT_SOURCE_DIR}/../shared/testdata CACHE PATH
  "Folder of real sample files, by format, for tests that use them where they are at hand")
gtest_discover_tests(vok_tests NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
  # One variable alone: of several, discovery at this time drops all but the first.
  PROPERTIES ENVIRONMENT "VOK_REAL_FILES=${VOK_REAL_FILES}")
