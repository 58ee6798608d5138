#pragma once

#include "documents/reader/reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

// Documents of the example machines, and small changes of them.
namespace case_documents {

inline std::string TextOf(const std::string& machine, int format) {
    std::ifstream in(ORVANE_SOURCE_DIR "/examples/machines/" + machine + "/expected/format" +
                         std::to_string(format) + ".xml",
                     std::ios::binary);
    EXPECT_TRUE(in) << machine << ' ' << format;
    return {std::istreambuf_iterator<char>(in), {}};
}

// Replaces the first occurrence behind the first occurrence of `behind`.
inline std::string Replaced(std::string text, const std::string& from, const std::string& to,
                            const std::string& behind = "") {
    const std::size_t begin = text.find(behind);
    const std::size_t at = begin == std::string::npos ? begin : text.find(from, begin);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

inline documents::Machine Read(const std::string& text) {
    return documents::ReadDocument(text, {});
}

// Why the text cannot be read, "PLACE: REASON"; empty if it can.
inline std::string Refusal(const std::string& text, const documents::ReadOptions& options = {}) {
    try {
        documents::ReadDocument(text, options);
    } catch (const documents::ReadError& error) {
        return error.what();
    }
    return {};
}

}  // namespace case_documents
