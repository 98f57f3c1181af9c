#include "store/CallsInFlight.h"

namespace Mirqos {

void CallsInFlight::Begin() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    ++m_nCalls;
}

void CallsInFlight::End() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (--m_nCalls == 0) {
        m_cvNone.notify_all();
    }
}

void CallsInFlight::WaitForAll() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_cvNone.wait(lock, [this] { return m_nCalls == 0; });
}

}  // namespace Mirqos
