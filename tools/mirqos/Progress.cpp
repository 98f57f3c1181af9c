#include "tools/mirqos/Progress.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "tools/mirqos/Console.h"
#include "tools/mirqos/ProgressLine.h"
#include "tools/mirqos/Text.h"

namespace Mirqos::Tool {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kRedraw{200};
constexpr std::chrono::milliseconds kPlainLine{5000};

}  // namespace

struct Progress::State {
    const std::optional<unsigned> columns = ErrorColumns();
    std::mutex mutex;
    std::condition_variable ended;
    bool finished = false;
    std::size_t drawn = 0;  ///< characters of the line on the terminal
    ProgressState line;
    Clock::time_point begin = Clock::now();
    std::thread thread;

    void Begin(const std::string& phase, const std::string& name, std::optional<std::uint64_t> done,
               std::optional<std::uint64_t> total) {
        const std::lock_guard<std::mutex> lock(mutex);
        line = {phase, name, done, total, 0};
        begin = Clock::now();
    }

    /// Blanks instead of an escape sequence, which a Windows console takes only when asked to.
    void DrawOver(const std::string& text) {
        const std::size_t length = CountCharacters(text);
        WriteError("\r" + text + std::string(drawn > length ? drawn - length : 0, ' '));
        drawn = length;
    }

    void Draw() {
        if (line.phase.empty()) {
            return;
        }
        line.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        if (const auto now = ErrorColumns()) {
            DrawOver(FormatProgressBar(line, *now));
        } else {
            WriteError(FormatProgressText(line) + "\n");
        }
    }

    void Run() {
        std::unique_lock<std::mutex> lock(mutex);
        while (!ended.wait_for(lock, columns ? kRedraw : kPlainLine, [&] { return finished; })) {
            Draw();
        }
        if (drawn > 0) {
            DrawOver("");
            WriteError("\r");
        }
    }
};

Progress::Progress(bool shown) : m_state(shown ? std::make_unique<State>() : nullptr) {
    if (m_state) {
        m_state->thread = std::thread([state = m_state.get()] { state->Run(); });
    }
}

Progress::~Progress() {
    if (m_state) {
        {
            const std::lock_guard<std::mutex> lock(m_state->mutex);
            m_state->finished = true;
            m_state->ended.notify_all();
        }
        m_state->thread.join();
    }
}

void Progress::Count(const std::string& phase, const std::string& name,
                     std::optional<std::uint64_t> total) {
    if (m_state) {
        m_state->Begin(phase, name, 0, total);
    }
}

void Progress::Wait(const std::string& phase, const std::string& name,
                    std::optional<std::uint64_t> total) {
    if (m_state) {
        m_state->Begin(phase, name, std::nullopt, total);
    }
}

void Progress::Add(std::uint64_t bytes) {
    if (m_state) {
        const std::lock_guard<std::mutex> lock(m_state->mutex);
        m_state->line.done = m_state->line.done.value_or(0) + bytes;
    }
}

}  // namespace Mirqos::Tool
