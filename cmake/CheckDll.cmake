# What a loader and a reviewer would see of the built library: it exports what its definition file lists and nothing
# else, imports only libraries that belong to Windows, and lets the loader randomise and protect its memory.
# cmake -DOBJDUMP=... -DDLL=... -DDEFINITION=... -P CheckDll.cmake

cmake_minimum_required(VERSION 3.25)
set(allowed_imports kernel32.dll msvcrt.dll ole32.dll oleaut32.dll advapi32.dll user32.dll)

execute_process(COMMAND "${OBJDUMP}" -p "${DLL}" OUTPUT_VARIABLE dump COMMAND_ERROR_IS_FATAL ANY)
set(faults 0)

macro(fault text)
    message(NOTICE "${text}")
    math(EXPR faults "${faults} + 1")
endmacro()

string(REGEX MATCHALL "DLL Name: [^\n]+" imports "${dump}")
if(NOT imports)
    fault("no imports found in ${DLL}: the output of ${OBJDUMP} was not understood")
endif()
foreach(import IN LISTS imports)
    string(REGEX REPLACE "^DLL Name: " "" import "${import}")
    string(TOLOWER "${import}" import)
    message(NOTICE "imports ${import}")
    if(NOT import IN_LIST allowed_imports)
        fault("${import} is no library that every Windows has")
    endif()
endforeach()

# The export table's names stand after this line, one per line: "\t[   0] Name" (newer tools add "+base[   1]" and the hint).
string(REGEX MATCH "\\[Ordinal/Name Pointer\\] Table[^\n]*\n(.*)" table "${dump}")
set(table "${CMAKE_MATCH_1}")
string(REGEX REPLACE "\n\n.*" "" table "${table}")
string(REGEX MATCHALL "[A-Za-z_@?][A-Za-z0-9_@?]*(\n|$)" exports "${table}")
list(TRANSFORM exports STRIP)
list(SORT exports)

file(STRINGS "${DEFINITION}" wanted REGEX "^[ \t]+[A-Za-z_]")
list(TRANSFORM wanted STRIP)
list(TRANSFORM wanted REPLACE "[ \t=;@].*" "")
list(SORT wanted)

message(NOTICE "exports ${exports}")
if(NOT wanted OR NOT "${exports}" STREQUAL "${wanted}")
    fault("the exports differ from ${DEFINITION}: ${wanted}")
endif()

foreach(flag HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT)
    if(NOT dump MATCHES "[\t ]${flag}\n")
        fault("DllCharacteristics lacks ${flag}")
    endif()
endforeach()

if(faults GREATER 0)
    message(FATAL_ERROR "${faults} fault(s) in ${DLL}")
endif()
