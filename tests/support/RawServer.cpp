#include "tests/support/RawServer.h"

#include <algorithm>
#include <atomic>
#include <boost/asio.hpp>
#include <boost/asio/use_future.hpp>
#include <future>
#include <list>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace Mirqos::Test {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;

// Small, so that a client that sends to a server that does not read is soon stopped.
constexpr int kReceiveBuffer = 64 * 1024;

/// Runs `work` on the context's thread; what it returns or throws comes back.
template <typename Work>
auto RunOn(asio::io_context& context, Work work) {
    // shared, because the thread may still be inside the task when its result is here
    const auto task = std::make_shared<std::packaged_task<decltype(work())()>>(std::move(work));
    auto result = task->get_future();
    asio::post(context, [task] { (*task)(); });
    return result.get();
}

}  // namespace

/// Scripts block in asynchronous operations, because on every platform only those can be ended
/// from another thread, by closing the socket on the context's own thread.
struct RawServer::Connection::Socket {
    Socket(asio::io_context& context, tcp::socket&& accepted)
        : context(context), socket(std::move(accepted)) {}

    template <typename Work>
    auto OnContext(Work work) {
        return RunOn(context, [&] { return work(socket); });
    }

    asio::io_context& context;
    tcp::socket socket;
};

RawServer::Connection::Connection(std::shared_ptr<Socket> socket) : m_socket(std::move(socket)) {
}

std::size_t RawServer::Connection::ReadSome(char* to, std::size_t size) {
    if (!m_surplus.empty()) {
        const std::size_t taken = m_surplus.copy(to, size);
        m_surplus.erase(0, taken);
        return taken;
    }
    return m_socket
        ->OnContext([&](tcp::socket& socket) {
            return socket.async_read_some(asio::buffer(to, size), asio::use_future);
        })
        .get();
}

std::string RawServer::Connection::ReadHead() {
    std::string bytes;
    for (;;) {
        const std::size_t end = bytes.find("\r\n\r\n");
        if (end != std::string::npos) {
            m_surplus.insert(0, bytes.substr(end + 4));
            bytes.resize(end + 4);
            return bytes;
        }
        char some[16 * 1024];
        bytes.append(some, ReadSome(some, sizeof(some)));
    }
}

std::string RawServer::Connection::Read(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t got = 0; got < size;) {
        got += ReadSome(&bytes[got], size - got);
    }
    return bytes;
}

void RawServer::Connection::Skip(std::uint64_t size) {
    std::vector<char> room(256 * 1024);
    while (size != 0) {
        const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(size, room.size()));
        size -= ReadSome(room.data(), most);
    }
}

void RawServer::Connection::Send(const std::string& bytes) {
    m_socket
        ->OnContext([&](tcp::socket& socket) {
            return asio::async_write(socket, asio::buffer(bytes), asio::use_future);
        })
        .get();
}

void RawServer::Connection::Close() {
    m_socket->OnContext([](tcp::socket& socket) {
        boost::system::error_code ignored;
        socket.shutdown(tcp::socket::shutdown_both, ignored);
        socket.close(ignored);
    });
}

void RawServer::Connection::Reset() {
    m_socket->OnContext([](tcp::socket& socket) {
        boost::system::error_code ignored;
        socket.set_option(asio::socket_base::linger(true, 0), ignored);
        socket.close(ignored);
    });
}

void RawServer::Connection::AwaitClose() {
    try {
        char some[16 * 1024];
        for (;;) {
            ReadSome(some, sizeof(some));
        }
    } catch (const boost::system::system_error&) {
        // the end, in whatever form
    }
}

struct RawServer::Core {
    explicit Core(Script wanted) : script(std::move(wanted)) {
        acceptor.set_option(asio::socket_base::receive_buffer_size(kReceiveBuffer));
        Accept();
        loop = std::thread([this] { context.run(); });
    }

    ~Core() {
        RunOn(context, [this] {
            closing = true;  // an accept may be through and wait its turn
            acceptor.close();
            for (const Worker& each : workers) {
                if (each.socket != nullptr) {
                    boost::system::error_code ignored;
                    each.socket->socket.close(ignored);
                }
            }
        });
        // from here on nobody adds a script, and those that run keep the loop alive
        work.reset();
        loop.join();
    }

    void Accept() {
        acceptor.async_accept([this](const boost::system::error_code& error, tcp::socket socket) {
            if (error || closing) {
                return;
            }
            Run(accepts++, std::move(socket));
            Accept();
        });
    }

    /// Runs one script at a time. A thread serves many connections in turn: a fuzzer makes more
    /// of them than there are thread numbers, and AddressSanitizer takes a thread whose number an
    /// ended one had for that one, so what only its stack holds for leaked.
    struct Worker {
        std::shared_ptr<Connection::Socket> socket;  ///< none when idle; the loop's thread sets it
        asio::thread_pool thread{1};
    };

    void Run(int number, tcp::socket&& socket) {
        auto worker = std::find_if(workers.begin(), workers.end(),
                                   [](const Worker& each) { return each.socket == nullptr; });
        if (worker == workers.end()) {
            worker = workers.emplace(workers.end());
        }
        worker->socket = std::make_shared<Connection::Socket>(context, std::move(socket));
        asio::post(worker->thread, [this, worker, number, guard = work] {
            Serve(Connection(worker->socket), number);
            asio::post(context, [worker] { worker->socket.reset(); });
        });
    }

    void Serve(Connection connection, int number) const {
        try {
            script(connection, number);
        } catch (const boost::system::system_error&) {
            // the client went, or this server does
        }
        connection.Close();
    }

    const Script script;
    asio::io_context context;
    asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
    tcp::acceptor acceptor{context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
    std::atomic<int> accepts{0};
    bool closing = false;  ///< the loop's thread only, as the one below
    std::list<Worker> workers;
    std::thread loop;
};

RawServer::RawServer(Script script) : m_core(std::make_unique<Core>(std::move(script))) {
}

RawServer::~RawServer() = default;

std::uint16_t RawServer::Port() const {
    return m_core->acceptor.local_endpoint().port();
}

int RawServer::Accepts() const {
    return m_core->accepts;
}

}  // namespace Mirqos::Test
