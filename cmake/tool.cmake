# vok_table, the command-line tool: a host like any other. It uses the shared library through the public
# headers, and the platform services for its arguments and its output.

# CLI11 is its headers alone, and the code of fmt is built in tools/fmtLibrary.cpp. A cross compiler must not see the
# rest of /usr/include, so the build tree gets a folder with links to these two.
find_path(VOK_CLI11_INCLUDE CLI/CLI.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_path(VOK_FMT_INCLUDE fmt/format.h PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(vok_tool_headers ${PROJECT_BINARY_DIR}/tool_headers)
file(MAKE_DIRECTORY ${vok_tool_headers})
file(CREATE_LINK ${VOK_CLI11_INCLUDE}/CLI ${vok_tool_headers}/CLI SYMBOLIC)
file(CREATE_LINK ${VOK_FMT_INCLUDE}/fmt ${vok_tool_headers}/fmt SYMBOLIC)

file(GLOB tool_sources CONFIGURE_DEPENDS tools/*.cpp)
add_executable(vok_table ${tool_sources})
target_include_directories(vok_table SYSTEM PRIVATE ${vok_tool_headers})
target_link_libraries(vok_table PRIVATE vok_table_rw_vc vok_platform)
vok_options(vok_table)
