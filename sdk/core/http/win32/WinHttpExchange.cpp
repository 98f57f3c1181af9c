#include "sdk/core/http/win32/WinHttpExchange.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "sdk/core/http/win32/SecureFailure.h"
#include "sdk/core/http/win32/WideText.h"

namespace Mirqos::Http {
namespace {

DWORD SetNumber(HINTERNET handle, DWORD option, DWORD value) {
    return ErrorOf(WinHttpSetOption(handle, option, &value, sizeof(value)));
}

/// WinHTTP's own limits stay behind ours, so that ours decide; they end what was given up.
int Behind(std::chrono::milliseconds limit) {
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min<std::int64_t>(limit.count() + 1000, most));
}

bool IsTimeout(DWORD error) {
    return error == ERROR_WINHTTP_TIMEOUT || error == WSAETIMEDOUT;
}

}  // namespace

WinHttpExchange::WinHttpExchange(HINTERNET session, const TransportOptions& options,
                                 const Request& request, const Limits& limits, RequestBody& body,
                                 Receiver& receiver)
    : m_session(session),
      m_options(options),
      m_request(request),
      m_limits(limits),
      m_body(body),
      m_receiver(receiver) {
}

DWORD WinHttpExchange::Open() {
    const bool elsewhere = !m_request.connectHost.empty();
    const std::wstring host = Widen(elsewhere ? m_request.connectHost : m_request.host);
    m_connection.reset(WinHttpConnect(m_session, host.c_str(),
                                      elsewhere ? m_request.connectPort : m_request.port, 0));
    if (const DWORD error = ErrorOf(m_connection != nullptr); error != ERROR_SUCCESS) {
        return error;
    }
    // the target goes out as it stands
    const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | WINHTTP_FLAG_ESCAPE_DISABLE_QUERY |
                        (m_request.https ? WINHTTP_FLAG_SECURE : 0);
    const std::wstring method = Widen(m_request.method);
    const std::wstring target = Widen(m_request.target);
    InternetHandle request(WinHttpOpenRequest(m_connection.get(), method.c_str(), target.c_str(),
                                              L"HTTP/1.1", WINHTTP_NO_REFERER,
                                              WINHTTP_DEFAULT_ACCEPT_TYPES, flags));
    DWORD error = ErrorOf(request != nullptr);
    if (error == ERROR_SUCCESS) {
        error = SetOptions(request.get());
    }
    if (error == ERROR_SUCCESS) {
        error = AddHeaders(request.get());
    }
    if (error != ERROR_SUCCESS) {
        return error;
    }
    m_async.emplace(std::move(request));
    return m_async->Error();
}

DWORD WinHttpExchange::SetOptions(HINTERNET request) const {
    const int connect = Behind(m_limits.connect);
    const int stall = Behind(m_limits.stall);
    DWORD error = ErrorOf(WinHttpSetTimeouts(request, connect, connect, stall, stall));
    if (error == ERROR_SUCCESS) {
        error = SetNumber(
            request, WINHTTP_OPTION_DISABLE_FEATURE,
            WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_REDIRECTS | WINHTTP_DISABLE_AUTHENTICATION);
    }
    // systems without these options have no such bound; the answer is checked again later
    SetNumber(request, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, static_cast<DWORD>(stall));
    SetNumber(request, WINHTTP_OPTION_MAX_RESPONSE_HEADER_SIZE, kMaxHeadBytes);
    if (m_request.https) {
        WinHttpSetOption(request, WINHTTP_OPTION_CLIENT_CERT_CONTEXT,
                         WINHTTP_NO_CLIENT_CERT_CONTEXT, 0);
        if (!m_options.verifyCertificates && error == ERROR_SUCCESS) {
            error = SetNumber(
                request, WINHTTP_OPTION_SECURITY_FLAGS,
                SECURITY_FLAG_IGNORE_UNKNOWN_CA | SECURITY_FLAG_IGNORE_CERT_DATE_INVALID |
                    SECURITY_FLAG_IGNORE_CERT_CN_INVALID | SECURITY_FLAG_IGNORE_CERT_WRONG_USAGE);
        }
    }
    return error;
}

DWORD WinHttpExchange::AddHeaders(HINTERNET request) const {
    const auto add = [request](const std::string& name, const std::string& value) {
        const std::wstring line = Widen(name + ": " + value + "\r\n");
        return ErrorOf(WinHttpAddRequestHeaders(
            request, line.c_str(), static_cast<DWORD>(line.size()), WINHTTP_ADDREQ_FLAG_ADD));
    };
    for (const auto& [name, value] : m_request.headers) {
        if (const DWORD error = add(name, value); error != ERROR_SUCCESS) {
            return error;
        }
    }
    // as a header of our own, because WinHTTP's parameter ends at 4 GiB
    return AnnouncesLength(m_request) ? add("Content-Length", std::to_string(m_body.Length()))
                                      : ERROR_SUCCESS;
}

Result WinHttpExchange::Fail(Failure failure) const {
    return {failure, ErrorWords(m_async->Error())};
}

Result WinHttpExchange::Late(const char* doing) const {
    return {Failure::timeout, "nothing moved for " + std::to_string(m_limits.stall.count()) +
                                  " ms " + doing + ", " + std::to_string(m_body.Taken()) + " of " +
                                  std::to_string(m_body.Length()) + " body bytes sent"};
}

Result WinHttpExchange::FailConnect(Outcome outcome) const {
    if (outcome == Outcome::late) {
        return {Failure::connect,
                "not connected within " + std::to_string(m_limits.connect.count()) + " ms"};
    }
    const DWORD error = m_async->Error();
    const DWORD flags = m_async->SecureFlags();
    if (flags != 0 || IsSecureFailure(error)) {
        const std::string trouble = Describe(TroubleOf(flags, error), m_request.host);
        return {Failure::tls,
                (trouble.empty() ? "the handshake with " + m_request.host + " failed" : trouble) +
                    ": " + ErrorWords(error)};
    }
    return Fail(error == ERROR_WINHTTP_NAME_NOT_RESOLVED ? Failure::resolve : Failure::connect);
}

Result WinHttpExchange::SendAll() {
    Outcome outcome = m_async->Send(m_limits.connect, m_limits.stall);
    if (outcome != Outcome::done) {
        if (!m_async->Connected()) {
            return FailConnect(outcome);
        }
        if (outcome == Outcome::late) {
            return Late("while sending");
        }
    }
    while (outcome == Outcome::done && m_body.Left() != 0) {
        const std::size_t got = m_body.Read(m_async->Buffer(), AsyncRequest::kBufferSize);
        if (got == 0) {
            return {Failure::send, "the request's body ended early, " +
                                       std::to_string(m_body.Taken()) + " of " +
                                       std::to_string(m_body.Length()) + " body bytes sent"};
        }
        outcome = m_async->Write(got, m_limits.stall);
        if (outcome == Outcome::late) {
            return Late("while sending");
        }
    }
    if (outcome == Outcome::failed) {
        const DWORD error = m_async->Error();
        m_sendFailure = IsTimeout(error) ? Late("while sending") : Fail(Failure::send);
        m_broke = !IsTimeout(error);
    }
    return {};
}

std::string WinHttpExchange::RawHead() const {
    DWORD bytes = 0;
    WinHttpQueryHeaders(m_async->Handle(), WINHTTP_QUERY_RAW_HEADERS_CRLF,
                        WINHTTP_HEADER_NAME_BY_INDEX, WINHTTP_NO_OUTPUT_BUFFER, &bytes,
                        WINHTTP_NO_HEADER_INDEX);
    std::wstring wide(bytes / sizeof(wchar_t), L'\0');
    if (wide.empty() || !WinHttpQueryHeaders(m_async->Handle(), WINHTTP_QUERY_RAW_HEADERS_CRLF,
                                             WINHTTP_HEADER_NAME_BY_INDEX, wide.data(), &bytes,
                                             WINHTTP_NO_HEADER_INDEX)) {
        return {};
    }
    wide.resize(bytes / sizeof(wchar_t));
    return Narrow(wide);
}

Result WinHttpExchange::ReceiveHead() {
    const Outcome outcome = m_async->Receive(AsyncRequest::Clock::now() + m_limits.stall);
    if (outcome == Outcome::late || (outcome == Outcome::failed && IsTimeout(m_async->Error()))) {
        return Late("while waiting for the answer's head");
    }
    if (outcome == Outcome::failed) {
        m_broke = true;
        return Fail(Failure::receive);
    }
    switch (m_head.AddHead(RawHead())) {
        case HeadReader::State::complete:
            return {};
        case HeadReader::State::refused:
            return {Failure::receive, m_head.Error()};
        case HeadReader::State::reading:
            break;
    }
    // Windows skips interim heads; Wine passes them up and cannot be asked for the next one. They
    // come unasked only, as no request expects a "100 Continue".
    return {Failure::receive, "the answer begins with an interim head"};
}

Result WinHttpExchange::ReceiveBody() {
    BodyLedger ledger(m_request.method, m_head.Head());
    for (;;) {
        std::size_t size = 0;
        const Outcome outcome = m_async->Read(size, m_limits.stall);
        if (outcome == Outcome::late ||
            (outcome == Outcome::failed && IsTimeout(m_async->Error()))) {
            return Late("while receiving the answer's body");
        }
        if (outcome == Outcome::failed) {
            if (ledger.GetFraming() != BodyLedger::Framing::untilClose &&
                ledger.IsComplete(false)) {
                return {};
            }
            return {Failure::truncated, ledger.Shortfall() + ": " + ErrorWords(m_async->Error())};
        }
        if (size == 0) {
            break;
        }
        ledger.Add(size);
        if (m_receiver.OnBody(m_async->Buffer(), size) == Receiver::Want::enough) {
            return {};
        }
    }
    // Not every system fails the read when the connection closes inside a chunked body, but the
    // close itself can be seen: nobody reads on after a last chunk. What cannot be seen there is
    // a close right after the head, before any chunk: it passes as an empty body.
    if (!ledger.IsComplete(!m_async->SawClose())) {
        return {Failure::truncated, ledger.Shortfall()};
    }
    return {};
}

Result WinHttpExchange::Run() {
    if (const DWORD error = Open(); error != ERROR_SUCCESS) {
        return {Failure::connect, "the request could not be set up: " + ErrorWords(error)};
    }
    Result result = SendAll();
    if (result.failure != Failure::none) {
        return result;
    }
    result = ReceiveHead();
    // a refusal can come early, but nobody can have taken what was not sent
    if (m_sendFailure && (result.failure != Failure::none || m_head.Head().IsSuccess())) {
        return *m_sendFailure;
    }
    if (result.failure != Failure::none) {
        return result;
    }
    if (m_receiver.OnHead(m_head.Head()) == Receiver::Want::enough) {
        return {};
    }
    return ReceiveBody();
}

bool WinHttpExchange::WasStale() const {
    return m_broke && m_async && !m_async->MadeConnection() && !m_async->HasReceived();
}

}  // namespace Mirqos::Http
