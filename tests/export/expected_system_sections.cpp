#include "export/expected_sections.h"
#include "machine/description/wmi_defaults.h"
#include "support/text.h"

#include <algorithm>

namespace {

enum class Kind {
    kText,
    kNumber,       // unsigned 32-bit values are truncated to 16 bits
    kWholeNumber,  // not truncated
    kTexts,
    kAlways64,
};

struct Row {
    const char* element;
    const wchar_t* property;
    Kind kind = Kind::kText;
};

struct Section {
    const char* name;
    const wchar_t* class_name;
    std::vector<Row> rows;
};

const std::vector<Section> kSections = {
    {"Processor",
     L"Win32_Processor",
     {
         {"Architecture", L"Architecture", Kind::kNumber},
         {"CurrentClockSpeed", L"CurrentClockSpeed", Kind::kNumber},
         {"Family", L"Family", Kind::kNumber},
         {"Manufacturer", L"Manufacturer"},
         {"MaxClockSpeed", L"MaxClockSpeed", Kind::kNumber},
         {"ProcessorId", L"ProcessorId", Kind::kNumber},
         {"ProcessorType", L"ProcessorType", Kind::kNumber},
         {"UniqueId", L"UniqueId", Kind::kNumber},
     }},
    {"ComputerSystem",
     L"Win32_ComputerSystem",
     {
         {"CurrentTimeZone", L"CurrentTimeZone", Kind::kNumber},
         {"Description", L"Description"},
         {"Domain", L"Domain"},
         {"Manufacturer", L"Manufacturer"},
         {"Model", L"Model"},
         {"NumberOfProcessors", L"NumberOfProcessors", Kind::kNumber},
         {"SystemStartupOptions", L"SystemStartupOptions", Kind::kTexts},
         {"SystemType", L"SystemType"},
         {"TotalPhysicalMemory", L"TotalPhysicalMemory"},
         {"UserName", L"UserName"},
     }},
    {"BootConfiguration",
     L"Win32_BootConfiguration",
     {
         {"BootDirectory", L"BootDirectory"},
         {"ConfigurationPath", L"ConfigurationPath"},
         {"Description", L"Description"},
         {"LastDrive", L"LastDrive"},
         {"Name", L"Name"},
         {"ScratchDirectory", L"ScratchDirectory"},
         {"SettingID", L"SettingID", Kind::kWholeNumber},
         {"TempDirectory", L"TempDirectory"},
     }},
    {"OS",
     L"Win32_OperatingSystem",
     {
         {"BootDevice", L"BootDevice"},
         {"CountryCode", L"CountryCode"},
         {"CSDVersion", L"CSDVersion"},
         {"CSName", L"CSName"},
         {"CurrentTimeZone", L"CurrentTimeZone", Kind::kNumber},
         {"Description", L"Description"},
         {"Locale", L"Locale"},
         {"Manufacturer", L"Manufacturer"},
         {"Organization", L"Organization"},
         {"OSLanguage", L"OSLanguage", Kind::kNumber},
         {"OSType", L"OSType", Kind::kNumber},
         {"OSArchitecture", nullptr, Kind::kAlways64},
         {"SerialNumber", L"SerialNumber"},
         {"SystemDevice", L"SystemDevice"},
         {"SystemDirectory", L"SystemDirectory"},
         {"SystemDrive", L"SystemDrive"},
         {"Version", L"Version"},
         {"Name", L"Caption"},
         {"WindowsDirectory", L"WindowsDirectory"},
     }},
};

// The value in the last instance; null when the property is missing.
const machine::WmiValue* ValueOf(const machine::Description& machine, const wchar_t* class_name,
                                 const wchar_t* property) {
    const auto& instances = machine.wmi.at(machine::WmiClassKey(class_name)).instances;
    const machine::WmiProperty* found = machine::FindProperty(instances.back(), property);
    return found == nullptr ? nullptr : &found->value;
}

std::string NumberText(const machine::WmiValue* value, bool whole) {
    if (value == nullptr) {
        return "0";
    }
    switch (value->type) {
        case VT_I2:
        case VT_UI2:
        case VT_I4:
        case VT_INT:
        case VT_UINT:
            return std::to_string(static_cast<std::int32_t>(value->number));
        case VT_UI4:
            return std::to_string(whole ? value->number : value->number & 0xFFFF);
        case VT_BOOL:
            return value->number != 0 ? "-1" : "0";
        default:
            return "0";
    }
}

XmlTree ListElement(const char* name, const machine::WmiValue* value) {
    const std::vector<std::wstring> texts = value == nullptr ? std::vector<std::wstring>() : value->texts;
    XmlTree list = Branch(name, {NumberLeaf("size", texts.size())});
    for (std::size_t i = 0; i < texts.size(); ++i) {
        list.children.push_back(Leaf("child" + std::to_string(i), AnsiText(texts[i])));
    }
    return list;
}

XmlTree Element(const machine::Description& machine, const Section& section, const Row& row) {
    switch (row.kind) {
        case Kind::kText:
            return Leaf(row.element, WmiTextOf(machine, section.class_name, row.property));
        case Kind::kTexts:
            return ListElement(row.element, ValueOf(machine, section.class_name, row.property));
        case Kind::kAlways64:
            return Leaf(row.element, "64");
        default:
            return Leaf(row.element, NumberText(ValueOf(machine, section.class_name, row.property),
                                                row.kind == Kind::kWholeNumber));
    }
}

// The control characters that XML forbids.
bool IsForbiddenControl(wchar_t character) {
    return character < L' ' && character != L'\t' && character != L'\n' && character != L'\r';
}

}  // namespace

std::string AnsiText(const std::wstring& text) {
    std::wstring allowed = text;
    std::replace_if(allowed.begin(), allowed.end(), IsForbiddenControl, L'\uFFFD');
    return support::Utf8(support::Wide(support::Ansi(allowed)));
}

std::string WmiTextOf(const machine::Description& machine, const wchar_t* class_name,
                      const wchar_t* property) {
    const machine::WmiValue* value = ValueOf(machine, class_name, property);
    return value != nullptr && value->type == VT_BSTR ? AnsiText(value->text) : "";
}

std::vector<XmlTree> ExpectedSystemSections(const machine::Description& machine) {
    std::vector<XmlTree> sections;
    for (const Section& section : kSections) {
        XmlTree& written = sections.emplace_back(Branch(section.name, {}));
        for (const Row& row : section.rows) {
            written.children.push_back(Element(machine, section, row));
        }
    }
    return sections;
}
