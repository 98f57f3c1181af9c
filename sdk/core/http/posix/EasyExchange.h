#pragma once

#include <curl/curl.h>

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string>

#include "sdk/core/http/BodyLedger.h"
#include "sdk/core/http/HeadReader.h"
#include "sdk/core/http/RequestBody.h"
#include "sdk/core/http/Transport.h"
#include "sdk/core/http/posix/EasyPool.h"

namespace Mirqos::Http {

/// One attempt at an exchange on one slot.
class EasyExchange {
public:
    EasyExchange(EasySlot& slot, const Request& request, const Limits& limits, RequestBody& body,
                 Receiver& receiver);
    ~EasyExchange();
    EasyExchange(const EasyExchange&) = delete;
    EasyExchange& operator=(const EasyExchange&) = delete;

    /// `fresh` asks for a new connection. What a receiver or a stream throws comes out of here.
    Result Run(bool fresh);
    /// After a failed Run: the server had closed the idle connection that was taken.
    bool WasStale() const;

private:
    using Clock = std::chrono::steady_clock;
    enum class Stop { none, enough, refusedHead, bodyShort, threw };
    struct FreeList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };
    using List = std::unique_ptr<curl_slist, FreeList>;

    /// All options that are not the slot's own.
    void SetOptions(bool fresh);
    void SetMethod();
    void AddHeader(const std::string& line);
    void Drive();
    /// Takes note of what has moved; true while the limit has not passed.
    bool WithinStall();
    Result Conclude();
    Result Judge(CURLcode code);
    /// Delivers a whole answer found unread in a connection that broke while sending.
    bool DeliverUnread();
    std::string Words(CURLcode code) const;
    /// How much of the body was sent, for a log line.
    std::string Sent() const;

    std::size_t OnHeader(std::string_view line);
    std::size_t OnData(const char* data, std::size_t size);
    std::size_t OnSend(char* buffer, std::size_t size);
    template <typename Callback>
    auto Guarded(decltype(std::declval<Callback>()()) failed, Callback callback);

    EasySlot& m_slot;
    const Request& m_request;
    const Limits& m_limits;
    RequestBody& m_body;
    Receiver& m_receiver;

    List m_headers;
    List m_connectTo;
    char m_words[CURL_ERROR_SIZE] = "";
    HeadReader m_head;
    std::optional<BodyLedger> m_ledger;
    Stop m_stop = Stop::none;
    std::exception_ptr m_thrown;
    bool m_connected = false;
    bool m_reused = false;
    bool m_timedOut = false;
    CURLcode m_code = CURLE_OK;
    Clock::time_point m_lastMove;
    curl_off_t m_sent = 0;
    std::uint64_t m_received = 0;
};

}  // namespace Mirqos::Http
