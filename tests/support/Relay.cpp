#include "tests/support/Relay.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <boost/asio.hpp>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace Mirqos::Test {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

constexpr std::size_t kPiece = 64 * 1024;

tcp::endpoint EndpointOf(const std::string& server) {
    const auto colon = server.rfind(':');
    return {asio::ip::make_address(server.substr(0, colon)),
            static_cast<std::uint16_t>(std::stoi(server.substr(colon + 1)))};
}

void Reset(tcp::socket& socket) {
    error_code ignored;
    socket.set_option(asio::socket_base::linger(true, 0), ignored);
    socket.close(ignored);
}

}  // namespace

/// Everything but the plan happens on the loop's thread.
class Relay::Core {
public:
    explicit Core(const std::string& server) : m_server(EndpointOf(server)) {
        Accept();
        m_loop = std::thread([this] { m_context.run(); });
    }
    ~Core() {
        asio::post(m_context, [this] { Die(); });
        m_work.reset();
        m_loop.join();
    }
    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    std::uint16_t Port() const { return m_port; }
    void Plan(Way way, std::uint64_t at, Harm harm) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ways[way].plan.emplace(at, harm);
    }
    int Done() const { return m_done; }

private:
    struct Pair {
        explicit Pair(asio::io_context& context) : client(context), server(context) {}
        tcp::socket client;
        tcp::socket server;
        bool stalled = false;
        bool oneWayEnded = false;
        std::array<std::array<char, kPiece>, 2> pieces;
    };
    using PairPointer = std::shared_ptr<Pair>;
    struct Traffic {
        std::uint64_t bytes = 0;
        std::multimap<std::uint64_t, Harm> plan;
    };

    void Accept() {
        auto pair = std::make_shared<Pair>(m_context);
        m_acceptor.async_accept(pair->client, [this, pair](const error_code& error) {
            if (error) {
                return;
            }
            m_pairs.push_back(pair);
            pair->server.async_connect(m_server, [this, pair](const error_code& refused) {
                if (refused) {
                    Reset(pair->client);
                    return;
                }
                Pump(pair, Way::toServer);
                Pump(pair, Way::toClient);
            });
            Accept();
        });
    }

    void Pump(const PairPointer& pair, Way way) {
        const bool up = way == Way::toServer;
        tcp::socket& from = up ? pair->client : pair->server;
        auto& piece = pair->pieces[up ? 0 : 1];
        from.async_read_some(asio::buffer(piece),
                             [this, pair, way](const error_code& error, std::size_t size) {
                                 if (error) {
                                     EndOneWay(*pair, way, error);
                                 } else if (!pair->stalled) {
                                     Pass(pair, way, size);
                                 }
                             });
    }

    void Pass(const PairPointer& pair, Way way, std::size_t size) {
        const bool up = way == Way::toServer;
        const auto [passed, harm] = Count(way, size);
        asio::async_write(up ? pair->server : pair->client,
                          asio::buffer(pair->pieces[up ? 0 : 1], passed),
                          [this, pair, way, harm = harm](const error_code& error, std::size_t) {
                              if (harm) {
                                  Do(*harm, *pair);
                              } else if (error) {
                                  EndOneWay(*pair, way, error);
                              } else {
                                  Pump(pair, way);
                              }
                          });
    }

    /// How many of the next `size` bytes are passed on, and what happens then.
    std::pair<std::size_t, std::optional<Harm>> Count(Way way, std::size_t size) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        Traffic& traffic = m_ways[way];
        const auto next = traffic.plan.begin();
        if (next == traffic.plan.end() || next->first >= traffic.bytes + size) {
            traffic.bytes += size;
            return {size, std::nullopt};
        }
        // a harm that was planned behind the traffic happens at once
        const std::uint64_t passed = next->first - std::min(next->first, traffic.bytes);
        const Harm harm = next->second;
        traffic.plan.erase(next);
        traffic.bytes += size;
        return {static_cast<std::size_t>(passed), harm};
    }

    void Do(Harm harm, Pair& pair) {
        if (harm == Harm::reset) {
            Reset(pair.client);
            Reset(pair.server);
        } else if (harm == Harm::stall) {
            pair.stalled = true;
        } else {
            Die();
        }
        ++m_done;
    }

    void Die() {
        error_code ignored;
        m_acceptor.close(ignored);
        for (const PairPointer& pair : m_pairs) {
            Reset(pair->client);
            Reset(pair->server);
        }
    }

    /// An end is passed on as what it is, an orderly one only this way.
    static void EndOneWay(Pair& pair, Way way, const error_code& error) {
        error_code ignored;
        if (error == asio::error::eof && !std::exchange(pair.oneWayEnded, true)) {
            tcp::socket& to = way == Way::toServer ? pair.server : pair.client;
            to.shutdown(tcp::socket::shutdown_send, ignored);
        } else if (error == asio::error::eof) {
            pair.client.close(ignored);
            pair.server.close(ignored);
        } else {
            Reset(pair.client);
            Reset(pair.server);
        }
    }

    const tcp::endpoint m_server;
    asio::io_context m_context;
    std::optional<asio::executor_work_guard<asio::io_context::executor_type>> m_work{
        m_context.get_executor()};
    tcp::acceptor m_acceptor{m_context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
    const std::uint16_t m_port = m_acceptor.local_endpoint().port();
    std::list<PairPointer> m_pairs;
    std::atomic<int> m_done{0};
    std::mutex m_mutex;
    std::map<Way, Traffic> m_ways;  ///< guarded by m_mutex
    std::thread m_loop;
};

Relay::Relay(const std::string& server) : m_core(std::make_unique<Core>(server)) {
}

Relay::~Relay() = default;

std::string Relay::Endpoint() const {
    return "127.0.0.1:" + std::to_string(m_core->Port());
}

void Relay::Plan(Way way, std::uint64_t at, Harm harm) {
    m_core->Plan(way, at, harm);
}

int Relay::Done() const {
    return m_core->Done();
}

}  // namespace Mirqos::Test
