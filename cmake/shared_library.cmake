# The product: vok_table_rw_vc.dll with its import library, or libvok_table_rw_vc.so.1.

add_library(vok_table_rw_vc SHARED $<TARGET_OBJECTS:vok_objects>)
target_include_directories(vok_table_rw_vc INTERFACE $<BUILD_INTERFACE:${vok_public_include}>)
target_link_libraries(vok_table_rw_vc PRIVATE vok_platform ZLIB::ZLIB ${vok_suite_libraries})
set_target_properties(vok_table_rw_vc PROPERTIES
  LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})

if(WIN32)
  set_target_properties(vok_table_rw_vc PROPERTIES
    PREFIX ""             # the suite loads the DLL by this very name,
    IMPORT_PREFIX lib     # the import library keeps the name that the linker looks for
    DLL_NAME_WITH_SOVERSION OFF)
  set(vok_definition_file ${PROJECT_BINARY_DIR}/lib/vok_table_rw_vc.def)
  target_link_options(vok_table_rw_vc PRIVATE -Wl,--output-def,${vok_definition_file})
else()
  set(vok_exports_map ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(vok_table_rw_vc PRIVATE
    -Wl,--version-script=${vok_exports_map} -Wl,--no-undefined)
  set_property(TARGET vok_table_rw_vc APPEND PROPERTY LINK_DEPENDS ${vok_exports_map})
endif()
