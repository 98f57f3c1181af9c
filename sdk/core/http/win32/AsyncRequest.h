#pragma once

#include <windows.h>
// winhttp.h needs windows.h before it
#include <winhttp.h>

#include <chrono>
#include <cstdint>
#include <memory>

namespace Mirqos::Http {

/// Asked right after a WinHTTP call that did or did not succeed: ERROR_SUCCESS or why not, also
/// where the system does not say.
DWORD ErrorOf(BOOL succeeded);

/// A WinHTTP handle.
struct CloseInternet {
    using pointer = HINTERNET;
    void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<HINTERNET, CloseInternet>;

/// A request handle of an asynchronous session, driven by one thread that waits for each step.
///
/// Asynchronous, because the limits of synchronous WinHTTP cannot be trusted: each counts for one
/// system call, so a head that trickles in is never late, and closing the handle of a synchronous
/// request from a watchdog does not end its wait everywhere. Here the wait is our own. When it is
/// over, the handle is closed and what WinHTTP may still touch lives until it says that it is done.
class AsyncRequest {
public:
    using Clock = std::chrono::steady_clock;
    /// The most that one Write or Read moves.
    static constexpr std::size_t kBufferSize = 256 * 1024;

    /// What a step came to.
    enum class Outcome {
        done,
        failed,  ///< Error() says why
        late     ///< the limit passed; the handle is closed
    };

    /// Has to be set on the session before requests are opened.
    static bool Listen(HINTERNET session);

    /// `request` has no context yet.
    explicit AsyncRequest(InternetHandle request);
    ~AsyncRequest();
    AsyncRequest(const AsyncRequest&) = delete;
    AsyncRequest& operator=(const AsyncRequest&) = delete;

    HINTERNET Handle() const { return m_handle.get(); }
    /// Bytes to write, or those just read: kBufferSize of them.
    char* Buffer() const;

    /// Connects within `connect` and sends the head within `stall`.
    Outcome Send(std::chrono::milliseconds connect, std::chrono::milliseconds stall);
    /// Sends the first `size` bytes of the buffer.
    Outcome Write(std::size_t size, std::chrono::milliseconds stall);
    /// Waits for a head until `deadline`.
    Outcome Receive(Clock::time_point deadline);
    /// Reads into the buffer; `stall` counts from the last byte that arrived.
    Outcome Read(std::size_t& size, std::chrono::milliseconds stall);

    DWORD Error() const;
    /// WINHTTP_CALLBACK_STATUS_FLAG_... of a refused certificate.
    DWORD SecureFlags() const;
    /// Whether a connection was made for this request; otherwise an idle one was taken.
    bool MadeConnection() const;
    /// Whether the connection is there and the request on its way.
    bool Connected() const;
    /// Whether any byte has arrived.
    bool HasReceived() const;
    /// Whether the server was seen to close the connection.
    bool SawClose() const;

private:
    struct State;

    static void CALLBACK OnStatus(HINTERNET handle, DWORD_PTR context, DWORD status, void* info,
                                  DWORD size);
    void Begin();
    Outcome Finish(BOOL started, Clock::time_point (*deadline)(const State&));

    std::shared_ptr<State> m_state;
    InternetHandle m_handle;
};

}  // namespace Mirqos::Http
