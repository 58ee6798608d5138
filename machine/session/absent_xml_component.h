#pragma once

#include "common/windows.h"

namespace machine {

// Hides the XML component (the document of MSXML 3) from this apartment for its lifetime: creating its
// document fails as on a system where it is not registered. COM must be initialised on the thread. Create
// and destroy it on the same thread.
class AbsentXmlComponent {
public:
    // Throws std::runtime_error.
    AbsentXmlComponent();
    ~AbsentXmlComponent();

    AbsentXmlComponent(const AbsentXmlComponent&) = delete;
    AbsentXmlComponent& operator=(const AbsentXmlComponent&) = delete;

private:
    DWORD cookie_ = 0;
};

}  // namespace machine
