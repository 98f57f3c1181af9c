#pragma once

#include <windows.h>

#include "platform/undo_windows_macros.h"

namespace Mirqos::Test {

/// Whether an object made with these attributes lets everyone in: its access list is there, and
/// null.
inline bool IsOpenToEveryone(const SECURITY_ATTRIBUTES* pAttributes) {
    BOOL bPresent = FALSE;
    BOOL bDefaulted = FALSE;
    ACL someList = {};
    ACL* pList = &someList;
    return pAttributes != nullptr && pAttributes->lpSecurityDescriptor != nullptr &&
           GetSecurityDescriptorDacl(pAttributes->lpSecurityDescriptor, &bPresent, &pList,
                                     &bDefaulted) != FALSE &&
           bPresent != FALSE && pList == nullptr;
}

}  // namespace Mirqos::Test
