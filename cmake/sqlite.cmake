# vok_sqlite: SQLite for suite/io. On Linux the system's shared library; on Windows, where no package has
# one, compiled into the DLL from the source package of the same version (scripts/make_library_source.sh).
#
# It answers the same on both: the options below are those of Debian's library, read off its
# PRAGMA compile_options, but for loading extensions, which would bring foreign code into the host.

if(NOT WIN32)
  find_package(SQLite3 REQUIRED)
  add_library(vok_sqlite INTERFACE)
  target_link_libraries(vok_sqlite INTERFACE SQLite::SQLite3)
  return()
endif()

set(VOK_SQLITE_SOURCE ${PROJECT_SOURCE_DIR}/build/sqlite CACHE PATH
  "Folder of SQLite's amalgamation, made there when it is missing")
find_program(VOK_BASH bash REQUIRED)
execute_process(
  COMMAND ${VOK_BASH} ${PROJECT_SOURCE_DIR}/scripts/make_library_source.sh sqlite
    ${VOK_SQLITE_SOURCE}
  RESULT_VARIABLE failure
  ERROR_VARIABLE messages)
if(failure)
  message(FATAL_ERROR "${messages}")
endif()

add_library(vok_sqlite STATIC ${VOK_SQLITE_SOURCE}/sqlite3.c)
target_include_directories(vok_sqlite SYSTEM PUBLIC ${VOK_SQLITE_SOURCE})
target_compile_definitions(vok_sqlite PRIVATE
  SQLITE_OMIT_LOAD_EXTENSION
  SQLITE_OMIT_LOOKASIDE
  SQLITE_ENABLE_COLUMN_METADATA
  SQLITE_ENABLE_DBSTAT_VTAB
  SQLITE_ENABLE_FTS3
  SQLITE_ENABLE_FTS3_PARENTHESIS
  SQLITE_ENABLE_FTS3_TOKENIZER
  SQLITE_ENABLE_FTS4
  SQLITE_ENABLE_FTS5
  SQLITE_ENABLE_MATH_FUNCTIONS
  SQLITE_ENABLE_PREUPDATE_HOOK
  SQLITE_ENABLE_RTREE
  SQLITE_ENABLE_SESSION
  SQLITE_ENABLE_STMTVTAB
  SQLITE_ENABLE_UNLOCK_NOTIFY
  SQLITE_ENABLE_UPDATE_DELETE_LIMIT
  SQLITE_HAVE_ISNAN
  SQLITE_LIKE_DOESNT_MATCH_BLOBS
  SQLITE_MAX_DEFAULT_PAGE_SIZE=32768
  SQLITE_MAX_SCHEMA_RETRY=25
  SQLITE_MAX_VARIABLE_NUMBER=250000
  SQLITE_SECURE_DELETE
  SQLITE_SOUNDEX
  SQLITE_TEMP_STORE=1
  SQLITE_THREADSAFE=1
  SQLITE_USE_URI)
# Somebody else's code: its warnings are not this project's. -O2 in every kind of build, as its package has.
target_compile_options(vok_sqlite PRIVATE -w -O2)
set_target_properties(vok_sqlite PROPERTIES C_VISIBILITY_PRESET hidden)
