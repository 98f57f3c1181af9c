#include "tools/mirqos-logview/BreakpointTable.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <utility>
#include <vector>

#include "log/dbg/win32/NamedEvent.h"
#include "log/dbg/win32/SharedMemory.h"
#include "log/dbg/win32/ViewerNames.h"
#include "tools/mirqos-logview/BreakpointEdit.h"
#include "tools/mirqos-logview/Failure.h"
#include "tools/mirqos-logview/OtherThread.h"

namespace Mirqos::LogView {

using LOGUTILS::LogGuid;
using LOGUTILS::LogHit;

namespace {

constexpr DWORD kMutexLimit = 5000;  // ms
constexpr int kReleaseAttempts = 40;
constexpr DWORD kReleasePause = 50;  // ms

bool SetRelease(const LogGuid& hitId) {
    const auto name = LOGUTILS::kReleaseEventName + LOGUTILS::GuidText(hitId);
    const auto event = LOGUTILS::OpenNamedEvent(name.c_str());
    return event && SetEvent(event.Get()) != FALSE;
}

/// Whether the thread is free, now or because it has ended.
bool IsSettled(const LogHit& hit) {
    return SetRelease(hit.m_hitId) || HasEnded(OpenThreadById(hit.m_dwThreadId), hit.m_dwThreadId);
}

}  // namespace

BreakpointTable::BreakpointTable()
    : m_hitEvent(LOGUTILS::CreateNamedEvent(LOGUTILS::kHitEventName)) {
    Require(static_cast<bool>(m_hitEvent), "the event for hits");
    m_mutex = LOGUTILS::NamedMutex::Create(LOGUTILS::kBreakpointMutexName);
    Require(static_cast<bool>(m_mutex), "the breakpoint table's mutex");
    m_mapping = LOGUTILS::CreateSharedMemory(LOGUTILS::kBreakpointMemoryName,
                                             sizeof(LOGUTILS::LogBreakpointTable))
                    .m_mapping;
    Require(static_cast<bool>(m_mapping), "the breakpoint table");
    m_view = LOGUTILS::MapSharedMemory(m_mapping, sizeof(LOGUTILS::LogBreakpointTable));
    Require(static_cast<bool>(m_view), "a view of the breakpoint table");
    FreeAll();
}

BreakpointTable::~BreakpointTable() {
    try {
        FreeAll();
    } catch (const std::exception&) {
        // The threads are free within 5 seconds all the same.
    }
}

void BreakpointTable::Hold(const std::function<void(LOGUTILS::LogBreakpointTable&)>& work) const {
    const LOGUTILS::MutexHold hold = m_mutex.Wait(kMutexLimit);
    if (!hold.Owns()) {
        throw Failure(ExitCode::SystemRefused,
                      "the breakpoint table was in use for 5 seconds by another process");
    }
    work(*static_cast<LOGUTILS::LogBreakpointTable*>(m_view.Get()));
}

bool BreakpointTable::Release(const LogGuid& hitId) const {
    if (!SetRelease(hitId)) {
        return false;
    }
    Hold([&](LOGUTILS::LogBreakpointTable& table) { ClearHit(table, hitId); });
    return true;
}

void BreakpointTable::FreeAll() const {
    std::vector<LogHit> hits;
    Hold([&hits](LOGUTILS::LogBreakpointTable& table) {
        hits = HitsIn(table);
        std::memset(&table, 0, sizeof(table));
    });
    // A thread enters its hit before it makes the event that it then waits for.
    for (int attempt = 0; attempt < kReleaseAttempts && !hits.empty(); ++attempt) {
        if (attempt > 0) {
            Sleep(kReleasePause);
        }
        hits.erase(std::remove_if(hits.begin(), hits.end(), &IsSettled), hits.end());
    }
}

}  // namespace Mirqos::LogView
