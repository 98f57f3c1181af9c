// The bytes that a server sends, read by the real transport over a real connection: what it takes
// for an answer, and where it sees the end of one.
//
// An input's first byte chooses the method; the others are what the server sends, after which it
// closes.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <mutex>
#include <string>
#include <utility>

#include "sdk/core/http/Transport.h"
#include "tests/fuzz/Require.h"
#include "tests/support/HttpExchange.h"
#include "tests/support/RawServer.h"

namespace {

using Mirqos::Test::KeptAnswer;
using Mirqos::Test::RawServer;
using Mirqos::Test::Require;
namespace Http = Mirqos::Http;

constexpr const char* kMethods[] = {"GET", "HEAD", "DELETE"};

/// Answers every request with the bytes that it was last told.
class FuzzedServer {
public:
    void Set(std::string bytes) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_bytes = std::move(bytes);
    }
    std::uint16_t Port() const { return m_server.Port(); }

private:
    std::string Bytes() {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_bytes;
    }

    std::mutex m_mutex;
    std::string m_bytes;
    RawServer m_server{[this](RawServer::Connection& connection, int) {
        connection.ReadHead();
        connection.Send(Bytes());
    }};
};

bool IsOneLine(const std::string& text) {
    return text.find_first_of(std::string("\r\n\0", 3)) == std::string::npos;
}

void CheckHead(const Http::ResponseHead& head) {
    Require(head.status >= 200 && head.status <= 999, "an interim answer is none");
    std::size_t bytes = 0;
    for (const auto& [name, value] : head.headers) {
        Require(!name.empty() && IsOneLine(name) && IsOneLine(value), "a header is one line");
        bytes += name.size() + value.size();
    }
    Require(bytes <= Http::kMaxHeadBytes, "a head is bounded");
}

void CheckBody(const KeptAnswer& kept, const std::string& method, std::size_t sent) {
    Require(kept.body.size() <= sent, "no byte of a body is made up");
    if (method == "HEAD" || kept.head.status == 204 || kept.head.status == 304) {
        Require(kept.body.empty(), "what has no body by rule has none");
        return;
    }
    const std::string* const length = Http::FindHeader(kept.head.headers, "Content-Length");
    if (length != nullptr && Http::FindHeader(kept.head.headers, "Transfer-Encoding") == nullptr) {
        Require(kept.body.size() == std::stoull(*length), "a body is as long as it was said to be");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzedServer server;
    if (size == 0) {
        return 0;
    }
    const std::string method = kMethods[data[0] % std::size(kMethods)];
    server.Set({data + 1, data + size});
    KeptAnswer kept;
    const Http::Result result = Http::MakeTransport({})->Exchange(
        Mirqos::Test::LoopbackRequest(server.Port(), method, "/bucket/key"),
        {std::chrono::seconds(60), std::chrono::seconds(60)}, kept);
    Require(kept.heads <= 1, "an answer has one head");
    Require(kept.heads == 1 || kept.body.empty(), "a body has a head");
    if (kept.heads == 1) {
        CheckHead(kept.head);
    }
    if (result.failure == Http::Failure::none) {
        Require(kept.heads == 1, "an answer has a head");
        CheckBody(kept, method, size - 1);
    } else {
        Require(!result.message.empty() && IsOneLine(result.message), "a failure is one line");
    }
    return 0;
}
