#include "tools/orvane/unfinished_file.h"

#include "common/windows.h"

#include <fstream>
#include <set>
#include <utility>

namespace host {

namespace {

// The system calls the handler in a thread of its own.
SRWLOCK lock = SRWLOCK_INIT;

class Locked {
public:
    Locked() { AcquireSRWLockExclusive(&lock); }
    ~Locked() { ReleaseSRWLockExclusive(&lock); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
};

std::set<std::filesystem::path>& Files() {
    static std::set<std::filesystem::path> files;
    return files;
}

BOOL WINAPI DeleteFiles(DWORD /*event*/) {
    const Locked locked;
    for (const std::filesystem::path& file : Files()) {
        DeleteFileW(file.c_str());
    }
    return FALSE;  // the next handler ends the process
}

}  // namespace

UnfinishedFile::UnfinishedFile(std::filesystem::path file) : file_(std::move(file)) {
    static const BOOL handled = SetConsoleCtrlHandler(&DeleteFiles, TRUE);
    static_cast<void>(handled);  // without the handler, only an interruption leaves the file
    const Locked locked;
    Files().insert(file_);
}

UnfinishedFile::~UnfinishedFile() {
    const Locked locked;
    Files().erase(file_);
    DeleteFileW(file_.c_str());
}

bool UnfinishedFile::Write(const std::string& text) const {
    const Locked locked;  // an open file cannot be deleted
    std::ofstream out(file_, std::ios::binary);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    return static_cast<bool>(out);
}

}  // namespace host
