#pragma once

#include <memory>
#include <optional>

#include "log/dbg/LogBreakpoints.h"
#include "log/dbg/win32/NamedMutex.h"
#include "log/dbg/win32/Owned.h"

namespace LOGUTILS {

/// The breakpoint objects of the viewer that runs, as a writer opened them. Any thread may call any
/// operation.
class ViewerBreakpoints {
public:
    /// Null when one of the objects is missing.
    static std::shared_ptr<const ViewerBreakpoints> Open();

    /// Tests a line. When it matches, its thread is entered into the table and the id of the hit is
    /// returned; Hold has to follow. No hit is had of a table that is held by somebody for
    /// 10 seconds, or has no room for one.
    std::optional<LogGuid> Test(const LogLine& line) const;

    /// Holds the calling thread until the viewer releases the hit or is gone, which it finds out
    /// within 5 seconds. The caller holds no lock.
    void Hold(const LogGuid& hitId) const;

private:
    ViewerBreakpoints(KernelObject hHitEvent, NamedMutex tableMutex, KernelObject hTable);

    KernelObject m_hHitEvent;
    NamedMutex m_tableMutex;
    KernelObject m_hTable;
};

}  // namespace LOGUTILS
