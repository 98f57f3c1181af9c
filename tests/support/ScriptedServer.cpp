#include "tests/support/ScriptedServer.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <cctype>
#include <set>
#include <thread>

#include "tests/support/Script.h"
#include "tests/support/ScriptedConnection.h"

namespace Mirqos::Test {
namespace {

namespace asio = boost::asio;
using Tcp = asio::ip::tcp;

bool SameName(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i]))) {
            return false;
        }
    }
    return true;
}

}  // namespace

const std::string* RecordedRequest::Header(const std::string& name) const {
    for (const auto& header : headers) {
        if (SameName(header.first, name)) {
            return &header.second;
        }
    }
    return nullptr;
}

std::string RecordedRequest::Value(const std::string& name) const {
    const std::string* value = Header(name);
    return value == nullptr ? std::string() : *value;
}

std::string RecordedRequest::Path() const {
    return target.substr(0, target.find('?'));
}

std::string RecordedRequest::Query() const {
    const std::size_t mark = target.find('?');
    return mark == std::string::npos ? std::string() : target.substr(mark + 1);
}

ScriptedServer::Rule& ScriptedServer::Rule::Once(Answer answer) {
    return Times(1, std::move(answer));
}

ScriptedServer::Rule& ScriptedServer::Rule::Times(int count, const Answer& answer) {
    if (count > 0) {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->answers.emplace_back(answer, count);
    }
    return *this;
}

ScriptedServer::Rule& ScriptedServer::Rule::Always(Answer answer) {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->always = std::move(answer);
    return *this;
}

ScriptedServer::Rule& ScriptedServer::Rule::Call(Handler handler) {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->handler = std::move(handler);
    return *this;
}

int ScriptedServer::Rule::Matches() const {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->matches;
}

int ScriptedServer::Rule::Faults() const {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    return m_state->faults;
}

class ScriptedServer::Impl {
public:
    explicit Impl(const Options& options) : m_acceptor(*m_context) {
        const Tcp::endpoint loopback(asio::ip::address_v4::loopback(), 0);
        m_acceptor.open(loopback.protocol());
        if (options.receiveBuffer > 0) {
            m_acceptor.set_option(asio::socket_base::receive_buffer_size(options.receiveBuffer));
        }
        m_acceptor.bind(loopback);
        m_acceptor.listen();
        m_port = m_acceptor.local_endpoint().port();
        Accept();
        m_thread = std::thread([this] { m_context->run(); });
    }

    ~Impl() {
        asio::post(*m_context, [this] {
            boost::system::error_code ignored;
            m_acceptor.close(ignored);
            EndAll();
            m_context->stop();
        });
        m_thread.join();
    }

    std::uint16_t Port() const { return m_port; }
    Script& TheScript() const { return *m_script; }

    void CloseConnections() {
        asio::post(*m_context, [this] { EndAll(); });
        m_script->WaitUntil([](const Script& script) { return script.OpenHeld() == 0; });
    }

private:
    void Accept() {
        m_acceptor.async_accept([this](const boost::system::error_code& error, Tcp::socket socket) {
            if (!m_acceptor.is_open()) {
                return;
            }
            if (!error) {
                Welcome(std::move(socket));
            }
            Accept();
        });
    }

    void Welcome(Tcp::socket socket) {
        const int number = m_script->CountAccepted();
        auto connection =
            std::make_shared<ScriptedConnection>(m_context, std::move(socket), m_script, number,
                                                 [this, number] { m_connections.erase(number); });
        m_connections.emplace(number, connection);
        connection->Start();
    }

    void EndAll() {
        const auto connections = m_connections;  // ending one takes it out of the list
        for (const auto& connection : connections) {
            connection.second->End();
        }
    }

    // shared for the sake of gates, which outlive the server and post to it
    std::shared_ptr<asio::io_context> m_context = std::make_shared<asio::io_context>(1);
    std::shared_ptr<Script> m_script = std::make_shared<Script>();
    Tcp::acceptor m_acceptor;
    std::uint16_t m_port = 0;
    std::map<int, std::shared_ptr<ScriptedConnection>> m_connections;
    std::thread m_thread;
};

ScriptedServer::ScriptedServer() : ScriptedServer(Options()) {
}

ScriptedServer::ScriptedServer(const Options& options) : m_impl(std::make_unique<Impl>(options)) {
}

ScriptedServer::~ScriptedServer() = default;

std::uint16_t ScriptedServer::Port() const {
    return m_impl->Port();
}

std::string ScriptedServer::Endpoint() const {
    return "127.0.0.1:" + std::to_string(Port());
}

ScriptedServer::Rule ScriptedServer::On(std::string method, std::string targetPrefix) {
    return Rule(m_impl->TheScript().AddRule(std::move(method), std::move(targetPrefix)));
}

ScriptedServer::Rule ScriptedServer::Next(Answer answer) {
    return On("", "").Once(std::move(answer));
}

std::vector<RecordedRequest> ScriptedServer::Requests() const {
    return m_impl->TheScript().Requests();
}

bool ScriptedServer::WaitForRequests(int count) const {
    return m_impl->TheScript().WaitUntil(
        [count](const Script& script) { return script.CompleteHeld() >= count; });
}

int ScriptedServer::Faults(Fault fault) const {
    return m_impl->TheScript().Faults(fault);
}

bool ScriptedServer::WaitForFaults(Fault fault, int count) const {
    return m_impl->TheScript().WaitUntil(
        [fault, count](const Script& script) { return script.FaultsHeld(fault) >= count; });
}

int ScriptedServer::Unexpected() const {
    return m_impl->TheScript().Unexpected();
}

int ScriptedServer::Connections() const {
    return m_impl->TheScript().Accepted();
}

int ScriptedServer::OpenConnections() const {
    return m_impl->TheScript().Open();
}

void ScriptedServer::CloseConnections() {
    m_impl->CloseConnections();
}

}  // namespace Mirqos::Test
