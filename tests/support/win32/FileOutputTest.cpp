#include "tests/support/win32/FileOutputTest.h"

#include <algorithm>
#include <cstdio>

#include "log/dbg/LogText.h"
#include "log/dbg/win32/CLogConfig.h"
#include "log/dbg/win32/ModuleFiles.h"
#include "platform/process.h"

namespace Mirqos::Test {

using namespace LOGUTILS;

namespace {

std::uint32_t RegisteredProcess() {
    NSDBG::CLogConfig::Instance().RegisterModule(LibraryName());
    return CurrentProcessId();
}

}  // namespace

FileOutputTest::FileOutputTest()
    : m_path(m_folder.PathOf(L"a.dll.Log")), m_config(RegisteredProcess()) {
    m_config.Edit([&](LogConfigBlock& block) {
        ClearBlock(block);
        LogModuleEntry& entry = *FindOrTakeModule(block, LibraryName());
        PutText(entry.m_szPath, m_path);
        entry.m_dwFlags = 0;  // or each new output would go back to the default path
    });
}

void FileOutputTest::EditEntry(const std::function<void(LogModuleEntry&)>& edit) const {
    m_config.Edit([&](LogConfigBlock& block) { edit(*FindModule(block, LibraryName())); });
}

void FileOutputTest::SetPath(const std::wstring& path) const {
    EditEntry([&](LogModuleEntry& entry) { PutText(entry.m_szPath, path); });
}

void FileOutputTest::SetGlobalPath(const std::wstring& path) const {
    EditBlock([&](LogConfigBlock& block) { PutText(block.m_szGlobalPath, path); });
}

void FileOutputTest::SetLevel(std::int32_t nLevel) const {
    EditEntry([&](LogModuleEntry& entry) { entry.m_nLevel = nLevel; });
}

std::wstring FileOutputTest::ConfiguredPath() const {
    std::wstring path;
    EditEntry([&](LogModuleEntry& entry) { path = TextIn(entry.m_szPath); });
    return path;
}

std::wstring FileOutputTest::GlobalPath() const {
    std::wstring path;
    EditBlock([&](LogConfigBlock& block) { path = TextIn(block.m_szGlobalPath); });
    return path;
}

std::vector<std::wstring> FileOutputTest::MessagesOf(const std::wstring& path) {
    std::vector<std::wstring> lines = LinesOf(path);
    if (lines.size() < kHeaderLines) {
        ADD_FAILURE() << "the header is missing";
        return {};
    }
    lines.erase(lines.begin(), lines.begin() + kHeaderLines);
    return lines;
}

void FileOutputTest::WriteFull(const std::wstring& path) {
    WriteSparse(path, kFull, std::string(kByteOrderMark));
}

std::wstring WithoutTime(std::wstring line) {
    constexpr std::size_t kTimeEnd = 24;  // "[2000/01/02 03:04:05:006"
    std::replace_if(
        line.begin(), line.begin() + static_cast<std::ptrdiff_t>(std::min(kTimeEnd, line.size())),
        [](wchar_t c) { return c >= L'0' && c <= L'9'; }, L'0');
    return line;
}

std::wstring PrefixWithoutTime(int nLevel, const std::wstring& errorCode) {
    char szText[64];
    std::snprintf(szText, sizeof(szText), "   %02d   %05lu   %05lu", nLevel,
                  static_cast<unsigned long>(CurrentProcessId()),
                  static_cast<unsigned long>(CurrentThreadId()));
    return L"[0000/00/00 00:00:00:000" + WidenAscii(szText) + errorCode + L"] ";
}

std::wstring UnversionedTag() {
    return L"   {" + ExecutableName() + L"::" + LibraryName() + L"(0.0)}";
}

}  // namespace Mirqos::Test
