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

// Runs `body` and returns its result. Logs an entering line before it and a leaving line after it. `function`
// is the qualified name. If `body` throws, no leaving line is logged: compatibility C6
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

// Like Traced, but logs the leaving line after an exception too: compatibility C7
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
