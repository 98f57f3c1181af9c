#include "log/dbg/win32/CSMOutput.h"

#include <mutex>
#include <new>
#include <optional>
#include <utility>

#include "log/dbg/win32/AnsiText.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "log/dbg/win32/ViewerPresence.h"
#include "platform/process.h"

namespace NSDBG {
namespace {

using Lock = std::lock_guard<LOGUTILS::CriticalSection>;

constexpr int kLevelWithViewer = 9999;  // the viewer filters

}  // namespace

CSMOutput::CSMOutput(LOGUTILS::WideString channelName, LOGUTILS::WideString sourceName)
    : m_strChannelName(std::move(channelName)), m_strSourceName(std::move(sourceName)) {
}

CSMOutput::~CSMOutput() {
    // Not waited for: whoever is still inside was ended there, because the process ends.
    const std::unique_lock<LOGUTILS::CriticalSection> lock(m_cs, std::try_to_lock);
    m_pShareMemory.reset();
    m_pBreakpoints.reset();
}

void CSMOutput::Write(int nLevel, int nErrorCode, const char* pszMessage) try {
    if (Connect() == 0) {
        return;
    }
    wchar_t szMessage[LOGUTILS::kLineRoom];
    LOGUTILS::WidenAnsi(szMessage, pszMessage);
    WriteToChannel(nLevel, nErrorCode, szMessage);
} catch (const std::bad_alloc&) {
    // logging reports no failure: a line that there is no memory for is lost
}

void CSMOutput::Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) try {
    if (Connect() == 0) {
        return;
    }
    WriteToChannel(nLevel, nErrorCode, pszMessage);
} catch (const std::bad_alloc&) {
    // as above
}

int CSMOutput::GetLevel() {
    return LOGUTILS::IsViewerPresent() ? kLevelWithViewer : 0;
}

void CSMOutput::Flush() {
}

void CSMOutput::Close() {
    const Lock lock(m_cs);
    m_pShareMemory.reset();
    m_pBreakpoints.reset();
}

int CSMOutput::Connect() {
    if (CheckViewer() == 0 || OpenChannel() == 0) {
        Close();
        return 0;
    }
    OpenBreakpoints();
    return 1;
}

int CSMOutput::CheckViewer() {
    const Lock lock(m_cs);
    if (!LOGUTILS::IsViewerPresent()) {
        return 0;
    }
    if (m_strChannelName.empty()) {
        m_strChannelName = LOGUTILS::ExecutableName();
        if (m_strChannelName.empty()) {
            return 0;
        }
    }
    if (m_strSourceName.empty()) {
        m_strSourceName = LOGUTILS::LibraryName();
    }
    return 1;
}

int CSMOutput::OpenChannel() {
    const Lock lock(m_cs);
    if (m_pShareMemory == nullptr) {
        auto pShareMemory = std::make_unique<CLogShareMemory>(m_strChannelName);
        if (pShareMemory->Create() == 0) {
            return 0;
        }
        m_pShareMemory = std::move(pShareMemory);
    }
    return 1;
}

void CSMOutput::OpenBreakpoints() {
    const Lock lock(m_cs);
    if (m_pBreakpoints == nullptr) {
        m_pBreakpoints = LOGUTILS::ViewerBreakpoints::Open();
    }
}

void CSMOutput::WriteToChannel(int nLevel, int nErrorCode, const wchar_t* pszMessage) {
    std::shared_ptr<const LOGUTILS::ViewerBreakpoints> pBreakpoints;
    std::optional<LOGUTILS::LogGuid> hitId;
    {
        const Lock lock(m_cs);
        if (m_pShareMemory == nullptr) {
            return;  // another thread saw the viewer go
        }
        m_pShareMemory->Write(nLevel, nErrorCode, m_strSourceName.c_str(), pszMessage);
        pBreakpoints = m_pBreakpoints;
        if (pBreakpoints != nullptr) {
            hitId = pBreakpoints->Test({m_strChannelName, Mirqos::CurrentProcessId(),
                                        Mirqos::CurrentThreadId(), pszMessage});
        }
    }
    if (hitId) {
        pBreakpoints->Hold(*hitId);
    }
}

}  // namespace NSDBG
