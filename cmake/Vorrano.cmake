# What every folder's build file uses: one library per folder, one test program per folder of tests.
include_guard()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

option(CMAKE_UNITY_BUILD "Compile the files of a folder together, some at a time, in half of the time" ON)

# What is compiled together is one object, of which a program may use a part: the linker leaves out the rest.
set(released "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
add_compile_options("$<${released}:-ffunction-sections>" "$<${released}:-fdata-sections>")
add_link_options("$<${released}:-Wl,--gc-sections>")

# The files that come out depend on whether these are installed, so a package is built without them.
option(VORRANO_QUICK_TOOLS "Compile with ccache and link with lld where they are installed" ON)
if(VORRANO_QUICK_TOOLS)
    find_program(VORRANO_CCACHE ccache)
    if(VORRANO_CCACHE)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${VORRANO_CCACHE}")
    endif()
    find_program(VORRANO_LLD ld.lld)
    string(TOUPPER "_${CMAKE_BUILD_TYPE}" kind)
    # lld cannot read what g++ leaves to link time.
    if(VORRANO_LLD AND NOT (CMAKE_CXX_COMPILER_ID STREQUAL GNU AND
                            (CMAKE_INTERPROCEDURAL_OPTIMIZATION OR CMAKE_INTERPROCEDURAL_OPTIMIZATION${kind} OR
                             "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS${kind}}" MATCHES "-flto")))
        add_link_options(-fuse-ld=lld)
    endif()
endif()

# A newer compiler's new warning must not keep a package from being built.
option(VORRANO_WARNINGS_AS_ERRORS "Fail on a compiler's warning" ON)
add_library(vorrano_warnings INTERFACE)
target_compile_options(vorrano_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(VORRANO_WARNINGS_AS_ERRORS)
    target_compile_options(vorrano_warnings INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # g++ 12 sees an overlap in every assignment of a literal to a std::string (GCC bug 105651).
    target_compile_options(vorrano_warnings INTERFACE -Wno-restrict)
endif()
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Where files are compiled together, g++ takes each for a header, in which an anonymous namespace is a mistake.
    target_compile_options(vorrano_warnings INTERFACE -Wno-subobject-linkage)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # What the annotations of platform/Mutex.h say is checked.
    target_compile_options(vorrano_warnings INTERFACE -Wthread-safety)
endif()
if(VORRANO_CCACHE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Without it ccache refuses precompiled headers.
    target_compile_options(vorrano_warnings INTERFACE "SHELL:-Xclang -fno-pch-timestamp")
endif()

# Linked by what the fuzzers are to find their way in: the program and the simulator, not the tests' own helpers.
add_library(vorrano_traced INTERFACE)
if(VORRANO_FUZZ)
    # Without the comparisons: following them takes half of the time, and the corpora hold the texts that matter.
    target_compile_options(vorrano_traced INTERFACE -fsanitize=fuzzer-no-link
                           -fno-sanitize-coverage=trace-cmp,indirect-calls)
endif()

# vorrano_library(<name> FOLDER <folder below src/> [PUBLIC <libraries>...] [PRIVATE <libraries>...])
#
# All sources of the folder (not of its subfolders) as the library vorrano_<name>. Its headers are included as
# "<folder>/<Header>.h". Each library has an include folder of its own, so the header of a folder that was not linked is
# not found.
function(vorrano_library name)
    cmake_parse_arguments(arg "" "FOLDER" "PUBLIC;PRIVATE" ${ARGN})
    set(folder "${PROJECT_SOURCE_DIR}/src/${arg_FOLDER}")
    file(GLOB sources CONFIGURE_DEPENDS "${folder}/*.cpp")
    set(root "${PROJECT_BINARY_DIR}/include/${name}")
    get_filename_component(parent "${root}/${arg_FOLDER}" DIRECTORY)
    file(MAKE_DIRECTORY "${parent}")
    file(CREATE_LINK "${folder}" "${root}/${arg_FOLDER}" SYMBOLIC)
    if(sources)
        add_library(vorrano_${name} STATIC ${sources})
        set(visible PUBLIC)
        target_link_libraries(vorrano_${name} PRIVATE vorrano_warnings vorrano_traced ${arg_PRIVATE})
    else()
        add_library(vorrano_${name} INTERFACE)
        set(visible INTERFACE)
    endif()
    target_include_directories(vorrano_${name} ${visible} "${root}")
    target_link_libraries(vorrano_${name} ${visible} ${arg_PUBLIC})
endfunction()

set(VORRANO_TEST_LOCALE "${PROJECT_SOURCE_DIR}/tests/support/locale/Locale.cpp")
set(VORRANO_TEST_HEADERS <gtest/gtest.h> <gmock/gmock.h> <string> <vector> <functional>)

# vorrano_test(<name> FOLDER <folder below tests/> LIBRARIES <libraries>... [LABELS <labels>...] [LOCK <resource>] [QT])
#
# All sources of the folder as one test program; each TEST becomes a test of CTest's. The program runs as a whole besides,
# where the decimal point is a comma. QT: it links Qt, and so can't share the others' precompiled headers.
function(vorrano_test name)
    cmake_parse_arguments(arg "QT" "FOLDER;LOCK" "LIBRARIES;LABELS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/${arg_FOLDER}/*.cpp")
    if(NOT sources)
        return()
    endif()
    add_executable(test_${name} ${sources} "${VORRANO_TEST_LOCALE}")
    target_link_libraries(test_${name} PRIVATE ${arg_LIBRARIES} vorrano_warnings GTest::gmock GTest::gtest_main)
    if(arg_QT)
        target_precompile_headers(test_${name} PRIVATE ${VORRANO_TEST_HEADERS})
    else()
        target_precompile_headers(test_${name} REUSE_FROM vorrano_test_headers)
    endif()
    set(properties TIMEOUT 120)
    if(arg_LABELS)
        list(APPEND properties LABELS "${arg_LABELS}")
    endif()
    if(arg_LOCK)
        list(APPEND properties RESOURCE_LOCK "${arg_LOCK}")
    endif()
    if(VORRANO_TESTS_LOGIC_ONLY)
        # What a test itself does takes no time, but its compilation does.
        target_compile_options(test_${name} PRIVATE -O0)
        # Under a sanitizer a program as a whole shows more than each test alone, and starts once.
        add_test(NAME ${name} COMMAND test_${name} --gtest_brief=1)
        set_tests_properties(${name} PROPERTIES ${properties} TIMEOUT 300)
        return()
    endif()
    gtest_discover_tests(test_${name} TEST_PREFIX "${name}." NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES ${properties})
    add_test(NAME german.${name} COMMAND test_${name} --gtest_brief=1)
    set_tests_properties(german.${name} PROPERTIES ${properties} TIMEOUT 300 ENVIRONMENT LC_ALL=de_DE.UTF-8)
endfunction()
