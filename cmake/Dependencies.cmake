# Header-only libraries. In a cross-build they are among the build machine's own headers, which the cross
# compiler must not find. So only the required folders are linked into a folder of the build.

function(orvane_headers target probe)
    find_path(${target}_INCLUDE_DIR "${probe}" NO_CMAKE_FIND_ROOT_PATH)
    if(NOT ${target}_INCLUDE_DIR)
        message(FATAL_ERROR "${probe} was not found; set ${target}_INCLUDE_DIR to the folder that holds it")
    endif()
    set(include_dir "${${target}_INCLUDE_DIR}")
    if(CMAKE_CROSSCOMPILING)
        string(REGEX REPLACE "/.*" "" folder "${probe}")
        set(include_dir "${PROJECT_BINARY_DIR}/deps/${target}")
        file(MAKE_DIRECTORY "${include_dir}")
        file(CREATE_LINK "${${target}_INCLUDE_DIR}/${folder}" "${include_dir}/${folder}" SYMBOLIC)
    endif()
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE "${include_dir}")
endfunction()

orvane_headers(orvane_boost boost/shared_ptr.hpp)
# Converts numbers without the host's locale, and without the part of the runtime that reads it.
target_compile_definitions(orvane_boost INTERFACE BOOST_LEXICAL_CAST_ASSUME_C_LOCALE)
orvane_headers(orvane_json nlohmann/json.hpp)
orvane_headers(orvane_cli11 CLI/CLI.hpp)
orvane_headers(orvane_mustache kainjow/mustache.hpp)

# GoogleTest is built here, with our compiler and flags.
if(BUILD_TESTING)
    find_path(ORVANE_GOOGLETEST_DIR googlemock/CMakeLists.txt
        PATHS /usr/src/googletest "$ENV{GOOGLETEST_DIR}" NO_CMAKE_FIND_ROOT_PATH)
    if(NOT ORVANE_GOOGLETEST_DIR)
        message(FATAL_ERROR "The sources of GoogleTest were not found; set ORVANE_GOOGLETEST_DIR")
    endif()
    set(INSTALL_GTEST OFF)
    set(CMAKE_WARN_DEPRECATED OFF)
    add_subdirectory("${ORVANE_GOOGLETEST_DIR}" "${PROJECT_BINARY_DIR}/deps/googletest" EXCLUDE_FROM_ALL SYSTEM)
    foreach(library gtest gtest_main gmock gmock_main)
        target_compile_options(${library} PRIVATE -w -O0)
        # The compiler has no thread library, so tests must not use assertions on other threads.
        target_compile_definitions(${library} PUBLIC GTEST_IS_THREADSAFE=0)
        target_compile_options(${library} PRIVATE -include "${CMAKE_CURRENT_SOURCE_DIR}/cmake/gtest_without_death_tests.h")
        # No warnings from its headers.
        get_target_property(directories ${library} INTERFACE_INCLUDE_DIRECTORIES)
        set_target_properties(${library} PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${directories}")
    endforeach()
endif()
