#include "tools/mirqos-logview/InputLines.h"

#include <deque>
#include <mutex>
#include <thread>

#include "log/dbg/win32/Owned.h"
#include "tools/mirqos-logview/Failure.h"
#include "tools/mirqos-logview/InputCommand.h"
#include "tools/mirqos/Console.h"

namespace Mirqos::LogView {

struct InputLines::State {
    std::mutex mutex;
    std::deque<std::string> lines;
    LOGUTILS::KernelObject event{CreateEventW(nullptr, FALSE, FALSE, nullptr)};

    void Add(std::string line) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            lines.push_back(std::move(line));
        }
        SetEvent(event.Get());
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
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    if (m_state->lines.empty()) {
        return std::nullopt;
    }
    std::string line = std::move(m_state->lines.front());
    m_state->lines.pop_front();
    return line;
}

}  // namespace Mirqos::LogView
