# Debian packages: `zerb` to use it, `libzerb-dev` to build programs with it. tools/make-packages makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zerb)
set(CPACK_PACKAGE_CONTACT "The Zerb developers <zerb@localhost>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)   # so that other packages learn which one has a library
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME zerb)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# The font is looked for by name, so that the linker does not know of it.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "fonts-dejavu-core")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
"Types, creators, Finder flags, exact dates, locks and resource forks on
ordinary Linux disks, where file servers and archivers keep them too: the
program zerb, its plug-in, and the libraries that applications written to
these services are linked with.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzerb-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "zerb (= ${PROJECT_VERSION}-1)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"What building applications with zerb takes: headers for C++ and C, and
descriptions for CMake and pkg-config, with examples.")
install(FILES LICENSE RENAME copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libzerb-dev COMPONENT development)

include(CPack)
