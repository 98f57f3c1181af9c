#include "tests/support/Relay.h"

#include <algorithm>
#include <array>
#include <boost/asio.hpp>
#include <chrono>
#include <map>
#include <mutex>
#include <numeric>
#include <optional>
#include <set>
#include <string_view>
#include <thread>
#include <utility>

namespace Mirqos::Test {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;
using std::chrono::steady_clock;

constexpr std::size_t kPiece = 64 * 1024;
constexpr std::chrono::seconds kPause{2};
constexpr std::chrono::seconds kOutage{1};
constexpr std::string_view kRefusal =
    "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";

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
    std::map<Harm, int> Done() const {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_done;
    }

private:
    struct Pair {
        explicit Pair(asio::io_context& context)
            : client(context), server(context), pauseUp(context), pauseDown(context) {}
        tcp::socket client;
        tcp::socket server;
        asio::steady_timer pauseUp;
        asio::steady_timer pauseDown;
        bool stalled = false;
        bool refused = false;
        bool answering = false;  ///< a piece is on its way to the client
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
            if (!m_acceptor.is_open()) {
                return;
            }
            if (error || IsOut()) {
                Reset(pair->client);
            } else {
                m_pairs.insert(pair);
                Connect(pair);
            }
            Accept();
        });
    }

    void Connect(const PairPointer& pair) {
        pair->server.async_connect(m_server, [this, pair](const error_code& refused) {
            if (refused) {
                Close(pair);
                return;
            }
            Pump(pair, Way::toServer);
            Pump(pair, Way::toClient);
        });
    }

    void Pump(const PairPointer& pair, Way way) {
        const bool up = way == Way::toServer;
        tcp::socket& from = up ? pair->client : pair->server;
        const auto piece = asio::buffer(pair->pieces[up ? 0 : 1]);
        from.async_read_some(
            piece, [this, pair, way, up, piece](const error_code& error, std::size_t size) {
                if (pair->refused) {
                    return;
                }
                if (error) {
                    EndOneWay(pair, way, error);
                } else if (up && IsOut()) {
                    Close(pair);
                } else if (!pair->stalled) {
                    Pass(pair, way, asio::buffer(piece, size));
                }
            });
    }

    void Pass(const PairPointer& pair, Way way, asio::const_buffer piece) {
        const bool up = way == Way::toServer;
        const auto [passed, harm] = Count(way, piece.size());
        pair->answering = pair->answering || !up;
        asio::async_write(up ? pair->server : pair->client, asio::buffer(piece, passed),
                          [this, pair, way, up, harm = harm, rest = piece + passed](
                              const error_code& error, std::size_t) {
                              pair->answering = pair->answering && up;
                              if (pair->refused) {
                                  return;
                              }
                              if (harm) {
                                  Do(*harm, pair, way, rest);
                              } else if (error) {
                                  EndOneWay(pair, way, error);
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
        // what a pause holds back comes by again
        traffic.bytes += harm == Harm::pause ? passed : size;
        return {static_cast<std::size_t>(passed), harm};
    }

    void Do(Harm harm, const PairPointer& pair, Way way, asio::const_buffer rest) {
        switch (harm) {
            case Harm::reset:
                Close(pair);
                break;
            case Harm::stall:
                pair->stalled = true;
                break;
            case Harm::pause:
                Pause(pair, way, rest);
                break;
            case Harm::refuse:
                if (pair->answering) {  // too late for another answer
                    harm = Harm::reset;
                    Close(pair);
                } else {
                    Refuse(pair);
                }
                break;
            case Harm::outage:
                m_outageEnd = steady_clock::now() + kOutage;
                Close(pair);
                break;
            case Harm::die:
                Die();
                break;
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_done[harm];
    }

    bool IsOut() const { return steady_clock::now() < m_outageEnd; }

    void Pause(const PairPointer& pair, Way way, asio::const_buffer rest) {
        asio::steady_timer& timer = way == Way::toServer ? pair->pauseUp : pair->pauseDown;
        timer.expires_after(kPause);
        timer.async_wait([this, pair, way, rest](const error_code& closed) {
            if (!closed && !pair->refused) {
                Pass(pair, way, rest);
            }
        });
    }

    void Refuse(const PairPointer& pair) {
        pair->refused = true;
        Reset(pair->server);
        asio::async_write(pair->client, asio::buffer(kRefusal),
                          [this, pair](const error_code&, std::size_t) {
                              error_code ignored;
                              pair->client.shutdown(tcp::socket::shutdown_send, ignored);
                              Drain(pair);
                          });
    }

    /// Takes what a refused client still sends: to close before would reset the connection, and the
    /// answer be lost.
    void Drain(const PairPointer& pair) {
        pair->client.async_read_some(asio::buffer(pair->pieces[0]),
                                     [this, pair](const error_code& error, std::size_t) {
                                         if (error) {
                                             Close(pair);
                                         } else {
                                             Drain(pair);
                                         }
                                     });
    }

    void Close(const PairPointer& pair) {
        Reset(pair->client);
        Reset(pair->server);
        pair->pauseUp.cancel();
        pair->pauseDown.cancel();
        m_pairs.erase(pair);
    }

    void Die() {
        error_code ignored;
        m_acceptor.close(ignored);
        while (!m_pairs.empty()) {
            Close(PairPointer(*m_pairs.begin()));
        }
    }

    /// An end is passed on as what it is, an orderly one only this way.
    void EndOneWay(const PairPointer& pair, Way way, const error_code& error) {
        error_code ignored;
        if (error == asio::error::eof && !std::exchange(pair->oneWayEnded, true)) {
            tcp::socket& to = way == Way::toServer ? pair->server : pair->client;
            to.shutdown(tcp::socket::shutdown_send, ignored);
        } else {
            if (error == asio::error::eof) {
                pair->client.close(ignored);
                pair->server.close(ignored);
            }
            Close(pair);
        }
    }

    const tcp::endpoint m_server;
    asio::io_context m_context;
    std::optional<asio::executor_work_guard<asio::io_context::executor_type>> m_work{
        m_context.get_executor()};
    tcp::acceptor m_acceptor{m_context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
    const std::uint16_t m_port = m_acceptor.local_endpoint().port();
    std::set<PairPointer> m_pairs;
    steady_clock::time_point m_outageEnd{};
    mutable std::mutex m_mutex;
    std::map<Way, Traffic> m_ways;  ///< guarded by m_mutex
    std::map<Harm, int> m_done;     ///< guarded by m_mutex
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
    const auto done = m_core->Done();
    return std::accumulate(done.begin(), done.end(), 0,
                           [](int sum, const auto& kind) { return sum + kind.second; });
}

int Relay::Done(Harm harm) const {
    return m_core->Done()[harm];
}

}  // namespace Mirqos::Test
