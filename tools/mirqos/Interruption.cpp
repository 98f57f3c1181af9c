#include "tools/mirqos/Interruption.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

#include "tools/mirqos/Console.h"
#include "tools/mirqos/Failure.h"

namespace Mirqos::Tool {

namespace {

constexpr std::chrono::seconds kGrace{2};
constexpr const char* kMessage = "interrupted; nothing unfinished is left behind";

}  // namespace

/// Shared with the watching thread, which the system may keep running while the program ends.
struct Interruption::State {
    std::atomic<bool> requested{false};
    std::mutex mutex;
    std::condition_variable ended;
    bool finished = false;
    std::vector<std::shared_ptr<std::function<void()>>> cleanups;

    void OnInterrupt() {
        requested = true;
        std::unique_lock<std::mutex> lock(mutex);
        if (ended.wait_for(lock, kGrace, [&] { return finished; })) {
            return;
        }
        // under the lock: a scope that ends now waits, and the process ends before it goes on
        for (const auto& cleanup : cleanups) {
            (*cleanup)();
        }
        WriteError(std::string("\nmirqos: ") + kMessage + "\n");
        EndProcess(static_cast<int>(ExitCode::Interrupted));
    }
};

Interruption::Cleanup::Cleanup(std::shared_ptr<State> state, std::function<void()> action)
    : m_state(std::move(state)),
      m_action(std::make_shared<std::function<void()>>(std::move(action))) {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->cleanups.push_back(m_action);
}

Interruption::Cleanup::~Cleanup() {
    if (m_state) {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        auto& cleanups = m_state->cleanups;
        cleanups.erase(std::remove(cleanups.begin(), cleanups.end(), m_action), cleanups.end());
    }
}

Interruption::Interruption()
    : m_state(std::make_shared<State>()), m_watch([state = m_state] { state->OnInterrupt(); }) {
}

Interruption::~Interruption() {
    const std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->finished = true;
    m_state->ended.notify_all();
}

bool Interruption::Requested() const {
    return m_state->requested;
}

void Interruption::CheckPoint() const {
    if (Requested()) {
        throw Failure(ExitCode::Interrupted, kMessage);
    }
}

Interruption::Cleanup Interruption::OnAbruptEnd(std::function<void()> action) {
    return Cleanup(m_state, std::move(action));
}

}  // namespace Mirqos::Tool
