#pragma once

#include <cstdint>

#include "log/dbg/LogConfigBlock.h"
#include "log/dbg/WideText.h"
#include "log/dbg/win32/CriticalSection.h"
#include "log/dbg/win32/NamedMutex.h"
#include "log/dbg/win32/Owned.h"

namespace NSDBG {

/// The log configuration block of this process: creates or opens it, and answers from it which file
/// a module logs to and at which level. The block stays mapped for the life of the process.
///
/// A module is named by its file name, letter case aside. Each operation opens the block if it is
/// not open yet and takes the block's mutex for at most 5 seconds; when one of them fails, or the
/// block was damaged, it does nothing, and GetLevel returns -1. Any thread may call any operation;
/// none calls out while it holds the mutex.
class CLogConfig {
public:
    /// The one of this process, created on first use.
    static CLogConfig& Instance();

    CLogConfig(const CLogConfig&) = delete;
    CLogConfig& operator=(const CLogConfig&) = delete;

    /// Gives the module an entry, and its default path if it follows the global path. An empty name
    /// and a module beyond the last entry are ignored.
    void RegisterModule(LOGUTILS::WideView name);

    /// The file the module is to log to; `szPath` stays as it is when the block does not say.
    void GetLogPath(LOGUTILS::WideView name, wchar_t (&szPath)[LOGUTILS::kPathRoom],
                    bool bIgnoreGlobal);

    /// Sets the file: for all modules when they share one or when the name is empty, else for that
    /// module. A plain file name goes into the log root.
    void SetLogPath(LOGUTILS::WideView name, LOGUTILS::WideView path);

    /// The level that is set for the module; below 0 when none is.
    std::int32_t GetLevel(LOGUTILS::WideView name);

    /// Which components of the product are installed (LOGUTILS::kEngine and the like).
    unsigned InstallKinds() const { return m_nInstallKinds; }
    /// The folder of the log files, ended by "\".
    LOGUTILS::WideView LogRoot() const { return LOGUTILS::TextIn(m_szLogRoot); }

private:
    friend struct LogConfigTestAccess;

    CLogConfig();
    ~CLogConfig() = default;

    bool MakeOpen();
    LOGUTILS::LogConfigBlock* Block() const;
    /// Does `work` on the block while the mutex is held, unless the block cannot be had.
    template <typename Work>
    void WithBlock(Work work);

    LOGUTILS::CriticalSection m_cs;  ///< guards the opening
    LOGUTILS::NamedMutex m_mutex;
    LOGUTILS::KernelObject m_mapping;
    LOGUTILS::View m_view;
    LOGUTILS::LogModuleEntry* m_pEntry = nullptr;  ///< of the module that registered last
    unsigned m_nInstallKinds;
    wchar_t m_szLogRoot[LOGUTILS::kPathRoom];
};

}  // namespace NSDBG
