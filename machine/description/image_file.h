#pragma once

#include "machine/description/description.h"

#include <cstdint>
#include <filesystem>

namespace machine {

// A raw disk image opened for reading, or for reading and writing. Failures throw std::runtime_error with
// the file's name and the reason.
class ImageFile {
public:
    explicit ImageFile(const std::filesystem::path& file, bool writable = false);
    ~ImageFile();

    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    std::uint64_t size() const noexcept { return size_; }

    // Reads exactly `length` bytes at `offset`.
    Bytes Read(std::uint64_t offset, std::size_t length);
    void Write(std::uint64_t offset, const Bytes& bytes);

private:
    void Seek(std::uint64_t offset);
    [[noreturn]] void Fail(const char* what) const;

    std::filesystem::path file_;
    HANDLE handle_;
    std::uint64_t size_ = 0;
};

// Little-endian fields of on-disk records.

std::uint16_t Get16(const Bytes& bytes, std::size_t offset);
std::uint32_t Get32(const Bytes& bytes, std::size_t offset);
std::uint64_t Get64(const Bytes& bytes, std::size_t offset);
GUID GetGuid(const Bytes& bytes, std::size_t offset);
void Put16(Bytes& bytes, std::size_t offset, std::uint16_t value);
void Put32(Bytes& bytes, std::size_t offset, std::uint32_t value);
void Put64(Bytes& bytes, std::size_t offset, std::uint64_t value);
void PutGuid(Bytes& bytes, std::size_t offset, const GUID& guid);

// The CRC-32 of the GPT (polynomial 0xEDB88320, reflected).
std::uint32_t Crc32(const std::uint8_t* bytes, std::size_t length);

}  // namespace machine
