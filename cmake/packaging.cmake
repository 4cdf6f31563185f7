# What Debian's packages are made of, beside what is installed: tools/make-packages goes on from here.
set(ZERB_MAINTAINER "The Zerb developers <maintainers@users.noreply.c-seed-b2ecefbf.example>" CACHE STRING "Who answers for the packages")

file(READ ${PROJECT_SOURCE_DIR}/LICENSE licence)
string(STRIP "${licence}" licence)
configure_file(packaging/copyright.in ${CMAKE_BINARY_DIR}/debian/copyright @ONLY)

configure_file(packaging/debian/control.in ${CMAKE_BINARY_DIR}/debian/control @ONLY)
configure_file(packaging/debian/rules.in ${CMAKE_BINARY_DIR}/debian/rules @ONLY USE_SOURCE_PERMISSIONS)
configure_file(CHANGELOG.md ${CMAKE_BINARY_DIR}/debian/upstream-changelog COPYONLY)
foreach(package zerb libzerb${ZERB_INTERFACE_VERSION} libzerb-dev)
    configure_file(packaging/debian/lintian-overrides ${CMAKE_BINARY_DIR}/debian/${package}.lintian-overrides COPYONLY)
endforeach()
