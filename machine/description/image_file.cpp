#include "machine/description/image_file.h"

#include "machine/description/text.h"

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>

namespace machine {
namespace {

template <class Number>
Number Get(const Bytes& bytes, std::size_t offset) {
    Number value{};
    std::memcpy(&value, &bytes.at(offset + sizeof(Number) - 1) - (sizeof(Number) - 1), sizeof(Number));
    return value;
}

template <class Number>
void Put(Bytes& bytes, std::size_t offset, const Number& value) {
    std::memcpy(&bytes.at(offset + sizeof(Number) - 1) - (sizeof(Number) - 1), &value, sizeof(Number));
}

std::array<std::uint32_t, 256> CrcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value & 1) != 0 ? (value >> 1) ^ 0xEDB88320U : value >> 1;
        }
        table[i] = value;
    }
    return table;
}

}  // namespace

ImageFile::ImageFile(const std::filesystem::path& file, bool writable)
    : file_(file),
      handle_(::CreateFileW(file.wstring().c_str(), writable ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ,
                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)) {
    if (handle_ == INVALID_HANDLE_VALUE) {
        Fail("cannot be opened");
    }
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(handle_, &size)) {
        ::CloseHandle(handle_);
        Fail("has no size");
    }
    size_ = static_cast<std::uint64_t>(size.QuadPart);
}

ImageFile::~ImageFile() {
    ::CloseHandle(handle_);
}

Bytes ImageFile::Read(std::uint64_t offset, std::size_t length) {
    Seek(offset);
    Bytes bytes(length);
    DWORD done = 0;
    if (!::ReadFile(handle_, bytes.data(), static_cast<DWORD>(length), &done, nullptr) || done != length) {
        Fail("cannot be read");
    }
    return bytes;
}

void ImageFile::Write(std::uint64_t offset, const Bytes& bytes) {
    Seek(offset);
    DWORD done = 0;
    if (!::WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr) ||
        done != bytes.size()) {
        Fail("cannot be written");
    }
}

void ImageFile::Seek(std::uint64_t offset) {
    LARGE_INTEGER position{};
    position.QuadPart = static_cast<LONGLONG>(offset);
    if (!::SetFilePointerEx(handle_, position, nullptr, FILE_BEGIN)) {
        Fail("cannot be positioned");
    }
}

void ImageFile::Fail(const char* what) const {
    const DWORD error = GetLastError();
    throw std::runtime_error("image " + Narrow(file_.wstring()) + " " + what + ", error " +
                             std::to_string(error));
}

std::uint16_t Get16(const Bytes& bytes, std::size_t offset) {
    return Get<std::uint16_t>(bytes, offset);
}
std::uint32_t Get32(const Bytes& bytes, std::size_t offset) {
    return Get<std::uint32_t>(bytes, offset);
}
std::uint64_t Get64(const Bytes& bytes, std::size_t offset) {
    return Get<std::uint64_t>(bytes, offset);
}
GUID GetGuid(const Bytes& bytes, std::size_t offset) {
    return Get<GUID>(bytes, offset);
}
void Put16(Bytes& bytes, std::size_t offset, std::uint16_t value) {
    Put(bytes, offset, value);
}
void Put32(Bytes& bytes, std::size_t offset, std::uint32_t value) {
    Put(bytes, offset, value);
}
void Put64(Bytes& bytes, std::size_t offset, std::uint64_t value) {
    Put(bytes, offset, value);
}
void PutGuid(Bytes& bytes, std::size_t offset, const GUID& guid) {
    Put(bytes, offset, guid);
}

std::uint32_t Crc32(const std::uint8_t* bytes, std::size_t length) {
    static const std::array<std::uint32_t, 256> table = CrcTable();
    std::uint32_t crc = 0xFFFFFFFFU;
    for (std::size_t i = 0; i < length; ++i) {
        crc = table[(crc ^ bytes[i]) & 0xFF] ^ (crc >> 8);
    }
    return ~crc;
}

}  // namespace machine
