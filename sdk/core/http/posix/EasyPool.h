#pragma once

#include <curl/curl.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "sdk/core/http/Transport.h"

namespace Mirqos::Http {

/// An easy handle with a multi handle of its own, which keeps at most one connection. The multi
/// handle is there because curl_easy_perform cannot be waited for with a limit in milliseconds.
/// The options that are the same for all exchanges are set once: to set them takes longer than
/// to read the head of an answer.
struct EasySlot {
    explicit EasySlot(const TransportOptions& options);
    ~EasySlot();
    EasySlot(const EasySlot&) = delete;
    EasySlot& operator=(const EasySlot&) = delete;

    CURL* easy = nullptr;
    CURLM* multi = nullptr;
    std::string server;  ///< whom the kept connection leads to

    /// Whether to keep what is unread when the connection closes, and what that was. A server that
    /// refuses an upload answers and hangs up; libcurl may fail to send before it looks for an
    /// answer, and would close the socket over it.
    bool keepUnread = false;
    std::string unread;

    /// Closes `socket`; for libcurl, which remembers the slot with the connection.
    static int CloseSocket(void* slot, curl_socket_t socket);
};

/// Lends out up to `maxConnections` slots; the most recently used one for the same server comes
/// first, so that idle connections beyond the load's need grow old and are closed by their servers.
class EasyPool {
public:
    explicit EasyPool(const TransportOptions& options);

    /// A slot on loan; goes back when destroyed.
    class Lease {
    public:
        Lease(EasyPool& pool, std::unique_ptr<EasySlot> slot)
            : m_pool(pool), m_slot(std::move(slot)) {}
        ~Lease() { m_pool.Return(std::move(m_slot)); }
        Lease(const Lease&) = delete;
        Lease& operator=(const Lease&) = delete;
        EasySlot& operator*() const { return *m_slot; }

    private:
        EasyPool& m_pool;
        std::unique_ptr<EasySlot> m_slot;
    };

    /// Waits while all slots are on loan.
    Lease Take(const std::string& server);

private:
    std::unique_ptr<EasySlot> TakeSlot(const std::string& server);
    void Return(std::unique_ptr<EasySlot> slot);

    const TransportOptions m_options;
    const unsigned m_size;
    std::mutex m_mutex;
    std::condition_variable m_returned;
    unsigned m_lent = 0;
    std::vector<std::unique_ptr<EasySlot>> m_idle;  ///< most recently used last
};

}  // namespace Mirqos::Http
