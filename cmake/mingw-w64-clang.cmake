# Toolchain file of the second compiler: clang, with the headers, the libraries and the linker of the first one. clang finds
# them by its target, because the packages of the first compiler install them at the usual place.
include("${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake")
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)

# Otherwise CMake prefers LLVM's own, if they are installed.
foreach(tool ar ranlib objdump nm)
    string(TOUPPER "CMAKE_${tool}" variable)
    find_program(${variable} x86_64-w64-mingw32-${tool} REQUIRED)
endforeach()
