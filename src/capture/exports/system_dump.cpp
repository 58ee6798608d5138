#include "capture/exports/system_dump.h"

#include "capture/environment/wmi_facts.h"
#include "common/logger/orvane_logger.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace {

void WriteLine(const wchar_t* format, std::int32_t value) {
    GetLogger().Write(kLogInformation, format, value);
}

void WriteLine(const wchar_t* format, std::uint32_t value) {
    GetLogger().Write(kLogInformation, format, value);
}

void WriteLine(const wchar_t* format, const std::wstring& value) {
    GetLogger().Write(kLogInformation, format, value.c_str());
}

// Writes the number of strings, then one line for each.
void WriteLine(const wchar_t* format, const std::vector<std::wstring>& texts) {
    WriteLine(format, static_cast<std::int32_t>(texts.size()));
    for (const std::wstring& text : texts) {
        WriteLine(L"    %s", text);
    }
}

template <class Section>
void WriteLines(const WmiClass<Section>& wmi_class, const Section& record) {
    WalkInOrder(wmi_class, &WmiFact<Section>::dump, [&](const WmiFact<Section>& fact) {
        std::visit([&](auto member) { WriteLine(fact.dump.line, record.*member); }, fact.member);
    });
}

// Logs the header of a block, or its failure line if the section was not read. Returns `read`.
bool BeginBlock(bool read, const wchar_t* header, const wchar_t* failure) {
    if (read) {
        GetLogger().Write(kLogInformation, header);
    } else {
        GetLogger().Write(kLogError, failure);
    }
    return read;
}

}  // namespace

// The order differs from the document: compatibility C62
void DumpSystemSections(const SystemSections& sections, const SectionsRead& read) {
    if (BeginBlock(read.processor, L"[Processor Information]", L"WMIDumpInfo Processor Info Failed")) {
        WriteLines(kProcessorClass, sections.Processor);
    }
    if (BeginBlock(read.boot_configuration, L"[Boot Configuration Information]",
                   L"WMIDumpInfo Boot Configuration Info Failed")) {
        WriteLines(kBootConfigurationClass, sections.BootConfiguration);
    }
    // The failure line contains only a part of the block's name: compatibility C64
    if (BeginBlock(read.computer_system, L"[Computer System Information]",
                   L"WMIDumpInfo System Info Failed")) {
        WriteLines(kComputerSystemClass, sections.ComputerSystem);
    }
    if (BeginBlock(read.os, L"[Operating System Information]", L"WMIDumpInfo Operating System Info Failed")) {
        WriteLines(kOSClass, sections.OS);
    }
}
