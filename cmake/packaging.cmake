# Debian packages, one for each component: `zerb` to use it, `libzerbN` to run programs with it, `libzerb-dev` to build them.
# tools/make-packages configures for them, and has CPack make them.
set(ZERB_MAINTAINER "The Zerb developers <maintainers@users.noreply.c-seed-b2ecefbf.example>" CACHE STRING "Who answers for the packages")
set(packagingFolder ${CMAKE_BINARY_DIR}/packaging)
set(packageOfLibraries libzerb${ZERB_INTERFACE_VERSION})
set(sameVersionOfLibraries "${packageOfLibraries} (= ${PROJECT_VERSION}-1)")

# What packages have besides, as Debian wants it: two changelogs, a copyright, and what lintian may pass over.
file(READ ${PROJECT_SOURCE_DIR}/LICENSE licence)
string(STRIP "${licence}" licence)
configure_file(packaging/copyright.in ${packagingFolder}/copyright @ONLY)
configure_file(CHANGELOG.md ${packagingFolder}/changelog COPYONLY)
execute_process(COMMAND ${ZERB_AWK} -v maintainer=${ZERB_MAINTAINER} -f ${PROJECT_SOURCE_DIR}/tools/debian-changelog.awk CHANGELOG.md
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_FILE ${packagingFolder}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/debian-changelog.awk)
execute_process(COMMAND ${ZERB_GZIP} -9nfk ${packagingFolder}/changelog ${packagingFolder}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)

# EXCLUDE_FROM_ALL: only components have them, and installing the whole does without.
function(zerb_package component package)
    string(TOUPPER ${component} prefix)
    set(CPACK_DEBIAN_${prefix}_PACKAGE_NAME ${package} PARENT_SCOPE)
    install(FILES ${packagingFolder}/changelog.gz ${packagingFolder}/changelog.Debian.gz ${packagingFolder}/copyright
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES packaging/lintian-overrides RENAME ${package}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()
zerb_package(program zerb)
zerb_package(libraries ${packageOfLibraries})
zerb_package(development libzerb-dev)

# Which package has the libraries, for those that are linked with them; and that the loader is told of them by dpkg itself.
file(CONFIGURE OUTPUT ${packagingFolder}/shlibs @ONLY CONTENT
"libzerb @ZERB_INTERFACE_VERSION@ @packageOfLibraries@ (>= @PROJECT_VERSION@)
libzerbstandin @ZERB_INTERFACE_VERSION@ @packageOfLibraries@ (>= @PROJECT_VERSION@)
")
file(CONFIGURE OUTPUT ${packagingFolder}/triggers CONTENT "activate-noawait ldconfig\n")

# CPack writes scripts that call ldconfig, unless it is given others. These two are not there, as it says in its log, and so no
# package has any.
set(noScripts ${packagingFolder}/none/postinst ${packagingFolder}/none/postrm)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zerb)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")   # each component's description begins with its own
set(CPACK_PACKAGE_CONTACT ${ZERB_MAINTAINER})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_COMPONENTS_ALL program libraries development)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE zerb)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS ${sameVersionOfLibraries})
set(CPACK_DEBIAN_PROGRAM_PACKAGE_CONTROL_EXTRA ${noScripts})
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION
"types, dates, locks and resource forks of classic Macintosh files
zerb shows and changes what a Macintosh keeps beside the bytes of a file:
types, creators, Finder flags, labels, exact dates, locks and resource forks.
They lie on ordinary Linux disks, where file servers and archivers keep them
too. It copies, moves, exchanges and deletes files with all that belongs to
them, reads and makes resource files, and draws icons and dialogs.

The package has the program with its manual pages, and the library of file,
string, dialog and folder services as a plug-in, zerb.so, which the program
loads and other applications may load too.")

set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_DEPENDS fonts-dejavu-core)   # looked for by name, so that the linker does not know of it
set(CPACK_DEBIAN_LIBRARIES_PACKAGE_CONTROL_EXTRA ${packagingFolder}/shlibs ${packagingFolder}/triggers ${noScripts})
set(CPACK_COMPONENT_LIBRARIES_DESCRIPTION
"classic Macintosh file, string, dialog and folder services
Applications that were written to the Macintosh's classic services (object
references, Finder information, length-prefixed strings, icon buttons, special
folders) are linked with these two libraries: libzerb, the services
themselves, and libzerbstandin, which makes the platform's calls below them
real on Linux.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ${sameVersionOfLibraries})
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"classic Macintosh services for applications (development files)
What building applications with libzerb takes: headers for C++ and C,
descriptions for CMake and pkg-config, and examples.")

include(CPack)
