#include "tests/support/ScriptedConnection.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <cstdint>
#include <limits>
#include <utility>

#include "tests/support/RequestHead.h"

namespace Mirqos::Test {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using boost::system::error_code;

constexpr std::size_t kMaxHead = 1024 * 1024;

}  // namespace

ScriptedConnection::ScriptedConnection(std::weak_ptr<asio::io_context> context, Socket socket,
                                       std::shared_ptr<Script> script, int number,
                                       std::function<void()> onEnd)
    : m_context(std::move(context)),
      m_socket(std::move(socket)),
      m_script(std::move(script)),
      m_number(number),
      m_onEnd(std::move(onEnd)) {
}

void ScriptedConnection::Start() {
    error_code ignored;
    m_socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    ReadHead();
}

void ScriptedConnection::End() {
    if (m_ended) {
        return;
    }
    m_ended = true;
    error_code ignored;
    m_socket.close(ignored);
    m_script->CountClosed();
    m_onEnd();
}

void ScriptedConnection::ReadMore(std::size_t most, Step then) {
    m_socket.async_read_some(
        asio::buffer(m_piece.data(), std::min(most, m_piece.size())),
        [self = shared_from_this(), then](const error_code& error, std::size_t size) {
            if (self->m_ended) {
                return;
            }
            if (error) {
                if (self->m_parser) {
                    self->m_script->Update(self->m_record, self->m_parser->get().body(), false);
                }
                self->End();
                return;
            }
            self->m_input.append(self->m_piece.data(), size);
            (self.get()->*then)();
        });
}

void ScriptedConnection::ReadHead() {
    const std::size_t end = m_input.find("\r\n\r\n");
    if (end != std::string::npos) {
        TakeHead(end + 4);
    } else if (m_input.size() > kMaxHead) {
        RefuseMalformed(m_input);
    } else {
        ReadMore(m_piece.size(), &ScriptedConnection::ReadHead);
    }
}

void ScriptedConnection::RefuseMalformed(std::string head) {
    m_script->CountUnexpected();
    m_request.head = std::move(head);
    m_script->Record(m_request);
    m_parser.reset();
    m_choice = {};
    m_plan = Answer::Status(400).ConnectionClose().Plan(false);
    m_nextAnswerStop = 0;
    Write(&ScriptedConnection::CloseOrderly);
}

void ScriptedConnection::TakeHead(std::size_t size) {
    m_request = RecordedRequest();
    m_request.connection = m_number;
    m_request.head = m_input.substr(0, size);
    m_parser.emplace();
    m_parser->eager(true);
    m_parser->header_limit(kMaxHead);
    m_parser->body_limit(std::numeric_limits<std::uint64_t>::max());
    if (!SplitHead(m_request.head, m_request) || !Parse()) {
        RefuseMalformed(m_request.head);
        return;
    }
    m_record = m_script->Record(m_request);
    m_choice = m_script->Choose(m_request);
    m_plan = m_choice.answer ? m_choice.answer->Plan(m_request.method == "HEAD") : AnswerPlan();
    m_nextRequestStop = 0;
    m_nextAnswerStop = 0;
    m_answered = false;
    if (m_plan.interim.empty()) {
        ReadBody();
        return;
    }
    asio::async_write(m_socket, asio::buffer(m_plan.interim),
                      [self = shared_from_this()](const error_code& error, std::size_t) {
                          if (self->m_ended) {
                              return;
                          }
                          error ? self->End() : self->ReadBody();
                      });
}

// Hands m_input to the parser; false when it is not HTTP.
bool ScriptedConnection::Parse() {
    std::size_t taken = 0;
    while (taken < m_input.size() && !m_parser->is_done()) {
        error_code error;
        taken += m_parser->put(asio::buffer(m_input.data() + taken, m_input.size() - taken), error);
        if (error == http::error::need_more) {
            break;
        }
        if (error) {
            return false;
        }
    }
    m_input.erase(0, taken);
    return true;
}

std::size_t ScriptedConnection::MostToRead() const {
    const std::uint64_t received = m_parser->get().body().size();
    std::uint64_t most = m_piece.size();
    if (m_nextRequestStop < m_plan.requestStops.size()) {
        most = std::min(most, m_plan.requestStops[m_nextRequestStop].at - received);
    }
    if (m_plan.answerAfter && !m_answered) {
        most = std::min(most, *m_plan.answerAfter - received);
    }
    return static_cast<std::size_t>(most);
}

void ScriptedConnection::ReadBody() {
    if (!Parse()) {
        RefuseMalformed(m_request.head);
        return;
    }
    const std::uint64_t received = m_parser->get().body().size();
    if (m_nextRequestStop < m_plan.requestStops.size() &&
        m_plan.requestStops[m_nextRequestStop].at <= received) {
        DoStop(m_plan.requestStops[m_nextRequestStop++], &ScriptedConnection::ReadBody, false);
    } else if (m_plan.answerAfter && !m_answered && *m_plan.answerAfter <= received) {
        Write(&ScriptedConnection::ReadBody);
    } else if (m_parser->is_done()) {
        Complete();
    } else {
        ReadMore(MostToRead(), &ScriptedConnection::ReadBody);
    }
}

void ScriptedConnection::Complete() {
    m_request.body = m_parser->get().body();
    m_request.complete = true;
    m_script->Update(m_record, m_request.body, true);
    if (m_answered) {
        AfterAnswer();
        return;
    }
    if (m_choice.handler) {
        m_plan = m_choice.handler(m_request).Plan(m_request.method == "HEAD");
    }
    Write(&ScriptedConnection::AfterAnswer);
}

void ScriptedConnection::Write(Step then) {
    m_afterWrite = then;
    m_answered = true;
    m_sent = 0;
    WriteOn();
}

void ScriptedConnection::WriteOn() {
    std::uint64_t end = m_plan.bytes.size();
    if (m_nextAnswerStop < m_plan.answerStops.size()) {
        const AnswerPlan::Stop& stop = m_plan.answerStops[m_nextAnswerStop];
        if (stop.at <= m_sent) {
            ++m_nextAnswerStop;
            DoStop(stop, &ScriptedConnection::WriteOn, true);
            return;
        }
        end = std::min(end, stop.at);
    }
    if (m_sent == end) {
        (this->*m_afterWrite)();
        return;
    }
    asio::async_write(
        m_socket,
        asio::buffer(m_plan.bytes.data() + m_sent, static_cast<std::size_t>(end) - m_sent),
        [self = shared_from_this()](const error_code& error, std::size_t size) {
            if (self->m_ended) {
                return;
            }
            if (error) {
                self->End();
                return;
            }
            self->m_sent += size;
            self->WriteOn();
        });
}

void ScriptedConnection::AfterAnswer() {
    if (m_plan.closes || !m_parser->keep_alive()) {
        CloseOrderly();
        return;
    }
    m_parser.reset();
    ReadHead();
}

void ScriptedConnection::DoStop(const AnswerPlan::Stop& stop, Step then, bool answering) {
    if (m_parser && !m_parser->is_done()) {
        m_script->Update(m_record, m_parser->get().body(), false);
    }
    if (!stop.fault) {
        stop.gate.PassThen([weak = weak_from_this(), context = m_context, then] {
            if (const auto running = context.lock()) {
                asio::post(*running, [weak, then] {
                    const auto self = weak.lock();
                    if (self && !self->m_ended) {
                        (self.get()->*then)();
                    }
                });
            }
        });
        return;
    }
    // counted first: whoever sees the effect finds the count
    m_script->CountFault(m_choice.rule, *stop.fault);
    switch (*stop.fault) {
        case Fault::stall:
            return;  // the server's list keeps the connection
        case Fault::reset: {
            error_code ignored;
            m_socket.set_option(asio::socket_base::linger(true, 0), ignored);
            End();
            return;
        }
        case Fault::close:
            answering ? CloseOrderly() : End();
            return;
    }
}

// Without reading on, input still on its way would turn the close into a reset, which can overtake
// the answer.
void ScriptedConnection::CloseOrderly() {
    error_code ignored;
    m_socket.shutdown(Socket::shutdown_send, ignored);
    m_parser.reset();
    Drain();
}

void ScriptedConnection::Drain() {
    m_input.clear();
    ReadMore(m_piece.size(), &ScriptedConnection::Drain);
}

}  // namespace Mirqos::Test
