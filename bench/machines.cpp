#include "bench/machines.h"

#include <algorithm>
#include <string>

namespace bench {

namespace {

constexpr std::size_t kMostPartitions = 128;
constexpr std::size_t kFewestPartitions = 4;

std::string Digits(std::size_t number) {
    const std::string digits = std::to_string(number);
    return std::string(8 - digits.size(), '0') + digits;
}

// Skips 255: WMI reports this index for a drive without a disk number.
std::size_t DiskNumber(std::size_t position) {
    return position < 255 ? position : position + 1;
}

std::string Disk(std::size_t position, std::size_t partitions) {
    const std::size_t index = DiskNumber(position);
    std::string json = R"({"index": )" + std::to_string(index) + R"(, "size": "16 GiB", "diskId": "{)" +
                       Digits(index + 1) + R"(-0000-0000-0000-000000000000}", "partitions": [)";
    for (std::size_t i = 0; i < partitions; ++i) {
        json += std::string(i == 0 ? "" : ", ") + R"({"offset": ")" + std::to_string(1 + 100 * i) +
                R"( MiB", "size": "100 MiB", "type": "basic-data"})";
    }
    return json + "]}";
}

std::string Volume(std::size_t number, const Size& size) {
    const std::string name = Digits(number);
    std::string json = R"({"guid": "{)" + name + R"(-1111-2222-3333-444444444444}", "partition": {"disk": )" +
                       std::to_string(DiskNumber(number % size.disks)) + R"(, "number": )" +
                       std::to_string(number / size.disks % kMostPartitions + 1) + R"(}, "mountPoints": [)";
    for (std::size_t i = 0; i < size.mount_points; ++i) {
        json += std::string(i == 0 ? "" : ", ") +
                (number == 0 && i == 0 ? R"("C:\\")"
                                       : R"("C:\\Mounts\\)" + name + R"(\\)" + std::to_string(i) + R"(\\")");
    }
    json += R"(], "aliases": [)";
    for (std::size_t i = 0; i < size.aliases; ++i) {
        json += std::string(i == 0 ? "" : ", ") + R"("{)" + name + "-1111-2222-3333-" + "5555" + Digits(i) +
                R"(}")";
    }
    return json + "]}";
}

}  // namespace

machine::Description MachineOf(const Size& size) {
    const std::size_t needed = (size.volumes + size.disks - 1) / size.disks;
    const std::size_t partitions = std::min(std::max(needed, kFewestPartitions), kMostPartitions);
    std::string json = R"({"disks": [)";
    for (std::size_t i = 0; i < size.disks; ++i) {
        json += (i == 0 ? "" : ", ") + Disk(i, partitions);
    }
    json += R"(], "volumes": [)";
    for (std::size_t i = 0; i < size.volumes; ++i) {
        json += (i == 0 ? "" : ", ") + Volume(i, size);
    }
    json += R"(], "wmi": {"Win32_ComputerSystem": [{"SystemStartupOptions": ["Windows 11"]}]}})";
    return machine::ParseDescription(json, "generated");
}

}  // namespace bench
