# Tests of what a host sees: headers that compile alone, C programs and examples over the shared library,
# the tool's command line, the exported names; and of the project's inner layering.

find_program(VOK_PYTHON python3 REQUIRED)

# The words before a program that runs it here: Wine for Windows programs, nothing otherwise.
set(vok_emulator ${CMAKE_CROSSCOMPILING_EMULATOR})

# --- every public header compiles alone, the C ones also as C -------------------------------------
set(header_check_sources)
foreach(header IN LISTS vok_public_headers)
  string(MAKE_C_IDENTIFIER ${header} name)
  set(languages cpp)
  if(header IN_LIST vok_public_c_headers)
    list(APPEND languages c)
  endif()
  foreach(language IN LISTS languages)
    set(source ${PROJECT_BINARY_DIR}/header_check/${name}.${language})
    # The declaration keeps the file from being empty, which C does not allow.
    file(CONFIGURE OUTPUT ${source} @ONLY
      CONTENT "#include \"@header@\"\n\nextern int compiled_alone_@name@;\n")
    list(APPEND header_check_sources ${source})
  endforeach()
endforeach()
add_library(vok_header_check OBJECT ${header_check_sources})
target_include_directories(vok_header_check PRIVATE ${vok_public_include})
vok_options(vok_header_check)

find_program(VOK_VALGRIND valgrind)
if(WIN32)
  set(VOK_VALGRIND "")
endif()

# --- C programs over the C interface --------------------------------------------------------------
file(GLOB capi_programs CONFIGURE_DEPENDS tests/capi/*.c)
foreach(source IN LISTS capi_programs)
  cmake_path(GET source STEM name)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE vok_table_rw_vc)
  vok_options(${name})
  add_test(NAME capi.${name} COMMAND ${name} ${PROJECT_SOURCE_DIR}/examples)
  # What a host sees that is looked at by valgrind: no complaint, and nothing left at the end.
  if(VOK_VALGRIND)
    add_test(NAME capi.valgrind.${name}
      COMMAND ${VOK_VALGRIND} -q --leak-check=full --show-leak-kinds=all --errors-for-leak-kinds=all
        --error-exitcode=9 --suppressions=${PROJECT_SOURCE_DIR}/tests/capi/valgrind.supp
        $<TARGET_FILE:${name}> ${PROJECT_SOURCE_DIR}/examples)
  endif()
endforeach()

# --- the examples print what the file beside them says --------------------------------------------
file(GLOB example_programs CONFIGURE_DEPENDS examples/*.cpp examples/*.c)
foreach(source IN LISTS example_programs)
  cmake_path(GET source STEM name)
  add_executable(example_${name} ${source})
  target_link_libraries(example_${name} PRIVATE vok_table_rw_vc)
  vok_options(example_${name})
  set(folder ${PROJECT_BINARY_DIR}/example_runs/${name})
  file(MAKE_DIRECTORY ${folder})
  add_test(NAME example.${name}
    COMMAND ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/cmake/compare_output.py
      ${PROJECT_SOURCE_DIR}/examples/${name}.expected
      ${vok_emulator} $<TARGET_FILE:example_${name}> ${PROJECT_SOURCE_DIR}/examples
    WORKING_DIRECTORY ${folder})
endforeach()

# --- the tool's command line ----------------------------------------------------------------------
# The scripts get the tool as one command line in shell syntax; a path with a blank needs its quotes.
set(tool_command $<TARGET_FILE:vok_table>)
if(PROJECT_BINARY_DIR MATCHES " ")
  set(tool_command "'${tool_command}'")
endif()
list(JOIN vok_emulator " " tool_prefix)
if(tool_prefix)
  set(tool_command "${tool_prefix} ${tool_command}")
endif()
file(GLOB tool_tests CONFIGURE_DEPENDS tests/tool/*.py)
foreach(script IN LISTS tool_tests)
  cmake_path(GET script STEM name)
  add_test(NAME tool.${name}
    COMMAND ${VOK_PYTHON} ${script} --tool "${tool_command}" --source ${PROJECT_SOURCE_DIR})
  # The cost: what takes long begins first, so that no core waits for it at the end.
  set_tests_properties(tool.${name} PROPERTIES ENVIRONMENT "VOK_REAL_FILES=${VOK_REAL_FILES}" COST 10)
endforeach()

# --- whole programs while calls of the system fail -------------------------------------------------
# WHY not with sanitizers: theirs is the library that has to be loaded first.
if(NOT WIN32 AND NOT VOK_SANITIZE)
  add_library(failing_calls MODULE tests/support/preload/failing_calls.cpp)
  set_target_properties(failing_calls PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/faults)
  target_link_libraries(failing_calls PRIVATE ${CMAKE_DL_LIBS})
  vok_options(failing_calls)
  # -O1, and nothing that calls the functions which are replaced here.
  target_compile_options(failing_calls PRIVATE -fno-builtin)
  foreach(group Reading Writing Workbooks Memory)
    string(TOLOWER ${group} name)
    add_test(NAME faults.${name}
      COMMAND ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/tests/faults/faults_test.py --tool $<TARGET_FILE:vok_table>
        --converter $<TARGET_FILE:vok_xls2csv> --faults $<TARGET_FILE:failing_calls> ${group})
    set_tests_properties(faults.${name} PROPERTIES COST 10)
  endforeach()
endif()

# --- the exported names, and what the library needs of the system ---------------------------------
if(VOK_SUITE STREQUAL "own")
  add_test(NAME interface.exports
    COMMAND ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/tests/interface/check_exports.py
      --nm ${CMAKE_NM} --objdump ${CMAKE_OBJDUMP} $<TARGET_FILE:vok_table_rw_vc>)
endif()

# --- what one target shows for both: a host without a C compiler, generated tables, the layering, the pages ---
if(NOT WIN32)
  add_test(NAME interface.use_from_python
    COMMAND ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/tests/interface/use_from_python.py
      $<TARGET_FILE:vok_table_rw_vc>)
  add_test(NAME interface.code_page_tables
    COMMAND ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/platform/posix/generate_code_pages.py --check)
  set(check_layers ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/tests/interface/check_layers.py)
  add_test(NAME interface.layers COMMAND ${check_layers} ${PROJECT_SOURCE_DIR})
  add_test(NAME interface.layers_self_test COMMAND ${check_layers} --self-test)
  set(check_behaviours ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/tests/interface/check_behaviours.py)
  add_test(NAME interface.behaviours COMMAND ${check_behaviours} ${PROJECT_SOURCE_DIR})
  add_test(NAME interface.behaviours_self_test COMMAND ${check_behaviours} --self-test)
  set(check_links ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/tests/interface/check_links.py)
  add_test(NAME interface.links COMMAND ${check_links} ${PROJECT_SOURCE_DIR} $<TARGET_FILE:vok_table>)
  add_test(NAME interface.links_self_test COMMAND ${check_links} --self-test)
endif()

# --- installed and used from outside --------------------------------------------------------------
set(install_test ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/tests/install/install_test.py
  --build ${PROJECT_BINARY_DIR} --source ${PROJECT_SOURCE_DIR} --cmake ${CMAKE_COMMAND})
if(WIN32)
  list(APPEND install_test --emulator ${vok_emulator} --toolchain ${CMAKE_TOOLCHAIN_FILE})
  add_test(NAME install.windows COMMAND ${install_test} WindowsZip Folder)
  set_tests_properties(install.windows PROPERTIES COST 10)
else()
  add_test(NAME install.folder COMMAND ${install_test} Folder)
  add_test(NAME install.debian_packages COMMAND ${install_test} DebianPackages)
  set_tests_properties(install.folder install.debian_packages PROPERTIES COST 10)
endif()

# --- what fuzzing begins with, replayed without a fuzzer -------------------------------------------
if(NOT CMAKE_CROSSCOMPILING)
  set(fuzz_seeds ${PROJECT_BINARY_DIR}/fuzz_seeds)
  add_test(NAME fuzz.seeds COMMAND ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/fuzz/make_seeds.py ${fuzz_seeds})
  set_tests_properties(fuzz.seeds PROPERTIES FIXTURES_SETUP fuzz_seeds)
  foreach(source IN LISTS fuzz_sources)
    cmake_path(GET source STEM name)
    string(REPLACE _fuzz "" name ${name})
    add_test(NAME fuzz.replay.${name} COMMAND vok_replay ${name} -d 20 ${fuzz_seeds}/${name})
    set_tests_properties(fuzz.replay.${name} PROPERTIES FIXTURES_REQUIRED fuzz_seeds)
  endforeach()
endif()
