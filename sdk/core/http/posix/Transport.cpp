#include "sdk/core/http/Transport.h"

#include <curl/curl.h>

#include <mutex>

#include "sdk/core/http/RequestBody.h"
#include "sdk/core/http/posix/EasyExchange.h"
#include "sdk/core/http/posix/EasyPool.h"
#include "sdk/core/http/posix/SigpipeGuard.h"

namespace Mirqos::Http {
namespace {

/// libcurl's start must happen once and before any other call of it. It is never undone: the host
/// may use libcurl itself.
void StartLibcurl() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

class CurlTransport final : public Transport {
public:
    explicit CurlTransport(const TransportOptions& options) : m_pool(options) {}

    Result Exchange(const Request& request, const Limits& limits, Receiver& receiver) override {
        if (std::string problem = RequestProblem(request); !problem.empty()) {
            return {Failure::send, std::move(problem)};
        }
        const SigpipeGuard guard;
        const EasyPool::Lease slot = m_pool.Take(Server(request));
        RequestBody body(request);
        bool replaced = false;
        for (;;) {
            EasyExchange attempt(*slot, request, limits, body, receiver);
            Result result = attempt.Run(replaced);
            if (replaced || !attempt.WasStale() || !body.Rewind()) {
                return result;
            }
            replaced = true;
        }
    }

private:
    static std::string Server(const Request& request) {
        return (request.https ? "https://" : "http://") + request.host + ':' +
               std::to_string(request.port) + '>' + request.connectHost + ':' +
               std::to_string(request.connectPort);
    }

    EasyPool m_pool;
};

}  // namespace

std::shared_ptr<Transport> MakeTransport(const TransportOptions& options) {
    StartLibcurl();
    return std::make_shared<CurlTransport>(options);
}

}  // namespace Mirqos::Http
