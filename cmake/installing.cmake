# What `cmake --install` puts where. Three components: the program with its plug-in, the libraries that applications are
# linked with, and what building these takes.
include(CMakePackageConfigHelpers)
get_property(modules GLOBAL PROPERTY zerbModules)

install(TARGETS zerb_host
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
install(TARGETS zerb_plugin
    LIBRARY DESTINATION ${ZERB_PLUGIN_FOLDER} COMPONENT program)
install(TARGETS ${modules}
    LIBRARY DESTINATION ${ZERB_MODULE_FOLDER} COMPONENT libraries)
install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/sample_dialog.rsrc
    DESTINATION ${ZERB_DATA_FOLDER} COMPONENT program)

# Manual pages and what shells complete are made by the program itself, of what it says in its help.
set(manualFolder ${CMAKE_BINARY_DIR}/manual)
set(completionFolder ${CMAKE_BINARY_DIR}/completions)
find_program(ZERB_GZIP NAMES gzip REQUIRED)
add_custom_command(OUTPUT ${manualFolder}/zerb.1.gz
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${manualFolder}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${manualFolder}
    COMMAND zerb_host man --save ${manualFolder}
    COMMAND ${ZERB_GZIP} -9nr ${manualFolder}
    DEPENDS zerb_host
    COMMENT "Making the manual pages" VERBATIM)
add_custom_command(OUTPUT ${completionFolder}/zerb ${completionFolder}/_zerb ${completionFolder}/zerb.fish
    COMMAND ${CMAKE_COMMAND} -E make_directory ${completionFolder}
    COMMAND zerb_host completions bash > ${completionFolder}/zerb
    COMMAND zerb_host completions zsh > ${completionFolder}/_zerb
    COMMAND zerb_host completions fish > ${completionFolder}/zerb.fish
    DEPENDS zerb_host
    COMMENT "Making what shells complete" VERBATIM)
add_custom_target(manual ALL DEPENDS ${manualFolder}/zerb.1.gz ${completionFolder}/zerb)
install(DIRECTORY ${manualFolder}/
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program FILES_MATCHING PATTERN "*.1.gz")
install(FILES ${completionFolder}/zerb
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
install(FILES ${completionFolder}/_zerb
    DESTINATION ${ZERB_ZSH_FOLDER} COMPONENT program)
install(FILES ${completionFolder}/zerb.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT program)

# The two libraries that applications are linked with, and the headers alone.
set_target_properties(zerbstandin PROPERTIES EXPORT_NAME standin)
target_include_directories(zerbstandin INTERFACE $<INSTALL_INTERFACE:${ZERB_HEADER_FOLDER}>)
install(TARGETS zerbstandin zerb_toolkit platform EXPORT zerb_targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libraries NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${ZERB_HEADER_FOLDER})
install(EXPORT zerb_targets NAMESPACE Zerb:: FILE ZerbTargets.cmake
    DESTINATION ${ZERB_PACKAGE_FOLDER} COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZerbConfig.cmake.in ${CMAKE_BINARY_DIR}/package/ZerbConfig.cmake
    INSTALL_DESTINATION ${ZERB_PACKAGE_FOLDER} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/package/ZerbConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/package/ZerbConfig.cmake ${CMAKE_BINARY_DIR}/package/ZerbConfigVersion.cmake
    DESTINATION ${ZERB_PACKAGE_FOLDER} COMPONENT development)

# The folder that pkg-config finds a description in leads to all others.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE prefixFromDescription)
foreach(description zerb zerb-standin)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${description}.pc.in ${CMAKE_BINARY_DIR}/package/${description}.pc @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/package/${description}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

# Headers lie as they do in the sources, so that they include each other, and are included, by the same paths.
install(DIRECTORY platform files strings dialogs folders
    DESTINATION ${ZERB_HEADER_FOLDER} COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN "posix_paths.h" EXCLUDE)
install(FILES standin/standin.h standin/screen.h
    DESTINATION ${ZERB_HEADER_FOLDER}/standin COMPONENT development)
install(FILES ${ZERB_C_HEADER}
    DESTINATION ${ZERB_HEADER_FOLDER}/files COMPONENT development)

# What there is to read, and to begin with.
include(${CMAKE_CURRENT_LIST_DIR}/packaging.cmake)
install(FILES README.md CHANGELOG.md ${CMAKE_BINARY_DIR}/packaging/copyright
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT program)
install(DIRECTORY docs/
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT program
    FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png")
install(DIRECTORY examples/
    DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT development
    FILES_MATCHING PATTERN "*.cpp" PATTERN "*.c" PATTERN "outside/*")

# All that is installed, without tests and benchmarks.
add_custom_target(product DEPENDS zerb_host zerb_plugin zerb_toolkit zerbstandin ${modules} manual sample_dialog c_header)
