# The fuzz targets: one library of all (fuzz/targets.h), and a program that runs them. Under VOK_FUZZ that is
# vok_fuzz over libFuzzer, else vok_replay, which runs given inputs, and the tests use the library too.
#
# WHY one program: a target is chosen when it starts, and a program for each would link the library 14 times.

if(VOK_FUZZ AND NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  message(FATAL_ERROR "Fuzzing needs clang++ (preset fuzz)")
endif()

file(GLOB fuzz_sources CONFIGURE_DEPENDS fuzz/*_fuzz.cpp)
set(fuzz_support)  # of the tests' own, which do not compile it again
foreach(name IN ITEMS csvComparison micromineBuilder tableText temporaryFolder workbookBuilders)
  list(APPEND fuzz_support ${PROJECT_SOURCE_DIR}/tests/support/${name}.cpp)
endforeach()
foreach(name IN ITEMS csvTwin micromineTwin petrelTwin textTwin utf8 xmlTwin)
  list(APPEND fuzz_support ${PROJECT_SOURCE_DIR}/tests/reference/${name}.cpp)
endforeach()
add_library(vok_fuzz_targets STATIC fuzz/fuzzing.cpp fuzz/workbookChecks.cpp ${fuzz_sources} ${fuzz_support})
target_link_libraries(vok_fuzz_targets PUBLIC vok_table_rw_vc_static vok_converter_parts ZLIB::ZLIB)
vok_options(vok_fuzz_targets)

if(NOT VOK_FUZZ)
  add_executable(vok_replay fuzz/replay_main.cpp)
  target_link_libraries(vok_replay PRIVATE vok_fuzz_targets)
  vok_options(vok_replay)
  return()
endif()

# The library itself is compiled for coverage here, so this build stands apart from the others. The twins are
# not: what they find is what the library finds.
set(vok_fuzz_checks address,undefined)
foreach(target IN ITEMS vok_platform vok_objects vok_converter_parts)
  target_compile_options(${target} PRIVATE
    -fsanitize=fuzzer-no-link,${vok_fuzz_checks} -fno-sanitize-recover=all)
endforeach()
add_executable(vok_fuzz fuzz/libfuzzer_main.cpp)
foreach(target IN ITEMS vok_fuzz_targets vok_fuzz)
  target_compile_options(${target} PRIVATE -fsanitize=${vok_fuzz_checks} -fno-sanitize-recover=all)
endforeach()
target_link_options(vok_fuzz PRIVATE -fsanitize=fuzzer,${vok_fuzz_checks})
target_link_libraries(vok_fuzz PRIVATE vok_fuzz_targets)
vok_options(vok_fuzz)
