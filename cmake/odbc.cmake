# vok_odbc: the system's ODBC driver manager for suite/io: unixODBC on Linux, odbc32 on Windows, which
# every Windows has; mingw-w64 brings its import library.

add_library(vok_odbc INTERFACE)
if(WIN32)
  target_link_libraries(vok_odbc INTERFACE odbc32)
else()
  find_package(ODBC REQUIRED)
  target_link_libraries(vok_odbc INTERFACE ODBC::ODBC)
endif()
