#include "sdk/core/http/Transport.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

#include "sdk/core/http/RequestBody.h"
#include "sdk/core/http/win32/AsyncRequest.h"
#include "sdk/core/http/win32/WideText.h"
#include "sdk/core/http/win32/WinHttpExchange.h"

namespace Mirqos::Http {
namespace {

/// Lets `places` threads in at once.
class Turnstile {
public:
    explicit Turnstile(unsigned places) : m_free(std::max(places, 1U)) {}
    void lock() {
        std::unique_lock lock(m_mutex);
        m_left.wait(lock, [this] { return m_free != 0; });
        --m_free;
    }
    void unlock() {
        const std::lock_guard lock(m_mutex);
        ++m_free;
        m_left.notify_one();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_left;
    unsigned m_free;
};

/// WinHTTP keeps the idle connections, one pool for each session. Trust is the system's:
/// TransportOptions::trustFile has no counterpart here.
class WinHttpTransport final : public Transport {
public:
    explicit WinHttpTransport(const TransportOptions& options)
        : m_options(options), m_turnstile(options.maxConnections) {
        m_session.reset(WinHttpOpen(nullptr, WINHTTP_ACCESS_TYPE_NO_PROXY, WINHTTP_NO_PROXY_NAME,
                                    WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC));
        if (!m_session || !AsyncRequest::Listen(m_session.get())) {
            m_error = ErrorOf(false);
            m_session.reset();
            return;
        }
        DWORD protocols = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2 | WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_3;
        if (!WinHttpSetOption(m_session.get(), WINHTTP_OPTION_SECURE_PROTOCOLS, &protocols,
                              sizeof(protocols))) {
            // before TLS 1.3 came to the system
            protocols = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2;
            m_error = ErrorOf(WinHttpSetOption(m_session.get(), WINHTTP_OPTION_SECURE_PROTOCOLS,
                                               &protocols, sizeof(protocols)));
            if (m_error != ERROR_SUCCESS) {
                m_session.reset();  // an older one is not to be spoken
            }
        }
    }

    Result Exchange(const Request& request, const Limits& limits, Receiver& receiver) override {
        if (std::string problem = RequestProblem(request); !problem.empty()) {
            return {Failure::send, std::move(problem)};
        }
        if (!m_session) {
            return {Failure::connect, "WinHTTP cannot be used: " + ErrorWords(m_error)};
        }
        const std::lock_guard turn(m_turnstile);
        RequestBody body(request);
        bool replaced = false;
        for (;;) {
            WinHttpExchange attempt(m_session.get(), m_options, request, limits, body, receiver);
            Result result = attempt.Run();
            if (replaced || result.failure == Failure::none || !attempt.WasStale() ||
                !body.Rewind()) {
                return result;
            }
            replaced = true;
        }
    }

private:
    const TransportOptions m_options;
    Turnstile m_turnstile;
    InternetHandle m_session;
    DWORD m_error = ERROR_SUCCESS;
};

}  // namespace

std::shared_ptr<Transport> MakeTransport(const TransportOptions& options) {
    return std::make_shared<WinHttpTransport>(options);
}

}  // namespace Mirqos::Http
