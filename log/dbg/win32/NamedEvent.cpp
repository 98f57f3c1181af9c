#include "log/dbg/win32/NamedEvent.h"

#include "log/dbg/win32/OpenToEveryone.h"
#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {

KernelObject CreateNamedEvent(const wchar_t* pszName) {
    OpenToEveryone security;
    return KernelObject(Windows().createEvent(security.Attributes(), FALSE, FALSE, pszName));
}

KernelObject OpenNamedEvent(const wchar_t* pszName) {
    return KernelObject(Windows().openEvent(EVENT_ALL_ACCESS, FALSE, pszName));
}

}  // namespace LOGUTILS
