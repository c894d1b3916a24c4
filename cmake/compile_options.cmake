# Compiler options of this project's own targets; GoogleTest and other people's headers keep theirs.

set(vok_warnings_both
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wimplicit-fallthrough -Wcast-align
  -Wformat=2)
set(vok_warnings_cxx -Wold-style-cast -Wnon-virtual-dtor)
set(vok_warnings_c -Wstrict-prototypes -Wmissing-prototypes -Wold-style-definition)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 finds overlapping copies in std::string's own operator+ ("text" + string): its bug 105329.
  list(APPEND vok_warnings_cxx -Wno-restrict)
endif()
if(VOK_WARNINGS_AS_ERRORS)
  list(APPEND vok_warnings_both -Werror)
endif()

add_library(vok_warnings INTERFACE)
target_compile_options(vok_warnings INTERFACE
  ${vok_warnings_both}
  $<$<COMPILE_LANGUAGE:CXX>:${vok_warnings_cxx}>
  $<$<COMPILE_LANGUAGE:C>:${vok_warnings_c}>)

# The sanitizers are for everything in the build: a container that crosses from unchecked code into
# checked code would be reported falsely.
if(VOK_SANITIZE)
  add_compile_options(-fsanitize=${VOK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VOK_SANITIZE})
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

# What is recorded is for everything but GoogleTest (cmake/tests.cmake): a program has one copy of an inline
# function, and that may be a test's. Unoptimised, since an optimiser joins branches and makes others.
if(VOK_COVERAGE)
  add_compile_options(--coverage -fprofile-abs-path -fprofile-update=atomic -O0 -g0)
  add_link_options(--coverage)
endif()

# Options of a program or a library of this project.
function(vok_options target)
  target_link_libraries(${target} PRIVATE vok_warnings)
endfunction()

# The same for code that ends up in the shared library: nothing leaves it unless it is marked.
function(vok_library_options target)
  vok_options(${target})
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    C_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  if(MINGW)
    # A host compiles inline members itself; without this the DLL would export a copy of each.
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fno-keep-inline-dllexport>)
  endif()
endfunction()
