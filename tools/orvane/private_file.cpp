#include "tools/orvane/private_file.h"

#include "common/windows.h"
#include "machine/description/text.h"
#include "tools/orvane/unique_handle.h"

#include <aclapi.h>

#include <array>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace host {

namespace {

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& reason) {
    throw std::runtime_error(machine::Narrow(file.wstring()) + ": " + reason);
}

// The user of this process.
class User {
public:
    User() {
        Handle token;
        DWORD size = 0;
        const bool known = OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.put()) != FALSE &&
                           GetTokenInformation(token.get(), TokenUser, bytes_.data(),
                                               static_cast<DWORD>(bytes_.size()), &size) != FALSE;
        if (!known) {
            throw std::runtime_error("the user of this process is not known, error " +
                                     std::to_string(GetLastError()));
        }
    }

    PSID sid() { return reinterpret_cast<TOKEN_USER*>(bytes_.data())->User.Sid; }

private:
    alignas(TOKEN_USER) std::array<std::byte, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> bytes_{};
};

// Owned by one user, with an access list for him and nobody else, into which nothing is inherited.
class AccessForOne {
public:
    explicit AccessForOne(PSID user) {
        acl_.resize(sizeof(ACL) + sizeof(ACCESS_ALLOWED_ACE) + GetLengthSid(user));
        auto* const acl = reinterpret_cast<ACL*>(acl_.data());
        const bool made =
            InitializeAcl(acl, static_cast<DWORD>(acl_.size()), ACL_REVISION) != FALSE &&
            AddAccessAllowedAce(acl, ACL_REVISION, FILE_ALL_ACCESS, user) != FALSE &&
            InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION) != FALSE &&
            SetSecurityDescriptorOwner(&descriptor_, user, FALSE) != FALSE &&
            SetSecurityDescriptorDacl(&descriptor_, TRUE, acl, FALSE) != FALSE &&
            SetSecurityDescriptorControl(&descriptor_, SE_DACL_PROTECTED, SE_DACL_PROTECTED) != FALSE;
        if (!made) {
            throw std::runtime_error("no access list can be made, error " + std::to_string(GetLastError()));
        }
    }

    SECURITY_ATTRIBUTES Attributes() { return {sizeof(SECURITY_ATTRIBUTES), &descriptor_, FALSE}; }

private:
    std::vector<std::byte> acl_;
    SECURITY_DESCRIPTOR descriptor_{};
};

bool IsSystem(PSID sid) {
    return IsWellKnownSid(sid, WinLocalSystemSid) != FALSE;
}

// Whether the file has an access list that lets in only the user and the system.
bool IsForOne(HANDLE file, PSID user) {
    ACL* acl = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetSecurityInfo(file, SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &acl, nullptr,
                        &descriptor) != ERROR_SUCCESS) {
        return false;
    }
    bool only = acl != nullptr;
    for (DWORD i = 0; only && i < acl->AceCount; ++i) {
        void* ace = nullptr;
        GetAce(acl, i, &ace);
        auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(ace);
        only = allowed->Header.AceType != ACCESS_ALLOWED_ACE_TYPE || IsSystem(&allowed->SidStart) ||
               EqualSid(&allowed->SidStart, user) != FALSE;
    }
    LocalFree(descriptor);
    return only;
}

}  // namespace

void CreatePrivateFile(const std::filesystem::path& file) {
    User user;
    AccessForOne access(user.sid());
    SECURITY_ATTRIBUTES attributes = access.Attributes();
    Handle handle;
    *handle.put() = CreateFileW(file.c_str(), GENERIC_WRITE | READ_CONTROL, 0, &attributes, CREATE_NEW,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
    if (!handle.is_open()) {
        Refuse(file, "cannot be written, error " + std::to_string(GetLastError()));
    }
    if (!IsForOne(handle.get(), user.sid())) {
        handle.Close();
        DeleteFileW(file.c_str());
        Refuse(file, "the file system cannot keep others from reading it");
    }
}

bool OnlyOwnerMayRead(const std::filesystem::path& file) {
    User user;
    Handle handle;
    *handle.put() =
        CreateFileW(file.c_str(), READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    return handle.is_open() && IsForOne(handle.get(), user.sid());
}

TemporaryPrivateFile::TemporaryPrivateFile(const std::string& text)
    : file_(std::filesystem::temp_directory_path() /
            (L"orvane-" + std::to_wstring(GetCurrentProcessId()) + L".json")) {
    DeleteFileW(path().c_str());  // of an earlier process that was ended
    CreatePrivateFile(path());
    if (!file_.Write(text)) {
        Refuse(path(), "cannot be written");
    }
}

}  // namespace host
