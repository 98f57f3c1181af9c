#include "tests/support/Script.h"

#include <chrono>

namespace Mirqos::Test {

std::shared_ptr<Script::RuleState> Script::AddRule(std::string method, std::string prefix) {
    auto rule = std::make_shared<RuleState>();
    rule->method = std::move(method);
    rule->prefix = std::move(prefix);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_rules.push_back(rule);
    return rule;
}

Script::Choice Script::Choose(const RecordedRequest& request) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const std::shared_ptr<RuleState>& rule : m_rules) {
        const std::lock_guard<std::mutex> ruleLock(rule->mutex);
        if ((!rule->method.empty() && rule->method != request.method) ||
            request.target.compare(0, rule->prefix.size(), rule->prefix) != 0) {
            continue;
        }
        Choice choice;
        choice.rule = rule;
        if (!rule->answers.empty()) {
            choice.answer = rule->answers.front().first;
            if (--rule->answers.front().second == 0) {
                rule->answers.pop_front();
            }
        } else if (rule->handler) {
            choice.handler = rule->handler;
        } else if (rule->always) {
            choice.answer = rule->always;
        } else {
            continue;
        }
        ++rule->matches;
        return choice;
    }
    ++m_unexpected;
    Choice none;
    none.answer = Answer::Status(501).Body("the script has no answer to this request\n");
    return none;
}

std::size_t Script::Record(RecordedRequest request) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.push_back(std::move(request));
    return m_requests.size() - 1;
}

void Script::Update(std::size_t number, const std::string& body, bool complete) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    RecordedRequest& request = m_requests[number];
    request.body = body;
    if (complete && !request.complete) {
        request.complete = true;
        ++m_complete;
        m_changed.notify_all();
    }
}

void Script::CountFault(const std::shared_ptr<RuleState>& rule, Fault fault) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (rule != nullptr) {
        const std::lock_guard<std::mutex> ruleLock(rule->mutex);
        ++rule->faults;
    }
    ++m_faults[fault];
    m_changed.notify_all();
}

void Script::CountUnexpected() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_unexpected;
}

int Script::CountAccepted() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return ++m_accepted;
}

void Script::CountClosed() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_closed;
    m_changed.notify_all();
}

std::vector<RecordedRequest> Script::Requests() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

int Script::FaultsHeld(Fault fault) const {
    const auto found = m_faults.find(fault);
    return found == m_faults.end() ? 0 : found->second;
}

int Script::Faults(Fault fault) const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return FaultsHeld(fault);
}

int Script::Unexpected() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_unexpected;
}

int Script::Accepted() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_accepted;
}

int Script::Open() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return OpenHeld();
}

bool Script::WaitUntil(const std::function<bool(const Script&)>& reached) const {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::seconds(30), [&] { return reached(*this); });
}

}  // namespace Mirqos::Test
