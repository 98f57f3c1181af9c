#include "log/dbg/win32/ViewerBreakpoints.h"

#include <utility>

#include "log/dbg/win32/NamedEvent.h"
#include "log/dbg/win32/NewGuid.h"
#include "log/dbg/win32/SharedMemory.h"
#include "log/dbg/win32/ViewerNames.h"
#include "log/dbg/win32/ViewerPresence.h"
#include "log/dbg/win32/WindowsCalls.h"

namespace LOGUTILS {
namespace {

constexpr DWORD kTableLimit = 10000;         // ms
constexpr DWORD kViewerLookInterval = 5000;  // ms

}  // namespace

std::shared_ptr<const ViewerBreakpoints> ViewerBreakpoints::Open() {
    KernelObject hHitEvent = OpenNamedEvent(kHitEventName);
    if (!hHitEvent) {
        return nullptr;
    }
    NamedMutex tableMutex = NamedMutex::Open(kBreakpointMutexName);
    if (!tableMutex) {
        return nullptr;
    }
    SharedMemory table = OpenSharedMemory(kBreakpointMemoryName);
    if (!table.m_mapping) {
        return nullptr;
    }
    return std::shared_ptr<const ViewerBreakpoints>(new ViewerBreakpoints(
        std::move(hHitEvent), std::move(tableMutex), std::move(table.m_mapping)));
}

ViewerBreakpoints::ViewerBreakpoints(KernelObject hHitEvent, NamedMutex tableMutex,
                                     KernelObject hTable)
    : m_hHitEvent(std::move(hHitEvent)),
      m_tableMutex(std::move(tableMutex)),
      m_hTable(std::move(hTable)) {
}

std::optional<LogGuid> ViewerBreakpoints::Test(const LogLine& line) const {
    const MutexHold hold = m_tableMutex.Wait(kTableLimit);
    if (!hold.Owns()) {
        return std::nullopt;
    }
    const View view = MapSharedMemory(m_hTable, sizeof(LogBreakpointTable));
    if (!view) {
        return std::nullopt;
    }
    auto& table = *static_cast<LogBreakpointTable*>(view.Get());
    const LogBreakpoint* const pBreakpoint = FindBreakpoint(table, line);
    if (pBreakpoint == nullptr) {
        return std::nullopt;
    }
    const std::optional<LogGuid> hitId = NewGuid();
    LogHit* const pHit = FindFreeHit(table);
    if (!hitId || pHit == nullptr) {
        return std::nullopt;
    }
    *pHit = {pBreakpoint->m_id, *hitId, line.m_dwProcessId, line.m_dwThreadId};
    return hitId;
}

void ViewerBreakpoints::Hold(const LogGuid& hitId) const {
    const KernelObject release = CreateNamedEvent((kReleaseEventName + GuidText(hitId)).c_str());
    Windows().setEvent(m_hHitEvent.Get());
    if (!release) {
        return;  // nobody could end the wait
    }
    while (IsViewerPresent()) {
        if (Windows().waitForSingleObject(release.Get(), kViewerLookInterval) != WAIT_TIMEOUT) {
            return;
        }
    }
}

}  // namespace LOGUTILS
