#include "tools/orvane/program_path.h"

#include "common/windows.h"

#include <string>

namespace host {

std::filesystem::path ProgramPath() {
    constexpr std::size_t kLongestPath = 32768;
    std::wstring program(kLongestPath, L'\0');
    const DWORD length = GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    program.resize(length);
    return program;
}

}  // namespace host
