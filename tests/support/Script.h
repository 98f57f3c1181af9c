#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ScriptedServer.h"

namespace Mirqos::Test {

/// One rule's answers and counts.
struct ScriptedServer::Rule::State {
    std::mutex mutex;
    std::string method;
    std::string prefix;
    std::deque<std::pair<Answer, int>> answers;  ///< with how often each is still to be given
    std::optional<Answer> always;
    Handler handler;
    int matches = 0;
    int faults = 0;
};

/// What a scripted server knows, apart from its sockets: the rules, what was recorded and counted.
/// Any thread may call any member.
class Script {
public:
    using RuleState = ScriptedServer::Rule::State;

    /// Who answers a request, and how: with a handler, or with an answer.
    struct Choice {
        std::shared_ptr<RuleState> rule;  ///< null: no rule matched
        std::optional<Answer> answer;
        ScriptedServer::Handler handler;
    };

    std::shared_ptr<RuleState> AddRule(std::string method, std::string prefix);
    Choice Choose(const RecordedRequest& request);

    /// Returns the number under which Update finds the request.
    std::size_t Record(RecordedRequest request);
    void Update(std::size_t number, const std::string& body, bool complete);
    void CountFault(const std::shared_ptr<RuleState>& rule, Fault fault);
    void CountUnexpected();
    int CountAccepted();
    void CountClosed();

    std::vector<RecordedRequest> Requests() const;
    int Faults(Fault fault) const;
    int Unexpected() const;
    int Accepted() const;
    int Open() const;
    /// Blocks until `reached` holds; false after half a minute. It is called with the lock held.
    bool WaitUntil(const std::function<bool(const Script&)>& reached) const;

    /// For WaitUntil's conditions, which hold the lock already.
    int CompleteHeld() const { return m_complete; }
    int FaultsHeld(Fault fault) const;
    int OpenHeld() const { return m_accepted - m_closed; }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<std::shared_ptr<RuleState>> m_rules;
    std::vector<RecordedRequest> m_requests;
    std::map<Fault, int> m_faults;
    int m_complete = 0;
    int m_unexpected = 0;
    int m_accepted = 0;
    int m_closed = 0;
};

}  // namespace Mirqos::Test
