# vok_xls2csv.exe, the suite's spreadsheet converter: a program of its own that knows nothing of the library.
# It has this very name on every system, since the reader looks for it beside the suite's main module.
#
# Its parts are a static library, so that the tests can use them one by one.

if(WIN32)
  set(VOK_EXPAT_SOURCE ${PROJECT_SOURCE_DIR}/build/expat CACHE PATH
    "Folder of expat's sources, made there when they are missing")
  find_program(VOK_BASH bash REQUIRED)
  execute_process(
    COMMAND ${VOK_BASH} ${PROJECT_SOURCE_DIR}/scripts/make_library_source.sh expat ${VOK_EXPAT_SOURCE}
    RESULT_VARIABLE failure
    ERROR_VARIABLE messages)
  if(failure)
    message(FATAL_ERROR "${messages}")
  endif()
  add_library(vok_expat STATIC
    ${VOK_EXPAT_SOURCE}/xmlparse.c ${VOK_EXPAT_SOURCE}/xmlrole.c ${VOK_EXPAT_SOURCE}/xmltok.c)
  target_include_directories(vok_expat SYSTEM PUBLIC ${VOK_EXPAT_SOURCE})
  # What expat's own build would find out; XML_CONTEXT_BYTES is Debian's value.
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/expat_config/expat_config.h @ONLY
    CONTENT "#define BYTEORDER 1234\n#define XML_CONTEXT_BYTES 1024\n#define XML_DTD 1\n#define XML_NS 1\n")
  target_include_directories(vok_expat PRIVATE ${PROJECT_BINARY_DIR}/expat_config)
  target_compile_definitions(vok_expat PUBLIC XML_STATIC)
  # Somebody else's code: its warnings are not this project's. -O2 in every kind of build.
  target_compile_options(vok_expat PRIVATE -w -O2)
else()
  find_package(EXPAT REQUIRED)
  add_library(vok_expat INTERFACE)
  target_link_libraries(vok_expat INTERFACE EXPAT::EXPAT)
endif()

file(GLOB converter_sources CONFIGURE_DEPENDS converter/*.cpp converter/*/*.cpp)
list(REMOVE_ITEM converter_sources ${PROJECT_SOURCE_DIR}/converter/main.cpp)
add_library(vok_converter_parts STATIC ${converter_sources})
target_include_directories(vok_converter_parts PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(vok_converter_parts PUBLIC vok_platform PRIVATE vok_expat ZLIB::ZLIB)
vok_options(vok_converter_parts)

if(VOK_FUZZ)
  return()
endif()
add_executable(vok_xls2csv converter/main.cpp)
set_target_properties(vok_xls2csv PROPERTIES SUFFIX .exe)
target_link_libraries(vok_xls2csv PRIVATE vok_converter_parts)
vok_options(vok_xls2csv)
