#pragma once

#include <windows.h>

#include "platform/undo_windows_macros.h"

namespace LOGUTILS {

/// The security of an object that everyone may open: a descriptor whose access list is null. Lives
/// at least as long as the call that it is given to.
class OpenToEveryone {
public:
    OpenToEveryone();
    OpenToEveryone(const OpenToEveryone&) = delete;
    OpenToEveryone& operator=(const OpenToEveryone&) = delete;

    SECURITY_ATTRIBUTES* Attributes() { return &m_attributes; }

private:
    SECURITY_DESCRIPTOR m_descriptor = {};
    SECURITY_ATTRIBUTES m_attributes = {};
};

}  // namespace LOGUTILS
