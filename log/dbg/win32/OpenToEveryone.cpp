#include "log/dbg/win32/OpenToEveryone.h"

namespace LOGUTILS {

OpenToEveryone::OpenToEveryone() {
    InitializeSecurityDescriptor(&m_descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&m_descriptor, TRUE, nullptr, FALSE);
    m_attributes.nLength = sizeof(m_attributes);
    m_attributes.lpSecurityDescriptor = &m_descriptor;
}

}  // namespace LOGUTILS
