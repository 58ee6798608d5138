#include "faults/lie_tables.h"

#include "common/windows.h"
#include "faults/variant_lies.h"

#include <winternl.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>

namespace faults {

namespace {

using machine::Answer;
using machine::Bytes;

constexpr std::size_t kGarbageBytes = 512;

template <class Number>
void PutNumber(Bytes& bytes, std::size_t offset, Number value) {
    if (offset + sizeof(value) <= bytes.size()) {
        std::memcpy(bytes.data() + offset, &value, sizeof(value));
    }
}

NamedLie Named(std::string name, Lie lie) {
    return {std::move(name), std::move(lie)};
}

// --- Lengths, for every kind of answer.

// If `counts`, the plain result is the length and is changed too. Otherwise it may be a handle and is kept.
void AddLengthLies(std::vector<NamedLie>& lies, bool counts = false) {
    for (const std::uint64_t length :
         {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{7}, std::uint64_t{0x7FFFFFFF},
          std::uint64_t{0x80000000}, std::uint64_t{0xFFFFFFFF}}) {
        lies.push_back(Named("length-" + std::to_string(length), [length, counts](Answer& answer) {
            answer.returned = length;
            answer.value = counts ? length : answer.value;
        }));
    }
    lies.push_back(
        Named("length-short", [](Answer& answer) { answer.returned -= answer.returned > 0 ? 1 : 0; }));
    lies.push_back(Named("length-long", [](Answer& answer) { answer.returned += 1; }));
    lies.push_back(Named("half", [](Answer& answer) {
        answer.bytes.resize(answer.bytes.size() / 2);
        answer.returned = answer.bytes.size();
    }));
    lies.push_back(Named("nothing", [](Answer& answer) {
        answer.bytes.clear();
        answer.returned = 0;
    }));
    lies.push_back(
        Named("all-ones", [](Answer& answer) { std::fill(answer.bytes.begin(), answer.bytes.end(), 0xFF); }));
    lies.push_back(
        Named("all-zeros", [](Answer& answer) { std::fill(answer.bytes.begin(), answer.bytes.end(), 0); }));
}

// --- Device controls: every number in the answer takes every extreme value.

void AddNumberLies(std::vector<NamedLie>& lies) {
    constexpr std::size_t kNumbers = 48;
    constexpr std::uint32_t kSmall[] = {0, 1, 2, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    constexpr std::uint64_t kLarge[] = {0x7FFFFFFFFFFFFFFF, 0x8000000000000000, 0xFFFFFFFFFFFFFFFF, 1};
    for (std::size_t i = 0; i < kNumbers; ++i) {
        for (const std::uint32_t value : kSmall) {
            lies.push_back(Named("dword-" + std::to_string(i) + "-" + std::to_string(value),
                                 [i, value](Answer& answer) { PutNumber(answer.bytes, i * 4, value); }));
        }
        for (const std::uint64_t value : kLarge) {
            lies.push_back(Named("qword-" + std::to_string(i) + "-" + std::to_string(value),
                                 [i, value](Answer& answer) { PutNumber(answer.bytes, i * 8, value); }));
        }
    }
}

// A layout of entries of all kinds at arbitrary places, which may overlap and form cycles.
void PutAnyLayout(Answer& answer, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    constexpr std::size_t kHeader = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
    const std::size_t room = answer.bytes.size() < kHeader
                                 ? 0
                                 : (answer.bytes.size() - kHeader) / sizeof(PARTITION_INFORMATION_EX);
    constexpr BYTE kTypes[] = {0, 5, 15, 7, 0x42, 0xEE, 0xFF};
    constexpr std::int64_t kPlaces[] = {0,
                                        1,
                                        512,
                                        1 << 20,
                                        std::int64_t{1} << 30,
                                        std::int64_t{1} << 40,
                                        -1,
                                        -512,
                                        std::numeric_limits<std::int64_t>::max(),
                                        std::numeric_limits<std::int64_t>::min()};
    for (std::size_t i = 0; i < room; ++i) {
        PARTITION_INFORMATION_EX entry{};
        entry.StartingOffset.QuadPart = kPlaces[random() % std::size(kPlaces)];
        entry.PartitionLength.QuadPart = kPlaces[random() % std::size(kPlaces)];
        entry.PartitionNumber = static_cast<DWORD>(random() % 6);
        entry.Mbr.PartitionType = kTypes[random() % std::size(kTypes)];
        entry.Mbr.BootIndicator = static_cast<BOOLEAN>(random() % 3);
        entry.Mbr.RecognizedPartition = static_cast<BOOLEAN>(random() % 3);
        std::memcpy(answer.bytes.data() + kHeader + i * sizeof(entry), &entry, sizeof(entry));
    }
}

// The same for the older layout.
void PutAnyLegacyLayout(Answer& answer, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    constexpr std::size_t kHeader = offsetof(DRIVE_LAYOUT_INFORMATION, PartitionEntry);
    constexpr BYTE kTypes[] = {0, 5, 15, 7, 0x42};
    constexpr std::int64_t kPlaces[] = {0,
                                        512,
                                        1 << 20,
                                        std::int64_t{1} << 30,
                                        -1,
                                        std::numeric_limits<std::int64_t>::max(),
                                        std::numeric_limits<std::int64_t>::min()};
    for (std::size_t at = kHeader; at + sizeof(PARTITION_INFORMATION) <= answer.bytes.size();
         at += sizeof(PARTITION_INFORMATION)) {
        PARTITION_INFORMATION entry{};
        entry.StartingOffset.QuadPart = kPlaces[random() % std::size(kPlaces)];
        entry.PartitionLength.QuadPart = kPlaces[random() % std::size(kPlaces)];
        entry.PartitionNumber = static_cast<DWORD>(random() % 4);
        entry.PartitionType = kTypes[random() % std::size(kTypes)];
        std::memcpy(answer.bytes.data() + at, &entry, sizeof(entry));
    }
}

void AddLayoutLies(std::vector<NamedLie>& lies, void (*put)(Answer&, std::uint64_t)) {
    constexpr std::uint64_t kLayouts = 64;
    for (std::uint64_t i = 0; i < kLayouts; ++i) {
        lies.push_back(Named("layout-" + std::to_string(i), [put, i](Answer& answer) { put(answer, i); }));
    }
}

// --- Texts.

void PutText(Answer& answer, const std::wstring& text, bool counts) {
    answer.bytes.assign(reinterpret_cast<const std::uint8_t*>(text.data()),
                        reinterpret_cast<const std::uint8_t*>(text.data() + text.size()));
    answer.returned = text.size();
    answer.value = counts ? text.size() : answer.value;
}

void AddTextLies(std::vector<NamedLie>& lies, bool counts) {
    using namespace std::string_literals;
    const std::wstring texts[] = {
        L"\0"s,
        L"\0\0"s,
        L"x"s,
        std::wstring(70'000, L'x'),       // not terminated within any buffer
        std::wstring(259, L'x') + L'\0',  // exactly fits
        std::wstring(3, L'x') + L'\0' + std::wstring(70'000, L'y'),
        L"\\\\?\\Volume{}\\\0\0"s,
        L"\\\\?\\Volume{\0\0"s,
        L"\\\\?\\Volume\0\0"s,
        L"\\\\?\\\0\0"s,
        L"\\\0\0"s,
        L"Volume{11111111-2222-3333-4444-555555555555}\0\0"s,
        L"\\\\?\\Volume{11111111-2222-3333-4444-555555555555}\0\0"s,  // no trailing backslash
        L"\\\\?\\VOLUME{11111111-2222-3333-4444-555555555555}\\\0\0"s,
        L"\\\\?\\Volume{11111111-2222-3333-4444-555555555555}\\\\\\\0\0"s,
        L"\\\\?\\Volume{" + std::wstring(200, L'0') + L"}\\" + std::wstring(2, L'\0'),
        L"\\\\?\\Volume{%s%s%s%n%d%I64d}\\\0\0"s,
        L"\\Device\\\0\0"s,
        L"\\Device\\\\\\\\\0\0"s,
        L"\\??\\C:\\\0\0"s,
        L"%s%s%n%n%1$s%*.*d\0\0"s,
        L"\xD800\0\0"s,  // unpaired surrogate
        L"\xDC00\xD800<&>\"'\x0001\xFFFF\0\0"s,
        L"C:\\\0D:\\\0\0"s,
        L"C:\\\0"s,  // list without its terminator
    };
    std::size_t number = 0;
    for (const std::wstring& text : texts) {
        lies.push_back(Named("text-" + std::to_string(number++),
                             [text, counts](Answer& answer) { PutText(answer, text, counts); }));
    }
}

// --- Directory entries: counted strings with addresses.

struct DirectoryRecord {
    UNICODE_STRING name;
    UNICODE_STRING type;
};

void AddDirectoryLies(std::vector<NamedLie>& lies) {
    const auto change = [&](const std::string& name, std::function<void(UNICODE_STRING&)> put) {
        for (const bool of_name : {true, false}) {
            lies.push_back(Named((of_name ? "name-" : "type-") + name, [put, of_name](Answer& answer) {
                if (answer.bytes.size() < sizeof(DirectoryRecord)) {
                    return;
                }
                DirectoryRecord record;
                std::memcpy(&record, answer.bytes.data(), sizeof(record));
                put(of_name ? record.name : record.type);
                std::memcpy(answer.bytes.data(), &record, sizeof(record));
            }));
        }
    };
    for (const unsigned length : {0U, 1U, 3U, 0x7FFFU, 0xFFFEU, 0xFFFFU}) {
        change("length-" + std::to_string(length),
               [length](UNICODE_STRING& text) { text.Length = static_cast<USHORT>(length); });
    }
    for (const std::ptrdiff_t distance : {-1, 1, -64, 200, 4096, 1 << 20}) {
        change("moved-" + std::to_string(distance), [distance](UNICODE_STRING& text) {
            text.Buffer = reinterpret_cast<PWSTR>(reinterpret_cast<std::uintptr_t>(text.Buffer) +
                                                  static_cast<std::uintptr_t>(distance));
        });
    }
    change("null", [](UNICODE_STRING& text) { text.Buffer = nullptr; });
    change("wild", [](UNICODE_STRING& text) {
        text.Buffer = reinterpret_cast<PWSTR>(~std::uintptr_t{0} - 2);
        text.Length = 0xFFFE;
    });
    lies.push_back(Named("endless", [](Answer& answer) { answer.value = 0; }));
}

// --- Plain results.

void AddValueLies(std::vector<NamedLie>& lies) {
    for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{3}, std::uint64_t{7},
                                      std::uint64_t{0x7FFFFFFF}, std::uint64_t{0xFFFFFFFF}}) {
        lies.push_back(
            Named("value-" + std::to_string(value), [value](Answer& answer) { answer.value = value; }));
    }
}

bool Begins(const std::string& name, const char* with) {
    return name.rfind(with, 0) == 0;
}

}  // namespace

std::vector<NamedLie> LiesFor(const machine::CallRecord& record) {
    std::vector<NamedLie> lies;
    const std::string& name = record.name;
    if (Begins(name, "DeviceIoControl")) {
        AddLengthLies(lies);
        AddNumberLies(lies);
        if (name == "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT_EX") {
            AddLayoutLies(lies, &PutAnyLayout);
        } else if (name == "DeviceIoControl:IOCTL_DISK_GET_DRIVE_LAYOUT") {
            AddLayoutLies(lies, &PutAnyLegacyLayout);
        }
    } else if (name == "ZwQueryDirectoryObject") {
        AddLengthLies(lies);
        AddDirectoryLies(lies);
    } else if (name == "IWbemClassObject::Get") {
        AddVariantLies(lies);
    } else if (name == "GetDriveTypeW" || name == "GetLogicalDrives" || name == "GetFirmwareType" ||
               name == "GetFirmwareEnvironmentVariableW") {
        AddValueLies(lies);
        AddLengthLies(lies);
    } else if (name == "QueryDosDeviceW" || name == "FindFirstVolumeW" || name == "FindNextVolumeW" ||
               Begins(name, "GetVolume")) {
        const bool counts = name == "QueryDosDeviceW";
        AddTextLies(lies, counts);
        AddLengthLies(lies, counts);
    } else if (Begins(name, "GetDiskFreeSpace")) {
        AddNumberLies(lies);
    }
    return lies;
}

Lie RandomLie(std::uint64_t seed) {
    return [seed](Answer& answer) {
        std::mt19937_64 random(seed);
        const std::size_t changes = 1 + random() % 8;
        for (std::size_t i = 0; i < changes && !answer.bytes.empty(); ++i) {
            answer.bytes[random() % answer.bytes.size()] = static_cast<std::uint8_t>(random());
        }
        switch (random() % 8) {
            case 0:
                answer.bytes.resize(random() % (answer.bytes.size() + 64));
                break;
            case 1:
                answer.returned = random() % (answer.returned * 2 + 3);
                break;
            case 2:
                answer.returned = static_cast<std::uint32_t>(random());
                break;
            default:
                break;
        }
    };
}

void AppendGarbage(machine::Answer& answer) {
    // A failed call leaves the buffer unchanged. A text whose length the caller has to find ends in zeros.
    if (!answer.failed && !answer.bytes.empty()) {
        answer.bytes.insert(answer.bytes.end(), kGarbageBytes, 0xCD);
    }
}

}  // namespace faults
