#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace Mirqos::Test {

/// The system's files, with one call that fails, for its lifetime. It also knows the temporary
/// files that were made and counts the files that are open. Any thread may use the files; what
/// fails is set while none does.
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
    /// The `turn`th read from now on, counted from 1, gives one byte less than there is.
    void ReadShort(int turn) { m_shortRead = turn; }
    /// Called after the temporary file was made and before anything uses it.
    std::function<void(const std::wstring& name)> onNewFile;
    /// What Exists answers, where it is not to ask the system.
    bool vanished = false;
    /// Files have the size 0, whatever was written to them.
    bool emptied = false;

    bool LeftBehind() const { return !Name().empty() && SystemFiles().Exists(Name()); }
    int OpenFiles() const { return m_open; }
    /// Of the latest temporary file; empty when none was made.
    std::wstring Name() const;
    /// Of all of them.
    std::vector<std::wstring> Names() const;

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

    std::atomic<Call> m_call{Call::none};
    std::uint32_t m_error = 0;
    int m_turn = 0;
    std::atomic<bool> m_shortWrite{false};
    std::atomic<int> m_shortRead{0};
    std::atomic<int> m_open{0};
    mutable std::mutex m_mutex;
    std::vector<std::wstring> m_names;  // guarded by m_mutex
};

}  // namespace Mirqos::Test
