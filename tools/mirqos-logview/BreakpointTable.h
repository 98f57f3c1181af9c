#pragma once

#include <functional>

#include "log/dbg/LogBreakpoints.h"
#include "log/dbg/win32/NamedMutex.h"
#include "log/dbg/win32/Owned.h"

namespace Mirqos::LogView {

/// The breakpoint objects, made by this viewer; what a former viewer left in them is gone, and the
/// threads it held are free. There is one at a time.
class BreakpointTable {
public:
    /// Throws Failure (SystemRefused).
    BreakpointTable();
    /// Frees every thread that is held.
    ~BreakpointTable();
    BreakpointTable(const BreakpointTable&) = delete;
    BreakpointTable& operator=(const BreakpointTable&) = delete;

    /// Signalled when a thread was stopped.
    HANDLE HitEvent() const { return m_hitEvent.Get(); }

    /// Does something with the table while its mutex is held. Throws Failure (SystemRefused) when
    /// the mutex is not to be had for 5 seconds.
    void Hold(const std::function<void(LOGUTILS::LogBreakpointTable&)>& work) const;

    /// Lets the thread of that hit go on, and frees the hit's record. False when it does not wait
    /// yet: try again, unless it has ended.
    bool Release(const LOGUTILS::LogGuid& hitId) const;

private:
    void FreeAll() const;

    LOGUTILS::KernelObject m_hitEvent;
    LOGUTILS::NamedMutex m_mutex;
    LOGUTILS::KernelObject m_mapping;
    LOGUTILS::View m_view;
};

}  // namespace Mirqos::LogView
