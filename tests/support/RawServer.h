#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace Mirqos::Test {

/// A TCP server on a free loopback port that speaks no protocol by itself: a script for each
/// connection reads and writes bytes as it likes, also such as no sane server would. For exact
/// control where a whole HTTP server is in the way.
class RawServer {
    struct Core;

public:
    /// One accepted connection; lives as long as its script runs.
    class Connection {
    public:
        /// Bytes up to and with the next empty line. Later bytes are kept for the next read.
        /// Throws boost::system::system_error when the connection ends first, as all members do.
        std::string ReadHead();
        /// Exactly `size` bytes.
        std::string Read(std::size_t size);
        /// Reads and drops `size` bytes.
        void Skip(std::uint64_t size);
        void Send(const std::string& bytes);
        /// Closes in order: what was sent arrives first.
        void Close();
        /// Ends the connection with a reset.
        void Reset();
        /// Returns when the client has closed, or the server is about to go.
        void AwaitClose();

    private:
        friend class RawServer;
        struct Socket;
        explicit Connection(std::shared_ptr<Socket> socket);
        std::size_t ReadSome(char* to, std::size_t size);

        std::shared_ptr<Socket> m_socket;
        std::string m_surplus;
    };

    /// Runs on a thread that is its own meanwhile; `number` counts connections from 0. What
    /// it throws about its socket ends the connection. When it returns the connection is closed.
    using Script = std::function<void(Connection& connection, int number)>;

    explicit RawServer(Script script);
    /// Closes every connection and waits for the scripts. A script that waits for something else
    /// than its connection has to be let go before.
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    std::uint16_t Port() const;
    /// How many connections were accepted so far.
    int Accepts() const;

private:
    std::unique_ptr<Core> m_core;
};

}  // namespace Mirqos::Test
