# find_package(vok_table_rw) gives the target vok_table_rw::vok_table_rw: the library and its headers, for C
# and, with the compiler that the library was built with, for C++20.
include(${CMAKE_CURRENT_LIST_DIR}/vok_table_rw-targets.cmake)
