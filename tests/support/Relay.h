#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace Mirqos::Test {

/// Stands between a client and a server on this machine, passes their bytes on both ways, and does
/// harm at a chosen byte. Runs on a thread of its own; any thread may call any member.
class Relay {
public:
    enum class Way { toServer, toClient };
    enum class Harm {
        reset,   ///< the connection that carries the byte is reset at both ends
        stall,   ///< nothing moves on that connection any more
        pause,   ///< what goes this way on that connection waits for two seconds
        refuse,  ///< only to the server: the server sees a reset, the client a 403 without a body
        outage,  ///< for one second, whoever sends or connects to the server is reset
        die      ///< all connections are reset and no further one is taken
    };

    /// `server` is "host:port", the host an address.
    explicit Relay(const std::string& server);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// "127.0.0.1:PORT"
    std::string Endpoint() const;
    /// Plans a harm at byte `at` of all that go this way, counted from 0 over all connections since
    /// the relay began. The bytes before it are passed on, it and what follows it are not (but
    /// after a pause).
    void Plan(Way way, std::uint64_t at, Harm harm);
    /// Planned harms that were done, of all kinds or of one.
    int Done() const;
    int Done(Harm harm) const;

private:
    class Core;
    std::unique_ptr<Core> m_core;
};

}  // namespace Mirqos::Test
