#pragma once

#include "export/shipped_library.h"
#include "machine/session/session.h"
#include "support/log_capture.h"
#include "support/scoped_import.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include <string>

// The shipped library. Resets its settings after each test.
class ExportTest : public testing::Test {
protected:
    ~ExportTest() override { library_.ResetSettings(); }

    const ShippedLibrary& library_ = ShippedLibrary::Get();
};

// The results of one capture.
struct Captured {
    static constexpr std::uint32_t kUntouched = 0xAAAAAAAA;

    std::uint32_t status = kUntouched;
    std::uint32_t required_size = kUntouched;
    std::string buffer;  // '#' in every byte that was not written
};

// A described machine under the shipped library, set to format 3, and the library's log.
class CaptureTest : public ExportTest {
protected:
    static machine::Description Machine(const std::string& name) {
        return machine::LoadDescription(ORVANE_SOURCE_DIR "/examples/machines/" + name);
    }

    explicit CaptureTest(machine::Description description = Machine("uefi-workstation"))
        : session_(std::move(description)), log_(library_.SetEventFunc) {
        library_.SetXmlFormat(3);
        log_.Clear();
    }

    // No capture, failed or not, may leak handles or objects.
    void TearDown() override {
        EXPECT_EQ(simulation().open_handles(), 0U);
        EXPECT_EQ(simulation().live_objects(), 0U);
        EXPECT_EQ(simulation().stale_handle_uses(), 0U);
    }

    machine::Simulation& simulation() { return session_.simulation(); }

    Captured Capture(std::uint32_t size) {
        Captured captured;
        captured.buffer.assign(size, '#');
        captured.status =
            library_.CaptureSystemRestorePointInfo(captured.buffer.data(), size, &captured.required_size);
        return captured;
    }

    // The document's length in bytes.
    std::uint32_t Length() {
        const Captured captured = Capture(0);
        EXPECT_EQ(captured.status, ORVANE_BUFFER_TOO_SMALL) << log_;
        return captured.status == ORVANE_BUFFER_TOO_SMALL ? captured.required_size : 0;
    }

    // The whole document.
    std::string Document() {
        const Captured captured = Capture(Length());
        EXPECT_EQ(captured.status, ORVANE_SUCCESS) << log_;
        return captured.buffer;
    }

    // Expects a failing capture: status 1, nothing written.
    void ExpectFailure() {
        log_.Clear();
        const Captured captured = Capture(100000);
        EXPECT_EQ(captured.status, ORVANE_FAILED);
        EXPECT_EQ(captured.required_size, Captured::kUntouched);
        EXPECT_EQ(captured.buffer, std::string(100000, '#'));
        EXPECT_EQ(log_.Lines(support::kHostTrace).back(), "Exiting CaptureSystemRestorePointInfo");
    }

    // As long as the returned object lives, the class of the document cannot be created, and all others can.
    auto RefuseTheDocument() const {
        const auto create = [](REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                               void** object) -> HRESULT {
            constexpr CLSID kDocument = {
                0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
            return IsEqualCLSID(clsid, kDocument) ? CO_E_NOTINITIALIZED
                                                  : CoCreateInstance(clsid, outer, context, iid, object);
        };
        return support::ScopedImport("CoCreateInstance", +create, library_.module());
    }

    // The last error line of the log.
    std::string LastError() const {
        const std::vector<std::string> errors = log_.Lines(support::kHostError);
        return errors.empty() ? "" : errors.back();
    }

    machine::Session session_;
    support::LogCapture log_;
};
