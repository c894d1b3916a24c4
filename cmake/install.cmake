# Installation: the library with its import library, the tool, the public headers.

include(GNUInstallDirs)

# The installed tool finds the library beside itself or in the library folder next door.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR}
  OUTPUT_VARIABLE vok_libdir_from_bindir)
set_target_properties(vok_table PROPERTIES INSTALL_RPATH "$ORIGIN;$ORIGIN/${vok_libdir_from_bindir}")

install(TARGETS vok_table_rw_vc vok_table vok_xls2csv
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(header IN LISTS vok_public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vok_table_rw_vc/${folder})
endforeach()
