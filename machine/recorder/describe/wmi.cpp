#include "machine/description/text.h"
#include "machine/description/wmi_defaults.h"
#include "machine/recorder/describe/facts.h"
#include "machine/recorder/observe/answer_bytes.h"
#include "machine/recorder/observe/wmi_types.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace recorder {
namespace {

constexpr const char* kQuery = "IWbemServices::ExecQuery";
constexpr const wchar_t* kDrives = L"Win32_DiskDrive";
constexpr std::uint32_t kPropertyNotFound = 0x80041002;  // WBEM_E_NOT_FOUND
constexpr std::uint32_t kInvalidClass = 0x80041010;      // WBEM_E_INVALID_CLASS

template <class Number>
std::vector<std::int64_t> NumbersIn(const Bytes& bytes) {
    const std::vector<Number> numbers = RecordsAt<Number>(bytes, 0, bytes.size() / sizeof(Number));
    return {numbers.begin(), numbers.end()};
}

// The integers in the bytes of an array; none for any other type.
std::vector<std::int64_t> NumbersOf(VARTYPE type, const Bytes& bytes) {
    switch (type) {
        case VT_ARRAY | VT_UI1:
            return NumbersIn<std::uint8_t>(bytes);
        case VT_ARRAY | VT_I2:
            return NumbersIn<std::int16_t>(bytes);
        case VT_ARRAY | VT_I4:
            return NumbersIn<std::int32_t>(bytes);
        default:
            return {};
    }
}

machine::WmiValue ValueOf(const Part& part) {
    machine::WmiValue value;
    if (part.error != 0) {
        value.error = part.error;
        return value;
    }
    const WmiType* type = FindWmiType(part.type);
    value.type = type == nullptr ? static_cast<VARTYPE>(VT_NULL) : type->type;
    value.number = static_cast<std::int64_t>(part.value);
    value.numbers = NumbersOf(value.type, part.bytes);
    if (value.type == VT_BSTR) {
        value.text = machine::WideText(part.bytes);
    } else if (value.type == (VT_ARRAY | VT_BSTR)) {
        value.texts = machine::TerminatedTexts(machine::WideText(part.bytes));
    } else if ((value.type == VT_R4 || value.type == VT_R8) && part.bytes.size() == sizeof(value.real)) {
        std::memcpy(&value.real, part.bytes.data(), sizeof(value.real));
        // JSON has no infinity and no NaN.
        value.real = std::isfinite(value.real) ? value.real : 0;
    }
    return value;
}

// Whether the list of objects is known, or at least those before it broke off.
bool HasObjects(const Answer& answer) {
    const bool broke_off = answer.step == "IEnumWbemClassObject::Next" && answer.value != 0;
    return answer.succeeded() || (broke_off && !answer.blocks && !answer.crashed);
}

// The objects of a class, each sorted by the names of its properties.
std::vector<machine::WmiInstance> InstancesOf(const Answer& answer) {
    std::vector<machine::WmiInstance> instances(static_cast<std::size_t>(answer.value));
    for (const Part& part : answer.parts) {
        if (part.instance < instances.size()) {
            instances[part.instance].push_back({part.name, ValueOf(part)});
        }
    }
    for (machine::WmiInstance& instance : instances) {
        std::sort(instance.begin(), instance.end(),
                  [](const auto& left, const auto& right) { return left.name < right.name; });
    }
    return instances;
}

// The properties that have to be described over the derived ones. A derived property that was not observed
// cannot be read.
machine::WmiInstance Difference(const machine::WmiInstance& observed, const machine::WmiInstance& derived) {
    machine::WmiInstance difference;
    for (const machine::WmiProperty& property : observed) {
        const machine::WmiProperty* usual = machine::FindProperty(derived, property.name);
        if (usual == nullptr || usual->value != property.value) {
            difference.push_back(property);
        }
    }
    for (const machine::WmiProperty& usual : derived) {
        if (machine::FindProperty(observed, usual.name) == nullptr) {
            machine::WmiValue missing;
            missing.error = kPropertyNotFound;
            difference.push_back({usual.name, missing});
        }
    }
    std::sort(difference.begin(), difference.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    return difference;
}

machine::WmiInstance Overridden(machine::WmiInstance instance, const machine::WmiInstance& difference) {
    for (const machine::WmiProperty& property : difference) {
        machine::SetProperty(instance, property);
    }
    return instance;
}

std::int64_t IndexOf(const machine::WmiInstance& instance) {
    const machine::WmiProperty* index = machine::FindProperty(instance, L"Index");
    return index == nullptr || index->value.error ? -1 : index->value.number;
}

const machine::WmiInstance* FindDrive(const std::vector<machine::WmiInstance>& drives, std::uint32_t index) {
    const auto found = std::find_if(drives.begin(), drives.end(), [&](const machine::WmiInstance& drive) {
        return IndexOf(drive) == static_cast<std::int64_t>(index);
    });
    return found == drives.end() ? nullptr : &*found;
}

const machine::WmiClass& ClassOf(const machine::Description& description, const std::wstring& name) {
    static const machine::WmiClass none;
    const auto found = description.wmi.find(machine::WmiClassKey(name));
    return found == description.wmi.end() ? none : found->second;
}

// Which disks are listed, and what is special about their drives.
void DescribeDrives(const std::vector<machine::WmiInstance>& observed, machine::Description& description) {
    for (machine::Disk& disk : description.disks) {
        disk.hidden_from_wmi = FindDrive(observed, disk.index) == nullptr;
    }
    machine::AddDerivedWmi(description);
    const std::vector<machine::WmiInstance> derived = ClassOf(description, kDrives).instances;
    for (machine::Disk& disk : description.disks) {
        const machine::WmiInstance* own = FindDrive(observed, disk.index);
        const machine::WmiInstance* usual = FindDrive(derived, disk.index);
        if (own != nullptr && usual != nullptr) {
            disk.wmi = Difference(*own, *usual);
        }
    }
    machine::AddDerivedWmi(description);
}

bool FollowsFromDisks(const std::vector<machine::WmiInstance>& observed,
                      const machine::Description& description) {
    const auto& derived = ClassOf(description, kDrives).instances;
    return std::equal(observed.begin(), observed.end(), derived.begin(), derived.end(),
                      [](const machine::WmiInstance& own, const machine::WmiInstance& usual) {
                          return Difference(own, usual).empty();
                      });
}

void DescribeClass(const std::wstring& name, const Answer& answer, machine::Description& description) {
    const std::wstring key = machine::WmiClassKey(name);
    if (answer.error == kInvalidClass) {
        description.wmi.erase(key);
        return;
    }
    if (!HasObjects(answer)) {
        return;  // the class keeps its derived objects; its errors are described later
    }
    const std::vector<machine::WmiInstance> observed = InstancesOf(answer);
    machine::WmiClass described;
    const machine::WmiClass derived = ClassOf(description, name);
    for (const machine::WmiInstance& own : observed) {
        const machine::WmiInstance* usual =
            FindDrive(derived.instances, static_cast<std::uint32_t>(IndexOf(own)));
        const bool drive = machine::EqualNames(name, kDrives);
        if (!drive) {
            usual = derived.instances.size() == 1 ? &derived.instances.front() : nullptr;
        }
        described.instances.push_back(usual == nullptr ? own : Overridden(*usual, Difference(own, *usual)));
    }
    if (!answer.succeeded()) {
        described.break_error = answer.error;
        described.whole_objects = described.instances.size();
    }
    description.wmi[key] = std::move(described);
}

}  // namespace

void DescribeWmi(const Observations& observations, machine::Description& description) {
    const Observation* drives = observations.Best(kQuery, kDrives);
    const bool listed = drives != nullptr && HasObjects(drives->answer);
    const auto observed = listed ? InstancesOf(drives->answer) : std::vector<machine::WmiInstance>();
    if (listed) {
        DescribeDrives(observed, description);
    } else {
        machine::AddDerivedWmi(description);
    }
    for (const std::wstring& name : observations.ObjectsOf(kQuery)) {
        const Observation* answered = observations.Best(kQuery, name);
        if (!machine::EqualNames(name, kDrives) || !answered->answer.succeeded() ||
            !FollowsFromDisks(observed, description)) {
            DescribeClass(name, answered->answer, description);
        }
    }
    const auto unsecured = observations.ObjectsOf("IEnumWbemClassObject::Next");
    for (const std::wstring& name : unsecured) {
        const Answer& answer = observations.Best("IEnumWbemClassObject::Next", name)->answer;
        const Observation* secured = observations.Best(kQuery, name);
        if (answer.error != 0 && answer.step.empty() && secured != nullptr && secured->answer.succeeded()) {
            description.enumerator_refusal = answer.error;
        }
    }
}

std::wstring CurrentDrive(const Observations& observations) {
    const Observation* system = observations.Best(kQuery, L"Win32_OperatingSystem");
    for (const Part& part : system == nullptr ? std::vector<Part>() : system->answer.parts) {
        const std::wstring drive = machine::WideText(part.bytes);
        const bool letter =
            drive.size() == 2 && drive[1] == L':' && (drive[0] | 0x20) >= L'a' && (drive[0] | 0x20) <= L'z';
        if (machine::EqualNames(part.name, L"SystemDrive") && letter) {
            return drive + L'\\';
        }
    }
    return L"C:\\";
}

}  // namespace recorder
