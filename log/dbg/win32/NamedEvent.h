#pragma once

#include "log/dbg/win32/Owned.h"

/// Events that processes share by their names.
namespace LOGUTILS {

/// Creates the event, open to everyone, not signalled, and reset by the wait that it ends, or opens
/// it where it exists. On failure there is none and the thread's last error tells why.
KernelObject CreateNamedEvent(const wchar_t* pszName);
/// Opens an existing one with full access.
KernelObject OpenNamedEvent(const wchar_t* pszName);

}  // namespace LOGUTILS
