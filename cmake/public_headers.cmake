# The headers that a host includes: one list for the installation, for the compile-alone test and for
# the examples.
#
# The build tree gets a folder `public_include` with links to these headers and to nothing else. Code
# that stands for a host (examples, C programs, the compile-alone test) sees that folder only, so a
# public header that leans on an inner one fails to compile here and not in the host.

set(vok_public_headers
  platform/vok_basic.h
  platform/vok_export.h
  table_rw/capi/vo_table_reader.h
  table_rw/capi/vo_table_reader_utf.h
  table_rw/capi/vo_table_writer.h
  table_rw/capi/vo_text_list.h
  table_rw/core/tableReader.h
  table_rw/core/tableReaderOptions.h
  table_rw/text/textEncoding.h
  table_rw/writers/tableWriter.h)
file(GLOB vok_database_headers RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS database/*.h)
list(APPEND vok_public_headers ${vok_database_headers})

# Not for a host's own use, but tableReader.h holds its table by value.
list(APPEND vok_public_headers
  platform/memoryRegion.h table_rw/core/valueTable.h table_rw/text/growingArray.h)

# Those of them that plain C can include.
set(vok_public_c_headers
  platform/vok_basic.h platform/vok_export.h
  table_rw/capi/vo_table_reader.h table_rw/capi/vo_table_reader_utf.h
  table_rw/capi/vo_table_writer.h table_rw/capi/vo_text_list.h)

set(vok_public_include ${PROJECT_BINARY_DIR}/public_include)
file(REMOVE_RECURSE ${vok_public_include})
foreach(header IN LISTS vok_public_headers)
  cmake_path(GET header PARENT_PATH folder)
  file(MAKE_DIRECTORY ${vok_public_include}/${folder})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${header} ${vok_public_include}/${header} SYMBOLIC)
endforeach()
