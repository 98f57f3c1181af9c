#include "log/dbg/win32/NamedMutex.h"

#include "log/dbg/win32/OpenToEveryone.h"
#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {

MutexHold::~MutexHold() {
    if (Owns()) {
        Windows().releaseMutex(m_hMutex);
    }
}

MutexHold::MutexHold(MutexHold&& other) noexcept
    : m_hMutex(other.m_hMutex), m_wait(std::exchange(other.m_wait, MutexWait::Failed)) {
}

NamedMutex NamedMutex::Create(const WideString& name) {
    OpenToEveryone security;
    return NamedMutex(Windows().createMutex(security.Attributes(), FALSE, name.c_str()));
}

NamedMutex NamedMutex::Open(const WideString& name) {
    return NamedMutex(Windows().openMutex(MUTEX_ALL_ACCESS, FALSE, name.c_str()));
}

MutexHold NamedMutex::Wait(DWORD dwMilliseconds) const {
    if (!m_handle) {
        return {nullptr, MutexWait::Failed};
    }
    switch (Windows().waitForSingleObject(m_handle.Get(), dwMilliseconds)) {
        case WAIT_OBJECT_0:
            return {m_handle.Get(), MutexWait::Owned};
        case WAIT_ABANDONED:
            return {m_handle.Get(), MutexWait::Abandoned};
        case WAIT_TIMEOUT:
            return {m_handle.Get(), MutexWait::TimedOut};
        default:
            return {m_handle.Get(), MutexWait::Failed};
    }
}

}  // namespace LOGUTILS
