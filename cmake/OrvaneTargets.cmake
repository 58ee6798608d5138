# Functions that create this project's targets. They find sources by folder, so a new file needs no entry in a
# list.

# The compile options of all our targets.
add_library(orvane_options INTERFACE)
target_compile_features(orvane_options INTERFACE cxx_std_20)
target_compile_options(orvane_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# std::stable_sort of GCC 12 calls a deprecated function, which clang reports. GCC reports the other deprecated functions.
target_compile_options(orvane_options INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-deprecated-declarations>)
# Without optimisation, templates of the JSON library exceed the section limit of the classic object format.
target_compile_options(orvane_options INTERFACE -Wa,-mbig-obj)
# Keeps the path of the source folder out of what is built.
target_compile_options(orvane_options INTERFACE -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(ORVANE_SYMBOLS)
    # GCC does not always write the same lists of where a variable is; without them the symbols can be reproduced.
    target_compile_options(orvane_options INTERFACE -g -fno-var-tracking)
endif()
target_compile_definitions(orvane_options INTERFACE UNICODE _UNICODE)

# The base of all rooms: common/windows.h and the public header.
add_library(orvane_base INTERFACE)
target_include_directories(orvane_base INTERFACE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/include")
target_link_libraries(orvane_base INTERFACE orvane_boost)

# Precompiles a header for the targets that use it with orvane_precompile. They need the same compile options.
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
    # A precompiled header of GCC 12 loses the warning suppressions of the system's headers, which causes
    # warnings inside std::string. `make lint` compiles without precompiled headers and with these warnings.
    target_compile_options(${target} PRIVATE
        $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-stringop-overread>)
endfunction()

orvane_precompiled_header(orvane_precompiled cmake/precompiled.h)

# Creates the library of a room, see cmake/rooms.cmake. A folder that contains only headers becomes an
# interface library. A main.cpp is left out, because it belongs to a program. A PORTABLE room is compiled without the
# precompiled header, which has the headers of Windows, and without the sources of other platforms.
function(orvane_room)
    cmake_parse_arguments(PARSE_ARGV 0 ROOM "PORTABLE" "NAME;DIR;ROOT" "USES;PACKAGES;LINKS")
    foreach(used IN LISTS ROOM_USES)
        if(NOT TARGET ${used})
            message(FATAL_ERROR "${ROOM_NAME} uses ${used}, which does not stand above it in cmake/rooms.cmake")
        endif()
    endforeach()

    set(folder "${PROJECT_SOURCE_DIR}/${ROOM_DIR}")
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${folder}/*.cpp")
    list(REMOVE_ITEM sources "${folder}/main.cpp")
    list(FILTER sources EXCLUDE REGEX "_pugixml\\.cpp$")
    if(sources)
        add_library(${ROOM_NAME} STATIC ${sources})
        target_link_libraries(${ROOM_NAME} PRIVATE orvane_options)
        if(NOT ROOM_PORTABLE)
            orvane_precompile(${ROOM_NAME} orvane_precompiled)
        endif()
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

# Creates a program that needs no DLL of the compiler.
function(orvane_program name)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE orvane_options)
    target_link_options(${name} PRIVATE -static)
endfunction()

# Gives a program or library its version resource. TYPE is VFT_APP or VFT_DLL, FILE the name of the target's file. A library
# of its own, because the resource compiler does not take the compile options of the target.
function(orvane_version_resource target)
    cmake_parse_arguments(PARSE_ARGV 1 RESOURCE "" "TYPE;FILE;DESCRIPTION" "")
    set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${resource}" @ONLY)
    add_library(${target}_version OBJECT "${resource}")
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_version>)
endfunction()

# The link options of what is shipped: the same bytes at any time, a map of what was linked, and no symbols, unless they
# are separated later.
function(orvane_shipped target)
    target_link_options(${target} PRIVATE -Wl,--no-insert-timestamp "-Wl,-Map=$<TARGET_FILE:${target}>.map")
    if(NOT ORVANE_SYMBOLS)
        target_link_options(${target} PRIVATE $<$<CONFIG:Release>:-s>)
    endif()
endfunction()

# No optimisation, because tests are compiled often and run once.
add_library(orvane_test_options INTERFACE)
target_compile_options(orvane_test_options INTERFACE -O0)

# Creates a test program.
function(orvane_test_program name)
    orvane_program(${name} ${ARGN})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE orvane_test_options gmock gtest)
    orvane_precompile(${name} orvane_test_precompiled)
endfunction()

# orvane_test(NAME <target> DIRS <folders> [LINKS <libraries>] [DEFINES <definitions>])
# Creates one test program from all sources of the folders, and one CTest test that runs it. Does nothing if
# there are no sources.
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
    target_link_libraries(${TEST_NAME} PRIVATE ${TEST_LINKS} orvane_session orvane_test_support)
    add_test(NAME ${TEST_NAME} COMMAND ${TEST_NAME})
    # Wine derives its ANSI code page from the locale. For C.UTF-8 it is 1252, which some tests expect.
    set_tests_properties(${TEST_NAME} PROPERTIES TIMEOUT 600 ENVIRONMENT LC_ALL=C.UTF-8)
endfunction()
