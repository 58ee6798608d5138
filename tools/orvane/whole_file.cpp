#include "tools/orvane/whole_file.h"

#include "common/windows.h"
#include "machine/description/text.h"
#include "tools/orvane/private_file.h"

#include <fstream>
#include <list>
#include <stdexcept>

namespace host {

namespace {

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& reason) {
    throw std::runtime_error(machine::Narrow(file.wstring()) + ": " + reason);
}

// A new file beside its place; deleted again unless it is moved there.
class PartFile {
public:
    explicit PartFile(const WholeFile& whole) : file_(whole.file), part_(whole.file) {
        part_ += L".part-" + std::to_wstring(GetCurrentProcessId());
        if (whole.for_owner) {
            CreatePrivateFile(part_);
        }
        std::ofstream out(part_, std::ios::binary);
        out.write(whole.text.data(), static_cast<std::streamsize>(whole.text.size()));
        out.close();
        if (!out) {
            DeleteFileW(part_.c_str());
            Refuse(file_, "cannot be written");
        }
    }
    ~PartFile() { DeleteFileW(part_.c_str()); }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    void Move(Existing existing) const {
        const DWORD flags =
            MOVEFILE_WRITE_THROUGH | (existing == Existing::kReplaced ? MOVEFILE_REPLACE_EXISTING : 0);
        if (MoveFileExW(part_.c_str(), file_.c_str(), flags) == FALSE) {
            Refuse(file_, "cannot be written, error " + std::to_string(GetLastError()));
        }
    }

private:
    std::filesystem::path file_;
    std::filesystem::path part_;
};

}  // namespace

void RequireFree(const std::filesystem::path& file, Existing existing) {
    if (existing == Existing::kKept && std::filesystem::exists(file)) {
        Refuse(file, "exists already; --force replaces it");
    }
}

void WriteWholeFiles(const std::vector<WholeFile>& files, Existing existing) {
    std::list<PartFile> parts;
    for (const WholeFile& whole : files) {
        RequireFree(whole.file, existing);
        parts.emplace_back(whole);
    }
    for (const PartFile& part : parts) {
        part.Move(existing);
    }
}

}  // namespace host
