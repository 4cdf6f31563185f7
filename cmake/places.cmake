# Where things go when they are installed, and how they find each other there, wherever the whole is moved to.
include_guard(GLOBAL)
include(GNUInstallDirs)

# Before version 1 what programs are linked with may change with every second number.
set(ZERB_INTERFACE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})

set(ZERB_PLUGIN_FOLDER lib/zerb)                             # where the host looks for the plug-in: ../lib/zerb/ from its own folder
# Where the stand-in looks for its parts: below its own folder, in one for each version that programs can be linked with.
set(ZERB_MODULE_FOLDER_NAME zerb-${ZERB_INTERFACE_VERSION})
set(ZERB_MODULE_FOLDER ${CMAKE_INSTALL_LIBDIR}/${ZERB_MODULE_FOLDER_NAME})
set(ZERB_DATA_FOLDER ${CMAKE_INSTALL_DATADIR}/zerb)
set(ZERB_HEADER_FOLDER ${CMAKE_INSTALL_INCLUDEDIR}/zerb)
set(ZERB_PACKAGE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/Zerb)

# Debian's packages have their completions for zsh in a folder of their own.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr" AND EXISTS /etc/debian_version)
    set(zshFolder vendor-completions)
else()
    set(zshFolder site-functions)
endif()
set(ZERB_ZSH_FOLDER ${CMAKE_INSTALL_DATADIR}/zsh/${zshFolder} CACHE STRING "Where zsh looks for completions")

function(zerb_path_from variable from to)
    cmake_path(RELATIVE_PATH to BASE_DIRECTORY ${from} OUTPUT_VARIABLE path)
    set(${variable} "$ORIGIN/${path}" PARENT_SCOPE)
endfunction()

# In /usr the loader looks by itself. Anywhere else what is installed finds its libraries from where it lies, and by the very same
# words in the build folder: those that CMake would have put there to be changed later end with an empty one, by which the
# loader looks in the current directory, and somebody else's libraries may lie there.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(ZERB_RPATH_OF_PROGRAMS BUILD_RPATH "$ORIGIN")   # and none where they are installed
    set(ZERB_RPATH_OF_PLUGIN ${ZERB_RPATH_OF_PROGRAMS})
    set(ZERB_RPATH_OF_LIBRARIES ${ZERB_RPATH_OF_PROGRAMS})
else()
    zerb_path_from(fromPrograms ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR})
    zerb_path_from(fromPlugin ${ZERB_PLUGIN_FOLDER} ${CMAKE_INSTALL_LIBDIR})
    set(ZERB_RPATH_OF_PROGRAMS BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN\\;${fromPrograms}")
    set(ZERB_RPATH_OF_PLUGIN BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN\\;${fromPlugin}")
    set(ZERB_RPATH_OF_LIBRARIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN")
endif()
