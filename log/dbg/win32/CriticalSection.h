#pragma once

#include <windows.h>

#include "platform/undo_windows_macros.h"

namespace LOGUTILS {

/// A critical section; the standard locks enter and leave it. The thread inside may enter again.
class CriticalSection {
public:
    CriticalSection() { InitializeCriticalSection(&m_section); }
    ~CriticalSection() { DeleteCriticalSection(&m_section); }
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void lock() { EnterCriticalSection(&m_section); }
    bool try_lock() { return TryEnterCriticalSection(&m_section) != FALSE; }
    void unlock() { LeaveCriticalSection(&m_section); }

private:
    CRITICAL_SECTION m_section;
};

}  // namespace LOGUTILS
