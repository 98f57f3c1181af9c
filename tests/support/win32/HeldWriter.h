#pragma once

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <future>
#include <string>
#include <thread>

#include "log/IDBGLogOutput.h"
#include "platform/undo_windows_macros.h"

namespace Mirqos::Test {

/// A thread that writes one line and ends, unless it is held in the middle of that.
class HeldWriter {
public:
    HeldWriter(IDBGLogOutput& output, const std::wstring& text) {
        std::promise<std::uint32_t> id;
        std::future<std::uint32_t> idFuture = id.get_future();
        std::promise<void> done;
        m_done = done.get_future();
        m_thread = std::thread(
            [&output, text](std::promise<std::uint32_t> id, std::promise<void> done) {
                id.set_value(GetCurrentThreadId());
                output.Write(1, 0, text.c_str());
                done.set_value();
            },
            std::move(id), std::move(done));
        m_dwThreadId = idFuture.get();
    }
    ~HeldWriter() { m_thread.join(); }
    HeldWriter(const HeldWriter&) = delete;
    HeldWriter& operator=(const HeldWriter&) = delete;

    std::uint32_t ThreadId() const { return m_dwThreadId; }
    bool IsDone() const { return m_done.wait_for(std::chrono::seconds(0)) == kReady; }
    /// False when that takes longer than half a minute.
    bool WaitUntilDone() const { return m_done.wait_for(std::chrono::seconds(30)) == kReady; }

private:
    static constexpr std::future_status kReady = std::future_status::ready;

    std::thread m_thread;
    std::future<void> m_done;
    std::uint32_t m_dwThreadId = 0;
};

}  // namespace Mirqos::Test
