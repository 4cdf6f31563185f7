# How test and fuzz programs are made known, to CMake and to ./check.
#
# Every build folder gets what ./check reads:
#   test-programs.txt   NAME FILTER   a GoogleTest program in bin/ to run here, and which of its tests
#   fuzz-programs.txt   NAME          a libFuzzer program in bin/ to run here
#   test-runner.txt     COMMAND...    what runs them where this machine can't: an emulator; empty elsewhere
include_guard(GLOBAL)

# How the tests' own code is compiled, whatever the preset does to what it tests: optimised and sanitized, tests take
# three times as long to compile and find no more, and debugging symbols are for the debug preset. The thread sanitizer alone
# has to see how the tests' threads meet.
# In the release and asan presets the commands are the same word for word, so that ./check compiles each test once.
add_library(zerb_test_code INTERFACE)
target_link_libraries(zerb_test_code INTERFACE zerb_warnings)
if(NOT ZERB_PRESET STREQUAL "debug")
    target_compile_options(zerb_test_code INTERFACE -O0)
endif()
if(ZERB_PRESET STREQUAL "tsan")
    target_compile_options(zerb_test_code INTERFACE ${sanitizerFlags})
endif()

# zerb_batch_tests(VARIABLE FILE...)
#
# Compiling tests is most of what ./check takes, and most of that goes into headers. So outside the debug preset, where one
# test at a time is worked on, they are compiled a dozen at once; VARIABLE gets the sources for the target.
function(zerb_batch_tests variable)
    set(files ${ARGN})
    if(ZERB_PRESET STREQUAL "debug")
        set(${variable} ${files} PARENT_SCOPE)
        return()
    endif()
    set(batches "")
    set(joining ${PROJECT_SOURCE_DIR}/tools/batch-tests.awk)
    while(files)
        list(LENGTH batches number)
        set(batch ${CMAKE_CURRENT_BINARY_DIR}/batches/batch_${number}.cpp)
        list(SUBLIST files 0 12 members)
        list(REMOVE_ITEM files ${members})
        add_custom_command(OUTPUT ${batch}
            COMMAND awk -f ${joining} ${members} > ${batch}
            DEPENDS ${members} ${joining}
            COMMENT "Joining tests" VERBATIM)
        list(APPEND batches ${batch})
    endwhile()
    file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/batches)
    set(${variable} ${batches} PARENT_SCOPE)
endfunction()

# What a test must know of the build that it runs in; see the header. GoogleTest's own header, which every test takes, and the
# largest of the standard library are compiled here once for all.
if(TARGET GTest::gtest)
    add_library(how_built STATIC ${PROJECT_SOURCE_DIR}/tests/how_built.cpp)
    target_include_directories(how_built PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(how_built PRIVATE zerb_test_code GTest::gtest)
    set(testHeaders <algorithm> <filesystem> <functional> <sstream> <gtest/gtest.h>)
    target_precompile_headers(how_built PRIVATE ${testHeaders})
    set_target_properties(how_built PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    # Of the source alone: defined for the headers, it would have to be defined for all who take them.
    if(ZERB_SANITIZE)
        set_source_files_properties(${PROJECT_SOURCE_DIR}/tests/how_built.cpp PROPERTIES COMPILE_DEFINITIONS ZERB_SANITIZED)
    elseif(ZERB_PRESET STREQUAL "release")
        set_source_files_properties(${PROJECT_SOURCE_DIR}/tests/how_built.cpp PROPERTIES COMPILE_DEFINITIONS ZERB_LONG_RUNS)
    endif()
endif()

# zerb_is_test_code(TARGET [HEADER...])
#
# TARGET is made of tests' own code, and takes the headers that are compiled already; more HEADERs are compiled for it alone. That
# wants the same kind of code of libraries as of programs, so they leave its position to the compiler.
function(zerb_is_test_code target)
    target_link_libraries(${target} PRIVATE zerb_test_code GTest::gtest)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    if(ARGN)
        target_precompile_headers(${target} PRIVATE ${testHeaders} ${ARGN})
    else()
        target_precompile_headers(${target} REUSE_FROM how_built)
    endif()
endfunction()

# zerb_add_test(NAME SOURCES file... [LIBRARIES target...] [HEADERS header...] [PRESETS preset[=filter]...] [OWN_MAIN])
#
# Builds a GoogleTest program of these sources and libraries and has ./check run it in the named presets; the
# debug preset, which is for working on the code, always lists it whole. A filter, as for --gtest_filter, limits
# what a preset runs: PRESETS release asan "tsan=Threads*.*". HEADERS are compiled beforehand, as for zerb_is_test_code.
# OWN_MAIN leaves out GoogleTest's main function.
# Without GoogleTest on this machine no program is made; nothing else may depend on a test program.
function(zerb_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "OWN_MAIN" "" "SOURCES;LIBRARIES;HEADERS;PRESETS")
    if(NOT TARGET GTest::gtest)
        message(STATUS "No GoogleTest here: ${name} is not built")
        return()
    endif()
    add_executable(${name} ${test_SOURCES})
    zerb_is_test_code(${name} ${test_HEADERS})
    set(mainLibrary GTest::gtest_main)
    if(test_OWN_MAIN)
        set(mainLibrary "")
    endif()
    target_link_libraries(${name} PRIVATE ${test_LIBRARIES} how_built ${mainLibrary})
    foreach(entry debug ${test_PRESETS})
        if(entry MATCHES "^([^=]+)=?(.*)$" AND CMAKE_MATCH_1 STREQUAL ZERB_PRESET)
            set(filter "${CMAKE_MATCH_2}")
            if(filter STREQUAL "")
                set(filter "*")
            endif()
            set_property(GLOBAL APPEND_STRING PROPERTY zerbTestPrograms "${name} ${filter}\n")
        endif()
    endforeach()
endfunction()

# zerb_add_fuzz(NAME SOURCES file... [LIBRARIES target...])
#
# Builds a libFuzzer program, in the fuzz preset alone: it takes Clang and instruments all it links with.
# Its starting inputs lie in tests/fuzz/corpus/NAME.
function(zerb_add_fuzz name)
    cmake_parse_arguments(PARSE_ARGV 1 fuzz "" "" "SOURCES;LIBRARIES")
    if(NOT ZERB_PRESET STREQUAL "fuzz")
        return()
    endif()
    add_executable(${name} ${fuzz_SOURCES})
    target_link_libraries(${name} PRIVATE zerb_code ${fuzz_LIBRARIES})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    set_property(GLOBAL APPEND_STRING PROPERTY zerbFuzzPrograms "${name}\n")
endfunction()

# zerb_write_test_lists()
#
# Writes them; called once, after every folder has had its say.
function(zerb_write_test_lists)
    get_property(testPrograms GLOBAL PROPERTY zerbTestPrograms)
    get_property(fuzzPrograms GLOBAL PROPERTY zerbFuzzPrograms)
    file(WRITE ${CMAKE_BINARY_DIR}/test-programs.txt "${testPrograms}")
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " runner)
    file(WRITE ${CMAKE_BINARY_DIR}/fuzz-programs.txt "${fuzzPrograms}")
    file(WRITE ${CMAKE_BINARY_DIR}/test-runner.txt "${runner}\n")
endfunction()
