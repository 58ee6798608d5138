#pragma once

#include "common/platform/unique_bstr.h"
#include "common/windows.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <algorithm>
#include <string>

// Tests that initialise COM on their thread.
class ComThread : public testing::Test {
protected:
    ComThread() : initialized_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComThread() override {
        if (initialized_) {
            CoUninitialize();
        }
    }

    void SetUp() override { ASSERT_TRUE(initialized_); }

private:
    bool initialized_;
};

// XML without the line breaks and tabs that a DOM may insert between elements.
inline std::wstring Flat(std::wstring_view xml) {
    std::wstring flat;
    for (std::size_t at = 0; at < xml.size();) {
        if (xml.compare(at, 2, L"\r\n") == 0) {
            at = std::min(xml.find_first_not_of(L"\r\n\t", at), xml.size());
        } else {
            flat += xml[at++];
        }
    }
    return flat;
}

inline std::wstring Flat(const UniqueBstr& xml) {
    return Flat(TextOf(xml));
}
