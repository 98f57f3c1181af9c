#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "log/CMIRQOSLog.h"
#include "log/IDBGLogOutput.h"

namespace Mirqos::Test {

/// One line that reached an output.
struct RecordedLine {
    int level;
    int errorCode;
    /// A wide line converted, as NarrowText does; a narrow one without what an installed SDK adds
    /// to each message.
    std::string text;
    std::wstring wideText;  ///< empty for a narrow line
    bool wide;
};

/// An output that keeps what it is given. It filters nothing itself, so that a test sees every
/// call. Any thread may use it.
class RecordingOutput : public IDBGLogOutput {
public:
    explicit RecordingOutput(int level = 2) : m_level(level) {}

    void Write(int nLevel, int nErrorCode, const char* pszMessage) override;
    void Write(int nLevel, int nErrorCode, const wchar_t* pszMessage) override;
    int GetLevel() override;

    void SetLevel(int level) { m_level = level; }
    /// Called with each line before it is kept, on the thread that writes it; what it throws, the
    /// writer gets. Set it while nobody writes.
    std::function<void(const std::string& text)> onLine;
    std::vector<RecordedLine> Lines() const;
    std::vector<std::string> Texts() const;
    /// How many lines contain `part`.
    std::size_t CountContaining(const std::string& part) const;
    /// How often GetLevel was called.
    int LevelQueries() const { return m_levelQueries; }
    void Clear();

private:
    void Keep(RecordedLine line);

    std::atomic<int> m_level;
    std::atomic<int> m_levelQueries{0};
    mutable std::mutex m_mutex;
    std::vector<RecordedLine> m_lines;
};

/// Gives a logger, usually g_ModuleLog, two recording outputs for its lifetime and its own outputs
/// back afterwards. No other thread may use the logger while this begins or ends: every store and
/// executor of the test has to be gone by then.
class LogRecording {
public:
    LogRecording();
    explicit LogRecording(CMIRQOSLog& log);
    ~LogRecording();
    LogRecording(const LogRecording&) = delete;
    LogRecording& operator=(const LogRecording&) = delete;

    RecordingOutput& File() { return *m_pFile; }
    RecordingOutput& Channel() { return *m_pChannel; }

    /// The texts that reached the file output, in order.
    std::vector<std::string> Texts() const { return m_pFile->Texts(); }
    std::size_t CountContaining(const std::string& part) const {
        return m_pFile->CountContaining(part);
    }
    void Clear();

private:
    CMIRQOSLog& m_log;
    RecordingOutput* m_pFile;     // owned by m_log
    RecordingOutput* m_pChannel;  // owned by m_log
    std::unique_ptr<IDBGLogOutput> m_pFormerFile;
    std::unique_ptr<IDBGLogOutput> m_pFormerChannel;
};

}  // namespace Mirqos::Test
