# Installation, by component:
#
#   library      libvok_table_rw_vc.so.1 or vok_table_rw_vc.dll
#   development  public headers, the bindings, the linker's name of the library or the import library, and what
#                find_package(vok_table_rw) and pkg-config read; all of it works wherever the folder is moved
#   tool         vok_table, its manual page and completions
#   converter    vok_xls2csv.exe, which belongs beside the programs that use the library

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The installed tool finds the library beside itself or in the library folder next door.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR}
  OUTPUT_VARIABLE vok_libdir_from_bindir)
set_target_properties(vok_table PROPERTIES INSTALL_RPATH "$ORIGIN;$ORIGIN/${vok_libdir_from_bindir}")

# The manual page and the completions are what the tool itself prints. A cross-built tool cannot print them
# here; users of it ask for them with `vok_table completion powershell`.
if(NOT CMAKE_CROSSCOMPILING)
  set(vok_texts ${PROJECT_BINARY_DIR}/tool_texts)
  set(vok_text_commands)
  foreach(text IN ITEMS "vok_table.1:manual" "vok_table:completion bash" "_vok_table:completion zsh"
      "vok_table.fish:completion fish")
    string(REGEX REPLACE ":.*" "" file "${text}")
    string(REGEX REPLACE ".*:" "" arguments "${text}")
    separate_arguments(arguments)
    list(APPEND vok_text_commands COMMAND $<TARGET_FILE:vok_table> ${arguments} > ${vok_texts}/${file})
  endforeach()
  file(MAKE_DIRECTORY ${vok_texts})
  add_custom_command(TARGET vok_table POST_BUILD ${vok_text_commands} VERBATIM)
  install(FILES ${vok_texts}/vok_table.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
  install(FILES ${vok_texts}/vok_table DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
  install(FILES ${vok_texts}/_vok_table DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tool)
  install(FILES ${vok_texts}/vok_table.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    COMPONENT tool)
endif()

set(vok_include_folder ${CMAKE_INSTALL_INCLUDEDIR}/vok_table_rw_vc)
set(vok_cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/vok_table_rw)
set_target_properties(vok_table_rw_vc PROPERTIES EXPORT_NAME vok_table_rw)
install(TARGETS vok_table_rw_vc EXPORT vok_table_rw
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${vok_include_folder})
install(TARGETS vok_table RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
install(TARGETS vok_xls2csv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT converter)

foreach(header IN LISTS vok_public_headers)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${vok_include_folder}/${folder} COMPONENT development)
endforeach()
# The Python package and the C# source, to be taken from there into a program of one's own.
install(DIRECTORY bindings DESTINATION ${CMAKE_INSTALL_DATADIR}/vok_table_rw_vc COMPONENT development
  PATTERN __pycache__ EXCLUDE
  PATTERN build EXCLUDE
  PATTERN "*.egg-info" EXCLUDE)
if(WIN32)
  # For compilers that make their import libraries of it.
  install(FILES ${vok_definition_file} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endif()

install(EXPORT vok_table_rw NAMESPACE vok_table_rw:: FILE vok_table_rw-targets.cmake
  DESTINATION ${vok_cmake_folder} COMPONENT development)
set(vok_package_files ${PROJECT_BINARY_DIR}/package_files)
file(MAKE_DIRECTORY ${vok_package_files})
file(COPY_FILE ${PROJECT_SOURCE_DIR}/cmake/package/vok_table_rw-config.cmake
  ${vok_package_files}/vok_table_rw-config.cmake ONLY_IF_DIFFERENT)
write_basic_package_version_file(${vok_package_files}/vok_table_rw-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${vok_package_files}/vok_table_rw-config.cmake
  ${vok_package_files}/vok_table_rw-config-version.cmake
  DESTINATION ${vok_cmake_folder} COMPONENT development)

set(vok_pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${vok_pkgconfig_folder}
  OUTPUT_VARIABLE vok_prefix_from_pkgconfig)
configure_file(cmake/package/vok_table_rw.pc.in ${vok_package_files}/vok_table_rw.pc @ONLY)
install(FILES ${vok_package_files}/vok_table_rw.pc DESTINATION ${vok_pkgconfig_folder} COMPONENT development)

include(cmake/packages.cmake)
