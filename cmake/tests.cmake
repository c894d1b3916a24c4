# vok_tests: the unit tests, one program over the static library, so that inner parts can be tested too.

set(VOK_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Source folder of GoogleTest")
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${VOK_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

# WHY -O0: what is tested is the library, compiled as it ships. Optimising the tests and GoogleTest too
# more than doubles the time that a full run spends compiling.
set(vok_test_code_options -O0 $<$<CONFIG:RelWithDebInfo>:-g1>)
target_compile_options(gtest PRIVATE ${vok_test_code_options})

file(GLOB test_sources CONFIGURE_DEPENDS
  tests/*.cpp
  tests/core/*.cpp
  tests/text/*.cpp
  tests/readers/*.cpp
  tests/writers/*.cpp
  tests/suite/*.cpp
  tests/platform/*_test.cpp
  tests/capi/*_test.cpp
  tests/reference/*.cpp
  tests/support/*.cpp
  tests/support/${vok_system}/*.cpp)
add_executable(vok_tests ${test_sources})
target_compile_definitions(vok_tests PRIVATE
  VOK_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
  VOK_TEST_FIXTURES="${PROJECT_SOURCE_DIR}/tests/fixtures"
  VOK_EXAMPLES="${PROJECT_SOURCE_DIR}/examples")
target_link_libraries(vok_tests PRIVATE vok_table_rw_vc_static gtest_main)
vok_options(vok_tests)
target_compile_options(vok_tests PRIVATE ${vok_test_code_options})

# A child program for the tests of process.h: it prints the arguments that it was given.
add_executable(echo_arguments tests/platform/echo_arguments.cpp)
target_link_libraries(echo_arguments PRIVATE vok_platform)
vok_options(echo_arguments)
add_dependencies(vok_tests echo_arguments)

# Tests are listed when ctest starts, not while building: under Wine a build has no session to run in.
include(GoogleTest)
# Parameter values stay out of the names: a structure is shown as its bytes, which hold addresses.
gtest_discover_tests(vok_tests NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120)
