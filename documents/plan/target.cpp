#include "documents/plan/target.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

#ifdef __linux__
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace documents {

namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;

std::filesystem::path PathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

#ifdef __linux__
// The size and the sector size of a block device.
void AskDevice(Target& target) {
    const int device = open(target.path->c_str(), O_RDONLY | O_CLOEXEC);
    std::uint64_t size = 0;
    int sector = 0;
    const bool known =
        device >= 0 && ioctl(device, BLKGETSIZE64, &size) == 0 && ioctl(device, BLKSSZGET, &sector) == 0;
    if (device >= 0) {
        close(device);
    }
    if (!known) {
        throw TargetError(*target.path + ": the device cannot be read");
    }
    SetDeviceFacts(target, size, static_cast<std::uint32_t>(sector));
}

// Nodes with different names can be of the same device.
bool SameDevice(const std::string& one, const std::string& other) {
    struct stat facts = {};
    struct stat others = {};
    return stat(one.c_str(), &facts) == 0 && stat(other.c_str(), &others) == 0 && S_ISBLK(facts.st_mode) &&
           S_ISBLK(others.st_mode) && facts.st_rdev == others.st_rdev;
}

bool NamesADevice(const std::string& /*path*/) {
    return false;
}
#else
void AskDevice(Target& target) {
    throw TargetError(
        *target.path +
        ": only images can be looked at on this system; --target-size and --sector-size tell of a disk");
}

bool SameDevice(const std::string& /*one*/, const std::string& /*other*/) {
    return false;
}

// "\\\\.\\PhysicalDrive0", which cannot be asked for its kind.
bool NamesADevice(const std::string& path) {
    std::string slashes = path.substr(0, 4);
    std::replace(slashes.begin(), slashes.end(), '/', '\\');
    return slashes == R"(\\.\)";
}
#endif

bool IsZero(std::ifstream& file, std::uint64_t offset, std::uint64_t length) {
    std::vector<char> bytes(static_cast<std::size_t>(length));
    file.seekg(static_cast<std::streamoff>(offset));
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == 0; });
}

bool IsBlank(const std::string& path, std::uint64_t size) {
    std::ifstream file(PathOf(path), std::ios::binary);
    const std::uint64_t piece = std::min(size, kMiB);
    const bool blank = IsZero(file, 0, piece) && IsZero(file, size - piece, piece);
    if (!file) {
        throw TargetError(path + ": the target cannot be read");
    }
    return blank;
}

}  // namespace

Target LookAt(const TargetRequest& request) {
    Target target{request.path, request.size, request.sector_size};
    if (!target.path) {
        return target;
    }
    if (NamesADevice(*target.path)) {
        AskDevice(target);
        return target;
    }
    std::error_code error;
    const std::filesystem::path path = PathOf(*target.path);
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        throw TargetError(*target.path + ": there is no such target");
    }
    if (std::filesystem::is_regular_file(status)) {
        target.size = std::filesystem::file_size(path, error);
        if (error) {
            throw TargetError(*target.path + ": the target cannot be read");
        }
    } else if (std::filesystem::is_directory(status)) {
        throw TargetError(*target.path + ": the target is a folder");
    } else {
        AskDevice(target);
    }
    target.blank = IsBlank(*target.path, *target.size);
    return target;
}

bool SameTarget(const Target& one, const Target& other) {
    std::error_code error;
    return one.path && other.path &&
           (std::filesystem::equivalent(PathOf(*one.path), PathOf(*other.path), error) ||
            SameDevice(*one.path, *other.path));
}

void SetDeviceFacts(Target& target, std::uint64_t size, std::uint32_t sector_size) {
    if (target.sector_size && *target.sector_size != sector_size) {
        throw TargetError(*target.path + ": the device has sectors of " + std::to_string(sector_size) +
                          " bytes, but --sector-size says " + std::to_string(*target.sector_size));
    }
    target.size = size;
    target.sector_size = sector_size;
}

std::string TextOf(const Target& target) {
    std::string text = target.path ? *target.path + ", " : "";
    return target.size ? text + std::to_string(*target.size) + " bytes" : "none is chosen";
}

}  // namespace documents
