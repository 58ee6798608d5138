#pragma once

#include "common/logger/orvane_logger.h"

#include <source_location>
#include <type_traits>
#include <utility>

inline void LogEntering(const wchar_t* function, int line) {
    GetLogger().Write(kLogTrace, L"Entering function %s line %d", function, line);
}

inline void LogLeaving(const wchar_t* function, int line) {
    GetLogger().Write(kLogTrace, L"Leaving function %s line %d", function, line);
}

// Runs `body` between the entering and the leaving line of `function` (its qualified name) and returns what
// it returns. A body left by an exception logs no leaving line: compatibility C6
template <class Body>
auto Traced(const wchar_t* function, Body&& body,
            const std::source_location where = std::source_location::current()) {
    const auto line = static_cast<int>(where.line());
    LogEntering(function, line);
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
        std::forward<Body>(body)();
        LogLeaving(function, line);
    } else {
        auto result = std::forward<Body>(body)();
        LogLeaving(function, line);
        return result;
    }
}

// As Traced, but logs the leaving line after an exception too: compatibility C7
template <class Body>
auto TracedToTheEnd(const wchar_t* function, Body&& body,
                    const std::source_location where = std::source_location::current()) {
    try {
        return Traced(function, std::forward<Body>(body), where);
    } catch (...) {
        LogLeaving(function, static_cast<int>(where.line()));
        throw;
    }
}
