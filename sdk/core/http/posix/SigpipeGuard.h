#pragma once

#include <csignal>
#include <ctime>

namespace Mirqos::Http {

/// Keeps SIGPIPE from this thread: a library inside another program must neither end it when a
/// server hangs up nor change its signal handlers. A signal raised meanwhile is taken away.
class SigpipeGuard {
public:
    SigpipeGuard() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_old);
    }
    ~SigpipeGuard() {
        if (!m_wasPending) {
            const timespec none{};
            while (sigtimedwait(&m_pipe, nullptr, &none) == SIGPIPE) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_old, nullptr);
    }
    SigpipeGuard(const SigpipeGuard&) = delete;
    SigpipeGuard& operator=(const SigpipeGuard&) = delete;

private:
    sigset_t m_pipe;
    sigset_t m_old;
    bool m_wasPending;
};

}  // namespace Mirqos::Http
