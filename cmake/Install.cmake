# `cmake --install`: the command, the Core plug-in, the SDK for find_package(patina), documentation and examples.

include(CMakePackageConfigHelpers)

install(TARGETS materialgraph patina_host
  EXPORT patinaTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/patina)
install(TARGETS corenodes LIBRARY DESTINATION lib/patina/plugins)
install(TARGETS patina RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/patina)
install(EXPORT patinaTargets NAMESPACE patina:: DESTINATION ${package_directory})
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/patinaConfig.cmake.in ${PROJECT_BINARY_DIR}/patinaConfig.cmake
  INSTALL_DESTINATION ${package_directory})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/patinaConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/patinaConfig.cmake ${PROJECT_BINARY_DIR}/patinaConfigVersion.cmake
  ${CMAKE_CURRENT_LIST_DIR}/FindNettle.cmake
  DESTINATION ${package_directory})

install(FILES docs/patina.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES tools/patina/completions/patina.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  RENAME patina)
install(FILES tools/patina/completions/_patina DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)

# laid out like the tree, so that the documents' links lead somewhere in both
install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES bench/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/bench)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN "*.1" EXCLUDE)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN build EXCLUDE)
