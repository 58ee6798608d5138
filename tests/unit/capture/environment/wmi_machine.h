#pragma once

#include "machine/description/wmi_defaults.h"
#include "machine/session/session.h"

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

// A machine of which the tests use only the WMI classes.
class WmiMachine {
public:
    WmiMachine() : session_(machine::ParseDescription("{}", "wmi machine")) {}

    machine::Simulation& simulation() { return session_.simulation(); }

    machine::WmiClass& Class(const std::wstring& name) {
        return simulation().description().wmi[machine::WmiClassKey(name)];
    }

    // Sets a property of the first instance.
    void Set(const std::wstring& class_name, const std::wstring& property, const machine::WmiValue& value) {
        machine::SetProperty(Class(class_name).instances.at(0), {property, value});
    }

    // The properties of the class that were read, in order.
    std::vector<std::wstring> ReadProperties(const std::wstring& class_name) {
        std::vector<std::wstring> properties;
        for (const std::wstring& object : simulation().calls().ObjectsOf("IWbemClassObject::Get")) {
            if (object.starts_with(class_name + L".")) {
                properties.push_back(object.substr(class_name.size() + 1));
            }
        }
        return properties;
    }

    // The classes that were queried, in order.
    std::vector<std::wstring> QueriedClasses() {
        return simulation().calls().ObjectsOf("IWbemServices::ExecQuery");
    }

private:
    machine::Session session_;
};

inline machine::WmiValue WmiText(std::wstring text) {
    machine::WmiValue value;
    value.type = VT_BSTR;
    value.text = std::move(text);
    return value;
}

inline machine::WmiValue WmiNumber(VARTYPE type, std::int64_t number) {
    machine::WmiValue value;
    value.type = type;
    value.number = number;
    return value;
}

inline machine::WmiValue WmiTexts(std::vector<std::wstring> texts) {
    machine::WmiValue value;
    value.type = VT_ARRAY | VT_BSTR;
    value.texts = std::move(texts);
    return value;
}

inline machine::WmiValue WmiNull() {
    return {};
}

// A property that fails to read.
inline machine::WmiValue WmiFailure() {
    machine::WmiValue value;
    value.error = 0x80041001;  // WBEM_E_FAILED
    return value;
}
