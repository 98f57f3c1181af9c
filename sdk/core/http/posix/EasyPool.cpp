#include "sdk/core/http/posix/EasyPool.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

namespace Mirqos::Http {
namespace {

// Measured on loopback: below these sizes system calls cost throughput, above nothing is gained.
constexpr long kSendBuffer = 1024 * 1024;
constexpr long kReceiveBuffer = 512 * 1024;

}  // namespace

EasySlot::EasySlot(const TransportOptions& options)
    : easy(curl_easy_init()), multi(curl_multi_init()) {
    if (easy == nullptr || multi == nullptr) {
        curl_easy_cleanup(easy);
        curl_multi_cleanup(multi);
        throw std::bad_alloc();
    }
    curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, 1L);
    curl_multi_setopt(multi, CURLMOPT_PIPELINING, CURLPIPE_NOTHING);

    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
    curl_easy_setopt(easy, CURLOPT_HTTP09_ALLOWED, 0L);
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(easy, CURLOPT_HTTP_CONTENT_DECODING, 0L);
    curl_easy_setopt(easy, CURLOPT_PROXY, "");  // not even one that the environment names
    curl_easy_setopt(easy, CURLOPT_NETRC, CURL_NETRC_IGNORED);
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_TCP_NODELAY, 1L);
    curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, kReceiveBuffer);
    curl_easy_setopt(easy, CURLOPT_UPLOAD_BUFFERSIZE, kSendBuffer);

    curl_easy_setopt(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, options.verifyCertificates ? 1L : 0L);
    curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, options.verifyCertificates ? 2L : 0L);
    if (!options.trustFile.empty()) {
        curl_easy_setopt(easy, CURLOPT_CAINFO, options.trustFile.c_str());
        curl_easy_setopt(easy, CURLOPT_CAPATH, nullptr);
    }

    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETDATA, this);
    curl_easy_setopt(easy, CURLOPT_CLOSESOCKETFUNCTION, &EasySlot::CloseSocket);
}

EasySlot::~EasySlot() {
    curl_easy_cleanup(easy);
    curl_multi_cleanup(multi);
}

int EasySlot::CloseSocket(void* slot, curl_socket_t socket) {
    auto* const self = static_cast<EasySlot*>(slot);
    if (self->keepUnread) {
        // a refusal is short; one that does not fit is reported as the send failure it also is
        char room[64 * 1024];
        const ssize_t got = recv(socket, room, sizeof(room), MSG_DONTWAIT);
        try {
            self->unread.assign(room, got > 0 ? static_cast<std::size_t>(got) : 0);
        } catch (const std::bad_alloc&) {
            self->unread.clear();
        }
    }
    return close(socket);
}

EasyPool::EasyPool(const TransportOptions& options)
    : m_options(options), m_size(std::max(options.maxConnections, 1U)) {
    m_idle.reserve(m_size);  // returning a slot must not fail
}

EasyPool::Lease EasyPool::Take(const std::string& server) {
    return {*this, TakeSlot(server)};
}

std::unique_ptr<EasySlot> EasyPool::TakeSlot(const std::string& server) {
    std::unique_ptr<EasySlot> slot;
    {
        std::unique_lock lock(m_mutex);
        m_returned.wait(lock, [this] { return m_lent < m_size; });
        const auto known = std::find_if(m_idle.rbegin(), m_idle.rend(),
                                        [&](const auto& idle) { return idle->server == server; });
        if (known != m_idle.rend()) {
            slot = std::move(*known);
            m_idle.erase(std::next(known).base());
        } else if (m_lent + m_idle.size() >= m_size) {
            slot = std::move(m_idle.front());  // the connection unused for longest makes room
            m_idle.erase(m_idle.begin());
        }
        ++m_lent;
    }
    if (!slot) {
        try {
            slot = std::make_unique<EasySlot>(m_options);
        } catch (...) {
            Return(nullptr);
            throw;
        }
    }
    slot->server = server;
    return slot;
}

void EasyPool::Return(std::unique_ptr<EasySlot> slot) {
    const std::lock_guard lock(m_mutex);
    --m_lent;
    if (slot) {
        m_idle.push_back(std::move(slot));
    }
    m_returned.notify_one();
}

}  // namespace Mirqos::Http
