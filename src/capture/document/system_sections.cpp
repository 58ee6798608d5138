#include "capture/document/system_sections.h"

#include "capture/document/fields.h"
#include "capture/environment/wmi_facts.h"
#include "common/xml/xml_values.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace {

constexpr Field<SystemSections> kHeader[] = {
    {"Version", &SystemSections::Version},
    {"DllVersion", &SystemSections::DllVersion},
};

template <class Value>
void WriteFact(CMSXmlNode& section, const char* element, const Value& value) {
    AddValue(section, element, value);
}

void WriteFact(CMSXmlNode& section, const char* element, const std::vector<std::wstring>& texts) {
    CMSXmlNode list = section.AddChild(element);
    AddNumberElement(list, "size", static_cast<std::uint32_t>(texts.size()));
    std::size_t position = 0;
    for (const std::wstring& text : texts) {
        list.AddTextChild(("child" + std::to_string(position++)).c_str(), text);
    }
}

template <class Section>
void WriteSection(CMSXmlNode& environment, const char* name, const WmiClass<Section>& wmi_class,
                  const Section& record) {
    CMSXmlNode section = environment.AddChild(name);
    WalkInOrder(wmi_class, &WmiFact<Section>::document, [&](const WmiFact<Section>& fact) {
        std::visit([&](auto member) { WriteFact(section, fact.document.element, record.*member); },
                   fact.member);
    });
}

}  // namespace

void WriteSystemSections(CMSXmlNode& environment, const SystemSections& sections) {
    WriteFields(environment, sections, kHeader);
    WriteSection(environment, "Processor", kProcessorClass, sections.Processor);
    WriteSection(environment, "ComputerSystem", kComputerSystemClass, sections.ComputerSystem);
    WriteSection(environment, "BootConfiguration", kBootConfigurationClass, sections.BootConfiguration);
    WriteSection(environment, "OS", kOSClass, sections.OS);
}
