#include "sdk/core/http/posix/EasyExchange.h"

#include <openssl/x509_vfy.h>

#include <algorithm>
#include <new>
#include <utility>

#include "sdk/core/http/CertificateTrouble.h"

namespace Mirqos::Http {
namespace {

CertificateTrouble TroubleOf(CURLcode code, long verifyResult) {
    switch (verifyResult) {
        case X509_V_OK:
        case X509_V_ERR_UNSPECIFIED:
            // libcurl compares the host name itself, after the chain was found good and before it
            // stores that; until then the result stands at unspecified
            return code == CURLE_PEER_FAILED_VERIFICATION ? CertificateTrouble::wrongHost
                                                          : CertificateTrouble::unknown;
        case X509_V_ERR_CERT_HAS_EXPIRED:
            return CertificateTrouble::expired;
        case X509_V_ERR_CERT_NOT_YET_VALID:
            return CertificateTrouble::notYetValid;
        case X509_V_ERR_HOSTNAME_MISMATCH:
        case X509_V_ERR_IP_ADDRESS_MISMATCH:
            return CertificateTrouble::wrongHost;
        case X509_V_ERR_CERT_REVOKED:
            return CertificateTrouble::revoked;
        case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
        case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
        case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
        case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
        case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
        case X509_V_ERR_CERT_UNTRUSTED:
            return CertificateTrouble::untrusted;
        default:
            return CertificateTrouble::unknown;
    }
}

/// The kind of a failure before the request went out.
Failure ConnectFailure(CURLcode code) {
    switch (code) {
        case CURLE_COULDNT_RESOLVE_HOST:
            return Failure::resolve;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_CRL_BADFILE:
        case CURLE_SSL_ISSUER_ERROR:
        case CURLE_SSL_INVALIDCERTSTATUS:
        case CURLE_SSL_ENGINE_INITFAILED:
        case CURLE_USE_SSL_FAILED:
            return Failure::tls;
        default:
            return Failure::connect;
    }
}

std::string InUrl(const std::string& host) {
    return host.find(':') == std::string::npos ? host : '[' + host + ']';
}

}  // namespace

EasyExchange::EasyExchange(EasySlot& slot, const Request& request, const Limits& limits,
                           RequestBody& body, Receiver& receiver)
    : m_slot(slot), m_request(request), m_limits(limits), m_body(body), m_receiver(receiver) {
}

EasyExchange::~EasyExchange() {
    m_slot.keepUnread = false;
    // an unfinished transfer closes its connection here
    curl_multi_remove_handle(m_slot.multi, m_slot.easy);
    curl_easy_setopt(m_slot.easy, CURLOPT_HTTPHEADER, nullptr);
    curl_easy_setopt(m_slot.easy, CURLOPT_CONNECT_TO, nullptr);
    curl_easy_setopt(m_slot.easy, CURLOPT_ERRORBUFFER, nullptr);
}

/// libcurl is C: nothing may be thrown through it.
template <typename Callback>
auto EasyExchange::Guarded(decltype(std::declval<Callback>()()) failed, Callback callback) {
    try {
        return callback();
    } catch (...) {
        m_thrown = std::current_exception();
        m_stop = Stop::threw;
        return failed;
    }
}

void EasyExchange::AddHeader(const std::string& line) {
    curl_slist* const longer = curl_slist_append(m_headers.get(), line.c_str());
    if (longer == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(m_headers.release());
    m_headers.reset(longer);
}

void EasyExchange::SetMethod() {
    CURL* const easy = m_slot.easy;
    curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);  // undoes what the exchange before asked for
    if (AnnouncesLength(m_request)) {
        curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(m_body.Length()));
    } else if (m_request.method == "HEAD") {
        curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
    }
    curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, m_request.method.c_str());
}

void EasyExchange::SetOptions(bool fresh) {
    CURL* const easy = m_slot.easy;
    const std::string url = std::string(m_request.https ? "https" : "http") + "://" +
                            InUrl(m_request.host) + ':' + std::to_string(m_request.port) + '/';
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    // the target goes out as it stands: a path in the URL would lose what follows a '#'
    curl_easy_setopt(easy, CURLOPT_REQUEST_TARGET, m_request.target.c_str());
    curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, fresh ? 1L : 0L);
    curl_easy_setopt(
        easy, CURLOPT_CONNECTTIMEOUT_MS,
        static_cast<long>(std::max<std::chrono::milliseconds::rep>(m_limits.connect.count(), 1)));
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, m_words);

    for (const auto& [name, value] : m_request.headers) {
        std::string line = name;
        line.reserve(name.size() + 2 + value.size());
        // a semicolon is libcurl's way to say empty
        AddHeader(value.empty() ? line.append(";") : line.append(": ").append(value));
    }
    for (const char* const added : {"Accept", "Expect"}) {
        if (FindHeader(m_request.headers, added) == nullptr) {
            AddHeader(std::string(added) + ':');  // keeps libcurl from adding it
        }
    }
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, m_headers.get());
    if (!m_request.connectHost.empty()) {
        const std::string to =
            "::" + InUrl(m_request.connectHost) + ':' + std::to_string(m_request.connectPort);
        m_connectTo.reset(curl_slist_append(nullptr, to.c_str()));
        curl_easy_setopt(easy, CURLOPT_CONNECT_TO, m_connectTo.get());
    }
    SetMethod();

    curl_easy_setopt(easy, CURLOPT_PREREQDATA, this);
    curl_easy_setopt(
        easy, CURLOPT_PREREQFUNCTION, +[](void* self, char*, char*, int, int) -> int {
            auto* const me = static_cast<EasyExchange*>(self);
            me->m_connected = true;
            me->m_slot.keepUnread = !me->m_request.https;
            me->m_slot.unread.clear();
            me->m_lastMove = Clock::now();
            return CURL_PREREQFUNC_OK;
        });
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(
        easy, CURLOPT_HEADERFUNCTION,
        +[](char* data, std::size_t, std::size_t size, void* self) -> std::size_t {
            return static_cast<EasyExchange*>(self)->OnHeader({data, size});
        });
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(
        easy, CURLOPT_WRITEFUNCTION,
        +[](char* data, std::size_t, std::size_t size, void* self) -> std::size_t {
            return static_cast<EasyExchange*>(self)->OnData(data, size);
        });
    curl_easy_setopt(easy, CURLOPT_READDATA, this);
    curl_easy_setopt(
        easy, CURLOPT_READFUNCTION,
        +[](char* data, std::size_t unit, std::size_t count, void* self) -> std::size_t {
            return static_cast<EasyExchange*>(self)->OnSend(data, unit * count);
        });
    curl_easy_setopt(easy, CURLOPT_SEEKDATA, this);
    curl_easy_setopt(
        easy, CURLOPT_SEEKFUNCTION, +[](void* self, curl_off_t offset, int) -> int {
            auto* const me = static_cast<EasyExchange*>(self);
            return me->Guarded(int{CURL_SEEKFUNC_FAIL}, [&]() -> int {
                return me->m_body.Rewind(static_cast<std::uint64_t>(offset)) ? CURL_SEEKFUNC_OK
                                                                             : CURL_SEEKFUNC_FAIL;
            });
        });
}

std::size_t EasyExchange::OnHeader(std::string_view line) {
    if (m_head.GetState() == HeadReader::State::complete) {
        return line.size();  // a trailer, of no interest
    }
    return Guarded(std::size_t{0}, [&]() -> std::size_t {
        switch (m_head.AddLine(line)) {
            case HeadReader::State::reading:
                return line.size();
            case HeadReader::State::refused:
                m_stop = Stop::refusedHead;
                return 0;
            case HeadReader::State::complete:
                break;
        }
        m_ledger.emplace(m_request.method, m_head.Head());
        if (m_receiver.OnHead(m_head.Head()) == Receiver::Want::enough) {
            m_stop = Stop::enough;
            return 0;
        }
        return line.size();
    });
}

std::size_t EasyExchange::OnData(const char* data, std::size_t size) {
    // anything but `size` ends the transfer; a function pointer has to be told 0 apart from it
    const std::size_t failed = size == 0 ? 1 : 0;
    return Guarded(failed, [&] {
        m_ledger->Add(size);
        if (m_receiver.OnBody(data, size) == Receiver::Want::enough) {
            m_stop = Stop::enough;
            return failed;
        }
        return size;
    });
}

std::size_t EasyExchange::OnSend(char* buffer, std::size_t size) {
    return Guarded(std::size_t{CURL_READFUNC_ABORT}, [&]() -> std::size_t {
        const std::size_t got = m_body.Read(buffer, size);
        if (got == 0 && m_body.Left() != 0) {
            m_stop = Stop::bodyShort;
            return CURL_READFUNC_ABORT;
        }
        return got;
    });
}

bool EasyExchange::WithinStall() {
    curl_off_t sent = 0;
    curl_easy_getinfo(m_slot.easy, CURLINFO_SIZE_UPLOAD_T, &sent);
    // lines of an unfinished head do not count: a head has to be whole within the limit
    const std::uint64_t received = m_ledger ? 1 + m_ledger->Arrived() : 0;
    const Clock::time_point now = Clock::now();
    if (sent != m_sent || received != m_received) {
        m_sent = sent;
        m_received = received;
        m_lastMove = now;
    }
    return now - m_lastMove < m_limits.stall;
}

void EasyExchange::Drive() {
    // libcurl keeps the limit of the connection itself; the timeout below is for the stall limit
    const CURLMcode added = curl_multi_add_handle(m_slot.multi, m_slot.easy);
    if (added != CURLM_OK) {
        m_code = CURLE_FAILED_INIT;
        return;
    }
    for (int running = 1;;) {
        if (curl_multi_perform(m_slot.multi, &running) != CURLM_OK) {
            m_code = CURLE_FAILED_INIT;
            return;
        }
        if (running == 0) {
            int left = 0;
            if (const CURLMsg* done = curl_multi_info_read(m_slot.multi, &left)) {
                m_code = done->data.result;
            }
            return;
        }
        int wait = 1000;
        if (m_connected) {
            if (!WithinStall()) {
                m_timedOut = true;
                return;
            }
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                m_lastMove + m_limits.stall - Clock::now());
            wait = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, wait));
        }
        curl_multi_poll(m_slot.multi, nullptr, 0, wait, nullptr);
    }
}

Result EasyExchange::Run(bool fresh) {
    SetOptions(fresh);
    m_lastMove = Clock::now();
    Drive();
    if (m_thrown) {
        std::rethrow_exception(m_thrown);
    }
    long made = 0;
    curl_easy_getinfo(m_slot.easy, CURLINFO_NUM_CONNECTS, &made);
    m_reused = m_connected && made == 0;
    curl_easy_getinfo(m_slot.easy, CURLINFO_SIZE_UPLOAD_T, &m_sent);
    Result result = Conclude();
    if (result.failure == Failure::none && m_head.Head().IsSuccess() &&
        static_cast<std::uint64_t>(m_sent) < m_body.Length()) {
        // a refusal can come early, but nobody can have taken what was not sent
        return {Failure::send, "the answer reports a success too early, " + Sent()};
    }
    return result;
}

bool EasyExchange::WasStale() const {
    return m_reused && !m_timedOut && m_stop == Stop::none && !m_head.HasBegun() &&
           (m_code == CURLE_SEND_ERROR || m_code == CURLE_RECV_ERROR ||
            m_code == CURLE_GOT_NOTHING);
}

std::string EasyExchange::Words(CURLcode code) const {
    const std::string words = m_words[0] != '\0' ? m_words : curl_easy_strerror(code);
    return words + " (libcurl error " + std::to_string(static_cast<int>(code)) + ')';
}

std::string EasyExchange::Sent() const {
    return std::to_string(m_sent) + " of " + std::to_string(m_body.Length()) + " body bytes sent";
}

Result EasyExchange::Conclude() {
    if (m_timedOut) {
        const char* const doing = m_ledger             ? "while receiving the answer's body"
                                  : m_body.Left() != 0 ? "while sending"
                                                       : "while waiting for the answer's head";
        return {Failure::timeout, "nothing moved for " + std::to_string(m_limits.stall.count()) +
                                      " ms " + doing + ", " + Sent()};
    }
    switch (m_stop) {
        case Stop::enough:
            return {};
        case Stop::refusedHead:
            return {Failure::receive, m_head.Error()};
        case Stop::bodyShort:
            return {Failure::send, "the request's body ended early, " + Sent()};
        case Stop::none:
        case Stop::threw:
            break;
    }
    return Judge(m_code);
}

Result EasyExchange::Judge(CURLcode code) {
    if (m_ledger) {
        // libcurl has seen the end of the body when it reports a success
        if (m_ledger->IsComplete(code == CURLE_OK) &&
            (code == CURLE_OK || m_ledger->GetFraming() != BodyLedger::Framing::untilClose)) {
            return {};
        }
        return {Failure::truncated,
                m_ledger->Shortfall() + (code == CURLE_OK ? "" : ": " + Words(code))};
    }
    if (!m_connected) {
        const Failure failure = ConnectFailure(code);
        if (failure != Failure::tls) {
            return {failure, Words(code)};
        }
        long verified = X509_V_OK;
        curl_easy_getinfo(m_slot.easy, CURLINFO_SSL_VERIFYRESULT, &verified);
        const std::string trouble = Describe(TroubleOf(code, verified), m_request.host);
        return {failure, trouble.empty() ? Words(code) : trouble + ": " + Words(code)};
    }
    if (code == CURLE_SEND_ERROR && !m_head.HasBegun() && DeliverUnread()) {
        return {};
    }
    if (code == CURLE_SEND_ERROR || code == CURLE_SEND_FAIL_REWIND) {
        return {Failure::send, Words(code)};
    }
    return {Failure::receive,
            code == CURLE_OK ? "the connection ended before the answer's head" : Words(code)};
}

bool EasyExchange::DeliverUnread() {
    std::string_view bytes = m_slot.unread;
    HeadReader reader;
    while (reader.GetState() == HeadReader::State::reading) {
        const std::size_t end = bytes.find("\r\n\r\n");
        if (end == std::string_view::npos) {
            return false;
        }
        reader.AddHead(bytes.substr(0, end + 4));
        bytes.remove_prefix(end + 4);
    }
    if (reader.GetState() == HeadReader::State::refused) {
        return false;
    }
    // the connection broke, so its end says nothing: only a length does
    BodyLedger ledger(m_request.method, reader.Head());
    ledger.Add(bytes.size());
    if (ledger.GetFraming() == BodyLedger::Framing::untilClose || !ledger.IsComplete(false)) {
        return false;
    }
    m_head = std::move(reader);
    if (m_receiver.OnHead(m_head.Head()) == Receiver::Want::more && !bytes.empty()) {
        m_receiver.OnBody(bytes.data(), bytes.size());
    }
    return true;
}

}  // namespace Mirqos::Http
