#include "log/dbg/win32/CFileOutput.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <mutex>
#include <new>
#include <optional>

#include "log/dbg/LinePrefix.h"
#include "log/dbg/LogText.h"
#include "log/dbg/SummaryHeader.h"
#include "log/dbg/win32/CLogConfig.h"
#include "log/dbg/win32/FolderPreparation.h"
#include "log/dbg/win32/LineWriter.h"
#include "log/dbg/win32/LogFile.h"
#include "log/dbg/win32/MachineFacts.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "log/dbg/win32/ProductInstall.h"
#include "log/dbg/win32/Trace.h"
#include "platform/process.h"

namespace NSDBG {
namespace {

using LOGUTILS::WideString;
using LOGUTILS::WideView;

constexpr std::size_t kPrefixRoom = 1024;  // characters, the terminator included
constexpr DWORD kMutexWait = 5000;         // ms
constexpr std::int32_t kUsualLevel = 2;

std::int32_t InitialLevel(const wchar_t* pszProcess, const wchar_t* pszLibrary,
                          unsigned nInstallKinds) {
    std::int32_t nLevel = LOGUTILS::RegistryLevel(pszProcess, nInstallKinds);
    if (nLevel == LOGUTILS::kNoLevel) {
        nLevel = LOGUTILS::RegistryLevel(pszLibrary, nInstallKinds);
    }
    return nLevel == LOGUTILS::kNoLevel ? kUsualLevel : nLevel;
}

// The next file of the series that has room; nothing when their names have become too long.
std::optional<WideString> NextInSeries(WideView path) {
    const LOGUTILS::LogSeries series = LOGUTILS::SplitSeries(path);
    for (int nNumber = series.number + 1;; ++nNumber) {
        std::optional<WideString> candidate = LOGUTILS::SeriesMember(series.base, nNumber);
        if (!candidate || !LOGUTILS::IsFull(*candidate)) {
            return candidate;
        }
    }
}

}  // namespace

CFileOutput::CFileOutput() {
    LOGUTILS::PutText(m_szLibraryName, LOGUTILS::LibraryName());
    LOGUTILS::PutText(m_szConfigName, m_szLibraryName);
    LOGUTILS::PutText(m_szProcessName, LOGUTILS::ExecutableName());
    CLogConfig& config = CLogConfig::Instance();
    m_bDisableGlobal = LOGUTILS::IsGlobalPathDisabled(m_szProcessName, config.InstallKinds());
    m_nLevel = InitialLevel(m_szProcessName, m_szLibraryName, config.InstallKinds());
    config.RegisterModule(m_szConfigName);
    config.GetLogPath(m_szConfigName, m_szFilePath, m_bDisableGlobal != 0);
}

CFileOutput::~CFileOutput() {
    CloseFile();
}

void CFileOutput::Write(int nLevel, int nErrorCode, const char* pszMessage) {
    WriteMessage(nLevel, nErrorCode, pszMessage);
}

void CFileOutput::Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) {
    WriteMessage(nLevel, nErrorCode, pszMessage);
}

int CFileOutput::GetLevel() {
    const std::lock_guard<LOGUTILS::CriticalSection> lock(m_cs);
    const std::int32_t nLevel = CLogConfig::Instance().GetLevel(m_szConfigName);
    if (nLevel >= 0) {
        m_nLevel = nLevel;
    }
    return m_nLevel;
}

template <typename Char>
void CFileOutput::WriteMessage(int nLevel, int nErrorCode, const Char* pszMessage) {
    if (nLevel > GetLevel()) {
        return;
    }
    const std::lock_guard<LOGUTILS::CriticalSection> lock(m_cs);
    try {
        WriteLine(nLevel, nErrorCode, pszMessage);
    } catch (const std::bad_alloc&) {
        // The line is lost, as with every other failure: who logs does not expect an exception.
    }
}

template <typename Char>
void CFileOutput::WriteLine(int nLevel, int nErrorCode, const Char* pszMessage) {
    if (!OpenFile() || !OpenMutex()) {
        return;
    }
    // After an abandoned wait this thread owns the mutex as well, and gives it back at the end.
    const LOGUTILS::MutexHold hold = m_hFileMutex.Wait(kMutexWait);
    if (hold.Wait() != LOGUTILS::MutexWait::Owned) {
        LOGUTILS::Trace(L"[%d:%d] Failed to wait mutex for file[%s]\r\n",
                        Mirqos::CurrentProcessId(), Mirqos::CurrentThreadId(), m_szFilePath);
        return;
    }
    BeginFile();
    char szPrefix[kPrefixRoom];
    Mirqos::FormatLinePrefix(szPrefix, std::size(szPrefix),
                             Mirqos::CurrentLinePrefix(nLevel, nErrorCode));
    const WideString tag = LOGUTILS::SourceTag(m_szProcessName, m_szLibraryName, m_dwModuleVersion);
    LOGUTILS::LineWriter(m_hFile, m_szFilePath, m_bUnicode != 0)
        .Append(szPrefix, pszMessage, tag.c_str());
}

// The path that the block has for this output, a plain name completed as the block would do it;
// without an answer, the path in use.
WideString CFileOutput::WantedPath() const {
    CLogConfig& config = CLogConfig::Instance();
    wchar_t szPath[LOGUTILS::kPathRoom];
    std::copy(std::begin(m_szFilePath), std::end(m_szFilePath), szPath);
    config.GetLogPath(m_szConfigName, szPath, m_bDisableGlobal != 0);
    return szPath[0] == L'\0' ? WideString()
                              : LOGUTILS::DefaultLogPath(szPath, m_szLibraryName, config.LogRoot());
}

bool CFileOutput::IsFull() const {
    return m_hFile ? LOGUTILS::IsFull(m_hFile) : LOGUTILS::IsFull(WideString(m_szFilePath));
}

bool CFileOutput::OpenFile() {
    const WideString wanted = WantedPath();
    const bool bWasOpen = static_cast<bool>(m_hFile);
    // A file of the same series is still the file that was asked for.
    const bool bChanged = !LOGUTILS::IsSameLog(m_szFilePath, wanted);
    if (bChanged) {
        CloseFile();
        TakePath(wanted);
    } else if (!bWasOpen) {
        LOGUTILS::PutText(m_szFilePath, wanted);  // others may have gone on in the series
    }
    if (IsFull()) {
        CloseFile();
        if (!Rotate()) {
            return false;
        }
    }
    if (!m_hFile) {
        // A successor lies where its predecessor was written; any other file may be the folder's
        // first.
        if (!bWasOpen || bChanged) {
            LOGUTILS::PrepareLogFolder(WideString(LOGUTILS::FolderOf(m_szFilePath)),
                                       CLogConfig::Instance().LogRoot());
        }
        m_hFile = LOGUTILS::OpenLogFile(m_szFilePath);
        if (!m_hFile) {
            LOGUTILS::Trace(L"[%d:%d] Failed to create file [%s]. ERR=%d\r\n",
                            Mirqos::CurrentProcessId(), Mirqos::CurrentThreadId(), m_szFilePath,
                            GetLastError());
            return false;
        }
    }
    ReadModuleVersion();
    return true;
}

bool CFileOutput::OpenMutex() {
    if (m_hFileMutex) {
        return true;
    }
    if (m_szFilePath[0] == L'\0') {
        LOGUTILS::Trace(L"[%d:%d] Failed to create mutex. File name is empty\r\n",
                        Mirqos::CurrentProcessId(), Mirqos::CurrentThreadId());
    } else {
        const WideString name = LOGUTILS::FileMutexName(m_szFilePath);
        m_hFileMutex = LOGUTILS::NamedMutex::Create(name);
        if (m_hFileMutex) {
            return true;
        }
        LOGUTILS::Trace(L"[%d:%d] Failed to create mutex with name [%s]. ERR=%d\r\n",
                        Mirqos::CurrentProcessId(), Mirqos::CurrentThreadId(), name.c_str(),
                        GetLastError());
    }
    CloseFile();
    return false;
}

bool CFileOutput::Rotate() {
    const std::optional<WideString> next = NextInSeries(m_szFilePath);
    if (!next) {
        return false;
    }
    LOGUTILS::Trace(L"[%d:%d] Redirect file from [%s] to [%s]\r\n", Mirqos::CurrentProcessId(),
                    Mirqos::CurrentThreadId(), m_szFilePath, next->c_str());
    TakePath(*next);
    return true;
}

void CFileOutput::CloseFile() {
    m_hFile.Reset();
    m_hFileMutex.Close();
}

// Takes the path into use and into the block, so that all writers of the series follow.
void CFileOutput::TakePath(WideView path) {
    LOGUTILS::PutText(m_szFilePath, path);
    CLogConfig::Instance().SetLogPath(m_szConfigName, m_szFilePath);
}

void CFileOutput::ReadModuleVersion() {
    if (m_dwModuleVersion == 0) {
        const std::optional<LOGUTILS::FileVersion> version =
            LOGUTILS::VersionOfModule(m_szLibraryName);
        m_dwModuleVersion = version ? version->m_dwLeast : 0;
    }
}

// An existing file keeps its encoding, and so do the files that this output creates after it. A
// file that does not tell its size is left as it is.
void CFileOutput::BeginFile() {
    const std::optional<std::uint64_t> size = LOGUTILS::SizeOf(m_hFile);
    if (!size) {
        return;
    }
    if (*size > LOGUTILS::kByteOrderMark.size()) {
        const std::optional<std::array<char, 2>> beginning = LOGUTILS::ReadBeginning(m_hFile);
        if (beginning) {
            m_bUnicode = LOGUTILS::IsUnicodeFile(*beginning) ? 1 : 0;
        }
        return;
    }
    if (m_bUnicode != 0) {
        LOGUTILS::WriteByteOrderMark(m_hFile);
    }
    WriteHeader();
}

void CFileOutput::WriteHeader() const {
    const LOGUTILS::LineWriter writer(m_hFile, m_szFilePath, m_bUnicode != 0);
    writer.Append("", LOGUTILS::SummaryColumns().c_str(), L"");
    char szPrefix[kPrefixRoom];
    Mirqos::FormatLinePrefix(szPrefix, std::size(szPrefix), Mirqos::CurrentLinePrefix(m_nLevel, 0));
    const LOGUTILS::SummaryFacts facts =
        LOGUTILS::ReadSummaryFacts(CLogConfig::Instance().InstallKinds());
    for (const WideString& line : LOGUTILS::SummaryLines(facts)) {
        writer.Append(szPrefix, line.c_str(), L"");
    }
}

}  // namespace NSDBG
