#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "log/dbg/win32/CFileOutput.h"
#include "tests/support/win32/LogFolder.h"
#include "tests/support/win32/OutsideConfig.h"
#include "tests/support/win32/TraceRecording.h"

namespace NSDBG {

/// What a test sees and sets inside an output.
struct FileOutputTestAccess {
    static void IgnoreGlobalPath(CFileOutput& output) { output.m_bDisableGlobal = 1; }
    static void PutPath(CFileOutput& output, const std::wstring& path) {
        LOGUTILS::PutText(output.m_szFilePath, path);
    }
    static void PutModuleVersion(CFileOutput& output, std::uint32_t dwVersion) {
        output.m_dwModuleVersion = dwVersion;
    }
    static std::wstring Path(const CFileOutput& output) { return output.m_szFilePath; }
    static std::wstring ConfigName(const CFileOutput& output) { return output.m_szConfigName; }
    static std::wstring LibraryName(const CFileOutput& output) { return output.m_szLibraryName; }
    static std::wstring ProcessName(const CFileOutput& output) { return output.m_szProcessName; }
    static std::uint32_t ModuleVersion(const CFileOutput& output) {
        return output.m_dwModuleVersion;
    }
    static bool IsUnicode(const CFileOutput& output) { return output.m_bUnicode == 1; }
    static int Level(const CFileOutput& output) { return output.m_nLevel; }
    static bool IsFileOpen(const CFileOutput& output) { return static_cast<bool>(output.m_hFile); }
    static bool HasMutex(const CFileOutput& output) {
        return static_cast<bool>(output.m_hFileMutex);
    }
    static bool IgnoresGlobalPath(const CFileOutput& output) {
        return output.m_bDisableGlobal != 0;
    }
};

}  // namespace NSDBG

namespace Mirqos::Test {

/// A test of log files: the test program's outputs write to "a.dll.Log" in a fresh folder, and
/// nothing else is configured. Traces are kept.
class FileOutputTest : public testing::Test {
protected:
    static constexpr std::uint64_t kFull = 104857600;
    static constexpr int kHeaderLines = 7;

    FileOutputTest();

    std::wstring PathOf(const std::wstring& name) const { return m_folder.PathOf(name); }
    /// What the block says for this program's outputs and, in the end, for all.
    void SetPath(const std::wstring& path) const;
    void SetGlobalPath(const std::wstring& path) const;
    void SetLevel(std::int32_t nLevel) const;
    std::wstring ConfiguredPath() const;
    std::wstring GlobalPath() const;
    /// Does `edit` on this program's entry; on all of the block.
    void EditEntry(const std::function<void(LOGUTILS::LogModuleEntry&)>& edit) const;
    void EditBlock(const std::function<void(LOGUTILS::LogConfigBlock&)>& edit) const {
        m_config.Edit(edit);
    }

    /// The lines of the file after its header.
    static std::vector<std::wstring> MessagesOf(const std::wstring& path);
    /// Makes a full file of UTF-16LE text.
    static void WriteFull(const std::wstring& path);

    const LogFolder m_folder;
    const TraceRecording m_trace;
    const std::wstring m_path;  ///< of "a.dll.Log"

private:
    const OutsideConfig m_config;
};

/// The line without what differs from one to the next: the digits of its time, which stands first,
/// are zeros.
std::wstring WithoutTime(std::wstring line);
/// The prefix of this thread's lines, without its time as above.
std::wstring PrefixWithoutTime(int nLevel, const std::wstring& errorCode = L"             ");
/// The source tag of a program whose library has no version.
std::wstring UnversionedTag();

}  // namespace Mirqos::Test
