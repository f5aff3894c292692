# `cpack -G DEB` in the build folder: one Debian package with the command, the plug-in, the SDK and the documentation.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME patina)
set(CPACK_PACKAGE_VENDOR "Patina")
set(CPACK_PACKAGE_CONTACT "Patina <patina@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "material graphs to Cg shaders and bindings")
set(CPACK_PACKAGE_DESCRIPTION
"Patina turns material graphs into shaders. An artist wires nodes; each node
emits Cg code and bindings, the parameters that artists later set; the host
assembles a vertex and a fragment program out of them.
.
This package contains the command patina, the plug-in with the Core nodes,
example materials, and the SDK for nodes, plug-ins and hosts.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
# neither free nor part of Debian
set(CPACK_DEBIAN_PACKAGE_SECTION non-free/graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "graphviz, libegl1, libgl1-mesa-dri, libopengl0")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cmake, g++, libxml2-dev, nettle-dev")

configure_file(${PROJECT_SOURCE_DIR}/packaging/debian/changelog.in
  ${PROJECT_BINARY_DIR}/packaging/debian/changelog @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/packaging/debian/copyright
  ${PROJECT_BINARY_DIR}/packaging/debian/copyright COPYONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/DebianFiles.cmake.in
  ${PROJECT_BINARY_DIR}/packaging/DebianFiles.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/packaging/DebianFiles.cmake)

include(CPack)
