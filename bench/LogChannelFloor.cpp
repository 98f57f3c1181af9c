#include "bench/LogChannelFloor.h"

#include <cstring>

#include "log/dbg/LogBreakpoints.h"
#include "log/dbg/win32/ViewerNames.h"
#include "tests/support/win32/ViewerSide.h"

namespace Mirqos::Bench {
namespace {

using LOGUTILS::KernelObject;
using LOGUTILS::LogRing;
using Mirqos::Test::ChannelObjects;

constexpr DWORD kWait = 5000;  // ms

KernelObject MakeRing(const std::wstring& name) {
    KernelObject mapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                            sizeof(LogRing), name.c_str()));
    const LOGUTILS::View view(
        MapViewOfFile(mapping.Get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(LogRing)));
    LOGUTILS::ClearRing(*static_cast<LogRing*>(view.Get()));
    return mapping;
}

/// Calls `use` with the memory, holding the mutex that guards it.
template <typename Memory, typename Use>
void With(const KernelObject& mutex, const KernelObject& mapping, Use use) {
    WaitForSingleObject(mutex.Get(), kWait);
    void* const pView = MapViewOfFile(mapping.Get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Memory));
    use(*static_cast<Memory*>(pView));
    UnmapViewOfFile(pView);
    ReleaseMutex(mutex.Get());
}

}  // namespace

LogChannelFloor::LogChannelFloor(const std::wstring& channel) {
    const ChannelObjects names(channel);
    m_event.Reset(OpenEventW(EVENT_ALL_ACCESS, FALSE, names.event.c_str()));
    m_mutex.Reset(CreateMutexW(nullptr, FALSE, names.mutex.c_str()));
    m_ring = MakeRing(names.globalRing);
    m_tableMutex.Reset(OpenMutexW(MUTEX_ALL_ACCESS, FALSE, Mirqos::Test::kTableMutex));
    m_table.Reset(OpenFileMappingW(FILE_MAP_ALL_ACCESS, FALSE, Mirqos::Test::kGlobalTable));
}

void LogChannelFloor::LookForViewer() {
    if (const HANDLE hPresence =
            OpenEventW(EVENT_ALL_ACCESS, FALSE, LOGUTILS::kViewerPresenceName)) {
        CloseHandle(hPresence);
    }
}

void LogChannelFloor::WriteLine() const {
    LookForViewer();
    With<LogRing>(m_mutex, m_ring, [this](LogRing& ring) {
        ++ring.m_nLastWritten;
        std::memcpy(&ring.m_records[ring.m_nLastWritten % LOGUTILS::kRingRecords], &m_record,
                    sizeof(m_record));
    });
    SetEvent(m_event.Get());
    With<LOGUTILS::LogBreakpointTable>(
        m_tableMutex, m_table,
        [](const volatile LOGUTILS::LogBreakpointTable& table) { (void)table.m_nCount; });
}

}  // namespace Mirqos::Bench
