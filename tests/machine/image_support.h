#pragma once

#include "machine/description/image_file.h"
#include "machine/test_machine.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace machine_test {

// A raw disk image, deleted with the object.
class TestImage {
public:
    TestImage(const std::string& name, std::uint64_t size)
        : file_(std::filesystem::temp_directory_path() / name) {
        std::ofstream(file_, std::ios::binary).flush();
        std::filesystem::resize_file(file_, size);
    }
    ~TestImage() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }
    TestImage(const TestImage&) = delete;
    TestImage& operator=(const TestImage&) = delete;

    const std::filesystem::path& file() const { return file_; }

    void Write(std::uint64_t offset, const machine::Bytes& bytes) const {
        machine::ImageFile(file_, true).Write(offset, bytes);
    }
    machine::Bytes Read(std::uint64_t offset, std::size_t length) const {
        return machine::ImageFile(file_).Read(offset, length);
    }

    // JSON of a machine whose only disk has this image. `more` is the JSON of further keys of the disk.
    std::string Json(const std::string& more = {}) const {
        return R"({"disks": [{"index": 0, "image": ")" + file_.filename().string() + "\"" + more + "}]}";
    }
    machine::Description Describe(const std::string& more = {}) const {
        return machine::ParseDescription(Json(more), "test.json", file_.parent_path());
    }

private:
    std::filesystem::path file_;
};

// An entry of a boot record.
struct BootEntry {
    std::uint8_t indicator = 0;
    std::uint8_t type = 0;
    std::uint32_t start = 0;
    std::uint32_t sectors = 0;
};

inline machine::Bytes BootRecord(std::uint32_t signature, const std::vector<BootEntry>& entries,
                                 std::size_t sector_size = 512) {
    machine::Bytes sector(sector_size);
    machine::Put32(sector, 440, signature);
    std::size_t at = 446;
    for (const BootEntry& entry : entries) {
        sector[at] = entry.indicator;
        sector[at + 4] = entry.type;
        machine::Put32(sector, at + 8, entry.start);
        machine::Put32(sector, at + 12, entry.sectors);
        at += 16;
    }
    sector[510] = 0x55;
    sector[511] = 0xAA;
    return sector;
}

}  // namespace machine_test
