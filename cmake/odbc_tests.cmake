# What the tests of ODBC need: the driver of the tests' own and a private configuration of the driver manager,
# with that driver in it and nothing of the machine's.
#
# Under Wine the driver manager below is the system's too, so the driver is compiled for the system there,
# by its own compiler.

set(vok_odbc_tests ${PROJECT_BINARY_DIR}/odbc_tests)
file(MAKE_DIRECTORY ${vok_odbc_tests})
set(vok_odbc_test_driver_source ${PROJECT_SOURCE_DIR}/tests/odbc_driver/odbc_test_driver.cpp)

if(WIN32)
  set(VOK_ODBC_TEST_DRIVER ${vok_odbc_tests}/odbc_test_driver.so)
  find_program(VOK_SYSTEM_CXX NAMES g++ c++ NO_CMAKE_FIND_ROOT_PATH)
  if(VOK_SYSTEM_CXX)
    add_custom_command(OUTPUT ${VOK_ODBC_TEST_DRIVER}
      COMMAND ${VOK_SYSTEM_CXX} -std=c++20 -O1 -shared -fPIC -static-libstdc++ -static-libgcc
        -o ${VOK_ODBC_TEST_DRIVER} ${vok_odbc_test_driver_source}
      DEPENDS ${vok_odbc_test_driver_source} VERBATIM)
    add_custom_target(odbc_test_driver DEPENDS ${VOK_ODBC_TEST_DRIVER})
    add_dependencies(vok_tests odbc_test_driver)
  endif()
else()
  add_library(odbc_test_driver MODULE ${vok_odbc_test_driver_source})
  target_include_directories(odbc_test_driver PRIVATE ${ODBC_INCLUDE_DIRS})
  set_target_properties(odbc_test_driver PROPERTIES
    PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${vok_odbc_tests})
  vok_options(odbc_test_driver)
  # Its own memory management, without that of sanitizers: tests let that of the program fail, and no exception may
  # come through the driver manager.
  target_compile_options(odbc_test_driver PRIVATE -fno-sanitize=all)
  target_link_options(odbc_test_driver PRIVATE
    -fno-sanitize=all -static-libstdc++ -static-libgcc LINKER:-Bsymbolic LINKER:--exclude-libs,ALL)
  add_dependencies(vok_tests odbc_test_driver)
  set(VOK_ODBC_TEST_DRIVER ${vok_odbc_tests}/odbc_test_driver.so)
endif()

file(CONFIGURE OUTPUT ${vok_odbc_tests}/odbcinst.ini @ONLY CONTENT
"[Microsoft Access Driver (*.mdb, *.accdb)]
Description=The tests' own driver
Driver=@VOK_ODBC_TEST_DRIVER@
[Lost driver]
Driver=@vok_odbc_tests@/no_such_library.so
")
# The order counts: readers take the first data source that fits and accepts the file.
file(CONFIGURE OUTPUT ${vok_odbc_tests}/odbc.ini @ONLY CONTENT
"[Lost Excel]
Driver=Lost driver
[Refusing excel and access]
Driver=Microsoft Access Driver (*.mdb, *.accdb)
[Nothing of the kind]
Driver=Lost driver
[Test EXCEL Files]
Driver=Microsoft Access Driver (*.mdb, *.accdb)
[MS Access Tests]
Driver=Microsoft Access Driver (*.mdb, *.accdb)
")
