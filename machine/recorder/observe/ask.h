#pragma once

#include "machine/recorder/observe/question.h"
#include "machine/recorder/observe/system_functions.h"

namespace recorder {

// Asks one question by the given functions, and by COM and the registry of this process, where a described
// machine stands in for the real one. COM is initialised on the calling thread. A missing function is error
// 127, or 0xC000007A for the Zw functions. Opens nothing for writing, and sends only the controls of
// kReadingControls. Throws std::invalid_argument for an unknown question, and std::bad_alloc.
Answer Ask(const SystemFunctions& functions, const Question& question);

}  // namespace recorder
