#pragma once

#include "support/scoped_import.h"

#include <utility>

namespace support {

// Replaces a function pointer with a lambda, which may have captures for its lifetime:
//     const Stub stub(Kernel32DLL::Get().DeviceIoControl, [&](HANDLE, DWORD code, ...) -> BOOL { ... });
// Each lambda expression can be installed only once at a time.
template <class Result, class Body, class... Arguments>
class StubFunction {
public:
    static Result WINAPI Call(Arguments... arguments) { return (*body_)(arguments...); }

    static void Use(Body* body) { body_ = body; }

private:
    static inline Body* body_ = nullptr;
};

template <class Function, class Body>
class Stub;

template <class Result, class Body, class... Arguments>
class Stub<Result(WINAPI*)(Arguments...), Body> {
public:
    Stub(Result(WINAPI*& function)(Arguments...), Body body)
        : function_(function), previous_(function), body_(std::move(body)) {
        StubFunction<Result, Body, Arguments...>::Use(&body_);
        function_ = &StubFunction<Result, Body, Arguments...>::Call;
    }
    ~Stub() { function_ = previous_; }

    Stub(const Stub&) = delete;
    Stub& operator=(const Stub&) = delete;

private:
    Result(WINAPI*& function_)(Arguments...);
    Result(WINAPI* previous_)(Arguments...);
    Body body_;
};

template <class Result, class Body, class... Arguments>
Stub(Result(WINAPI*& function)(Arguments...), Body body) -> Stub<Result(WINAPI*)(Arguments...), Body>;

// Replaces a function that the test program imports for its lifetime:
//     const StubImport stub("CoCreateGuid", &::CoCreateGuid, [&](GUID*) { return E_FAIL; });
template <class Function, class Body>
class StubImport;

template <class Result, class Body, class... Arguments>
class StubImport<Result(WINAPI*)(Arguments...), Body> {
public:
    StubImport(const char* name, Result(WINAPI* /*prototype*/)(Arguments...), Body body)
        : body_(std::move(body)), import_(name, &StubFunction<Result, Body, Arguments...>::Call) {
        StubFunction<Result, Body, Arguments...>::Use(&body_);
    }

    StubImport(const StubImport&) = delete;
    StubImport& operator=(const StubImport&) = delete;

private:
    Body body_;
    ScopedImport<Result(WINAPI*)(Arguments...)> import_;
};

template <class Result, class Body, class... Arguments>
StubImport(const char* name, Result(WINAPI* prototype)(Arguments...), Body body)
    -> StubImport<Result(WINAPI*)(Arguments...), Body>;

// Sets a variable, such as a function pointer of a table for its lifetime. Restores its value at the end.
template <class Value>
class ScopedValue {
public:
    ScopedValue(Value& variable, Value value)
        : variable_(variable), previous_(std::exchange(variable, value)) {}
    ~ScopedValue() { variable_ = previous_; }

    ScopedValue(const ScopedValue&) = delete;
    ScopedValue& operator=(const ScopedValue&) = delete;

private:
    Value& variable_;
    Value previous_;
};

}  // namespace support
