#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/file_system.h"

namespace Mirqos::Test {

/// The system's files, with one call that fails, for its lifetime. It also knows the temporary file
/// that was made and counts the files that are open.
class FaultyFiles : public FileSystem {
public:
    enum class Call { none, folder, name, create, open, remove, seek, end, read, write, size };

    FaultyFiles() { ReplaceFileSystem(this); }
    ~FaultyFiles() override { ReplaceFileSystem(nullptr); }
    FaultyFiles(const FaultyFiles&) = delete;
    FaultyFiles& operator=(const FaultyFiles&) = delete;

    /// The `turn`th such call from now on, counted from 1, fails with `error`.
    void Fail(Call call, std::uint32_t error, int turn = 1);
    /// The next write takes one byte less than it was given.
    void WriteShort() { m_shortWrite = true; }
    /// Called after the temporary file was made and before anything uses it.
    std::function<void(const std::wstring& name)> onNewFile;
    /// What Exists answers, where it is not to ask the system.
    bool vanished = false;

    bool LeftBehind() const { return !m_name.empty() && SystemFiles().Exists(m_name); }
    int OpenFiles() const { return m_open; }
    const std::wstring& Name() const { return m_name; }

    SystemResult TemporaryFolder(std::wstring& folder) override;
    SystemResult NewTemporaryFile(const std::wstring& folder, const wchar_t* prefix,
                                  std::wstring& name) override;
    SystemResult Create(const std::wstring& name, std::unique_ptr<SystemFile>& file) override;
    SystemResult Open(const std::wstring& name, std::unique_ptr<SystemFile>& file) override;
    bool Exists(const std::wstring& name) override;
    SystemResult Delete(const std::wstring& name) override;

private:
    class File;
    /// Whether this call is the one that fails; `result` is then its failure.
    bool Fails(Call call, SystemResult& result);
    std::unique_ptr<SystemFile> Watch(std::unique_ptr<SystemFile> file);

    Call m_call = Call::none;
    std::uint32_t m_error = 0;
    int m_turn = 0;
    bool m_shortWrite = false;
    int m_open = 0;
    std::wstring m_name;
};

}  // namespace Mirqos::Test
