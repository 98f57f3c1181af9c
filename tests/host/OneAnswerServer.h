#pragma once

#include <boost/asio.hpp>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// An HTTP server that answers every request alike, without more with 403, which no client tries
/// again, and keeps the request lines. One connection at a time, on 127.0.0.1. Once it is destroyed
/// its port refuses connections.
class OneAnswerServer {
public:
    explicit OneAnswerServer(unsigned status = 403, std::string body = {});
    ~OneAnswerServer();
    OneAnswerServer(const OneAnswerServer&) = delete;
    OneAnswerServer& operator=(const OneAnswerServer&) = delete;

    std::uint16_t Port() const { return m_port; }
    /// "METHOD target" of each request since the last call.
    std::vector<std::string> TakeRequests();

private:
    void Serve();
    void Answer(boost::asio::ip::tcp::socket& connection);

    const unsigned m_status;
    const std::string m_body;
    boost::asio::io_context m_context;
    boost::asio::ip::tcp::acceptor m_acceptor;
    std::uint16_t m_port;
    std::mutex m_mutex;
    bool m_stopping = false;              // guarded by m_mutex
    std::vector<std::string> m_requests;  // guarded by m_mutex
    std::thread m_thread;
};
