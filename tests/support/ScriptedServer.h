#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ScriptedAnswer.h"

namespace Mirqos::Test {

/// A request to the letter, as it arrived.
struct RecordedRequest {
    int connection = 0;  ///< 1 for the first connection the server accepted, and so on
    std::string method;
    std::string target;                                        ///< path and query as sent
    std::string version;                                       ///< "HTTP/1.1"
    std::vector<std::pair<std::string, std::string>> headers;  ///< in order, names as sent
    std::string head;       ///< request line and headers, every byte up to the empty line
    std::string body;       ///< decoded when it was chunked; what has arrived so far
    bool complete = false;  ///< the whole body has arrived

    /// The first value of that header, letter case of the name aside; null when there is none.
    const std::string* Header(const std::string& name) const;
    /// That value, or an empty text.
    std::string Value(const std::string& name) const;
    /// The target before and after the first "?".
    std::string Path() const;
    std::string Query() const;
};

/// An HTTP/1.1 server within the test process, on a free port of 127.0.0.1. It records every
/// request and answers what its script says:
///
///     ScriptedServer server;
///     server.On("PUT", "/bucket/").Times(2, Answer::Status(503)).Always(Answer::Status(200));
///     server.Next(Answer::Status(200).Body("hello").Reset(Place::BodyByte(2)));
///
/// The script is a list of rules, tried in the order they were added; the first that matches and
/// still has an answer gives it. A request that none answers gets status 501 and is counted as
/// unexpected.
///
/// Every member may be called from any thread. The server runs on one thread of its own; handlers
/// are called there and must not block (use Answer::Wait). The destructor closes every connection,
/// stalled ones too, and returns at once.
class ScriptedServer {
public:
    using Handler = std::function<Answer(const RecordedRequest&)>;

    /// Handle of one rule; copies mean the same rule. Valid as long as its server.
    class Rule {
    public:
        /// Adds an answer for one request, for `count` requests, for all further ones.
        Rule& Once(Answer answer);
        Rule& Times(int count, const Answer& answer);
        Rule& Always(Answer answer);
        /// Lets `handler` make the answer to all further requests, once each is complete.
        Rule& Call(Handler handler);
        /// Requests this rule has answered, or begun to.
        int Matches() const;
        /// Faults of this rule's answers that were really carried out.
        int Faults() const;

    private:
        friend class ScriptedServer;
        friend class Script;
        struct State;
        Rule(std::shared_ptr<State> state) : m_state(std::move(state)) {}
        std::shared_ptr<State> m_state;
    };

    struct Options {
        /// Receive buffer of the sockets in bytes; 0: the system's. A small one makes a client that
        /// sends to a stalled server notice soon.
        int receiveBuffer = 0;
    };

    ScriptedServer();
    explicit ScriptedServer(const Options& options);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::uint16_t Port() const;
    /// "127.0.0.1:PORT"
    std::string Endpoint() const;

    /// Adds a rule for requests with that method ("" for any) whose target starts with
    /// `targetPrefix` ("" for any).
    Rule On(std::string method, std::string targetPrefix);
    /// Adds an answer for one request of any kind: the next that no earlier rule answers.
    Rule Next(Answer answer);

    /// All requests whose head has arrived, in the order of arrival.
    std::vector<RecordedRequest> Requests() const;
    /// Blocks until Requests() has at least `count` complete entries. False when that takes longer
    /// than half a minute.
    bool WaitForRequests(int count) const;
    /// Faults that were really carried out.
    int Faults(Fault fault) const;
    /// Blocks until Faults(fault) is at least `count`; false as with WaitForRequests.
    bool WaitForFaults(Fault fault, int count) const;
    /// Requests that no rule answered, and those that were not HTTP.
    int Unexpected() const;
    /// Connections accepted so far.
    int Connections() const;
    /// Connections that are open now.
    int OpenConnections() const;
    /// Closes every open connection, for clients that hold idle ones, and waits until it is done.
    void CloseConnections();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace Mirqos::Test
