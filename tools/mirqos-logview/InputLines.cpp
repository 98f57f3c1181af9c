#include "tools/mirqos-logview/InputLines.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "log/dbg/win32/Owned.h"
#include "tools/mirqos-logview/Failure.h"
#include "tools/mirqos-logview/InputCommand.h"
#include "tools/mirqos/Console.h"

namespace Mirqos::LogView {

namespace {

constexpr std::size_t kMostLines = 64;

}  // namespace

struct InputLines::State {
    std::mutex mutex;
    std::condition_variable taken;
    std::deque<std::string> lines;
    LOGUTILS::KernelObject event{CreateEventW(nullptr, TRUE, FALSE, nullptr)};

    void Add(std::string line) {
        std::unique_lock<std::mutex> lock(mutex);
        taken.wait(lock, [this] { return lines.size() < kMostLines; });
        lines.push_back(std::move(line));
        SetEvent(event.Get());
    }

    std::optional<std::string> Take() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (lines.empty()) {
            return std::nullopt;
        }
        std::string line = std::move(lines.front());
        lines.pop_front();
        if (lines.empty()) {
            ResetEvent(event.Get());
        }
        taken.notify_one();
        return line;
    }

    void ReadAll() {
        std::string line;
        char c = '\0';
        while (Tool::ReadInput(&c, 1).value_or(0) == 1) {
            if (c == '\n') {
                Add(std::exchange(line, {}));
            } else if (line.size() <= kLongestInputLine) {
                line += c;  // one more than fits, which tells
            }
        }
        if (!line.empty()) {
            Add(line);
        }
    }
};

InputLines::InputLines() : m_state(std::make_shared<State>()) {
    Require(static_cast<bool>(m_state->event), "an event");
    std::thread([state = m_state] { state->ReadAll(); }).detach();
}

HANDLE InputLines::Event() const {
    return m_state->event.Get();
}

std::optional<std::string> InputLines::Next() const {
    return m_state->Take();
}

}  // namespace Mirqos::LogView
