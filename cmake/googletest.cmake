# GoogleTest, compiled from its sources with this build's own compiler and options.

set(VOK_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "Source folder of GoogleTest")
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${VOK_GOOGLETEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
