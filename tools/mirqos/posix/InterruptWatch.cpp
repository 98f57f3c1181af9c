#include "tools/mirqos/InterruptWatch.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <utility>

namespace Mirqos::Tool {

namespace {

// ends the wait itself
constexpr int kStopSignal = SIGUSR1;

/// Whether whoever started the program does not want it to end by the signal, as nohup does.
bool IsIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

struct InterruptWatch::State {
    std::function<void()> onInterrupt;
    sigset_t before{};
    sigset_t watched{};
    std::atomic<bool> stopping{false};
    std::thread thread;

    void Run() {
        for (;;) {
            int signal = 0;
            sigwait(&watched, &signal);
            if (stopping) {
                return;
            }
            if (signal != kStopSignal) {
                onInterrupt();
            }
        }
    }
};

InterruptWatch::InterruptWatch(std::function<void()> onInterrupt)
    : m_state(std::make_unique<State>()) {
    m_state->onInterrupt = std::move(onInterrupt);
    sigemptyset(&m_state->watched);
    sigaddset(&m_state->watched, kStopSignal);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // an ignored one would be waited for all the same
        if (!IsIgnored(signal)) {
            sigaddset(&m_state->watched, signal);
        }
    }
    // Threads started from here on inherit the mask, so the signals reach the waiting thread alone.
    pthread_sigmask(SIG_BLOCK, &m_state->watched, &m_state->before);
    m_state->thread = std::thread([state = m_state.get()] { state->Run(); });
}

InterruptWatch::~InterruptWatch() {
    m_state->stopping = true;
    pthread_kill(m_state->thread.native_handle(), kStopSignal);
    m_state->thread.join();
    pthread_sigmask(SIG_SETMASK, &m_state->before, nullptr);
}

void EndProcess(int code) {
    ::_exit(code);
}

}  // namespace Mirqos::Tool
