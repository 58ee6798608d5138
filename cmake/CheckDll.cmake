# Checks the built library: it must export exactly the functions of its definition file, import exactly the
# listed functions, and have the flags for address space randomisation and non-executable data.
# cmake -DOBJDUMP=... -DDLL=... -DDEFINITION=... -DIMPORTS=... -DCOMPLETE=... -P CheckDll.cmake
# COMPLETE is true for the shipped build. Other builds import additional functions, so their imports are not
# compared with the list, but only checked for forbidden functions and libraries.

cmake_minimum_required(VERSION 3.25)

# Functions that control threads, processes or the memory of other processes, functions that install handlers
# ahead of the agent's, and the allocation functions of the C runtime.
set(forbidden
    SuspendThread ResumeThread OpenThread CreateThread CreateRemoteThread CreateRemoteThreadEx _beginthread
    _beginthreadex TerminateThread QueueUserAPC GetThreadContext SetThreadContext SetThreadAffinityMask
    OpenProcess CreateProcessA CreateProcessW TerminateProcess SetProcessAffinityMask
    ReadProcessMemory WriteProcessMemory VirtualAllocEx VirtualProtectEx
    AddVectoredExceptionHandler RtlAddVectoredExceptionHandler AddVectoredContinueHandler
    SetUnhandledExceptionFilter SetWindowsHookExA SetWindowsHookExW
    malloc calloc realloc free _aligned_malloc _strdup _wcsdup)

# Every Windows has these libraries.
set(allowed_libraries kernel32.dll msvcrt.dll ole32.dll oleaut32.dll advapi32.dll user32.dll)

execute_process(COMMAND "${OBJDUMP}" -p "${DLL}" OUTPUT_VARIABLE dump COMMAND_ERROR_IS_FATAL ANY)
set(faults 0)

macro(fault text)
    message(NOTICE "${text}")
    math(EXPR faults "${faults} + 1")
endmacro()

# The import tables: "DLL Name: X", then one function per line: "<address> <hint> <name>", with newer tools
# "<address> <ordinal> <hint> <name>".
string(REGEX MATCHALL "DLL Name: [^\n]+|\n[ \t]+[0-9a-f]+[ \t]+([0-9]+|<none>)[ \t]+([0-9a-f]+[ \t]+)?[A-Za-z_][A-Za-z0-9_]*" lines "${dump}")
set(imports "")
foreach(line IN LISTS lines)
    if(line MATCHES "^DLL Name: (.*)")
        string(TOLOWER "${CMAKE_MATCH_1}" library)
        if(NOT library IN_LIST allowed_libraries)
            fault("${library} is no library that every Windows has")
        endif()
    else()
        string(REGEX REPLACE ".*[ \t]" "" function "${line}")
        list(APPEND imports "${library} ${function}")
        if(function IN_LIST forbidden)
            fault("${function} must not be imported")
        endif()
    endif()
endforeach()
list(LENGTH imports count)
message(NOTICE "${count} imported functions")
if(count EQUAL 0)
    fault("no imports found in ${DLL}: the output of ${OBJDUMP} was not understood")
endif()
if(COMPLETE)
    file(STRINGS "${IMPORTS}" listed REGEX "^[^#]")
    foreach(function IN LISTS imports)
        if(NOT function IN_LIST listed)
            fault("${function} is imported, and not listed in ${IMPORTS}")
        endif()
    endforeach()
    foreach(function IN LISTS listed)
        if(NOT function IN_LIST imports)
            fault("${function} is listed in ${IMPORTS}, and not imported")
        endif()
    endforeach()
endif()

# The names of the export table follow this line, one per line: "\t[   0] Name" (newer tools add "+base[   1]"
# and the hint).
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
