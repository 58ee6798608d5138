#pragma once

#include <array>
#include <string_view>

// What the bytes of a document are to the scanner.
namespace documents {

enum ByteClass : unsigned char {
    kOrdinary,
    kBlank,
    kMarkup,     // < & ]
    kForbidden,  // control characters
    kLong,       // the beginning of a character of several bytes
};

inline constexpr std::array<ByteClass, 256> kClasses = [] {
    std::array<ByteClass, 256> classes{};
    for (unsigned byte = 0; byte < 0x20; ++byte) {
        classes.at(byte) = kForbidden;
    }
    for (unsigned byte = 0x80; byte < 0x100; ++byte) {
        classes.at(byte) = kLong;
    }
    for (const char blank : {' ', '\t', '\r', '\n'}) {
        classes.at(static_cast<unsigned char>(blank)) = kBlank;
    }
    for (const char markup : {'<', '&', ']'}) {
        classes.at(static_cast<unsigned char>(markup)) = kMarkup;
    }
    return classes;
}();

inline ByteClass ClassOf(char byte) {
    return kClasses[static_cast<unsigned char>(byte)];
}

inline bool StartsName(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

inline constexpr std::array<bool, 256> kNameCharacters = [] {
    std::array<bool, 256> characters{};
    for (const char c :
         std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789-.")) {
        characters.at(static_cast<unsigned char>(c)) = true;
    }
    return characters;
}();

inline bool ContinuesName(char c) {
    return kNameCharacters[static_cast<unsigned char>(c)];
}

}  // namespace documents
