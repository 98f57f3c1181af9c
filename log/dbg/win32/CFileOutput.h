#pragma once

#include <cstdint>

#include "log/IDBGLogOutput.h"
#include "log/dbg/LogFilePath.h"
#include "log/dbg/win32/CriticalSection.h"
#include "log/dbg/win32/NamedMutex.h"
#include "log/dbg/win32/Owned.h"

namespace NSDBG {

/// Writes log lines to a text file that other outputs of this process, and other processes, may
/// write at the same time. Which file, and up to which level, the process's configuration block
/// says before each line. A file that has reached 100 MiB is followed by the next of its series; a
/// new one begins with a header. docs/formats.md describes what stands in it.
///
/// The file is opened by the first line and stays open. A line that cannot be written is lost, with
/// a word to the trace, and the next one tries again to open the block, the file and its mutex. A
/// line waits at most 5 seconds for other writers of the file.
///
/// The output registers in the block once, when it is made. One that found no block then has no
/// file until another output registers the same name or there is a path of all modules.
class CFileOutput final : public IDBGLogOutput {
public:
    CFileOutput();
    ~CFileOutput() override;
    CFileOutput(const CFileOutput&) = delete;
    CFileOutput& operator=(const CFileOutput&) = delete;

    void Write(int nLevel, int nErrorCode, const char* pszMessage) override;
    void Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) override;

    /// The level as the configuration block has it now; without an answer from there, as it was.
    int GetLevel() override;

private:
    friend struct FileOutputTestAccess;

    template <typename Char>
    void WriteMessage(int nLevel, int nErrorCode, const Char* pszMessage);

    // What follows is called with m_cs entered; from BeginFile on with the file's mutex owned, too.
    template <typename Char>
    void WriteLine(int nLevel, int nErrorCode, const Char* pszMessage);
    LOGUTILS::WideString WantedPath() const;
    bool IsFull() const;
    bool OpenFile();
    bool OpenMutex();
    bool Rotate();
    void CloseFile();
    void TakePath(LOGUTILS::WideView path);
    void ReadModuleVersion();
    void BeginFile();
    void WriteHeader() const;

    wchar_t m_szFilePath[LOGUTILS::kPathRoom] = {};     ///< of the file in use
    wchar_t m_szConfigName[LOGUTILS::kNameRoom] = {};   ///< what the block knows this output by
    wchar_t m_szLibraryName[LOGUTILS::kNameRoom] = {};  ///< file names, as in the source tag
    wchar_t m_szProcessName[LOGUTILS::kNameRoom] = {};
    std::uint32_t m_dwModuleVersion = 0;  ///< the library's build and revision; 0: not read yet
    std::int32_t m_bUnicode = 1;          ///< 1: UTF-16LE with a byte-order mark; 0: ANSI
    std::int32_t m_nLevel = 2;            ///< lines above it are not written
    LOGUTILS::File m_hFile;
    LOGUTILS::NamedMutex m_hFileMutex;   ///< of the current file; on it all its writers meet
    LOGUTILS::CriticalSection m_cs;      ///< serialises all work on this object
    std::uint32_t m_bDisableGlobal = 0;  ///< 1: the path that all modules share is ignored
};

}  // namespace NSDBG
