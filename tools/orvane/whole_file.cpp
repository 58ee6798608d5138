#include "tools/orvane/whole_file.h"

#include "common/windows.h"
#include "machine/description/text.h"
#include "tools/orvane/private_file.h"
#include "tools/orvane/unfinished_file.h"

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
    explicit PartFile(const WholeFile& whole) : file_(whole.file), part_(PartOf(whole.file)) {
        if (whole.for_owner) {
            CreatePrivateFile(part_.path());
        }
        if (!part_.Write(whole.text)) {
            Refuse(file_, "cannot be written");
        }
    }

    const std::filesystem::path& file() const { return file_; }

    void Move(Existing existing) {
        const DWORD flags =
            MOVEFILE_WRITE_THROUGH | (existing == Existing::kReplaced ? MOVEFILE_REPLACE_EXISTING : 0);
        if (MoveFileExW(part_.path().c_str(), file_.c_str(), flags) == FALSE) {
            Refuse(file_, "cannot be written, error " + std::to_string(GetLastError()));
        }
        moved_ = true;
    }

    // Deletes the file again, if it was moved.
    void TakeBack() const {
        std::error_code ignored;
        if (moved_) {
            std::filesystem::remove(file_, ignored);
        }
    }

private:
    static std::filesystem::path PartOf(std::filesystem::path file) {
        return file += L".part-" + std::to_wstring(GetCurrentProcessId());
    }

    std::filesystem::path file_;
    UnfinishedFile part_;
    bool moved_ = false;
};

}  // namespace

void RequireFree(const std::filesystem::path& file, Existing existing) {
    if (std::filesystem::is_directory(file)) {
        Refuse(file, "is a folder");
    }
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
    std::string moved;
    try {
        for (PartFile& part : parts) {
            part.Move(existing);
            moved += "; " + machine::Narrow(part.file().wstring()) + " is written already";
        }
    } catch (const std::runtime_error& error) {
        if (existing == Existing::kReplaced) {
            throw std::runtime_error(error.what() + moved);
        }
        for (const PartFile& part : parts) {
            part.TakeBack();
        }
        throw;
    }
}

}  // namespace host
