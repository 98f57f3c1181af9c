#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace Mirqos::Test {

/// A TCP client that sends and reads bytes as it is told, for tests of the tests' own servers.
/// Every call blocks; one thread at a time.
class RawClient {
public:
    enum class End {
        open,    ///< no end has been seen
        closed,  ///< the peer closed
        broken   ///< the connection was reset or failed otherwise
    };

    /// Connects to 127.0.0.1; throws std::exception when that fails.
    explicit RawClient(std::uint16_t port);
    ~RawClient();
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    /// False when the connection broke before everything was handed to the system.
    bool Send(const std::string& bytes);
    /// Reads `size` bytes; fewer when the connection ends before.
    std::string Read(std::size_t size);
    /// Reads up to and with the next empty line.
    std::string ReadHead();
    /// Reads until the connection ends.
    std::string ReadToEnd();
    End Ended() const;
    /// Whether the system always reports a reset as End::broken, and never as End::closed.
    static bool TellsResetsApart();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Mirqos::Test
