#include "tools/orvane/administrator.h"

#include "common/windows.h"

namespace host {

bool RunsAsAdministrator() {
    SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
    PSID administrators = nullptr;
    if (AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0,
                                 0, 0, 0, &administrators) == FALSE) {
        return false;
    }
    BOOL member = FALSE;
    const BOOL known = CheckTokenMembership(nullptr, administrators, &member);
    FreeSid(administrators);
    return known != FALSE && member != FALSE;
}

}  // namespace host
