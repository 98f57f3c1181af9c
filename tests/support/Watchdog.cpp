#include "tests/support/Watchdog.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "tests/support/ThreadStacks.h"

namespace Mirqos::Test {

Watchdog::Watchdog(std::chrono::milliseconds limit, std::function<std::string()> describe) {
    PrepareThreadStacks();
    m_thread = std::thread([this, limit, what = std::move(describe)] { Run(limit, what); });
}

Watchdog::~Watchdog() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_done = true;
        m_wake.notify_all();
    }
    m_thread.join();
}

std::chrono::seconds Watchdog::LimitOf(const char* text) {
    constexpr std::chrono::seconds kDefault{240};
    if (text == nullptr) {
        return kDefault;
    }
    char* end = nullptr;
    const long seconds = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || seconds <= 0) {
        return kDefault;
    }
    return std::chrono::seconds{seconds};
}

void Watchdog::Run(std::chrono::milliseconds limit, const std::function<std::string()>& describe) {
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (m_wake.wait_for(lock, limit, [this] { return m_done; })) {
            return;
        }
    }
    const std::string what = describe ? describe() : std::string();
    std::fprintf(stderr, "\nWatchdog: the limit of %lld ms has passed%s%s. Stacks:\n",
                 static_cast<long long>(limit.count()), what.empty() ? "" : " in ", what.c_str());
    std::fflush(stderr);
    PrintThreadStacks();
    std::fflush(stderr);
    std::_Exit(kExitCode);
}

}  // namespace Mirqos::Test
