#pragma once

#include <optional>
#include <string>

#include "sdk/core/http/BodyLedger.h"
#include "sdk/core/http/HeadReader.h"
#include "sdk/core/http/RequestBody.h"
#include "sdk/core/http/Transport.h"
#include "sdk/core/http/win32/AsyncRequest.h"

namespace Mirqos::Http {

/// One attempt at an exchange on a session.
class WinHttpExchange {
public:
    WinHttpExchange(HINTERNET session, const TransportOptions& options, const Request& request,
                    const Limits& limits, RequestBody& body, Receiver& receiver);

    Result Run();
    /// After a failed Run: the server had closed the idle connection that was taken.
    bool WasStale() const;

private:
    using Outcome = AsyncRequest::Outcome;

    /// Makes the request handle. These tell the error, if one fails.
    DWORD Open();
    DWORD SetOptions(HINTERNET request) const;
    DWORD AddHeaders(HINTERNET request) const;
    /// Success: the request is out, or the connection broke and an answer may be there already.
    Result SendAll();
    Result ReceiveHead();
    Result ReceiveBody();
    std::string RawHead() const;
    Result Fail(Failure failure) const;
    Result FailConnect(Outcome outcome) const;
    Result Late(const char* doing) const;

    HINTERNET m_session;
    const TransportOptions& m_options;
    const Request& m_request;
    const Limits& m_limits;
    RequestBody& m_body;
    Receiver& m_receiver;

    InternetHandle m_connection;
    std::optional<AsyncRequest> m_async;
    HeadReader m_head;
    std::optional<Result> m_sendFailure;
    bool m_broke = false;  ///< the last failure was the connection's end
};

}  // namespace Mirqos::Http
