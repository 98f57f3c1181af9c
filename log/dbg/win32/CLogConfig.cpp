#include "log/dbg/win32/CLogConfig.h"

#include <mutex>
#include <new>
#include <optional>

#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "log/dbg/win32/ProductInstall.h"
#include "log/dbg/win32/SharedMemory.h"
#include "log/dbg/win32/Trace.h"
#include "log/dbg/win32/WindowsCalls.h"

namespace NSDBG {

using namespace LOGUTILS;

namespace {

constexpr DWORD kMutexWaitMilliseconds = 5000;

WideString WithOwnId(const char* pszName) {
    return WidenAscii(pszName) + Decimal(Windows().getCurrentProcessId());
}

WideString ReadLogRoot(unsigned nInstallKinds) {
    const InstallPaths paths = nInstallKinds == kWindowsPe ? InstallPaths() : ReadInstallPaths();
    return LogRootOf(LibraryPath(), FolderOf(ExecutablePath()), nInstallKinds, paths);
}

}  // namespace

CLogConfig& CLogConfig::Instance() {
    // Never destroyed: the view has to stay mapped for as long as anything logs.
    static CLogConfig& instance = *new CLogConfig;
    return instance;
}

CLogConfig::CLogConfig() : m_nInstallKinds(ReadInstallKinds()) {
    PutText(m_szLogRoot, ReadLogRoot(m_nInstallKinds));
}

LogConfigBlock* CLogConfig::Block() const {
    return static_cast<LogConfigBlock*>(m_view.Get());
}

bool CLogConfig::MakeOpen() try {
    const std::lock_guard<CriticalSection> lock(m_cs);
    if (m_view) {
        return true;
    }
    if (!m_mutex) {
        m_mutex = NamedMutex::Create(WithOwnId(kBlockMutexName));
    }
    const MutexHold hold = m_mutex.Wait(kMutexWaitMilliseconds);
    if (!hold.Owns()) {
        return false;
    }
    // Kept only with its view: one that was left as it was made would pass for somebody else's.
    SharedMemory memory = CreateSharedMemory(WithOwnId(kBlockName), sizeof(LogConfigBlock));
    if (!memory.m_mapping) {
        return false;
    }
    m_view = MapSharedMemory(memory.m_mapping, sizeof(LogConfigBlock));
    if (!m_view) {
        return false;
    }
    if (!memory.m_bExisted) {
        ClearBlock(*Block());
    }
    m_mapping = std::move(memory.m_mapping);
    return true;
} catch (const std::bad_alloc&) {
    return false;  // the next operation tries again
}

template <typename Work>
void CLogConfig::WithBlock(Work work) {
    if (!MakeOpen()) {
        return;
    }
    {
        const MutexHold hold = m_mutex.Wait(kMutexWaitMilliseconds);
        if (!hold.Owns()) {
            return;
        }
        if (IsIntact(*Block())) {
            work(*Block());
            return;
        }
    }
    const auto nProcess = static_cast<int>(Windows().getCurrentProcessId());
    Trace(L"[%d:%d] Share memory was destroied\r\n", nProcess, nProcess);
}

void CLogConfig::RegisterModule(WideView name) {
    const WideString path = DefaultLogPath(name, LibraryName(), LogRoot());
    WithBlock([&](LogConfigBlock& block) {
        m_pEntry = FindOrTakeModule(block, name);
        if (m_pEntry != nullptr && (m_pEntry->m_dwFlags & kFollowsGlobalPath) != 0) {
            PutText(m_pEntry->m_szPath, path);
        }
    });
}

void CLogConfig::GetLogPath(WideView name, wchar_t (&szPath)[kPathRoom], bool bIgnoreGlobal) {
    WithBlock([&](const LogConfigBlock& block) {
        if (const std::optional<WideString> path = PathOf(block, name, bIgnoreGlobal)) {
            PutText(szPath, *path);
        }
    });
}

void CLogConfig::SetLogPath(WideView name, WideView path) {
    const WideString fullPath = DefaultLogPath(path, LibraryName(), LogRoot());
    WithBlock([&](LogConfigBlock& block) { SetPath(block, name, fullPath); });
}

std::int32_t CLogConfig::GetLevel(WideView name) {
    std::int32_t nLevel = kNoLevel;
    WithBlock([&](const LogConfigBlock& block) { nLevel = LevelOf(block, name); });
    return nLevel;
}

}  // namespace NSDBG
