# The ways this project makes a target. Sources are found by folder, so that a new file needs no list to be edited.

# What every target of our own is compiled with.
add_library(orvane_options INTERFACE)
target_compile_features(orvane_options INTERFACE cxx_std_20)
target_compile_options(orvane_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# Templates of the JSON library without optimisation exceed the section count of the classic object format.
target_compile_options(orvane_options INTERFACE -Wa,-mbig-obj)
# The library tells nobody where it was built.
target_compile_options(orvane_options INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
target_compile_definitions(orvane_options INTERFACE UNICODE _UNICODE)

# The room below all rooms: common/windows.h and the public header.
add_library(orvane_base INTERFACE)
target_include_directories(orvane_base INTERFACE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/include")
target_link_libraries(orvane_base INTERFACE orvane_boost)

# Compiles a header once, for the targets that take it with orvane_precompile and are compiled with the same options.
# orvane_precompiled_header(<name> <header> [<libraries and options>])
function(orvane_precompiled_header name header)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "")
    add_library(${name} OBJECT "${source}")
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE orvane_options orvane_base ${ARGN})
    target_precompile_headers(${name} PRIVATE "$<$<COMPILE_LANGUAGE:CXX>:${PROJECT_SOURCE_DIR}/${header}>")
endfunction()

function(orvane_precompile target name)
    target_precompile_headers(${target} REUSE_FROM ${name})
    # A precompiled header of GCC 12 does not keep which warnings the system's headers suppress: these are then raised
    # inside std::string. `make lint` compiles without it, and with them.
    target_compile_options(${target} PRIVATE
        $<$<COMPILE_LANGUAGE:CXX>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>)
endfunction()

orvane_precompiled_header(orvane_precompiled cmake/precompiled.h)

# See cmake/rooms.cmake. A folder that holds headers only becomes an interface library; a main.cpp is left to the
# program that it belongs to.
function(orvane_room)
    cmake_parse_arguments(PARSE_ARGV 0 ROOM "" "NAME;DIR;ROOT" "USES;PACKAGES;LINKS")
    foreach(used IN LISTS ROOM_USES)
        if(NOT TARGET ${used})
            message(FATAL_ERROR "${ROOM_NAME} uses ${used}, which does not stand above it in cmake/rooms.cmake")
        endif()
    endforeach()

    set(folder "${PROJECT_SOURCE_DIR}/${ROOM_DIR}")
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${folder}/*.cpp")
    list(REMOVE_ITEM sources "${folder}/main.cpp")
    if(sources)
        add_library(${ROOM_NAME} STATIC ${sources})
        target_link_libraries(${ROOM_NAME} PRIVATE orvane_options)
        orvane_precompile(${ROOM_NAME} orvane_precompiled)
        set(scope PUBLIC)
    else()
        add_library(${ROOM_NAME} INTERFACE)
        set(scope INTERFACE)
    endif()
    target_link_libraries(${ROOM_NAME} ${scope} orvane_base ${ROOM_USES} ${ROOM_PACKAGES} ${ROOM_LINKS})
    if(ROOM_ROOT)
        get_filename_component(root "${PROJECT_SOURCE_DIR}/${ROOM_ROOT}" ABSOLUTE)
        target_include_directories(${ROOM_NAME} ${scope} "${root}")
    endif()
endfunction()

# A program of our own, which needs no library of the compiler beside it.
function(orvane_program name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE orvane_options)
    target_link_options(${name} PRIVATE -static)
endfunction()

# Tests are compiled often and run once: without optimisation.
add_library(orvane_test_options INTERFACE)
target_compile_options(orvane_test_options INTERFACE -O0)

# A program of tests.
function(orvane_test_program name)
    orvane_program(${name} ${ARGN})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE orvane_test_options gmock gtest)
    orvane_precompile(${name} orvane_test_precompiled)
endfunction()

# orvane_test(NAME <target> DIRS <folders> [LINKS <libraries>] [DEFINES <definitions>])
# One test program of all sources of the folders, and one CTest test that runs it; nothing where there are none.
function(orvane_test)
    cmake_parse_arguments(PARSE_ARGV 0 TEST "" "NAME" "DIRS;LINKS;DEFINES")
    set(sources)
    foreach(folder IN LISTS TEST_DIRS)
        file(GLOB found CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.cpp" "${PROJECT_SOURCE_DIR}/${folder}/*.c")
        list(APPEND sources ${found})
    endforeach()
    if(NOT sources)
        return()
    endif()
    orvane_test_program(${TEST_NAME} ${sources})
    target_compile_definitions(${TEST_NAME} PRIVATE
        ORVANE_SOURCE_DIR="${ORVANE_RUN_ROOT}${PROJECT_SOURCE_DIR}"
        ORVANE_BINARY_DIR="${ORVANE_RUN_ROOT}${PROJECT_BINARY_DIR}"
        ${TEST_DEFINES})
    target_link_libraries(${TEST_NAME} PRIVATE ${TEST_LINKS} orvane_machine orvane_test_support)
    add_test(NAME ${TEST_NAME} COMMAND ${TEST_NAME})
    # Wine takes its ANSI code page from the locale; this one's is the 1252 that some tests are written for.
    set_tests_properties(${TEST_NAME} PROPERTIES TIMEOUT 600 ENVIRONMENT LC_ALL=C.UTF-8)
endfunction()
