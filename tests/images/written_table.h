#pragma once

#include "common/disk/partition_manager.h"
#include "machine/simulation.h"
#include "support/scoped_import.h"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

// Tables written into copies of disk images: what a test means to be there, beside what is there.
namespace written {

inline constexpr std::int64_t kSector = 512;
inline constexpr std::int64_t kKiB = 1024;
inline constexpr std::int64_t kMiB = 1024 * kKiB;
inline constexpr std::int64_t kDiskSize = 16 * kMiB;  // of the images that writing starts from
inline constexpr std::uint32_t kAlignment = 1U << 20;

inline constexpr const char* kBasicData = "EBD0A0A2-B9E5-4433-87C0-68B6B72699C7";
inline constexpr const char* kSystem = "C12A7328-F81F-11D2-BA4B-00A0C93EC93B";
inline constexpr const char* kReserved = "E3C9E316-0B5C-4DB8-817D-F92DF00215AE";
inline constexpr const char* kRecovery = "DE94BBA4-06D1-4D40-A16A-BFD50179D6AC";
inline constexpr const char* kNewName = "Basic data partition";  // of every partition that the library adds

// Sectors, and texts as sfdisk writes them: upper-case GUIDs, MBR types in hexadecimal.
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
    std::string label;  // "gpt", "dos"; empty for a disk without a table
    std::string id;
    std::vector<Partition> partitions;
    std::int64_t first_usable = 34;  // GPT, sectors; what 128 entries leave
    std::int64_t last_usable = 32734;

    bool operator==(const Table&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Partition& partition);
std::ostream& operator<<(std::ostream& out, const Table& table);

// What edit-gpt.img holds, in disk order, with the numbers that this order gives.
inline constexpr const char* kGptId = "0F1E2D3C-4B5A-4978-8796-A5B4C3D2E1F0";
extern const Partition kGptSystem;
extern const Partition kGptReserved;
extern const Partition kGptLongName;
extern const Partition kGptUmlauts;

Table GptTable(std::vector<Partition> partitions);
// The partition under another number.
Partition Numbered(unsigned number, Partition partition);

GUID Guid(const std::string& text);

std::filesystem::path ImagePath(const std::string& name);

// The table on an image, as the library reads it on a new machine. Throws machine::DescriptionError when
// there is no such image.
Table ReadBack(const std::string& name);

// The image written-NAME.img holds the table. Leaves the table beside it for the partitioning tools to
// compare with what they read.
void ExpectWritten(const std::string& name, const Table& table);

// A machine whose disk 0 is the image SOURCE.img, changes of which go into written-NAME.img; no handle is
// left open when it ends. `more` are further disks, each with a comma in front.
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

// The manager reads the table of disk 0.
void Read(bmr_common::PartitionManager& manager);

// The library gets these GUIDs, in this order, where it asks for new ones; an error when there are no more.
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
