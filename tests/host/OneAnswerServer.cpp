#include "OneAnswerServer.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <utility>

using boost::asio::ip::tcp;
namespace http = boost::beast::http;

OneAnswerServer::OneAnswerServer(unsigned status, std::string body)
    : m_status(status),
      m_body(std::move(body)),
      m_acceptor(m_context, tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)),
      m_port(m_acceptor.local_endpoint().port()),
      m_thread([this] { Serve(); }) {
}

OneAnswerServer::~OneAnswerServer() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    // A connection without a request wakes the accepting thread.
    tcp::socket wake(m_context);
    boost::system::error_code ignored;
    wake.connect(tcp::endpoint(boost::asio::ip::address_v4::loopback(), m_port), ignored);
    wake.close(ignored);
    m_thread.join();
}

std::vector<std::string> OneAnswerServer::TakeRequests() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_requests, {});
}

void OneAnswerServer::Serve() {
    for (;;) {
        tcp::socket connection(m_context);
        boost::system::error_code error;
        m_acceptor.accept(connection, error);
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_stopping || error) {
                return;
            }
        }
        Answer(connection);
    }
}

void OneAnswerServer::Answer(tcp::socket& connection) {
    boost::beast::flat_buffer buffer;
    http::request<http::string_body> request;
    boost::system::error_code error;
    http::read(connection, buffer, request, error);
    if (error) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_requests.push_back(std::string(request.method_string()) + " " +
                             std::string(request.target()));
    }
    http::response<http::string_body> response(static_cast<http::status>(m_status), 11, m_body);
    response.keep_alive(false);
    response.prepare_payload();
    http::write(connection, response, error);
    connection.shutdown(tcp::socket::shutdown_both, error);
}
