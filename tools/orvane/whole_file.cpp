#include "tools/orvane/whole_file.h"

#include "common/windows.h"
#include "machine/description/text.h"

#include <fstream>
#include <stdexcept>

namespace host {

namespace {

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& reason) {
    throw std::runtime_error(machine::Narrow(file.wstring()) + ": " + reason);
}

}  // namespace

void RequireFree(const std::filesystem::path& file, Existing existing) {
    if (existing == Existing::kKept && std::filesystem::exists(file)) {
        Refuse(file, "exists already; --force replaces it");
    }
}

void WriteWholeFile(const std::filesystem::path& file, const std::string& text, Existing existing) {
    RequireFree(file, existing);
    std::filesystem::path part = file;
    part += L".part-" + std::to_wstring(GetCurrentProcessId());
    std::ofstream out(part, std::ios::binary);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    const DWORD flags =
        MOVEFILE_WRITE_THROUGH | (existing == Existing::kReplaced ? MOVEFILE_REPLACE_EXISTING : 0);
    if (!out || MoveFileExW(part.c_str(), file.c_str(), flags) == FALSE) {
        const std::string error = out ? ", error " + std::to_string(GetLastError()) : "";
        DeleteFileW(part.c_str());
        Refuse(file, "cannot be written" + error);
    }
}

}  // namespace host
