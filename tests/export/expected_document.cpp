#include "export/expected_document.h"

#include "export/expected_sections.h"

#include <stdexcept>
#include <string>

XmlTree ExpectedDocument(const machine::Description& machine) {
    XmlTree environment = Branch("BMREnvInfo", {Leaf("Version", "7"), Leaf("DllVersion", "9.50.6732.")});
    for (XmlTree& section : ExpectedSystemSections(machine)) {
        environment.children.push_back(std::move(section));
    }
    environment.children.push_back(ExpectedDisks(machine));
    environment.children.push_back(ExpectedVolumes(machine));
    return Branch("root", {environment});
}

XmlTree WithoutAddresses(XmlTree document) {
    for (XmlTree& child : document.children) {
        child = WithoutAddresses(std::move(child));
    }
    if (document.name == "GUID") {
        if (document.text.empty() ||
            document.text.find_first_not_of("0123456789abcdefABCDEFx") != std::string::npos) {
            throw std::invalid_argument("\"" + document.text + "\" is no address");
        }
        document.text.clear();
    }
    return document;
}
