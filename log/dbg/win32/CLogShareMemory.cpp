#include "log/dbg/win32/CLogShareMemory.h"

#include <utility>

#include "log/dbg/win32/NamedEvent.h"
#include "log/dbg/win32/SharedMemory.h"
#include "log/dbg/win32/ViewerNames.h"
#include "log/dbg/win32/WindowsCalls.h"
#include "platform/process.h"

namespace NSDBG {
namespace {

constexpr DWORD kMutexLimit = 5000;  // ms

LOGUTILS::LogTime LocalTimeNow() {
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth,  now.wDayOfWeek, now.wDay,
            now.wHour, now.wMinute, now.wSecond,    now.wMilliseconds};
}

LOGUTILS::View MapRing(const LOGUTILS::KernelObject& mapping) {
    return LOGUTILS::MapSharedMemory(mapping, sizeof(LOGUTILS::LogRing));
}

LOGUTILS::LogRing& RingIn(const LOGUTILS::View& view) {
    return *static_cast<LOGUTILS::LogRing*>(view.Get());
}

}  // namespace

CLogShareMemory::CLogShareMemory(LOGUTILS::WideString channelName)
    : m_strChannelName(std::move(channelName)) {
}

CLogShareMemory::~CLogShareMemory() = default;

int CLogShareMemory::Create() {
    const LOGUTILS::ChannelNames names(m_strChannelName);
    m_hEvent = LOGUTILS::OpenNamedEvent(names.m_event.c_str());
    if (!m_hEvent) {
        return 0;
    }
    m_mutex = LOGUTILS::NamedMutex::Create(names.m_mutex);
    const LOGUTILS::MutexHold hold = m_mutex.Wait(INFINITE);
    if (!hold.Owns()) {
        return 0;
    }
    if (m_hMapping) {
        return 1;
    }
    LOGUTILS::SharedMemory memory =
        LOGUTILS::CreateSharedMemory(names.m_memory, sizeof(LOGUTILS::LogRing));
    m_hMapping = std::move(memory.m_mapping);
    if (!m_hMapping) {
        return 0;
    }
    if (!memory.m_bExisted) {
        // Where this fails the ring is all zeros, which is one whose first record was taken.
        if (const LOGUTILS::View view = MapRing(m_hMapping)) {
            LOGUTILS::ClearRing(RingIn(view));
        }
    }
    return 1;
}

void CLogShareMemory::Open() {
    const LOGUTILS::ChannelNames names(m_strChannelName);
    m_mutex = LOGUTILS::NamedMutex::Open(names.m_mutex);
    m_hMapping = LOGUTILS::OpenSharedMemory(names.m_memory).m_mapping;
}

void CLogShareMemory::Close() {
    m_hEvent.Reset();
    m_mutex.Close();
    m_hMapping.Reset();
}

void CLogShareMemory::Write(int nLevel, int nErrorCode, const wchar_t* pszSource,
                            const wchar_t* pszText) {
    if (*pszText == L'\0') {
        return;
    }
    LOGUTILS::LogRecord record = LOGUTILS::MakeRecord(m_strChannelName, pszSource, pszText);
    record.m_time = LocalTimeNow();
    record.m_dwErrorCode = static_cast<std::uint32_t>(nErrorCode);
    record.m_dwLevel = static_cast<std::uint32_t>(nLevel);
    record.m_dwProcessId = Mirqos::CurrentProcessId();
    record.m_dwThreadId = Mirqos::CurrentThreadId();
    Append(record);
}

int CLogShareMemory::Read(LogMessages& messages) {
    if (!IsOpen()) {
        return 0;
    }
    const LOGUTILS::MutexHold hold = m_mutex.Wait(kMutexLimit);
    if (!hold.Owns()) {
        return 0;
    }
    const LOGUTILS::View view = MapRing(m_hMapping);
    if (!view) {
        return 0;
    }
    messages.clear();
    LOGUTILS::LogRing& ring = RingIn(view);
    const LOGUTILS::NewRecords found = LOGUTILS::FindNewRecords(ring);
    // first, so that no message is made for which there is no place
    messages.reserve(static_cast<std::size_t>(found.m_nCount));
    for (std::int64_t i = 0; i < found.m_nCount; ++i) {
        messages.emplace_back(new CLogMessage(LOGUTILS::RecordAt(ring, found.m_nFirst + i)));
    }
    ring.m_nLastRead = ring.m_nLastWritten;
    return 1;
}

void CLogShareMemory::Append(const LOGUTILS::LogRecord& record) {
    if (record.m_szText[0] == L'\0' || !IsOpen()) {
        return;
    }
    {
        const LOGUTILS::MutexHold hold = m_mutex.Wait(kMutexLimit);
        if (!hold.Owns()) {
            return;
        }
        const LOGUTILS::View view = MapRing(m_hMapping);
        if (!view) {
            return;
        }
        LOGUTILS::AppendRecord(RingIn(view), record);
    }
    LOGUTILS::Windows().setEvent(m_hEvent.Get());
}

}  // namespace NSDBG
