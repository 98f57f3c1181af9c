#pragma once

#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tests/support/Script.h"

namespace Mirqos::Test {

/// One accepted connection of a scripted server: reads requests one after another and carries out
/// the plan of each. Every member is called on the server's thread only.
class ScriptedConnection : public std::enable_shared_from_this<ScriptedConnection> {
public:
    using Socket = boost::asio::ip::tcp::socket;

    /// `onEnd` is called once, when the connection is closed.
    ScriptedConnection(std::weak_ptr<boost::asio::io_context> context, Socket socket,
                       std::shared_ptr<Script> script, int number, std::function<void()> onEnd);

    void Start();
    /// Closes the connection, whatever it is doing.
    void End();

private:
    using Step = void (ScriptedConnection::*)();
    using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;

    void ReadMore(std::size_t most, Step then);
    void ReadHead();
    void RefuseMalformed(std::string head);
    void TakeHead(std::size_t size);
    bool Parse();
    void ReadBody();
    std::size_t MostToRead() const;
    void Complete();
    void Write(Step then);
    void WriteOn();
    void AfterAnswer();
    void DoStop(const AnswerPlan::Stop& stop, Step then, bool answering);
    void CloseOrderly();
    void Drain();

    std::weak_ptr<boost::asio::io_context> m_context;
    Socket m_socket;
    std::shared_ptr<Script> m_script;
    int m_number;
    std::function<void()> m_onEnd;
    bool m_ended = false;

    std::array<char, 64 * 1024> m_piece{};
    std::string m_input;  ///< received and not yet taken
    std::optional<Parser> m_parser;
    RecordedRequest m_request;
    std::size_t m_record = 0;
    Script::Choice m_choice;
    AnswerPlan m_plan;
    std::size_t m_nextRequestStop = 0;
    std::size_t m_nextAnswerStop = 0;
    std::size_t m_sent = 0;
    bool m_answered = false;
    Step m_afterWrite = nullptr;
};

}  // namespace Mirqos::Test
