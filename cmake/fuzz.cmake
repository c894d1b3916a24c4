# Fuzz targets: every fuzz/*.cpp is one libFuzzer program over the static library. The library itself is
# compiled for coverage here, so this build stands apart from the others and holds nothing else.

if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  message(FATAL_ERROR "The fuzz targets need clang++ (preset fuzz)")
endif()

set(vok_fuzz_checks address,undefined)
foreach(target IN ITEMS vok_platform vok_objects)
  target_compile_options(${target} PRIVATE
    -fsanitize=fuzzer-no-link,${vok_fuzz_checks} -fno-sanitize-recover=all)
endforeach()

file(GLOB fuzz_sources CONFIGURE_DEPENDS fuzz/*.cpp)
foreach(source IN LISTS fuzz_sources)
  cmake_path(GET source STEM name)
  add_executable(${name} ${source})
  target_compile_options(${name} PRIVATE -fsanitize=fuzzer,${vok_fuzz_checks})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer,${vok_fuzz_checks})
  target_link_libraries(${name} PRIVATE vok_table_rw_vc_static)
  vok_options(${name})
endforeach()
