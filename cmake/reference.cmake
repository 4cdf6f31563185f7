# The reference of the public headers, where Doxygen is: the target `reference`. A warning ends it.
find_program(ZERB_DOXYGEN NAMES doxygen)
if(ZERB_DOXYGEN)
    configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${CMAKE_BINARY_DIR}/Doxyfile @ONLY)
    add_custom_target(reference
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${CMAKE_BINARY_DIR}/reference
        COMMAND ${ZERB_DOXYGEN} ${CMAKE_BINARY_DIR}/Doxyfile
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        COMMENT "Making the reference" VERBATIM)
endif()
