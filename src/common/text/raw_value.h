#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

// Reads the number in an enumeration field that the system filled in. The number may match no enumerator; the
// language does not allow reading such a field as the enumeration.
template <class Enumeration>
requires(std::is_enum_v<Enumeration> && sizeof(Enumeration) == sizeof(std::uint32_t)) std::uint32_t
    RawValue(const Enumeration& field) {
    std::uint32_t value = 0;
    std::memcpy(&value, &field, sizeof(value));
    return value;
}

// Stores a number in such a field.
template <class Enumeration>
requires(std::is_enum_v<Enumeration> &&
         sizeof(Enumeration) == sizeof(std::uint32_t)) void SetRawValue(Enumeration& field,
                                                                        std::uint32_t value) {
    std::memcpy(&field, &value, sizeof(value));
}
