#pragma once

#include "common/disk/partition_manager.h"
#include "machine/simulation/simulation.h"
#include "support/scoped_import.h"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

// The expected contents of tables written into copies of disk images, and the code to compare them.
namespace written {

inline constexpr std::int64_t kSector = 512;
inline constexpr std::int64_t kKiB = 1024;
inline constexpr std::int64_t kMiB = 1024 * kKiB;
inline constexpr std::int64_t kDiskSize = 16 * kMiB;  // of the images that the writing tests start from
inline constexpr std::uint32_t kAlignment = 1U << 20;

inline constexpr const char* kBasicData = "EBD0A0A2-B9E5-4433-87C0-68B6B72699C7";
inline constexpr const char* kSystem = "C12A7328-F81F-11D2-BA4B-00A0C93EC93B";
inline constexpr const char* kReserved = "E3C9E316-0B5C-4DB8-817D-F92DF00215AE";
inline constexpr const char* kRecovery = "DE94BBA4-06D1-4D40-A16A-BFD50179D6AC";
inline constexpr const char* kNewName = "Basic data partition";  // of every partition that the library adds

// Numbers are in sectors. Texts are as sfdisk writes them: upper-case GUIDs, hexadecimal MBR types.
struct Partition {
    unsigned number = 0;
    std::int64_t start = 0;
    std::int64_t size = 0;
    std::string type;
    std::string uuid = {};
    std::string name = {};
    std::string attributes = {};
    bool bootable = false;

    bool operator==(const Partition&) const = default;
};

struct Table {
    std::string label;  // "gpt" or "dos"; empty for a disk without a table
    std::string id;
    std::vector<Partition> partitions;
    std::int64_t first_usable = 34;  // GPT only, in sectors; the value for 128 entries
    std::int64_t last_usable = 32734;

    bool operator==(const Table&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Partition& partition);
std::ostream& operator<<(std::ostream& out, const Table& table);

// The contents of edit-gpt.img, in disk order and numbered in that order.
inline constexpr const char* kGptId = "0F1E2D3C-4B5A-4978-8796-A5B4C3D2E1F0";
extern const Partition kGptSystem;
extern const Partition kGptReserved;
extern const Partition kGptLongName;
extern const Partition kGptUmlauts;

Table GptTable(std::vector<Partition> partitions);
// The same partition with another number.
Partition Numbered(unsigned number, Partition partition);

GUID Guid(const std::string& text);

std::filesystem::path ImagePath(const std::string& name);

// The table on an image as the library reads it on a new simulated machine. Throws machine::DescriptionError
// if the image does not exist.
Table ReadBack(const std::string& name);

// Checks that the image written-NAME.img contains the table. Also saves the expected table beside the image,
// to be compared with what the partitioning tools read.
void ExpectWritten(const std::string& name, const Table& table);

// A machine whose disk 0 is the image SOURCE.img. Writes go to the copy written-NAME.img. The destructor
// checks that no handle is left open. `more` is the JSON of further disks, each preceded by a comma.
class Machine {
public:
    Machine(const std::string& source, const std::string& name, const std::string& more = {});
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    machine::Simulation& simulation() { return simulation_; }

private:
    machine::Simulation simulation_;
};

// Reads the table of disk 0 into the manager.
void Read(bmr_common::PartitionManager& manager);

// During its lifetime, CoCreateGuid returns these GUIDs to the library, in this order. Fails the test when it
// needs more, or fewer.
class IssuedGuids {
public:
    explicit IssuedGuids(std::vector<std::string> guids);
    ~IssuedGuids();

private:
    static HRESULT WINAPI Issue(GUID* guid);

    static inline std::vector<std::string> left_;
    support::ScopedImport<HRESULT(WINAPI*)(GUID*)> import_;
};

}  // namespace written
