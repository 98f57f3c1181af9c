#include "tests/support/RawClient.h"

#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

namespace Mirqos::Test {
namespace {

namespace asio = boost::asio;
using boost::system::error_code;

}  // namespace

struct RawClient::Impl {
    // Takes the next bytes from the connection; false at its end.
    bool Fill() {
        std::array<char, 16 * 1024> piece{};
        error_code error;
        const std::size_t size = socket.read_some(asio::buffer(piece), error);
        received.append(piece.data(), size);
        if (error) {
            ended = error == asio::error::eof ? End::closed : End::broken;
        }
        return !error;
    }

    std::string Take(std::size_t size) {
        const std::string taken = received.substr(0, size);
        received.erase(0, taken.size());
        return taken;
    }

    asio::io_context context{1};
    asio::ip::tcp::socket socket{context};
    std::string received;
    End ended = End::open;
};

RawClient::RawClient(std::uint16_t port) : m_impl(std::make_unique<Impl>()) {
    m_impl->socket.connect({asio::ip::address_v4::loopback(), port});
    m_impl->socket.set_option(asio::ip::tcp::no_delay(true));
}

RawClient::~RawClient() = default;

bool RawClient::Send(const std::string& bytes) {
    error_code error;
    asio::write(m_impl->socket, asio::buffer(bytes), error);
    return !error;
}

std::string RawClient::Read(std::size_t size) {
    while (m_impl->received.size() < size && m_impl->Fill()) {
    }
    return m_impl->Take(size);
}

std::string RawClient::ReadHead() {
    std::size_t end = std::string::npos;
    while ((end = m_impl->received.find("\r\n\r\n")) == std::string::npos) {
        if (!m_impl->Fill()) {
            return ReadToEnd();
        }
    }
    return m_impl->Take(end + 4);
}

std::string RawClient::ReadToEnd() {
    while (m_impl->ended == End::open && m_impl->Fill()) {
    }
    return m_impl->Take(std::string::npos);
}

RawClient::End RawClient::Ended() const {
    return m_impl->ended;
}

}  // namespace Mirqos::Test
