# GoogleTest as GTest::gtest, GTest::gtest_main, GTest::gmock and GTest::gmock_main, whatever the target:
# Debian's libraries for this machine, Debian's sources compiled along for any other.
include_guard(GLOBAL)

if(ZERB_PORTABLE_ONLY)
    # Their own warnings are theirs, and they are built only as far as a test program needs them.
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    foreach(library gtest gtest_main gmock gmock_main)
        target_compile_options(${library} PRIVATE -O0)   # compiled in half the time, and no test waits for it
        if(NOT TARGET GTest::${library})
            add_library(GTest::${library} ALIAS ${library})
        endif()
    endforeach()
else()
    # A machine that only builds the product has no GoogleTest, and then no test programs either.
    find_package(GTest QUIET)
endif()
